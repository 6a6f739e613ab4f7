// The folder of profiles, "Profiles" in the folder of data. A profile goes by the name stored in
// its file; the file's own name is made from that once and never read back. There is no index:
// every call looks at the folder anew, so that files put in or taken out by hand are seen at once.
// Main thread only.
#pragma once

#include <cstdint>
#include <memory>

#include "app/platform/files.h"
#include "foundation/byte_string.h"
#include "foundation/linked_list.h"

namespace kelvaro {

class ProfileLibrary {
 public:
  static constexpr char kExtension[] = ".idprof";
  // How many characters of a profile's name a file name takes: the 255 bytes of a file system, less
  // ".idprof" and the ".tmp" of a save.
  static constexpr std::uint32_t kLongestName = 244;

  virtual ~ProfileLibrary() = default;

  // The file name for a profile name, without a folder: what of it is printable ASCII and none of
  // \/*?"<>|: and the extension ".idprof". Empty when nothing of the name is left. Different names
  // may give the same file name.
  static ByteString ProfileFileName(const ByteString& name);
  // Whether such a file name has more of the profile's name than kLongestName: no save would work.
  static bool IsTooLong(const ByteString& fileName);
  // Whether the system has another use for such a file name, in whatever folder, so that no save
  // would work: on Windows "CON.idprof" is the console.
  static bool IsTakenBySystem(const ByteString& fileName);

  // Without a separator at its end. It need not be there; the first save makes it. One of a user's
  // own is made by the first look for profiles, with copies of those that came with the program.
  static ByteString ProfileFolder();

  // Whether a save could make its file there, or the folder where it is missing.
  static bool CanSave();

  // Replaces *list by the full paths of all files with the extension, in the order of the file
  // system. Always true: a folder that is missing or can't be read is an empty one.
  static bool ListProfileFiles(LinkedList<ByteString>* list);

  // Replaces *list by the stored names, in the same order. Files that hold none, or can't be read,
  // are left out. Always true.
  bool ListProfileNames(LinkedList<ByteString>* list);

  // Full path of the first file whose stored name is `name`, byte for byte; empty when there is
  // none.
  ByteString FindProfileFile(const ByteString& name);

  // The name stored in a file; empty when it can't be opened or isn't a profile.
  virtual ByteString ReadProfileName(const ByteString& path) = 0;

  // Deletes the file that FindProfileFile gives for `name`, as its profile is about to be saved as
  // `newName`. Until EndRename its bytes lie beside the new file: where the machine stops before
  // that is there, the next look for profiles brings the old one back. False, with nothing done, as
  // for a deletion, and where the bytes can't be kept.
  bool BeginRename(const ByteString& name, const ByteString& newName);
  void EndRename();

 protected:
  // Deletes the file that FindProfileFile gives. False for an empty name, when there is none, and
  // when the system refuses, as for a read-only file.
  bool DeleteFileOf(const ByteString& name);

  // Copies a file to one of its name and ".damaged", which no list shows; where there is one
  // already that holds something else, to ".damaged2" and so on. A name too long for that loses its
  // end. True when such a copy is there, and when there is no file.
  static bool KeepCopy(const ByteString& path);

 private:
  ByteString FindFile(const ByteString& name);
  // Of renames that were cut off. True when a file came back.
  bool BringBack();
  bool BringBack(const ByteString& kept);
  // A profile's file, and what a rename to it has left.
  bool Remove(const ByteString& path);

  ByteString keptPath;  // while a profile is renamed
  std::unique_ptr<platform::File> keptFile;
};

}  // namespace kelvaro
