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

class ProfileFile : public TaggedFile, public Profile, public ProfileLibrary {
 public:
  ProfileFile();

  // Replaces this profile by that of a file. False when anything of it couldn't be read; the
  // profile then holds what was read until then, nothing when the file is none of a profile.
  bool Load(const ByteString& path);

  // The file of the last Load when not all that it claims to hold could be read, whatever Load
  // said; empty otherwise, and once its bytes have been kept.
  const ByteString& DamagedFile() const { return damagedFile; }
  // Keeps the bytes of that file before it is overwritten or deleted, see ProfileLibrary. True when
  // there is nothing to be kept.
  bool KeepDamagedFile();

  // Writes this profile to the file named after profileName. False without a name of which a file
  // name can be made, and when a step failed; the file may have the new content all the same. The
  // profile itself is left alone.
  bool Save();

  // Save under any path, for a profile of any name, an empty one too. A damaged file is kept first;
  // when that fails nothing is written.
  bool SaveAs(const ByteString& target);

  // Touches nothing of this profile. Not while a file is open.
  ByteString ReadProfileName(const ByteString& path) override;

  // Deletes the file of profileName, see ProfileLibrary.
  bool DeleteProfileFile() { return DeleteFileOf(profileName); }

  ByteString documentType = "EventProfile";
  std::uint8_t formatRevision = 1;  // stored; nothing reads it

 private:
  // The values that files had in each action before Controls had a list of timings.
  struct OldTimings {
    bool repeat = false;
    std::uint32_t delay = 500;
    std::uint32_t speed = 50;
    std::uint32_t hold = 0;
  };

  // Each reads or writes what the current list holds; ones that write do so for a list of their
  // own. False when anything failed.
  bool ReadLists();
  bool ReadDevice();
  bool ReadMouseSettings();
  bool ReadControls();
  bool ReadControl();
  bool ReadControlList(Control* control, OldTimings* old, bool* sawTimings);
  bool ReadTrigger(Control* control);
  bool ReadKeyAction(Control* control, OldTimings* old);
  bool ReadScanCodes(KeySequence* steps);
  bool ReadTimings(Control* control);

  bool WriteList(std::uint32_t id, const ByteString& onlyField);
  bool WriteProfileName();
  bool WriteDevice();
  bool WriteMouseSettings();
  bool WriteControls();
  bool WriteControl(const Control& control);
  bool WriteTrigger(const Control& control);
  bool WriteKeyAction(const Control& control, const KeyAction& action);

  ByteString damagedFile;
};

}  // namespace kelvaro
