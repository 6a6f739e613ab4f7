#include "app/platform/windows/windows_files.h"

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

#include "app/platform/file_pattern.h"
#include "app/platform/windows/last_error.h"
#include "app/platform/windows/owned_handle.h"

namespace platform {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// False, with the error set, for a path that the system would see cut short.
bool IsPath(const std::string& path) { return !HasZeroByte(path) || Fail(ERROR_INVALID_NAME); }

// With the separator behind it; empty where the path has none.
std::string FolderOfPath(const std::string& path) {
  return path.substr(0, path.find_last_of("\\/:") + 1);
}

// Opens a file to read its data or what is known of it, without shutting out anybody.
OwnedHandle Look(const std::string& path, DWORD access) {
  return OwnedHandle(::CreateFileA(path.c_str(), access, kShareAll, nullptr, OPEN_EXISTING,
                                   FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

// Whether this program may make a file in that folder. Asks, and makes none.
bool MayMakeFiles(const std::string& folder) {
  return static_cast<bool>(Look(folder, FILE_ADD_FILE));
}

std::uint32_t AttributesOf(DWORD system) {
  std::uint32_t attributes = system & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY);
  if (attributes & FILE_ATTRIBUTE_DIRECTORY) attributes &= ~FILE_ATTRIBUTE_READONLY;
  return attributes ? attributes : FILE_ATTRIBUTE_NORMAL;
}

class WindowsFile final : public File {
 public:
  WindowsFile(OwnedHandle file, bool isWriting) : file(std::move(file)), isWriting(isWriting) {}

  bool ReadFile(void* buffer, std::uint32_t wanted, std::uint32_t* read) override {
    *read = 0;
    if (!IsOpen()) return false;
    DWORD n = 0;
    if (!::ReadFile(file.Get(), buffer, wanted, &n, nullptr)) return Fail();
    *read = n;
    return true;
  }

  bool WriteFile(const void* data, std::uint32_t size, std::uint32_t* written) override {
    *written = 0;
    if (!IsOpen()) return false;
    DWORD n = 0;
    const bool good = ::WriteFile(file.Get(), data, size, &n, nullptr) || Fail();
    *written = n;
    return good && (n == size || Fail(ERROR_DISK_FULL));
  }

  bool SetFilePointer(std::int64_t distance, std::uint32_t method,
                      std::int64_t* position) override {
    if (!IsOpen()) return false;
    LARGE_INTEGER by;
    LARGE_INTEGER moved;
    by.QuadPart = distance;
    if (!SetFilePointerEx(file.Get(), by, &moved, method)) return Fail();
    if (position) *position = moved.QuadPart;
    return true;
  }

  // The system's handle stays to the end: it is what shuts others out.
  bool CloseHandle() override {
    if (!IsOpen()) return false;
    isClosed = true;
    return !isWriting || FlushFileBuffers(file.Get()) || Fail();
  }

 private:
  bool IsOpen() const { return !isClosed || Fail(ERROR_INVALID_HANDLE); }

  const OwnedHandle file;
  const bool isWriting;
  bool isClosed = false;
};

std::uint64_t Number(DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; }
std::uint64_t FileTime(const FILETIME& time) {
  return Number(time.dwHighDateTime, time.dwLowDateTime);
}

// Of an entry in `folder`. `Found` is either of the system's records of a file.
template <typename Found>
void Describe(const Found& found, FindData* data) {
  data->attributes = AttributesOf(found.dwFileAttributes);
  data->size = Number(found.nFileSizeHigh, found.nFileSizeLow);
  data->created = FileTime(found.ftCreationTime);
  data->accessed = FileTime(found.ftLastAccessTime);
  data->written = FileTime(found.ftLastWriteTime);
}

void Describe(const std::string& folder, const WIN32_FIND_DATAA& found, FindData* data) {
  data->name = found.cFileName;
  Describe(found, data);
  if (!(found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)) return;
  BY_HANDLE_FILE_INFORMATION target;
  const OwnedHandle file = Look(folder + data->name, FILE_READ_ATTRIBUTES);
  if (file && GetFileInformationByHandle(file.Get(), &target)) Describe(target, data);
  data->attributes = (data->attributes & ~FILE_ATTRIBUTE_NORMAL) | FILE_ATTRIBUTE_REPARSE_POINT;
}

class WindowsSearch final : public FileSearch {
 public:
  explicit WindowsSearch(const std::string& wanted)
      : folder(FolderOfPath(wanted)), pattern(wanted.substr(folder.size())) {}
  WindowsSearch(const WindowsSearch&) = delete;
  WindowsSearch& operator=(const WindowsSearch&) = delete;
  ~WindowsSearch() override {
    if (search != INVALID_HANDLE_VALUE) FindClose(search);
  }

  bool FindFirst(FindData* data) {
    if (pattern.empty()) return Fail(ERROR_FILE_NOT_FOUND);
    const bool isName = !HasWildcards(pattern);
    WIN32_FIND_DATAA found;
    search = ::FindFirstFileA((folder + (isName ? pattern : "*")).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return Fail();
    if (isName || FitsPattern(found.cFileName, pattern)) {
      Describe(folder, found, data);
      return true;
    }
    return FindNextFileA(data);
  }

  bool FindNextFileA(FindData* data) override {
    WIN32_FIND_DATAA found;
    while (::FindNextFileA(search, &found)) {
      if (!FitsPattern(found.cFileName, pattern)) continue;
      Describe(folder, found, data);
      return true;
    }
    return Fail();
  }

 private:
  const std::string folder;  // with its separator
  const std::string pattern;
  HANDLE search = INVALID_HANDLE_VALUE;
};

// Of operations that give a text into a buffer and tell its length, or the room that it needs.
std::string TextOfAnyLength(const std::function<DWORD(char* buffer, DWORD room)>& get) {
  std::vector<char> buffer(MAX_PATH);
  for (;;) {
    const auto room = static_cast<DWORD>(buffer.size());
    const DWORD length = get(buffer.data(), room);
    if (length == 0) return Fail();
    if (length < room) return {buffer.data(), length};
    buffer.resize(std::max<std::size_t>(length, 2 * buffer.size()));
  }
}

bool CopyBytes(HANDLE from, HANDLE to) {
  std::vector<char> buffer(std::size_t{1} << 16);
  for (;;) {
    DWORD n = 0;
    if (!ReadFile(from, buffer.data(), static_cast<DWORD>(buffer.size()), &n, nullptr))
      return Fail();
    if (n == 0) return true;
    DWORD written = 0;
    if (!WriteFile(to, buffer.data(), n, &written, nullptr)) return Fail();
    if (written != n) return Fail(ERROR_DISK_FULL);
  }
}

// A new file with the content of `source`, on the disk. Empty on failure.
std::string CopyInto(const std::string& folder, HANDLE source) {
  char path[MAX_PATH];
  if (!GetTempFileNameA(folder.empty() ? "." : folder.c_str(), "kel", 0, path)) return Fail();
  OwnedHandle copy(::CreateFileA(path, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
  bool good = static_cast<bool>(copy) || Fail();
  if (good) good = CopyBytes(source, copy.Get());
  if (good) good = FlushFileBuffers(copy.Get()) || Fail();
  if (!copy.Close() && good) good = Fail();
  if (good) return path;
  ::DeleteFileA(path);
  return {};
}

// Puts the file `copy` in the place of `target`, which keeps what is its own, or there anew with
// the attributes of the source.
bool PutInPlace(const std::string& copy, const std::string& target, bool replaces,
                DWORD attributes) {
  if (replaces)
    return ReplaceFileA(target.c_str(), copy.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS,
                        nullptr, nullptr) ||
           Fail();
  return (::SetFileAttributesA(copy.c_str(), attributes) &&
          MoveFileExA(copy.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH)) ||
         Fail();
}

}  // namespace

std::unique_ptr<File> WindowsFiles::CreateFileA(const std::string& path, std::uint32_t access,
                                                std::uint32_t share, std::uint32_t disposition) {
  if (!IsPath(path)) return nullptr;
  // Wine lets root write such a file.
  const DWORD now = ::GetFileAttributesA(path.c_str());
  if ((access & GENERIC_WRITE) && now != INVALID_FILE_ATTRIBUTES && (now & FILE_ATTRIBUTE_READONLY))
    return Fail(ERROR_ACCESS_DENIED);
  // Whoever shares writing reads beside any writer, and holds up no replacing.
  DWORD shared = share | FILE_SHARE_READ;
  if (share & FILE_SHARE_WRITE) shared |= FILE_SHARE_DELETE;
  OwnedHandle file(::CreateFileA(path.c_str(), access, shared, nullptr, disposition,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return Fail();
  // A name such as "CON" opens a device.
  if (GetFileType(file.Get()) != FILE_TYPE_DISK) return Fail(ERROR_INVALID_NAME);
  return std::make_unique<WindowsFile>(std::move(file), access & GENERIC_WRITE);
}

bool WindowsFiles::CopyFileA(const std::string& from, const std::string& to, bool failIfExists) {
  if (!IsPath(from) || !IsPath(to)) return false;
  const OwnedHandle source(::CreateFileA(from.c_str(), GENERIC_READ, kShareAll, nullptr,
                                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  BY_HANDLE_FILE_INFORMATION known;
  if (!source || !GetFileInformationByHandle(source.Get(), &known)) return Fail();
  const DWORD old = ::GetFileAttributesA(to.c_str());
  const bool replaces = old != INVALID_FILE_ATTRIBUTES;
  if (replaces) {
    if (failIfExists) return Fail(ERROR_FILE_EXISTS);
    if (old & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY))
      return Fail(ERROR_ACCESS_DENIED);
    // Replacing a file needs no right to write it, but a copy over it does.
    if (!Look(to, GENERIC_WRITE)) return Fail();
  }
  const std::string copy = CopyInto(FolderOfPath(to), source.Get());
  if (copy.empty()) return false;
  if (PutInPlace(copy, to, replaces, known.dwFileAttributes)) return true;
  ::SetFileAttributesA(copy.c_str(), FILE_ATTRIBUTE_NORMAL);
  ::DeleteFileA(copy.c_str());
  return false;
}

bool WindowsFiles::DeleteFileA(const std::string& path) {
  return IsPath(path) && (::DeleteFileA(path.c_str()) || Fail());
}

std::uint32_t WindowsFiles::GetFileAttributesA(const std::string& path) {
  if (!IsPath(path)) return INVALID_FILE_ATTRIBUTES;
  const DWORD system = ::GetFileAttributesA(path.c_str());
  if (system == INVALID_FILE_ATTRIBUTES) {
    Fail();
    return INVALID_FILE_ATTRIBUTES;
  }
  const std::uint32_t attributes = AttributesOf(system);
  const bool isClosed = (attributes & FILE_ATTRIBUTE_DIRECTORY) && !MayMakeFiles(path);
  return isClosed ? attributes | FILE_ATTRIBUTE_READONLY : attributes;
}

bool WindowsFiles::SetFileAttributesA(const std::string& path, std::uint32_t attributes) {
  if (!IsPath(path)) return false;
  const DWORD now = ::GetFileAttributesA(path.c_str());
  if (now == INVALID_FILE_ATTRIBUTES) return Fail();
  const DWORD wanted =
      (now & ~DWORD{FILE_ATTRIBUTE_READONLY}) | (attributes & FILE_ATTRIBUTE_READONLY);
  // Nothing to do is no failure, on somebody else's file either.
  return wanted == now || ::SetFileAttributesA(path.c_str(), wanted) || Fail();
}

bool WindowsFiles::CreateDirectoryA(const std::string& path) {
  return IsPath(path) && (::CreateDirectoryA(path.c_str(), nullptr) || Fail());
}

std::unique_ptr<FileSearch> WindowsFiles::FindFirstFileA(const std::string& pattern,
                                                         FindData* data) {
  if (!IsPath(pattern)) return nullptr;
  auto search = std::make_unique<WindowsSearch>(pattern);
  if (!search->FindFirst(data)) return nullptr;
  return search;
}

std::string WindowsFiles::GetCurrentDirectoryA() {
  return TextOfAnyLength(
      [](char* buffer, DWORD room) { return ::GetCurrentDirectoryA(room, buffer); });
}

bool WindowsFiles::SetCurrentDirectoryA(const std::string& path) {
  return IsPath(path) && (::SetCurrentDirectoryA(path.c_str()) || Fail());
}

std::string WindowsFiles::GetModuleFileNameA() {
  return TextOfAnyLength(
      [](char* buffer, DWORD room) { return ::GetModuleFileNameA(nullptr, buffer, room); });
}

std::uint32_t WindowsFiles::GetLogicalDrives() { return ::GetLogicalDrives(); }

std::uint32_t WindowsFiles::GetLastError() { return lastError; }

}  // namespace platform
