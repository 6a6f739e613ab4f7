#include "app/platform/linux/linux_files.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "app/platform/cut_off.h"
#include "app/platform/file_pattern.h"
#include "app/platform/linux/descriptor.h"
#include "app/platform/linux/last_error.h"
#include "app/platform/linux/program_file.h"

namespace platform {
namespace {

constexpr mode_t kNewFile = 0666;  // less the umask
constexpr mode_t kNewFolder = 0777;
constexpr mode_t kPermissions = 07777;
constexpr int kLongestChainOfLinks = 40;  // the kernel's own limit
constexpr int kMostDeletions = 100;       // of one file, one after the other, while it is opened
constexpr char kAccessList[] = "system.posix_acl_access";

bool HasZeroByte(const std::string& path) { return path.find('\0') != std::string::npos; }

// False, with the error set, for a path that the system would see cut short.
bool IsPath(const std::string& path) { return !HasZeroByte(path) || Fail(EINVAL); }

std::string FolderOfPath(const std::string& path) {
  const std::size_t last = path.rfind('/');
  if (last == std::string::npos) return ".";
  return last == 0 ? "/" : path.substr(0, last);
}

// A folder for flushing it. Without one where it may be entered but not read.
Descriptor OpenFolder(const std::string& path) {
  return Descriptor(Retry([&] { return open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
}

// Makes the names in a folder lasting. Some file systems can't, and that is no failure.
bool FlushFolder(const Descriptor& folder) {
  if (!folder) return true;
  if (Retry([&] { return fsync(folder.Get()); }) == 0) return true;
  return errno == EINVAL || errno == ENOTSUP || errno == ENOSYS;
}

std::uint32_t AttributesOf(mode_t mode) {
  std::uint32_t attributes = 0;
  if (S_ISDIR(mode)) attributes |= FILE_ATTRIBUTE_DIRECTORY;
  if (!S_ISLNK(mode) && !(mode & S_IWUSR)) attributes |= FILE_ATTRIBUTE_READONLY;
  return attributes ? attributes : FILE_ATTRIBUTE_NORMAL;
}

// Why a file that is there can't be written, 0 if it can.
int RefusalToWrite(const struct stat& status) {
  if (S_ISDIR(status.st_mode)) return EISDIR;
  if (!S_ISREG(status.st_mode)) return EINVAL;
  return status.st_mode & S_IWUSR ? 0 : EACCES;
}

// Claims the file for one writer or among any number of readers, until the last copy of the
// descriptor is closed, at the latest when the process ends.
bool Claim(const Descriptor& file, bool isWriting) {
  struct flock whole {};
  whole.l_type = isWriting ? F_WRLCK : F_RDLCK;
  whole.l_whence = SEEK_SET;
  if (fcntl(file.Get(), F_OFD_SETLK, &whole) == 0) return true;
  // Some file systems have no locks; there every claim succeeds.
  return (errno != EAGAIN && errno != EACCES) || Fail(EBUSY);
}

bool IsAt(const std::string& path, const Descriptor& file) {
  struct stat there;
  struct stat opened;
  return stat(path.c_str(), &there) == 0 && fstat(file.Get(), &opened) == 0 &&
         there.st_dev == opened.st_dev && there.st_ino == opened.st_ino;
}

// Opens what stands at the path, with a claim if wanted. None, with the error set, on failure.
Descriptor Open(const std::string& path, int flags, bool claims, bool isWriting) {
  // A pipe at this name would otherwise wait for its other end.
  flags |= O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
  for (int i = 0; i < kMostDeletions; ++i) {
    Descriptor file(Retry([&] { return open(path.c_str(), flags, kNewFile); }));
    if (!file) Fail();
    if (!file || !claims) return file;
    if (!Claim(file, isWriting)) return Descriptor();
    // The holder of the claim may have deleted the file after it was opened here. Then this claim
    // is worth nothing.
    if (IsAt(path, file)) return file;
  }
  return Fail(EBUSY);
}

class LinuxFile final : public File {
 public:
  LinuxFile(Descriptor file, Descriptor claim, Descriptor folder, bool isWriting)
      : file(std::move(file)),
        claim(std::move(claim)),
        folder(std::move(folder)),
        isWriting(isWriting) {}

  // One call: the system gives less than was asked for only at the end of a file, or in front of
  // what it can't read, which the next call then tells.
  bool ReadFile(void* buffer, std::uint32_t wanted, std::uint32_t* read) override {
    *read = 0;
    const int fd = Fd();
    const ssize_t n = Retry([&] { return ::read(fd, buffer, wanted); });
    if (n < 0) return Fail();
    *read = static_cast<std::uint32_t>(n);
    return true;
  }

  bool WriteFile(const void* data, std::uint32_t size, std::uint32_t* written) override {
    std::size_t done = 0;
    const bool good = WriteAll(Fd(), static_cast<const char*>(data), size, &done) || Fail();
    *written = static_cast<std::uint32_t>(done);
    return good;
  }

  bool SetFilePointer(std::int64_t distance, std::uint32_t method,
                      std::int64_t* position) override {
    if (method > FILE_END) return Fail(EINVAL);
    const int whence[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    const off64_t moved = lseek64(Fd(), distance, whence[method]);
    if (moved < 0) return Fail();
    if (position) *position = moved;
    return true;
  }

  bool CloseHandle() override {
    const int fd = Fd();
    if (fd < 0) return Fail(EBADF);
    bool good = true;
    if (isWriting) {
      good = Retry([&] { return fsync(fd); }) == 0 || Fail();
      if (good) good = FlushFolder(folder) || Fail();
    }
    if (!file.Close() && good) good = Fail();
    folder = Descriptor();
    return good;
  }

 private:
  // For each operation: the file is in the thread's hands, no accessor stands before it.
  int Fd() const {
    StopHereIfCutOff();
    return file.Get();
  }

  Descriptor file;
  const Descriptor claim;  // the same file once more, kept to the end; none where all is shared
  Descriptor folder;       // that the file lies in, when it is written
  const bool isWriting;
};

std::uint64_t FileTime(const struct statx_timestamp& time) {
  constexpr std::int64_t kFrom1601To1970 = 11'644'473'600;  // s
  const std::int64_t units = (time.tv_sec + kFrom1601To1970) * 10'000'000 + time.tv_nsec / 100;
  return static_cast<std::uint64_t>(std::max<std::int64_t>(units, 0));
}

// False for what isn't there any more.
bool Describe(int folder, const std::string& name, bool isLink, FindData* data) {
  struct statx status;
  const unsigned wanted = STATX_BASIC_STATS | STATX_BTIME;
  if (statx(folder, name.c_str(), 0, wanted, &status) != 0 &&
      (!isLink || statx(folder, name.c_str(), AT_SYMLINK_NOFOLLOW, wanted, &status) != 0))
    return Fail();
  data->name = name;
  data->attributes = AttributesOf(status.stx_mode);
  if (isLink) {
    data->attributes = (data->attributes & ~FILE_ATTRIBUTE_NORMAL) | FILE_ATTRIBUTE_REPARSE_POINT;
  }
  data->size = S_ISREG(status.stx_mode) ? status.stx_size : 0;
  data->written = FileTime(status.stx_mtime);
  data->accessed = FileTime(status.stx_atime);
  data->created = status.stx_mask & STATX_BTIME ? FileTime(status.stx_btime) : data->written;
  return true;
}

bool IsLink(int folder, const char* name) {
  struct stat status;
  return fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(status.st_mode);
}

class LinuxSearch final : public FileSearch {
 public:
  // Without a folder it finds nothing more.
  LinuxSearch(DIR* folder, std::string pattern) : folder(folder), pattern(std::move(pattern)) {}
  LinuxSearch(const LinuxSearch&) = delete;
  LinuxSearch& operator=(const LinuxSearch&) = delete;
  ~LinuxSearch() override {
    if (folder) closedir(folder);
  }

  bool FindNextFileA(FindData* data) override {
    StopHereIfCutOff();
    if (!folder) return Fail(ENOENT);
    for (;;) {
      errno = 0;
      const struct dirent* const entry = readdir(folder);
      if (!entry) return Fail(errno ? errno : ENOENT);
      if (!FitsPattern(entry->d_name, pattern)) continue;
      const bool isLink = entry->d_type == DT_LNK ||
                          (entry->d_type == DT_UNKNOWN && IsLink(dirfd(folder), entry->d_name));
      if (Describe(dirfd(folder), entry->d_name, isLink, data)) return true;
    }
  }

 private:
  DIR* const folder;
  const std::string pattern;
};

// What a link at `path` leads to in the end, whether or not there is anything.
std::optional<std::string> WithoutLinks(std::string path) {
  for (int link = 0; link < kLongestChainOfLinks; ++link) {
    struct stat status;
    if (lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return path;
    char text[PATH_MAX];
    const ssize_t length = readlink(path.c_str(), text, sizeof text);
    if (length < 0) {
      Fail();
      return std::nullopt;
    }
    const bool absolute = length > 0 && text[0] == '/';
    path = absolute ? std::string() : FolderOfPath(path).append("/");
    path.append(text, static_cast<std::size_t>(length));
  }
  Fail(ELOOP);
  return std::nullopt;
}

bool CopyBytes(int from, int to) {
  std::vector<char> buffer(std::size_t{1} << 16);
  for (;;) {
    const ssize_t n = Retry([&] { return read(from, buffer.data(), buffer.size()); });
    if (n == 0) return true;
    if (n < 0) return Fail();
    std::size_t written = 0;
    if (!WriteAll(to, buffer.data(), static_cast<std::size_t>(n), &written)) return Fail();
  }
}

// Gives `file` the owner and group, where that is allowed, and the permissions of the old file at
// `path`.
bool TakeOver(int file, const std::string& path, const struct stat& old) {
  struct stat now;
  if (fstat(file, &now) != 0) return Fail();
  if (now.st_gid != old.st_gid && fchown(file, static_cast<uid_t>(-1), old.st_gid) != 0 &&
      errno != EPERM)
    return Fail();
  if (now.st_uid != old.st_uid && fchown(file, old.st_uid, static_cast<gid_t>(-1)) != 0 &&
      errno != EPERM)
    return Fail();
  // A list of further users is part of the permissions; a new file may have got one of its folder.
  char list[4096];
  const ssize_t size = getxattr(path.c_str(), kAccessList, list, sizeof list);
  if (size > 0) {
    if (fsetxattr(file, kAccessList, list, static_cast<std::size_t>(size), 0) != 0) return Fail();
  } else {
    fremovexattr(file, kAccessList);
  }
  return fchmod(file, old.st_mode & kPermissions) == 0 || Fail();
}

bool Rename(const std::string& from, const std::string& to, bool failIfExists) {
  if (failIfExists) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
    // Not every file system can; whether the target is there was asked before.
    if (errno != EINVAL && errno != ENOSYS) return Fail();
  }
  return rename(from.c_str(), to.c_str()) == 0 || Fail();
}

}  // namespace

std::unique_ptr<File> LinuxFiles::CreateFileA(const std::string& path, std::uint32_t access,
                                              std::uint32_t share, std::uint32_t disposition) {
  if (!IsPath(path)) return nullptr;
  const bool makes = disposition == CREATE_ALWAYS;
  const bool isWriting = makes || (access & GENERIC_WRITE);
  int flags = access & GENERIC_WRITE ? (access & GENERIC_READ ? O_RDWR : O_WRONLY) : O_RDONLY;
  // What is there already is emptied last, when nothing else can fail.
  if (makes) flags |= O_CREAT;
  const bool claims = !(share & FILE_SHARE_WRITE);
  Descriptor file = Open(path, flags, claims, isWriting);
  if (!file) return nullptr;
  struct stat status;
  if (fstat(file.Get(), &status) != 0) return Fail();
  int refusal = 0;
  if (isWriting) {
    refusal = RefusalToWrite(status);
  } else if (!S_ISREG(status.st_mode)) {
    refusal = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
  }
  if (refusal) return Fail(refusal);
  Descriptor claim;
  if (claims) {
    claim = Descriptor(fcntl(file.Get(), F_DUPFD_CLOEXEC, 0));
    if (!claim) return Fail();
  }
  if (makes && status.st_size > 0 && ftruncate(file.Get(), 0) != 0) return Fail();
  Descriptor folder;
  if (isWriting) folder = OpenFolder(FolderOfPath(path));
  return std::make_unique<LinuxFile>(std::move(file), std::move(claim), std::move(folder),
                                     isWriting);
}

bool LinuxFiles::CopyFileA(const std::string& from, const std::string& to, bool failIfExists) {
  if (!IsPath(from) || !IsPath(to)) return false;
  Descriptor source(Retry([&] { return open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); }));
  struct stat sourceStatus;
  if (!source || fstat(source.Get(), &sourceStatus) != 0) return Fail();
  if (!S_ISREG(sourceStatus.st_mode)) return Fail(EINVAL);

  const std::optional<std::string> target = WithoutLinks(to);
  if (!target) return false;
  struct stat old;
  const bool replaces = stat(target->c_str(), &old) == 0;
  if (!replaces && errno != ENOENT) return Fail();
  if (replaces) {
    if (failIfExists) return Fail(EEXIST);
    if (const int refusal = RefusalToWrite(old)) return Fail(refusal);
    // Replacing a file needs no right to write it, but a copy over it does.
    if (faccessat(AT_FDCWD, target->c_str(), W_OK, AT_EACCESS) != 0) return Fail();
  }

  const std::string folder = FolderOfPath(*target);
  std::string beside = folder + "/.kelvaro-XXXXXX";
  Descriptor copy(mkostemp(beside.data(), O_CLOEXEC));
  if (!copy) return Fail();
  bool good = CopyBytes(source.Get(), copy.Get());
  if (good) {
    good = replaces ? TakeOver(copy.Get(), *target, old)
                    : fchmod(copy.Get(), sourceStatus.st_mode & 0777) == 0 || Fail();
  }
  if (good) good = Retry([&] { return fsync(copy.Get()); }) == 0 || Fail();
  if (!copy.Close() && good) good = Fail();
  if (good) good = Rename(beside, *target, failIfExists);
  if (!good) {
    unlink(beside.c_str());
    return false;
  }
  return FlushFolder(OpenFolder(folder)) || Fail();
}

bool LinuxFiles::DeleteFileA(const std::string& path) {
  if (!IsPath(path)) return false;
  struct stat status;
  Descriptor claim;
  // A link that leads nowhere has nothing that could hold it.
  if (stat(path.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode)) return Fail(EISDIR);
    if (!(status.st_mode & S_IWUSR)) return Fail(EACCES);
    if (S_ISREG(status.st_mode)) {
      claim = Open(path, O_RDWR, true, true);
      // This program can't be writing a file that it can't open to write, such as somebody else's.
      if (!claim && lastError == EBUSY) return false;
    }
  }
  if (unlink(path.c_str()) != 0) return Fail();
  return FlushFolder(OpenFolder(FolderOfPath(path))) || Fail();
}

std::uint32_t LinuxFiles::GetFileAttributesA(const std::string& path) {
  struct stat status;
  if (!IsPath(path)) return INVALID_FILE_ATTRIBUTES;
  if (stat(path.c_str(), &status) != 0) {
    Fail();
    return INVALID_FILE_ATTRIBUTES;
  }
  const std::uint32_t attributes = AttributesOf(status.st_mode);
  // Somebody else's folder, or one that nobody can write, as on a read-only file system.
  const bool isClosed =
      S_ISDIR(status.st_mode) && faccessat(AT_FDCWD, path.c_str(), W_OK | X_OK, AT_EACCESS) != 0;
  return isClosed ? attributes | FILE_ATTRIBUTE_READONLY : attributes;
}

bool LinuxFiles::SetFileAttributesA(const std::string& path, std::uint32_t attributes) {
  if (!IsPath(path)) return false;
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return Fail();
  const mode_t now = status.st_mode & kPermissions;
  const mode_t wanted =
      attributes & FILE_ATTRIBUTE_READONLY ? now & ~mode_t{S_IWUSR} : now | S_IWUSR;
  // Nothing to do is no failure, on somebody else's file either.
  return wanted == now || chmod(path.c_str(), wanted) == 0 || Fail();
}

bool LinuxFiles::CreateDirectoryA(const std::string& path) {
  if (!IsPath(path)) return false;
  if (mkdir(path.c_str(), kNewFolder) != 0) return Fail();
  // A file that is flushed in there must not go with its folder.
  const std::size_t end = path.find_last_not_of('/');
  FlushFolder(OpenFolder(FolderOfPath(path.substr(0, end + 1))));
  return true;
}

std::unique_ptr<FileSearch> LinuxFiles::FindFirstFileA(const std::string& pattern, FindData* data) {
  if (!IsPath(pattern)) return nullptr;
  const std::string folder = FolderOfPath(pattern);
  const std::size_t last = pattern.rfind('/');
  const std::string name = last == std::string::npos ? pattern : pattern.substr(last + 1);
  if (name.empty()) return Fail(ENOENT);
  if (!HasWildcards(name)) {
    const std::string path = folder + "/" + name;
    if (Describe(AT_FDCWD, path, IsLink(AT_FDCWD, path.c_str()), data)) {
      data->name = name;
      return std::make_unique<LinuxSearch>(nullptr, name);
    }
  }
  DIR* const opened = opendir(folder.c_str());
  if (!opened) return Fail();
  auto search = std::make_unique<LinuxSearch>(opened, name);
  if (!search->FindNextFileA(data)) return nullptr;
  return search;
}

std::string LinuxFiles::GetCurrentDirectoryA() {
  char* const path = getcwd(nullptr, 0);
  if (!path) return Fail();
  std::string folder(path);
  free(path);
  // Outside of the process's root there is no path to it.
  if (!folder.starts_with('/')) return Fail(ENOENT);
  return folder;
}

bool LinuxFiles::SetCurrentDirectoryA(const std::string& path) {
  if (!IsPath(path)) return false;
  return chdir(path.c_str()) == 0 || Fail();
}

std::string LinuxFiles::GetModuleFileNameA() {
  std::string path = ProgramFileOf("self");
  if (path.empty()) Fail();
  return path;
}

std::uint32_t LinuxFiles::GetLastError() { return static_cast<std::uint32_t>(lastError); }

}  // namespace platform
