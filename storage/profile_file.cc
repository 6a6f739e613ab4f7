#include "storage/profile_file.h"

#include <memory>
#include <new>

#include "foundation/paths.h"
#include "storage/packed_field.h"

namespace kelvaro {

namespace {

constexpr std::uint32_t kTimingsSize = 17;

}  // namespace

ProfileFile::ProfileFile() { magic = "XBF"; }

// Reading

bool ProfileFile::Load(const ByteString& path) {
  Clear();
  damagedFile.Empty();
  if (!OpenForRead(path)) return false;
  const bool good = ReadLists();
  if (isDamaged) damagedFile = path;
  return good;
}

bool ProfileFile::ReadLists() {
  ByteString text;
  bool good = Descend(profile_list::kDocumentType);
  if (good && !ReadField(0, &text)) good = false;
  if (!text.Equals(documentType)) {
    Close();
    return false;
  }
  if (!Ascend()) good = false;

  if (Descend(profile_list::kProfileName)) {
    ByteString counter;
    if (!ReadField(0, &profileName)) good = false;
    if (ReadField(1, &counter)) {
      nextControlId = PackedReader(counter).U32();
    } else {
      good = false;
    }
    if (!Ascend()) good = false;
  } else {
    good = false;
  }
  if (Descend(profile_list::kDevice)) {
    if (!ReadDevice()) good = false;
    if (!Ascend()) good = false;
  }
  if (Descend(profile_list::kMouseSettings)) {
    if (!ReadMouseSettings()) good = false;
    if (!Ascend()) good = false;
  }
  if (Descend(profile_list::kControls)) {
    // Controls are only read as long as all was well.
    if (good) good = ReadControls();
    if (!Ascend()) good = false;
  }
  if (!Close()) good = false;

  LockGuard guard(profileLock);
  RebuildDispatchList();
  return good;
}

bool ProfileFile::ReadDevice() {
  bool good = ReadField(0, &deviceName);
  ByteString field;
  if (ReadField(1, &field)) {
    pollInterval = PackedReader(field).U32();
  } else {
    good = false;
  }
  if (ReadField(2, &field)) {
    PackedReader reader(field);
    deviceGuid.Data1 = reader.U32();
    deviceGuid.Data2 = reader.U16();
    deviceGuid.Data3 = reader.U16();
    for (std::uint8_t& byte : deviceGuid.Data4) byte = reader.U8();
  } else {
    good = false;
  }
  return good;
}

bool ProfileFile::ReadMouseSettings() {
  ByteString field;
  if (!ReadField(0, &field)) return false;
  PackedReader reader(field);
  const auto input = [&reader] {
    const std::uint16_t kind = reader.U16();
    return MouseInput(kind, reader.U16());
  };
  const auto number = [&reader] { return static_cast<std::int32_t>(reader.U32()); };
  acceleration = number();
  movementSensitivity = number();
  movementDamper = number();
  leftButton = reader.U16();
  middleButton = reader.U16();
  rightButton = reader.U16();
  leftMask = reader.U64();
  middleMask = reader.U64();
  rightMask = reader.U64();
  mouseX = input();
  mouseY = input();
  mouseWheel = input();
  mouseAlwaysActive = reader.Flag();
  wheelSensitivity = number();
  wheelDamper = number();
  return true;
}

bool ProfileFile::ReadControls() {
  const std::uint32_t count = ChildCount();
  for (std::uint32_t i = 0; i < count; ++i) {
    if (!IsList(i)) continue;
    if (!DescendAt(static_cast<std::int32_t>(i))) return false;
    bool good = ListId() != profile_list::kControl || ReadControl();
    if (!Ascend()) good = false;
    if (!good) return false;
  }
  return true;
}

bool ProfileFile::ReadControl() {
  // Read in its place in the list, where it owns its actions: what was read of a Control is kept
  // even when the rest of it is lost, and no copy leaves out what memory runs out for.
  if (!controls.AddTail(Control())) return false;
  Control& control = *controls.tail->value;
  ByteString field;

  bool good = ReadField(0, &control.description);
  if (ReadField(1, &field)) {
    control.controlId = PackedReader(field).U32();
  } else {
    good = false;
  }
  if (ReadField(2, &field)) control.toggleMouseControls = PackedReader(field).Flag();

  OldTimings old;
  bool sawTimings = false;
  const std::uint32_t count = ChildCount();
  for (std::uint32_t i = 2; i < count && good; ++i) {
    if (!IsList(i)) continue;
    if (!DescendAt(static_cast<std::int32_t>(i))) {
      good = false;
      break;
    }
    good = ReadControlList(&control, &old, &sawTimings);
    if (!Ascend()) good = false;
  }

  if (!sawTimings) {
    control.repeatEnabled = old.repeat;
    control.repeatDelay = old.delay;
    control.repeatSpeed = old.speed;
    if (old.repeat) control.keyHoldTime = old.hold;
  }
  return good;
}

bool ProfileFile::ReadControlList(Control* control, OldTimings* old, bool* sawTimings) {
  switch (ListId()) {
    case profile_list::kTrigger:
      return ReadTrigger(control);
    case profile_list::kKeyAction:
      return ReadKeyAction(control, old);
    case profile_list::kTimings:
      *sawTimings = true;
      return ReadTimings(control);
    default:
      return true;
  }
}

bool ProfileFile::ReadTrigger(Control* control) {
  control->ResetTrigger();
  ByteString field;
  if (!ReadField(0, &field)) return false;
  PackedReader reader(field);
  control->activateOnPress = reader.Flag();
  control->SetButtonMask(reader.U64());
  if (!reader.AtEnd()) control->triggerOption = reader.Flag();

  const std::uint32_t count = ChildCount();
  for (std::uint32_t i = 1; i < count; ++i) {
    if (!ReadField(i, &field)) continue;
    PackedReader words(field);
    TriggerItem item;
    item.kind = words.U16();
    item.index = words.U16();
    item.value = words.U16();
    control->triggerItems.AddTail(item);
  }
  return true;
}

bool ProfileFile::ReadKeyAction(Control* control, OldTimings* old) {
  ByteString timings;
  ByteString keys;
  if (!ReadField(0, &timings) || !ReadField(1, &keys)) return false;
  std::unique_ptr<KeyAction> action(new (std::nothrow) KeyAction);
  if (!action) return false;

  PackedReader reader(timings);
  old->repeat = reader.Flag();
  old->delay = reader.U32();
  old->speed = reader.U32();
  old->hold = reader.U32();

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
  if (ReadNumber(3, &flags)) action->actionFlags |= flags;

  if (!control->actions.AddTail(action.get())) return false;
  static_cast<void>(action.release());
  return true;
}

bool ProfileFile::ReadScanCodes(KeySequence* steps) {
  if (!Descend(profile_list::kScanCodes)) return false;
  ByteString scans;
  bool good = ReadField(0, &scans);
  if (!Ascend()) good = false;
  if (!good) return false;

  std::uint32_t i = 0;
  for (KeyStep& step : *steps) {
    if (i == scans.Length()) break;
    step.scan = static_cast<std::uint8_t>(scans[i++]);
  }
  return true;
}

bool ProfileFile::ReadTimings(Control* control) {
  ByteString field;
  if (!ReadField(0, &field) || field.Length() < kTimingsSize) return false;
  PackedReader reader(field);
  control->repeatEnabled = reader.Flag();
  control->repeatDelay = reader.U32();
  control->repeatSpeed = reader.U32();
  control->keyHoldTime = reader.U32();
  control->keyReleasePause = reader.U32();
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

bool ProfileFile::Save() {
  if (profileName.IsEmpty()) return false;
  const ByteString fileName = ProfileFileName(profileName);
  if (fileName.IsEmpty()) return false;
  ByteString target = ProfileFolder();
  target.AppendChar(platform::PathSeparator());
  target.Append(fileName);
  return SaveAs(target);
}

bool ProfileFile::SaveAs(const ByteString& target) {
  if (damagedFile.Equals(target) && !KeepDamagedFile()) return false;
  if (!OpenForWrite(target)) return false;

  bool good = WriteList(profile_list::kDocumentType, documentType);
  good &= WriteList(profile_list::kFormatRevision, PackedWriter(1).U8(formatRevision).Field());
  good &= WriteProfileName();
  good &= WriteDevice();
  good &= WriteMouseSettings();
  good &= WriteControls();
  good &= Close();
  return good;
}

bool ProfileFile::KeepDamagedFile() {
  if (!damagedFile.IsEmpty() && !KeepCopy(damagedFile)) return false;
  damagedFile.Empty();
  return true;
}

bool ProfileFile::WriteList(std::uint32_t id, const ByteString& onlyField) {
  bool good = Descend(id);
  good &= WriteBytes(onlyField);
  good &= Ascend();
  return good;
}

bool ProfileFile::WriteProfileName() {
  bool good = Descend(profile_list::kProfileName);
  good &= WriteBytes(profileName);
  good &= WriteBytes(PackedWriter(4).U32(nextControlId).Field());
  good &= Ascend();
  return good;
}

bool ProfileFile::WriteDevice() {
  PackedWriter guid(16);
  guid.U32(deviceGuid.Data1).U16(deviceGuid.Data2).U16(deviceGuid.Data3);
  for (const std::uint8_t byte : deviceGuid.Data4) guid.U8(byte);

  bool good = Descend(profile_list::kDevice);
  good &= WriteBytes(deviceName);
  good &= WriteBytes(PackedWriter(4).U32(pollInterval).Field());
  good &= WriteBytes(guid.Field());
  good &= Ascend();
  return good;
}

bool ProfileFile::WriteMouseSettings() {
  PackedWriter field(63);
  const auto number = [&field](std::int32_t value) {
    field.U32(static_cast<std::uint32_t>(value));
  };
  const auto input = [&field](TriggerItem item) { field.U16(item.kind).U16(item.index); };
  number(acceleration);
  number(movementSensitivity);
  number(movementDamper);
  field.U16(leftButton).U16(middleButton).U16(rightButton);
  field.U64(leftMask).U64(middleMask).U64(rightMask);
  input(mouseX);
  input(mouseY);
  input(mouseWheel);
  field.Flag(mouseAlwaysActive);
  number(wheelSensitivity);
  number(wheelDamper);
  return WriteList(profile_list::kMouseSettings, field.Field());
}

bool ProfileFile::WriteControls() {
  bool good = Descend(profile_list::kControls);
  for (const Control& control : controls) good &= WriteControl(control);
  good &= Ascend();
  return good;
}

bool ProfileFile::WriteControl(const Control& control) {
  PackedWriter timings(17);
  timings.Flag(control.repeatEnabled).U32(control.repeatDelay).U32(control.repeatSpeed);
  timings.U32(control.keyHoldTime).U32(control.keyReleasePause);

  bool good = Descend(profile_list::kControl);
  good &= WriteBytes(control.description);
  good &= WriteBytes(PackedWriter(4).U32(control.controlId).Field());
  good &= WriteBytes(PackedWriter(1).Flag(control.toggleMouseControls).Field());
  good &= WriteTrigger(control);
  for (const InputAction* each : control.actions) {
    const auto* const action = dynamic_cast<const KeyAction*>(each);
    good &= action && WriteKeyAction(control, *action);
  }
  good &= WriteList(profile_list::kTimings, timings.Field());
  good &= Ascend();
  return good;
}

bool ProfileFile::WriteTrigger(const Control& control) {
  PackedWriter field(10);
  field.Flag(control.activateOnPress).U64(control.buttonMask).Flag(control.triggerOption);

  bool good = Descend(profile_list::kTrigger);
  good &= WriteBytes(field.Field());
  for (const TriggerItem& item : control.triggerItems) {
    good &= WriteBytes(PackedWriter(6).U16(item.kind).U16(item.index).U16(item.value).Field());
  }
  good &= Ascend();
  return good;
}

bool ProfileFile::WriteKeyAction(const Control& control, const KeyAction& action) {
  PackedWriter timings(13);
  timings.Flag(control.repeatEnabled).U32(control.repeatDelay).U32(control.repeatSpeed);
  timings.U32(control.keyHoldTime);
  PackedWriter keys(action.steps.count * 2);
  PackedWriter scans(action.steps.count);
  for (const KeyStep& step : action.steps) {
    keys.U8(step.vk).U8(step.flags);
    scans.U8(step.scan);
  }

  bool good = Descend(profile_list::kKeyAction);
  good &= WriteBytes(timings.Field());
  good &= WriteBytes(keys.Field());
  good &= WriteList(profile_list::kScanCodes, scans.Field());
  // A reader looks for it as the fourth child, so it stands behind the scan codes.
  good &= WriteField(chunk_type::kNumber, PackedWriter(4).U32(action.actionFlags).Field());
  good &= Ascend();
  return good;
}

}  // namespace kelvaro
