#include "console/stored_profile_check.h"

#include <set>

namespace kelvaro::console {
namespace {

// A file may be made so that every few bytes are a finding.
constexpr std::size_t kMostFindings = 1000;

constexpr char kRootPlace[] = "root";

// How many lists are open in the root, in the list of Controls, in a Control and in an action.
constexpr std::int32_t kInRoot = 2;
constexpr std::int32_t kInControls = 3;
constexpr std::int32_t kInControl = 4;

std::string ListName(std::uint32_t id) {
  const ProfileList* const known = FindProfileList(id);
  return "list " + std::to_string(id) + (known ? std::string(" (") + known->name + ")" : "");
}

// The words for what a profile lacks.
std::string LackedList(std::uint32_t id) {
  const std::string without = FindProfileList(id)->without;
  return ListName(id) + (without.empty() ? "" : "; " + without);
}

std::string BytesText(std::uint64_t count) {
  return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

std::string FieldName(std::uint32_t index) { return "field " + std::to_string(index); }

}  // namespace

// The steps of a load

bool StoredProfileCheck::Enter(std::uint32_t id) {
  const bool isThere = HasList(id);
  if (ProfileFile::Enter(id)) return true;
  if (!FindProfileList(id)->without) {
    Damage(Place(), ListName(id) + (isThere ? " can't be read" : " is missing"));
  } else if (isThere) {
    PassedOver(ListName(id) + ", which can't be read");
  } else {
    Lacks(LackedList(id));
  }
  return false;
}

bool StoredProfileCheck::EnterAt(std::uint32_t index) {
  if (ProfileFile::EnterAt(index)) return true;
  if (Id() == profile_list::kControls) {
    Damage(ControlPlace(), "it can't be read");
  } else {
    Damage(Place(), "child " + std::to_string(index) + ", a list, can't be read");
  }
  return false;
}

bool StoredProfileCheck::Take(std::uint32_t index, std::uint32_t size, bool needed,
                              ByteString* out) {
  const bool read = ProfileFile::Take(index, size, needed, out);
  if (!read) {
    FieldMissing(index, needed);
    return false;
  }
  CheckField(index, size == kAnySize ? out->Length() : size, *out);
  const char* refusal = nullptr;
  switch (Id()) {
    case profile_list::kDocumentType:
      if (!out->Equals(documentType)) refusal = "it is not the type of a profile";
      break;
    case profile_list::kProfileName:
      if (index == 0 && out->IsEmpty()) Lacks("a name; without one it isn't listed");
      break;
    case profile_list::kKeyAction:
      if (index == 0) {
        actionTimings.push_back(*out);
        actionTimingsSize = size;
      } else if (out->Length() % 2 != 0) {
        PassedOver("the odd last byte of its steps");
      }
      break;
    case profile_list::kTimings:
      timings = *out;
      if (out->Length() < size) refusal = "field 0 is shorter than a load takes it";
      break;
    default:
      break;
  }
  if (refusal && !damaged) {
    findings->push_back({Finding::Kind::Damage, Place(), refusal});
    CheckOthers(index + 1);
    damaged = true;
  }
  return true;
}

void StoredProfileCheck::FieldsTaken(std::uint32_t count) {
  if (Id() == profile_list::kRoot) CheckHead();
  if (Id() == profile_list::kKeyAction) CheckActionFlags();
  CheckOthers(count);
  if (Id() != profile_list::kControl) return;
  for (const std::uint32_t id : {profile_list::kTrigger, profile_list::kTimings}) {
    if (!HasList(id)) Lacks(LackedList(id));
  }
}

bool StoredProfileCheck::Leave() {
  if (openLists.count < kInRoot) {
    CheckRevision();
  } else if (openLists.count == kInControls && Id() == profile_list::kControl) {
    CheckOldTimings();
    actionTimings.clear();
    timings.Empty();
    action = 0;
    ++control;
  } else if (openLists.count == kInControl && Id() == profile_list::kKeyAction) {
    ++action;
  }
  return ProfileFile::Leave();
}

// Findings

void StoredProfileCheck::Note(Finding::Kind kind, const std::string& where,
                              const std::string& what) {
  if (damaged) return;
  if (findings->size() < kMostFindings) {
    findings->push_back({kind, where, what});
  } else if (findings->size() == kMostFindings) {
    findings->push_back({Finding::Kind::PassedOver, kRootPlace, "more than can be told here"});
  }
}

void StoredProfileCheck::Damage(const std::string& where, const std::string& what) {
  if (damaged) return;
  damaged = true;
  findings->push_back({Finding::Kind::Damage, where, what});
}

std::string StoredProfileCheck::Place() {
  if (openLists.count < kInRoot) return kRootPlace;
  if (openLists.count == kInRoot) return ListName(ListId());
  if (openLists.count == kInControls) return ControlPlace();
  const bool isAction = openLists.At(kInControl - 1)->value->id == profile_list::kKeyAction;
  std::string place = isAction ? ActionPlace(action) : ControlPlace();
  if (!isAction || openLists.count > kInControl) place += " " + ListName(ListId());
  return place;
}

std::string StoredProfileCheck::ControlPlace() const {
  return "controls[" + std::to_string(control) + "]";
}

std::string StoredProfileCheck::ActionPlace(std::size_t index) const {
  return ControlPlace() + ".actions[" + std::to_string(index) + "]";
}

// The current list

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

void StoredProfileCheck::FieldMissing(std::uint32_t index, bool needed) {
  const std::string field = FieldName(index);
  if (needed) {
    Damage(Place(), field + (index < ChildCount() ? " can't be read whole" : " is missing"));
  } else if (Id() == profile_list::kControl) {
    Lacks(field + ", whether it turns the mouse controls on and off");
  } else if (Id() == profile_list::kScanCodes) {
    Lacks(field + "; the scan codes are made afresh");
  } else {
    PassedOver(field + " can't be read");
  }
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

void StoredProfileCheck::CheckHead() {
  if (version != 1) PassedOver("version " + std::to_string(version) + " instead of 1");
  if (ListId() != 0) PassedOver("id " + std::to_string(ListId()) + " instead of 0");
  const std::uint64_t end = current->offset + current->size;
  if (end < fileSize) PassedOver(BytesText(fileSize - end) + " behind the root list");
  if (end > fileSize) Lacks("the last " + BytesText(end - fileSize) + " of the file");
}

void StoredProfileCheck::CheckRevision() {
  // A load doesn't open it, so a file isn't damaged by its lack.
  const bool wasDamaged = isDamaged;
  reader.Open();  // again, where a list that is cut off has closed it
  if (Enter(profile_list::kFormatRevision)) {
    ByteString field;
    if (!ReadField(0, &field) || field.Length() != 1 || field[0] != 1) PassedOver("it is not 1");
    CheckOthers(1);
    Leave();
  }
  isDamaged = wasDamaged;
}

void StoredProfileCheck::CheckActionFlags() {
  ByteString last;
  if (ChildCount() > kActionFlagsIndex) {
    const ChunkEntry& entry = Entry(kActionFlagsIndex);
    if (entry.type == chunk_type::kNumber && entry.size > 0 &&
        reader.ReadBytes(&last, entry.offset + entry.size - 1, 1)) {
      CheckSize(kActionFlagsIndex, 4, entry.size);
      return;
    }
  }
  Lacks("its actionFlags, a number in " + FieldName(kActionFlagsIndex));
}

void StoredProfileCheck::CheckOldTimings() {
  if (timings.IsEmpty()) return;
  const ByteString old = timings.Left(static_cast<std::int32_t>(actionTimingsSize));
  for (std::size_t i = 0; i < actionTimings.size(); ++i) {
    if (actionTimings[i].Equals(old)) continue;
    Note(Finding::Kind::PassedOver, ActionPlace(i),
         "its timings; those of " + ListName(profile_list::kTimings) + " count");
  }
}

void StoredProfileCheck::CheckOthers(std::uint32_t fields) {
  std::set<std::uint32_t> seen;
  const std::uint32_t count = ChildCount();
  for (std::uint32_t i = fields; i < count; ++i) {
    const ChunkEntry& entry = Entry(i);
    std::uint32_t id = 0;
    if (entry.type != chunk_type::kList) {
      const bool isFlags = Id() == profile_list::kKeyAction && i == kActionFlagsIndex &&
                           entry.type == chunk_type::kNumber;
      if (!isFlags) PassedOver(FieldName(i) + ", of type " + std::to_string(entry.type));
    } else if (!reader.ReadU32(&id, entry.offset)) {
      PassedOver("child " + std::to_string(i) + ", a list, can't be read");
    } else if (const ProfileList* list = FindProfileList(id); !list || list->parent != Id()) {
      PassedOver(ListName(id) + ", which doesn't belong here");
    } else if (!seen.insert(id).second && !list->repeats) {
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
