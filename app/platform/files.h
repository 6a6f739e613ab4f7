// Files and folders, in the shape of the published operations, and the system's words for an error.
// Text is bytes; a path is in the platform's own spelling, whose separator PathSeparator tells, and
// one with a zero byte names nothing. Where the platform has links, one stands for what it leads to
// unless told otherwise.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace platform {

constexpr std::uint32_t FILE_BEGIN = 0;
constexpr std::uint32_t FILE_CURRENT = 1;
constexpr std::uint32_t FILE_END = 2;

constexpr std::uint32_t GENERIC_READ = 0x80000000u;
constexpr std::uint32_t GENERIC_WRITE = 0x40000000u;
constexpr std::uint32_t FILE_SHARE_READ = 1;
constexpr std::uint32_t FILE_SHARE_WRITE = 2;
constexpr std::uint32_t CREATE_ALWAYS = 2;
constexpr std::uint32_t OPEN_EXISTING = 3;

constexpr std::uint32_t FILE_ATTRIBUTE_READONLY = 0x01;
constexpr std::uint32_t FILE_ATTRIBUTE_DIRECTORY = 0x10;
constexpr std::uint32_t FILE_ATTRIBUTE_NORMAL = 0x80;
constexpr std::uint32_t FILE_ATTRIBUTE_REPARSE_POINT = 0x400;
constexpr std::uint32_t INVALID_FILE_ATTRIBUTES = 0xFFFFFFFFu;

// One open file; closed when it is destroyed. Until then it shuts others out (see CreateFileA),
// even when it is closed already, so that its owner can copy or delete what it wrote in peace. One
// thread at a time.
class File {
 public:
  virtual ~File() = default;

  // Reads up to `wanted` bytes from the position on; *read is fewer at the end of the file, 0
  // behind it, and may be fewer in front of a place that can't be read. False on failure, with
  // *read 0 and the buffer as it was.
  virtual bool ReadFile(void* buffer, std::uint32_t wanted, std::uint32_t* read) = 0;

  // Writes at the position. *written may be fewer on failure, with false.
  virtual bool WriteFile(const void* data, std::uint32_t size, std::uint32_t* written) = 0;

  // Moves the position by `distance` from FILE_BEGIN, FILE_CURRENT or FILE_END; *position, where
  // wanted, takes the new one. False, with nothing moved, in front of the start.
  virtual bool SetFilePointer(std::int64_t distance, std::uint32_t method,
                              std::int64_t* position) = 0;

  // Closes it now; what was written is on the disk when this is true. No other operation works
  // after it.
  virtual bool CloseHandle() = 0;
};

// What a search finds. Times count 100 ns from the year 1601, UTC, as in the published FILETIME.
struct FindData {
  std::string name;  // without its folder
  std::uint32_t attributes = 0;
  std::uint64_t size = 0;
  std::uint64_t created = 0;
  std::uint64_t accessed = 0;
  std::uint64_t written = 0;
};

// A search under way; ended when it is destroyed.
class FileSearch {
 public:
  virtual ~FileSearch() = default;

  // The next entry, in the order of the file system. False at the end.
  virtual bool FindNextFileA(FindData* data) = 0;
};

class Files {
 public:
  virtual ~Files() = default;

  // '\\' or '/'.
  virtual char PathSeparator() = 0;

  // access: GENERIC_ bits. disposition: CREATE_ALWAYS (an old content goes) or OPEN_EXISTING. Null
  // on failure: for a folder, for anything else that isn't a plain file, and for a read-only file
  // that is to be written. Never waits for somebody at the other end.
  //
  // share: FILE_SHARE_ bits. Among opens without FILE_SHARE_WRITE, in all processes, a file has one
  // that writes or any number that read; one more fails. An open that shares writing neither shuts
  // out others nor is shut out. None of this outlives the process. A file system without locks
  // shuts nobody out.
  virtual std::unique_ptr<File> CreateFileA(const std::string& path, std::uint32_t access,
                                            std::uint32_t share, std::uint32_t disposition) = 0;

  // The target holds the whole source afterwards; where the platform can, it holds either the old
  // content or the new one at every moment in between, a power cut included. An old target keeps
  // its attributes and permissions, a new one gets the source's. A read-only target is a failure.
  // Lasting once this is true, where the file system can.
  virtual bool CopyFileA(const std::string& from, const std::string& to, bool failIfExists) = 0;
  // Fails for a read-only file, for a folder, and for a file that somebody shuts others out of.
  // Lasting once this is true, where the file system can: a power cut doesn't bring the file back.
  virtual bool DeleteFileA(const std::string& path) = 0;

  // FILE_ATTRIBUTE_ bits of a file or folder, INVALID_FILE_ATTRIBUTES when there is none. A folder
  // is read-only when this program can't make anything in it.
  virtual std::uint32_t GetFileAttributesA(const std::string& path) = 0;
  // Of these bits only the read-only one can be set.
  virtual bool SetFileAttributesA(const std::string& path, std::uint32_t attributes) = 0;

  // False when it is there already, or can't be made.
  virtual bool CreateDirectoryA(const std::string& path) = 0;

  // The first entry whose name fits the pattern behind the last separator (`*`, `?`, without regard
  // to ASCII case), in the order of the file system, "." and ".." among them. A pattern without
  // either finds the entry of just that name first, if there is one, and then no other. Null for
  // none. A link's data is what it leads to, with FILE_ATTRIBUTE_REPARSE_POINT.
  virtual std::unique_ptr<FileSearch> FindFirstFileA(const std::string& pattern,
                                                     FindData* data) = 0;

  // Empty on failure.
  virtual std::string GetCurrentDirectoryA() = 0;
  virtual bool SetCurrentDirectoryA(const std::string& path) = 0;
  // Full path of the running program's real file; empty on failure.
  virtual std::string GetModuleFileNameA() = 0;
  // Bit 0 for drive A; 0 where there are no drives.
  virtual std::uint32_t GetLogicalDrives() = 0;

  // Of the calling thread's last operation that failed, in the platform's own numbers.
  virtual std::uint32_t GetLastError() = 0;
};

class System {
 public:
  virtual ~System() = default;

  // The system's message for an error code, line end included; empty when it has none.
  virtual std::string FormatMessageA(std::uint32_t code) = 0;

  // Full path of the folder in which programs keep what the person makes with them; it need not be
  // there. Empty where the person has none.
  virtual std::string GetUserDataFolder() = 0;
};

// Of the installed platform; see platform.h.
Files& files();
System& system();

}  // namespace platform
