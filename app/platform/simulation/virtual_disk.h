// A disk in memory, with faults by plan and the moment at which the machine stops. Names are found
// in the order in which they were made. With slashes, at first, there is one root and case counts;
// with backslashes there are drives and shares and it doesn't. No links. Not for several system
// threads; the last error is the last of any virtual one. Its many methods are the seam's, and a
// test's set-up and look at each thing that a disk holds.
//
// A test that cuts a save short at each of its operations in turn:
//
//   const std::uint64_t count = ...operations of a save that nothing disturbs...
//   for (std::uint64_t n = 1; n <= count; ++n) {
//     Simulation sim;
//     sim.Disk().PutFile("/game/Profiles/a.idprof", before);
//     sim.Disk().StopAfter(n);
//     Save();
//     sim.Disk().Restart();
//     ...what can be read is the old or the new...
//   }
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/platform/error_codes.h"
#include "app/platform/files.h"

namespace platform::simulation {

// The disk's numbers for GetLastError, the published ones.
using platform::ERROR_FILE_NOT_FOUND;
constexpr std::uint32_t ERROR_PATH_NOT_FOUND = 3;
using platform::ERROR_ACCESS_DENIED;
using platform::ERROR_INVALID_HANDLE;
constexpr std::uint32_t ERROR_NO_MORE_FILES = 18;
constexpr std::uint32_t ERROR_NOT_READY = 21;  // of every operation while the machine is stopped
constexpr std::uint32_t ERROR_SHARING_VIOLATION = 32;
constexpr std::uint32_t ERROR_FILE_EXISTS = 80;
using platform::ERROR_DISK_FULL;
using platform::ERROR_INVALID_NAME;
constexpr std::uint32_t ERROR_NEGATIVE_SEEK = 131;
constexpr std::uint32_t ERROR_ALREADY_EXISTS = 183;

// One operation, as it was called.
struct DiskOperation {
  std::string name;        // "WriteFile"
  std::string path;        // as given; of an open file, what it was opened with
  std::uint32_t size = 0;  // bytes to be written: of WriteFile, and of a step of CopyFileA
  bool changes = false;    // of the kind that changes the disk, or makes a change lasting
};

class VirtualDisk final : public Files {
 public:
  // `now` gives ms since the start, for the times of files; null for none.
  explicit VirtualDisk(std::function<std::uint64_t()> now = nullptr);
  ~VirtualDisk() override;
  VirtualDisk(const VirtualDisk&) = delete;
  VirtualDisk& operator=(const VirtualDisk&) = delete;

  // ---- What a test sets up and looks at: no operations, so neither counted nor disturbed.

  // Empties the disk. With '/': the program is "/game/kelvaro", the current folder "/home/player".
  // With '\\': the same below "C:", the program with ".exe", and a drive mask of 4. Both are there.
  void Format(char separator);

  // Makes or replaces a file with FILE_ATTRIBUTE_ bits, and the folders it lies in.
  void PutFile(const std::string& path, std::string bytes,
               std::uint32_t attributes = FILE_ATTRIBUTE_NORMAL);
  // FILE_ATTRIBUTE_REPARSE_POINT makes it look like a link to a folder; in one with
  // FILE_ATTRIBUTE_READONLY nothing is made or deleted.
  void PutFolder(const std::string& path, std::uint32_t attributes = FILE_ATTRIBUTE_DIRECTORY);
  // A file, or a folder with all that is in it.
  void Remove(const std::string& path);

  bool Exists(const std::string& path) const;
  // None for what is no file.
  std::optional<std::string> FileBytes(const std::string& path) const;
  std::uint32_t Attributes(const std::string& path) const;
  // Names in a folder, in order; none where there is no folder.
  std::vector<std::string> List(const std::string& folder) const;

  void SetDrives(std::uint32_t mask) { drives = mask; }
  void SetProgramPath(const std::string& path) { programPath = path; }  // empty: it can't be told

  // How CopyFileA goes. At once (0, at first): the target is the old or the new, whatever happens.
  // In steps, as on platforms that write straight over the target: one operation that makes or
  // empties it, then one for each `bytes` that are written; a step that fails ends it there.
  void CopyInSteps(std::uint32_t bytes) { copyStep = bytes; }

  // Files and searches that were opened and not given back.
  std::uint32_t OpenHandles() const { return *openHandles; }

  // ---- Faults. Every operation counts but PathSeparator, GetLogicalDrives, GetModuleFileNameA,
  // GetLastError and the end of a handle without CloseHandle; a CopyFileA in steps counts as many
  // times as it has steps. n counts from here: 1 is the next operation.

  // A later plan for an operation takes the place of an earlier one.
  // That operation does nothing but fail.
  void FailOperation(std::uint64_t n, std::uint32_t error = ERROR_ACCESS_DENIED);
  // If it writes (WriteFile, a step of CopyFileA), it puts down at most `bytes` bytes first.
  void FailInside(std::uint64_t n, std::uint32_t bytes, std::uint32_t error = ERROR_DISK_FULL);

  // The machine stops: nothing changes the disk from then on, and all operations fail. Inside a
  // write its first `bytes` bytes have been put down; inside another operation nothing is done.
  void StopBefore(std::uint64_t n);
  void StopInside(std::uint64_t n, std::uint32_t bytes);
  void StopAfter(std::uint64_t n);
  bool IsStopped() const;

  // The disk as it was left, without faults to come; what was open stays unusable.
  void Restart();

  // The power fails, and the disk comes back as Restart leaves it, without some of what was never
  // made lasting: choose(n) says for each such thing which of its n states it is in, from 0 on. Of
  // a file these are what its bytes were, what they are, and what may be had of both: nothing, a
  // beginning, zeros where bytes hadn't been put down. Of a name: each of what stood there since.
  // Lasting is what the seam promises: the bytes and the name of a written file once it is closed,
  // the target of a copy at once, a deletion, and the folders that lead to any of them. Not for
  // copies in steps.
  void CutPower(const std::function<std::uint32_t(std::uint32_t n)>& choose);

  // Every operation since the start, or since ClearLog, those that failed included.
  const std::vector<DiskOperation>& Log() const { return log; }
  void ClearLog() { log.clear(); }
  // How many of that name there are in the log.
  std::uint32_t Count(std::string_view operation) const;

  // ---- Files.
  char PathSeparator() override { return separator; }
  std::unique_ptr<File> CreateFileA(const std::string& path, std::uint32_t access,
                                    std::uint32_t share, std::uint32_t disposition) override;
  bool CopyFileA(const std::string& from, const std::string& to, bool failIfExists) override;
  bool DeleteFileA(const std::string& path) override;
  std::uint32_t GetFileAttributesA(const std::string& path) override;
  bool SetFileAttributesA(const std::string& path, std::uint32_t attributes) override;
  bool CreateDirectoryA(const std::string& path) override;
  std::unique_ptr<FileSearch> FindFirstFileA(const std::string& pattern, FindData* data) override;
  std::string GetCurrentDirectoryA() override;
  bool SetCurrentDirectoryA(const std::string& path) override;
  std::string GetModuleFileNameA() override { return programPath; }
  std::uint32_t GetLogicalDrives() override { return drives; }
  std::uint32_t GetLastError() override { return lastError; }
  // What the next GetLastError tells, of an operation that isn't one of files.
  void SetLastError(std::uint32_t error) { lastError = error; }

 private:
  struct Node;
  class OpenFile;
  class Search;
  using Names = std::vector<std::string>;

  // What stood at a name before something that isn't lasting yet was done to it, and after; null
  // for nothing.
  struct NameChange {
    std::shared_ptr<Node> folder;
    std::string name;
    std::shared_ptr<Node> before;
    std::shared_ptr<Node> after;
  };

  // What becomes of one operation.
  struct Fate {
    std::uint32_t error = 0;  // 0: it works
    std::uint32_t bytes = 0;  // which it still puts down before it fails, if it writes
  };
  struct Fault {
    Fate fate;
    bool stops = false;
  };

  void Plan(std::uint64_t n, const Fault& fault);
  // Counts and notes an operation.
  Fate Note(const char* name, const std::string& path, bool changes, std::uint32_t size = 0);
  // The same for one that writes nothing; false, with the last error set, where it is to fail.
  bool Enter(const char* name, const std::string& path, bool changes);
  // Whether one who doesn't share writing is kept out of a file.
  static bool IsClaimed(const Node& node, bool isWriting);
  // Sets the last error; false for convenience.
  bool Fail(std::uint32_t error);

  // The parts of a path from its root on, "." and ".." resolved; none for what can't be a path.
  std::optional<Names> Parts(const std::string& path) const;
  std::string Joined(const Names& parts) const;
  std::shared_ptr<Node> Child(const Node& folder, const std::string& name) const;
  std::shared_ptr<Node> Find(const Names& parts) const;
  // Null, with the last error set, for what isn't there.
  std::shared_ptr<Node> Find(const std::string& path);
  std::shared_ptr<Node> Look(const std::string& path) const;
  // The folder that the last part of a path lies in, with that part in *name. Null, with the last
  // error set, where there is none.
  std::shared_ptr<Node> Parent(const std::string& path, std::string* name);
  // What stands at `path`, made with all above it where it is missing.
  std::shared_ptr<Node> Make(const std::string& path, std::uint32_t attributes);
  std::shared_ptr<Node> Add(Node& folder, const std::string& name, std::uint32_t attributes);
  // Before the bytes of a file change.
  void NoteBytes(const std::shared_ptr<Node>& node);
  void NoteName(const std::shared_ptr<Node>& folder, const std::string& name,
                std::shared_ptr<Node> before, std::shared_ptr<Node> after);
  void MakeLasting(const std::shared_ptr<Node>& node);
  void MakeNameLasting(const std::shared_ptr<Node>& folder, const std::string& name);
  FindData Data(const Node& node, const std::string& name) const;
  std::uint64_t FileTime() const;

  const std::function<std::uint64_t()> now;
  char separator = '/';
  std::shared_ptr<Node> top;  // holds the roots: "" with slashes, "C:" and "\\server\share" else
  Names currentFolder;
  std::string programPath;
  std::uint32_t drives = 0;
  std::uint32_t copyStep = 0;
  std::uint32_t lastError = 0;
  std::shared_ptr<std::uint32_t> openHandles;

  std::uint64_t operations = 0;
  std::vector<DiskOperation> log;
  std::map<std::uint64_t, Fault> faults;  // by the number of the operation
  bool stopped = false;
  std::vector<NameChange> nameChanges;           // not lasting yet, in their order
  std::vector<std::shared_ptr<Node>> unflushed;  // files with bytes that aren't
  std::uint64_t life = 0;                        // restarts so far: a handle works in its own only
};

}  // namespace platform::simulation
