#include "storage/profile_file.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <new>

#include "foundation/paths.h"
#include "storage/packed_field.h"

namespace kelvaro {

// The fields of each list by their indexes, for reading into the members and for writing them.
namespace {

// Whether a load fails without a field: yes, no, and yes, also where the field is too short.
enum Presence { Needed, Optional, Whole };

constexpr auto kTextField = [](auto& fields, auto& text) { fields.Text(text); };

constexpr auto kNameFields = [](auto& fields, auto& profile) {
  fields.Text(profile.profileName);
  fields.Packed(Needed, profile.nextControlId);
};

constexpr auto kDeviceFields = [](auto& fields, auto& profile) {
  auto& guid = profile.deviceGuid;
  fields.Text(profile.deviceName);
  fields.Packed(Needed, profile.pollInterval);
  fields.Packed(Needed, guid.Data1, guid.Data2, guid.Data3, guid.Data4);
};

constexpr auto kMouseFields = [](auto& fields, auto& mouse) {
  fields.Packed(Needed, mouse.acceleration, mouse.movementSensitivity, mouse.movementDamper,
                mouse.leftButton, mouse.middleButton, mouse.rightButton, mouse.leftMask,
                mouse.middleMask, mouse.rightMask, mouse.mouseX, mouse.mouseY, mouse.mouseWheel,
                mouse.mouseAlwaysActive, mouse.wheelSensitivity, mouse.wheelDamper);
};

constexpr auto kControlFields = [](auto& fields, auto& control) {
  fields.Text(control.description);
  fields.Packed(Needed, control.controlId);
  fields.Packed(Optional, control.toggleMouseControls);
};

constexpr auto kTriggerFields = [](auto& fields, auto& trigger) {
  fields.Packed(Needed, trigger.activateOnPress, trigger.buttonMask,
                IfThere(trigger.triggerOption));
};

constexpr auto kTriggerItemField = [](auto& fields, auto& item) {
  return fields.Packed(Optional, item.kind, item.index, item.value);
};

constexpr auto kTriggerWithItems = [](auto& fields, auto& trigger) {
  kTriggerFields(fields, trigger);
  for (auto& item : trigger.triggerItems) kTriggerItemField(fields, item);
};

// A load takes these timings only where the Control has no list of its own for them.
constexpr auto kActionFields = [](auto& fields, auto& timings, auto& keys) {
  fields.Packed(Needed, timings.repeatEnabled, timings.repeatDelay, timings.repeatSpeed,
                timings.keyHoldTime);
  fields.Text(keys);
};

constexpr auto kTimingsFields = [](auto& fields, auto& timings) {
  fields.Packed(Whole, timings.repeatEnabled, timings.repeatDelay, timings.repeatSpeed,
                timings.keyHoldTime, timings.keyReleasePause);
};

}  // namespace

const ProfileList* FindProfileList(std::uint32_t id) {
  const auto* const found = std::find_if(std::begin(kProfileLists), std::end(kProfileLists),
                                         [id](const ProfileList& list) { return list.id == id; });
  return found == std::end(kProfileLists) ? nullptr : found;
}

ProfileFile::ProfileFile() { magic = kMagic; }

// Reading

class ProfileFile::FieldReader {
 public:
  explicit FieldReader(ProfileFile& file) : file(file) {}

  void Text(ByteString& text) { good &= file.Take(index++, kAnySize, true, &text); }
  template <typename... T>
  bool Packed(Presence presence, T&&... members) {
    const std::uint32_t size = PackedSize(members...);
    const bool isThere = file.Take(index++, size, presence != Optional, &field) &&
                         (presence != Whole || field.Length() >= size);
    if (isThere) PackedReader(field).Read(members...);
    good &= isThere || presence == Optional;
    return isThere;
  }

  bool good = true;  // nothing that is needed is missing
  std::uint32_t index = 0;

 private:
  ProfileFile& file;
  ByteString field;
};

template <typename Read>
bool ProfileFile::ReadList(std::uint32_t id, Read read) {
  if (!Enter(id)) return FindProfileList(id)->without != nullptr;
  const bool good = read();
  return Leave() && good;
}

template <typename Read>
bool ProfileFile::ReadEachList(std::uint32_t firstIndex, Read read) {
  const std::uint32_t count = ChildCount();
  for (std::uint32_t i = firstIndex; i < count; ++i) {
    if (!IsList(i)) continue;
    if (!EnterAt(i)) return false;
    const bool good = read();
    if (!Leave() || !good) return false;
  }
  return true;
}

template <typename Layout, typename... Targets>
bool ProfileFile::ReadFields(Layout layout, Targets&... targets) {
  FieldReader fields(*this);
  layout(fields, targets...);
  if (fields.good) FieldsTaken(fields.index);
  return fields.good;
}

bool ProfileFile::Load(const ByteString& path) {
  Clear();
  damagedFile.Empty();
  if (!OpenForRead(path)) return false;
  const bool good = ReadProfile();
  if (isDamaged) damagedFile = path;
  return good;
}

bool ProfileFile::ReadProfile() {
  FieldsTaken(0);
  ByteString type;
  bool good = ReadList(profile_list::kDocumentType, [&] { return ReadFields(kTextField, type); });
  if (!type.Equals(documentType)) {
    Close();
    return false;
  }
  good &= ReadList(profile_list::kProfileName, [this] { return ReadFields(kNameFields, *this); });
  good &= ReadList(profile_list::kDevice, [this] { return ReadFields(kDeviceFields, *this); });
  good &=
      ReadList(profile_list::kMouseSettings, [this] { return ReadFields(kMouseFields, *this); });
  good &= ReadList(profile_list::kControls, [this, good] {
    FieldsTaken(0);
    // Controls are only read as long as all was well.
    return good &&
           ReadEachList(0, [this] { return ListId() != profile_list::kControl || ReadControl(); });
  });
  good &= Leave();

  LockGuard guard(profileLock);
  RebuildDispatchList();
  return good;
}

bool ProfileFile::ReadControl() {
  // Read in its place in the list, where it owns its actions: the read part of a Control stays even
  // when the rest is lost, and no copy can lose a part for want of memory.
  if (!controls.AddTail(Control())) return false;
  Control& control = *controls.tail->value;

  // The values that files had in each action before Controls had a list of timings.
  KeyTimings old;
  bool sawTimings = false;
  const auto readList = [&] {
    switch (ListId()) {
      case profile_list::kTrigger:
        return ReadTrigger(&control);
      case profile_list::kKeyAction:
        return ReadKeyAction(&control, &old);
      case profile_list::kTimings:
        sawTimings = true;
        return ReadFields(kTimingsFields, control);
      default:
        return true;
    }
  };
  const bool good = ReadFields(kControlFields, control) && ReadEachList(2, readList);

  if (!sawTimings) {
    if (!old.repeatEnabled) old.keyHoldTime = 0;
    static_cast<KeyTimings&>(control) = old;
  }
  return good;
}

bool ProfileFile::ReadTrigger(Control* control) {
  control->ResetTrigger();
  FieldReader fields(*this);
  kTriggerFields(fields, *control);
  if (!fields.good) return false;
  control->SetButtonMask(control->buttonMask);

  while (fields.index < ChildCount()) {
    TriggerItem item;
    if (kTriggerItemField(fields, item) && !control->triggerItems.AddTail(item)) return false;
  }
  FieldsTaken(fields.index);
  return true;
}

bool ProfileFile::ReadKeyAction(Control* control, KeyTimings* old) {
  KeyTimings timings;
  ByteString keys;
  if (!ReadFields(kActionFields, timings, keys)) return false;
  std::unique_ptr<KeyAction> action(new (std::nothrow) KeyAction);
  if (!action) return false;
  *old = timings;

  for (std::uint32_t i = 0; i + 1 < keys.Length(); i += 2) {
    KeyStep step;
    step.vk = static_cast<std::uint8_t>(keys[i]);
    step.flags = static_cast<std::uint8_t>(keys[i + 1]);
    if (!action->steps.AddTail(step)) return false;
  }
  if (!ReadScanCodes(&action->steps)) {
    // The keys of an old file have no scan codes; the parser knows them.
    action->ParseKeys(action->FormatKeys());
  }
  std::uint32_t flags = 0;
  if (ReadNumber(kActionFlagsIndex, &flags)) action->actionFlags |= flags;

  if (!control->actions.AddTail(action.get())) return false;
  static_cast<void>(action.release());
  return true;
}

bool ProfileFile::ReadScanCodes(KeySequence* steps) {
  if (!Enter(profile_list::kScanCodes)) return false;
  ByteString scans;
  bool good = Take(0, static_cast<std::uint32_t>(steps->count), false, &scans);
  FieldsTaken(1);
  good &= Leave();
  if (!good) return false;

  std::uint32_t i = 0;
  for (KeyStep& step : *steps) {
    if (i < scans.Length()) step.scan = static_cast<std::uint8_t>(scans[i++]);
  }
  return true;
}

ByteString ProfileFile::ReadProfileName(const ByteString& path) {
  ByteString name;
  if (!OpenForRead(path)) return name;
  ByteString text;
  if (Descend(profile_list::kDocumentType) && ReadField(0, &text) && text.Equals(documentType) &&
      Ascend() && Descend(profile_list::kProfileName)) {
    ReadField(0, &name);
  }
  Close();
  return name;
}

// Writing. A failed step doesn't stop the next one; all of them are run, and the results gathered.

class ProfileFile::FieldWriter {
 public:
  explicit FieldWriter(ProfileFile& file) : file(file) {}

  bool Text(const ByteString& text) { return good &= file.WriteBytes(text); }
  template <typename... T>
  bool Packed(Presence, const T&... members) {
    return Text(PackedWriter(members...).Field());
  }

  bool good = true;

 private:
  ProfileFile& file;
};

template <typename Layout, typename Lists, typename... Sources>
bool ProfileFile::WriteList(std::uint32_t id, Layout layout, Lists lists,
                            const Sources&... sources) {
  bool good = Descend(id);
  FieldWriter fields(*this);
  layout(fields, sources...);
  good &= fields.good;
  good &= lists();
  good &= Ascend();
  return good;
}

template <typename Layout, typename... Sources>
bool ProfileFile::WriteFields(std::uint32_t id, Layout layout, const Sources&... sources) {
  return WriteList(
      id, layout, [] { return true; }, sources...);
}

bool ProfileFile::Save() {
  if (profileName.IsEmpty()) return false;
  const ByteString fileName = ProfileFileName(profileName);
  if (fileName.IsEmpty()) return false;
  ByteString target = ProfileFolder();
  target.AppendChar(platform::files().PathSeparator());
  target.Append(fileName);
  return SaveAs(target);
}

bool ProfileFile::SaveAs(const ByteString& target) {
  if (damagedFile.Equals(target) && !KeepDamagedFile()) return false;
  if (!OpenForWrite(target)) return false;

  const ByteString revision(static_cast<char>(formatRevision));
  bool good = WriteFields(profile_list::kDocumentType, kTextField, documentType);
  good &= WriteFields(profile_list::kFormatRevision, kTextField, revision);
  good &= WriteFields(profile_list::kProfileName, kNameFields, *this);
  good &= WriteFields(profile_list::kDevice, kDeviceFields, *this);
  good &= WriteFields(profile_list::kMouseSettings, kMouseFields, *this);
  good &= WriteList(
      profile_list::kControls, [](auto&) {},
      [this] {
        bool written = true;
        for (const Control& control : controls) written &= WriteControl(control);
        return written;
      });
  good &= Close();
  return good;
}

bool ProfileFile::KeepDamagedFile() {
  if (!damagedFile.IsEmpty() && !KeepCopy(damagedFile)) return false;
  damagedFile.Empty();
  return true;
}

bool ProfileFile::WriteControl(const Control& control) {
  const auto writeLists = [&] {
    bool good = WriteFields(profile_list::kTrigger, kTriggerWithItems, control);
    for (const InputAction* each : control.actions) {
      const auto* const action = dynamic_cast<const KeyAction*>(each);
      good &= action && WriteKeyAction(control, *action);
    }
    good &= WriteFields(profile_list::kTimings, kTimingsFields, control);
    return good;
  };
  return WriteList(profile_list::kControl, kControlFields, writeLists, control);
}

bool ProfileFile::WriteKeyAction(const Control& control, const KeyAction& action) {
  ByteString keys(action.steps.count * 2);
  ByteString scans(action.steps.count);
  for (const KeyStep& step : action.steps) {
    keys.AppendChar(static_cast<char>(step.vk));
    keys.AppendChar(static_cast<char>(step.flags));
    scans.AppendChar(static_cast<char>(step.scan));
  }
  const auto writeRest = [&] {
    bool good = WriteFields(profile_list::kScanCodes, kTextField, scans);
    // Behind the scan codes: a reader looks for it at kActionFlagsIndex.
    good &= WriteField(chunk_type::kNumber, PackedWriter(action.actionFlags).Field());
    return good;
  };
  return WriteList(profile_list::kKeyAction, kActionFields, writeRest, control, keys);
}

}  // namespace kelvaro
