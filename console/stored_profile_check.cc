#include "console/stored_profile_check.h"

#include "console/profile_source.h"
#include "storage/profile_file.h"

namespace kelvaro::console {
namespace {

// A file may be made so that every few bytes are a finding.
constexpr std::size_t kMostFindings = 1000;

constexpr char kRoot[] = "root";

constexpr std::uint32_t kActionFlagsIndex = 3;
constexpr std::uint32_t kOldTimingsSize = 13;
constexpr std::uint32_t kTimingsSize = 17;

std::string ListName(std::uint32_t id) {
  const char* name = nullptr;
  switch (id) {
    case profile_list::kDocumentType:
      name = "document type";
      break;
    case profile_list::kFormatRevision:
      name = "format revision";
      break;
    case profile_list::kProfileName:
      name = "profile name";
      break;
    case profile_list::kControls:
      name = "Controls";
      break;
    case profile_list::kControl:
      name = "Control";
      break;
    case profile_list::kTrigger:
      name = "Trigger";
      break;
    case profile_list::kKeyAction:
      name = "keys";
      break;
    case profile_list::kDevice:
      name = "device";
      break;
    case profile_list::kMouseSettings:
      name = "mouse settings";
      break;
    case profile_list::kScanCodes:
      name = "scan codes";
      break;
    case profile_list::kTimings:
      name = "timings";
      break;
    default:
      break;
  }
  return "list " + std::to_string(id) + (name ? std::string(" (") + name + ")" : "");
}

std::string BytesText(std::uint64_t count) {
  return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

std::string ActionName(const std::string& control, std::uint32_t index) {
  return control + ".actions[" + std::to_string(index) + "]";
}

std::string FieldName(std::uint32_t index) { return "field " + std::to_string(index); }

}  // namespace

StoredProfileCheck::StoredProfileCheck(std::vector<Finding>* findings) : findings(findings) {
  magic = kStoredMagic;
}

void StoredProfileCheck::Run(const ByteString& file, std::uint64_t fileSize) {
  where = kRoot;
  if (!OpenForRead(file)) {
    Damage("no list can be read");
    return;
  }
  CheckHead(fileSize);
  CheckRoot();
  Close();
}

void StoredProfileCheck::Note(Finding::Kind kind, const std::string& what) {
  if (findings->size() < kMostFindings) {
    findings->push_back({kind, where, what});
  } else if (findings->size() == kMostFindings) {
    findings->push_back({Finding::Kind::PassedOver, kRoot, "more than can be told here"});
  }
}

void StoredProfileCheck::Damage(const std::string& what) {
  if (damaged) return;
  damaged = true;
  findings->push_back({Finding::Kind::Damage, where, what});
}

void StoredProfileCheck::CheckHead(std::uint64_t fileSize) {
  if (version != 1) PassedOver("version " + std::to_string(version) + " instead of 1");
  if (current->id != 0) PassedOver("id " + std::to_string(current->id) + " instead of 0");
  const std::uint64_t end = current->offset + current->size;
  if (end < fileSize) PassedOver(BytesText(fileSize - end) + " behind the root list");
  if (end > fileSize) Lacks("the last " + BytesText(end - fileSize) + " of the file");
}

void StoredProfileCheck::CheckRoot() {
  CheckOthers(
      0, {profile_list::kDocumentType, profile_list::kFormatRevision, profile_list::kProfileName,
          profile_list::kDevice, profile_list::kMouseSettings, profile_list::kControls});
  const struct {
    std::uint32_t id;
    bool needed;
    const char* without;  // what happens without an optional one
    void (StoredProfileCheck::*check)();
  } kLists[] = {
      {profile_list::kDocumentType, true, "", &StoredProfileCheck::CheckDocumentType},
      {profile_list::kProfileName, true, "", &StoredProfileCheck::CheckProfileName},
      {profile_list::kDevice, false, "; any device will do", &StoredProfileCheck::CheckDevice},
      {profile_list::kMouseSettings, false, "; those in force stay",
       &StoredProfileCheck::CheckMouseSettings},
      {profile_list::kControls, false, "; there are no Controls",
       &StoredProfileCheck::CheckControls},
      // Last, as a load doesn't open it: where it is cut off nothing more can be read.
      {profile_list::kFormatRevision, false, "; nothing reads it",
       &StoredProfileCheck::CheckFormatRevision},
  };
  for (const auto& list : kLists) {
    where = kRoot;
    if (!HasList(list.id)) {
      if (list.needed) {
        Damage(ListName(list.id) + " is missing");
      } else {
        Lacks(ListName(list.id) + list.without);
      }
    } else if (!Descend(list.id)) {
      if (list.needed) {
        Damage(ListName(list.id) + " can't be read");
      } else {
        PassedOver(ListName(list.id) + ", which can't be read");
      }
    } else {
      where = ListName(list.id);
      (this->*list.check)();
      Ascend();
    }
    if (damaged) return;
  }
}

void StoredProfileCheck::CheckDocumentType() {
  ByteString text;
  if (!NeedField(0, 0, &text)) return;
  if (!text.Equals(ProfileFile().documentType)) Damage("it is not the type of a profile");
  CheckOthers(1, {});
}

void StoredProfileCheck::CheckFormatRevision() {
  ByteString field;
  if (!ReadField(0, &field) || field.Length() != 1 || field[0] != 1) {
    PassedOver("it is not 1");
  }
  CheckOthers(1, {});
}

void StoredProfileCheck::CheckProfileName() {
  ByteString field;
  if (!NeedField(0, 0, &field)) return;
  if (field.IsEmpty()) Lacks("a name; without one it isn't listed");
  if (!NeedField(1, 4, &field)) return;
  CheckOthers(2, {});
}

void StoredProfileCheck::CheckDevice() {
  ByteString field;
  if (!NeedField(0, 0, &field) || !NeedField(1, 4, &field) || !NeedField(2, 16, &field)) return;
  CheckOthers(3, {});
}

void StoredProfileCheck::CheckMouseSettings() {
  ByteString field;
  if (!NeedField(0, 63, &field)) return;
  CheckOthers(1, {});
}

void StoredProfileCheck::CheckControls() {
  CheckOthers(0, {profile_list::kControl}, profile_list::kControl);
  const std::uint32_t count = ChildCount();
  std::uint32_t control = 0;
  for (std::uint32_t i = 0; i < count && !damaged; ++i) {
    if (!IsList(i)) continue;
    where = "controls[" + std::to_string(control) + "]";
    if (!DescendAt(static_cast<std::int32_t>(i))) {
      Damage("it can't be read");
      return;
    }
    if (ListId() == profile_list::kControl) {
      CheckControl();
      ++control;
    }
    Ascend();
  }
}

void StoredProfileCheck::CheckControl() {
  ByteString field;
  if (!NeedField(0, 0, &field) || !NeedField(1, 4, &field)) return;
  if (ReadField(2, &field)) {
    CheckField(2, 1, field);
  } else {
    Lacks(FieldName(2) + ", whether it turns the mouse controls on and off");
  }
  CheckOthers(3, {profile_list::kTrigger, profile_list::kKeyAction, profile_list::kTimings},
              profile_list::kKeyAction);
  if (!HasList(profile_list::kTrigger)) Lacks(ListName(profile_list::kTrigger));
  if (!HasList(profile_list::kTimings)) {
    Lacks(ListName(profile_list::kTimings) + "; those of its last action count");
  }

  const std::string control = where;
  const std::uint32_t count = ChildCount();
  std::uint32_t action = 0;
  ByteString timings;
  std::vector<ByteString> actionTimings;
  for (std::uint32_t i = 2; i < count && !damaged; ++i) {
    if (!IsList(i)) continue;
    where = control;
    if (!DescendAt(static_cast<std::int32_t>(i))) {
      Damage("child " + std::to_string(i) + ", a list, can't be read");
      return;
    }
    where = control + " " + ListName(ListId());
    if (ListId() == profile_list::kTrigger) {
      CheckTrigger();
    } else if (ListId() == profile_list::kKeyAction) {
      where = ActionName(control, action++);
      actionTimings.push_back(CheckKeyAction());
    } else if (ListId() == profile_list::kTimings) {
      timings = CheckTimings();
    }
    Ascend();
  }
  for (std::uint32_t i = 0; i < actionTimings.size() && !damaged && !timings.IsEmpty(); ++i) {
    where = ActionName(control, i);
    if (!actionTimings[i].Equals(timings.Left(kOldTimingsSize))) {
      PassedOver("its timings; those of " + ListName(profile_list::kTimings) + " count");
    }
  }
}

void StoredProfileCheck::CheckTrigger() {
  ByteString field;
  if (!NeedField(0, 10, &field)) return;
  const std::uint32_t count = ChildCount();
  for (std::uint32_t i = 1; i < count; ++i) {
    if (ReadField(i, &field)) {
      CheckField(i, 6, field);
    } else {
      PassedOver(FieldName(i) + " can't be read");
    }
  }
  CheckEnd();
}

ByteString StoredProfileCheck::CheckKeyAction() {
  ByteString timings;
  ByteString steps;
  if (!NeedField(0, kOldTimingsSize, &timings) || !NeedField(1, 0, &steps)) return {};
  if (steps.Length() % 2 != 0) PassedOver("the odd last byte of its steps");

  const std::uint32_t count = ChildCount();
  std::uint32_t flags = 0;
  if (ReadNumber(kActionFlagsIndex, &flags) && count > kActionFlagsIndex) {
    CheckSize(kActionFlagsIndex, 4, Entry(kActionFlagsIndex).size);
  } else {
    Lacks("its actionFlags, a number in " + FieldName(kActionFlagsIndex));
  }
  CheckOthers(2, {profile_list::kScanCodes});

  if (!HasList(profile_list::kScanCodes)) {
    Lacks(ListName(profile_list::kScanCodes) + "; they are made afresh");
  } else if (Descend(profile_list::kScanCodes)) {
    CheckScanCodes(steps.Length() / 2);
    Ascend();
  } else {
    PassedOver(ListName(profile_list::kScanCodes) + ", which can't be read");
  }
  return timings;
}

void StoredProfileCheck::CheckScanCodes(std::uint32_t steps) {
  const std::string action = where;
  where += " " + ListName(profile_list::kScanCodes);
  ByteString scans;
  if (ReadField(0, &scans)) {
    CheckField(0, steps, scans);
  } else {
    Lacks(FieldName(0) + "; the scan codes are made afresh");
  }
  CheckOthers(1, {});
  where = action;
}

ByteString StoredProfileCheck::CheckTimings() {
  ByteString field;
  if (!NeedField(0, kTimingsSize, &field)) return {};
  if (field.Length() < kTimingsSize) Damage(FieldName(0) + " is shorter than a load takes it");
  CheckOthers(1, {});
  return field;
}

// The children of a list

const ChunkEntry& StoredProfileCheck::Entry(std::uint32_t index) {
  return *current->cursor.At(current->entries, index);
}

bool StoredProfileCheck::HasList(std::uint32_t id) {
  const std::uint32_t count = ChildCount();
  for (std::uint32_t i = 0; i < count; ++i) {
    std::uint32_t childId = 0;
    if (IsList(i) && reader.ReadU32(&childId, Entry(i).offset) && childId == id) return true;
  }
  return false;
}

bool StoredProfileCheck::NeedField(std::uint32_t index, std::uint32_t size, ByteString* out) {
  if (index >= ChildCount()) {
    Damage(FieldName(index) + " is missing");
    return false;
  }
  if (!ReadField(index, out)) {
    Damage(FieldName(index) + " can't be read whole");
    return false;
  }
  CheckField(index, size == 0 ? out->Length() : size, *out);
  return true;
}

void StoredProfileCheck::CheckField(std::uint32_t index, std::uint32_t size,
                                    const ByteString& field) {
  const std::uint16_t type = Entry(index).type;
  if (type != chunk_type::kBytes) {
    PassedOver(FieldName(index) + " is of type " + std::to_string(type) + " instead of 2");
  }
  CheckSize(index, size, field.Length());
}

void StoredProfileCheck::CheckSize(std::uint32_t index, std::uint32_t size, std::uint32_t found) {
  const std::string counts =
      FieldName(index) + ": " + std::to_string(found) + " instead of " + BytesText(size);
  if (found < size) Lacks(counts);
  if (found > size) PassedOver(counts);
}

void StoredProfileCheck::CheckOthers(std::uint32_t fields, const std::set<std::uint32_t>& lists,
                                     std::uint32_t repeated) {
  std::set<std::uint32_t> seen;
  const std::uint32_t count = ChildCount();
  for (std::uint32_t i = fields; i < count; ++i) {
    const ChunkEntry& entry = Entry(i);
    if (entry.type != chunk_type::kList) {
      const bool isFlags = ListId() == profile_list::kKeyAction && i == kActionFlagsIndex &&
                           entry.type == chunk_type::kNumber;
      if (!isFlags) PassedOver(FieldName(i) + ", of type " + std::to_string(entry.type));
      continue;
    }
    std::uint32_t id = 0;
    if (!reader.ReadU32(&id, entry.offset)) {
      PassedOver("child " + std::to_string(i) + ", a list, can't be read");
    } else if (!lists.contains(id)) {
      PassedOver(ListName(id) + ", which doesn't belong here");
    } else if (!seen.insert(id).second && id != repeated) {
      PassedOver(ListName(id) + " more than once");
    }
  }
  CheckEnd();
}

void StoredProfileCheck::CheckEnd() {
  std::uint64_t end = current->offset;
  if (const std::uint32_t count = ChildCount(); count > 0) {
    const ChunkEntry& last = Entry(count - 1);
    end = last.offset + last.size + (last.type == chunk_type::kList ? 8 : 0);
  }
  const std::uint64_t told = current->offset + current->size;
  if (told > end) PassedOver(BytesText(told - end) + " behind the last child");
  if (told < end)
    Lacks("room for its children: its size is " + BytesText(end - told) + " too small");
}

}  // namespace kelvaro::console
