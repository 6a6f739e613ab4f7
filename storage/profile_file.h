// The open profile together with the file that holds it. A file need not have all lists: what is
// missing keeps the value it has after Clear, and the mouse settings keep those of the profile
// before. Main thread only; the engine may run during all of it.
#pragma once

#include <cstdint>

#include "engine/profile.h"
#include "foundation/byte_string.h"
#include "keys/key_action.h"
#include "storage/profile_library.h"
#include "storage/tagged_file.h"

namespace kelvaro {

// Stored in every file: never renumber, never reuse.
namespace profile_list {
constexpr std::uint32_t kRoot = 0;
constexpr std::uint32_t kDocumentType = 1;
constexpr std::uint32_t kFormatRevision = 2;
constexpr std::uint32_t kProfileName = 3;
constexpr std::uint32_t kControls = 4;
constexpr std::uint32_t kControl = 5;
constexpr std::uint32_t kTrigger = 6;
constexpr std::uint32_t kKeyAction = 7;
constexpr std::uint32_t kDevice = 11;
constexpr std::uint32_t kMouseSettings = 12;
constexpr std::uint32_t kScanCodes = 13;
constexpr std::uint32_t kTimings = 14;
}  // namespace profile_list

// Which list may stand in which, in the order of a save, with words for people. Their fields are
// listed at the top of the source.
struct ProfileList {
  std::uint32_t id;
  std::uint32_t parent;
  const char* name;
  const char* without;  // what a load does without it; null if it fails
  bool repeats = false;
};
inline constexpr ProfileList kProfileLists[] = {
    {profile_list::kDocumentType, profile_list::kRoot, "document type", nullptr},
    {profile_list::kFormatRevision, profile_list::kRoot, "format revision", "nothing reads it"},
    {profile_list::kProfileName, profile_list::kRoot, "profile name", nullptr},
    {profile_list::kDevice, profile_list::kRoot, "device", "any device will do"},
    {profile_list::kMouseSettings, profile_list::kRoot, "mouse settings", "those in force stay"},
    {profile_list::kControls, profile_list::kRoot, "Controls", "there are no Controls"},
    {profile_list::kControl, profile_list::kControls, "Control", "", true},
    {profile_list::kTrigger, profile_list::kControl, "Trigger", ""},
    {profile_list::kKeyAction, profile_list::kControl, "keys", "", true},
    {profile_list::kScanCodes, profile_list::kKeyAction, "scan codes", "they are made afresh"},
    {profile_list::kTimings, profile_list::kControl, "timings", "those of its last action count"},
};
// Null for an id that no list of a profile has.
const ProfileList* FindProfileList(std::uint32_t id);

// Where the flags of an action stand among the children of its list.
constexpr std::uint32_t kActionFlagsIndex = 3;

class ProfileFile : public TaggedFile, public Profile, public ProfileLibrary {
 public:
  static constexpr char kMagic[] = "XBF";

  ProfileFile();

  // Replaces this profile by that of a file. False when anything of it couldn't be read. The
  // profile then holds what was read before, and nothing if the file isn't a profile.
  bool Load(const ByteString& path);

  // The file of the last Load, if not all that it claims to hold could be read; Load may still have
  // been true. Empty otherwise, and once the bytes have been kept.
  const ByteString& DamagedFile() const { return damagedFile; }
  // Keeps the bytes of that file before it is overwritten or deleted, see ProfileLibrary. True when
  // there is nothing to be kept.
  bool KeepDamagedFile();

  // Writes this profile to the file named after profileName. False if no file name can be made of
  // it, and if a step failed; the file may still have the new content. The profile itself stays as
  // it is.
  bool Save();

  // Save under any path, whatever the profile's name. A damaged file is kept first; if that fails,
  // nothing is written.
  bool SaveAs(const ByteString& target);

  // Touches nothing of this profile. Not while a file is open.
  ByteString ReadProfileName(const ByteString& path) override;

  // Deletes the file of profileName, see ProfileLibrary.
  bool DeleteProfileFile() { return DeleteFileOf(profileName); }

  ByteString documentType = "EventProfile";
  std::uint8_t formatRevision = 1;  // stored; nothing reads it

 protected:
  static constexpr std::uint32_t kAnySize = 0xFFFFFFFF;

  // The steps of a load, in the current list; a derived class may watch them. They change nothing
  // but the place in the file.
  virtual bool Enter(std::uint32_t id) { return Descend(id); }
  virtual bool EnterAt(std::uint32_t index) { return DescendAt(static_cast<std::int32_t>(index)); }
  // Reads a field, to which a save gives `size` bytes. Without a needed one the load fails.
  virtual bool Take(std::uint32_t index, std::uint32_t /*size*/, bool /*needed*/, ByteString* out) {
    return ReadField(index, out);
  }
  // The fields of the current list, its first `count` children, are read, and its lists aren't yet.
  virtual void FieldsTaken(std::uint32_t /*count*/) {}
  // Leaving the root closes the file.
  virtual bool Leave() { return Ascend(); }

 private:
  class FieldReader;
  class FieldWriter;

  // Each reads what the current list holds, or goes through its lists. False when anything failed.
  bool ReadProfile();
  template <typename Read>
  bool ReadList(std::uint32_t id, Read read);
  template <typename Read>
  bool ReadEachList(std::uint32_t firstIndex, Read read);
  template <typename Layout, typename... Targets>
  bool ReadFields(Layout layout, Targets&... targets);
  bool ReadControl();
  bool ReadTrigger(Control* control);
  bool ReadKeyAction(Control* control, KeyTimings* old);
  bool ReadScanCodes(KeySequence* steps);

  // Writes a list: its fields, then what `lists` writes.
  template <typename Layout, typename Lists, typename... Sources>
  bool WriteList(std::uint32_t id, Layout layout, Lists lists, const Sources&... sources);
  template <typename Layout, typename... Sources>
  bool WriteFields(std::uint32_t id, Layout layout, const Sources&... sources);
  bool WriteControl(const Control& control);
  bool WriteKeyAction(const Control& control, const KeyAction& action);

  ByteString damagedFile;
};

}  // namespace kelvaro
