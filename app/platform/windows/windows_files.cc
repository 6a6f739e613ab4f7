#include "app/platform/windows/windows_files.h"

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

#include "app/platform/file_pattern.h"
#include "app/platform/windows/last_error.h"
#include "app/platform/windows/owned_handle.h"
#include "app/platform/windows/wide_text.h"

namespace platform {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Of operations that give a text into a buffer and tell its length, or the room that it needs.
std::wstring TextOfAnyLength(const std::function<DWORD(wchar_t* buffer, DWORD room)>& get) {
  std::vector<wchar_t> buffer(MAX_PATH);
  for (;;) {
    const auto room = static_cast<DWORD>(buffer.size());
    const DWORD length = get(buffer.data(), room);
    if (length == 0) return Fail();
    if (length < room) return {buffer.data(), length};
    buffer.resize(std::max<std::size_t>(length, 2 * buffer.size()));
  }
}

// A path as the system takes it, of any length. Empty, with the error set, for one that it would
// see cut short, and for one that is a device's, as "CON.txt" is in each folder.
std::wstring SystemPath(const std::string& path) {
  if (path.empty()) return Fail(ERROR_PATH_NOT_FOUND);
  if (HasZeroByte(path)) return Fail(ERROR_INVALID_NAME);
  const std::wstring wide = Utf16Of(path);
  const std::wstring whole = TextOfAnyLength([&wide](wchar_t* buffer, DWORD room) {
    return GetFullPathNameW(wide.c_str(), room, buffer, nullptr);
  });
  if (whole.starts_with(L"\\\\.\\")) return Fail(ERROR_INVALID_NAME);
  constexpr std::size_t kLongest = MAX_PATH - 12;  // of a folder, which is to hold names as of old
  if (whole.size() < kLongest || whole.starts_with(L"\\\\?\\")) return whole;
  return whole.starts_with(L"\\\\") ? L"\\\\?\\UNC" + whole.substr(1) : L"\\\\?\\" + whole;
}

// Opens a file to read its data or what is known of it, without shutting out anybody.
OwnedHandle Look(const std::wstring& path, DWORD access) {
  return OwnedHandle(::CreateFileW(path.c_str(), access, kShareAll, nullptr, OPEN_EXISTING,
                                   FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

// Whether this program may make a file in that folder. Asks, and makes none.
bool MayMakeFiles(const std::wstring& folder) {
  return static_cast<bool>(Look(folder, FILE_ADD_FILE));
}

// Makes the names in the folder of `path` lasting. Not every file system can, and that is no
// failure.
void FlushFolderOf(const std::wstring& path) {
  const OwnedHandle folder = Look(path.substr(0, path.rfind(L'\\') + 1), FILE_ADD_FILE);
  if (folder) FlushFileBuffers(folder.Get());
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

void Describe(const std::wstring& folder, const WIN32_FIND_DATAW& found, FindData* data) {
  data->name = Utf8Of(found.cFileName);
  Describe(found, data);
  if (!(found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)) return;
  BY_HANDLE_FILE_INFORMATION target;
  const OwnedHandle file = Look(folder + found.cFileName, FILE_READ_ATTRIBUTES);
  if (file && GetFileInformationByHandle(file.Get(), &target)) Describe(target, data);
  data->attributes = (data->attributes & ~FILE_ATTRIBUTE_NORMAL) | FILE_ATTRIBUTE_REPARSE_POINT;
}

class WindowsSearch final : public FileSearch {
 public:
  // `folder` with its separator.
  WindowsSearch(std::wstring folder, std::string pattern)
      : folder(std::move(folder)), pattern(std::move(pattern)) {}
  WindowsSearch(const WindowsSearch&) = delete;
  WindowsSearch& operator=(const WindowsSearch&) = delete;
  ~WindowsSearch() override {
    if (search != INVALID_HANDLE_VALUE) FindClose(search);
  }

  bool FindFirst(FindData* data) {
    const bool isName = !HasWildcards(pattern);
    WIN32_FIND_DATAW found;
    search = ::FindFirstFileW((folder + (isName ? Utf16Of(pattern) : L"*")).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return Fail();
    if (isName || FitsPattern(Utf8Of(found.cFileName), pattern)) {
      Describe(folder, found, data);
      return true;
    }
    return FindNextFileA(data);
  }

  bool FindNextFileA(FindData* data) override {
    WIN32_FIND_DATAW found;
    while (::FindNextFileW(search, &found)) {
      if (!FitsPattern(Utf8Of(found.cFileName), pattern)) continue;
      Describe(folder, found, data);
      return true;
    }
    return Fail();
  }

 private:
  const std::wstring folder;
  const std::string pattern;
  HANDLE search = INVALID_HANDLE_VALUE;
};

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

// An empty file of a name that no other has; an empty path on failure.
OwnedHandle MakeFileIn(const std::wstring& folder, std::wstring* path) {
  constexpr int kTries = 10'000;
  for (int i = 0; i < kTries; ++i) {
    *path = folder + L"kel" + std::to_wstring(GetCurrentProcessId() + i) + L".tmp";
    OwnedHandle made(::CreateFileW(path->c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                   FILE_ATTRIBUTE_NORMAL, nullptr));
    if (made) return made;
    if (::GetLastError() != ERROR_FILE_EXISTS) break;
  }
  Fail();
  path->clear();
  return OwnedHandle();
}

// A new file with the content of `source`, on the disk. Empty on failure.
std::wstring CopyInto(const std::wstring& folder, HANDLE source) {
  std::wstring path;
  OwnedHandle copy = MakeFileIn(folder, &path);
  if (!copy) return {};
  bool good = CopyBytes(source, copy.Get());
  if (good) good = FlushFileBuffers(copy.Get()) || Fail();
  if (!copy.Close() && good) good = Fail();
  if (good) return path;
  ::DeleteFileW(path.c_str());
  return {};
}

// Puts the file `copy` in the place of `target`, which keeps what is its own, or there anew with
// the attributes of the source.
bool PutInPlace(const std::wstring& copy, const std::wstring& target, bool replaces,
                DWORD attributes) {
  if (replaces)
    return ReplaceFileW(target.c_str(), copy.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS,
                        nullptr, nullptr) ||
           Fail();
  return (::SetFileAttributesW(copy.c_str(), attributes) &&
          MoveFileExW(copy.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH)) ||
         Fail();
}

}  // namespace

std::unique_ptr<File> WindowsFiles::CreateFileA(const std::string& path, std::uint32_t access,
                                                std::uint32_t share, std::uint32_t disposition) {
  const std::wstring system = SystemPath(path);
  if (system.empty()) return nullptr;
  // Wine lets root write such a file.
  const DWORD now = ::GetFileAttributesW(system.c_str());
  if ((access & GENERIC_WRITE) && now != INVALID_FILE_ATTRIBUTES && (now & FILE_ATTRIBUTE_READONLY))
    return Fail(ERROR_ACCESS_DENIED);
  // Whoever shares writing reads beside any writer, and holds up no replacing.
  DWORD shared = share | FILE_SHARE_READ;
  if (share & FILE_SHARE_WRITE) shared |= FILE_SHARE_DELETE;
  OwnedHandle file(::CreateFileW(system.c_str(), access, shared, nullptr, disposition,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return Fail();
  if (GetFileType(file.Get()) != FILE_TYPE_DISK) return Fail(ERROR_INVALID_NAME);
  return std::make_unique<WindowsFile>(std::move(file), access & GENERIC_WRITE);
}

bool WindowsFiles::CopyFileA(const std::string& from, const std::string& to, bool failIfExists) {
  const std::wstring old = SystemPath(from);
  const std::wstring target = old.empty() ? std::wstring() : SystemPath(to);
  if (target.empty()) return false;
  const OwnedHandle source(::CreateFileW(old.c_str(), GENERIC_READ, kShareAll, nullptr,
                                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  BY_HANDLE_FILE_INFORMATION known;
  if (!source || !GetFileInformationByHandle(source.Get(), &known)) return Fail();
  const DWORD attributes = ::GetFileAttributesW(target.c_str());
  const bool replaces = attributes != INVALID_FILE_ATTRIBUTES;
  if (replaces) {
    if (failIfExists) return Fail(ERROR_FILE_EXISTS);
    if (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY))
      return Fail(ERROR_ACCESS_DENIED);
    // Replacing a file needs no right to write it, but a copy over it does.
    if (!Look(target, GENERIC_WRITE)) return Fail();
  }
  const std::wstring copy = CopyInto(target.substr(0, target.rfind(L'\\') + 1), source.Get());
  if (copy.empty()) return false;
  if (PutInPlace(copy, target, replaces, known.dwFileAttributes)) {
    FlushFolderOf(target);
    return true;
  }
  ::SetFileAttributesW(copy.c_str(), FILE_ATTRIBUTE_NORMAL);
  ::DeleteFileW(copy.c_str());
  return false;
}

bool WindowsFiles::DeleteFileA(const std::string& path) {
  const std::wstring system = SystemPath(path);
  if (system.empty()) return false;
  if (!::DeleteFileW(system.c_str())) return Fail();
  FlushFolderOf(system);
  return true;
}

std::uint32_t WindowsFiles::GetFileAttributesA(const std::string& path) {
  const std::wstring system = SystemPath(path);
  if (system.empty()) return INVALID_FILE_ATTRIBUTES;
  const DWORD known = ::GetFileAttributesW(system.c_str());
  if (known == INVALID_FILE_ATTRIBUTES) {
    Fail();
    return INVALID_FILE_ATTRIBUTES;
  }
  const std::uint32_t attributes = AttributesOf(known);
  const bool isClosed = (attributes & FILE_ATTRIBUTE_DIRECTORY) && !MayMakeFiles(system);
  return isClosed ? attributes | FILE_ATTRIBUTE_READONLY : attributes;
}

bool WindowsFiles::SetFileAttributesA(const std::string& path, std::uint32_t attributes) {
  const std::wstring system = SystemPath(path);
  if (system.empty()) return false;
  const DWORD now = ::GetFileAttributesW(system.c_str());
  if (now == INVALID_FILE_ATTRIBUTES) return Fail();
  const DWORD wanted =
      (now & ~DWORD{FILE_ATTRIBUTE_READONLY}) | (attributes & FILE_ATTRIBUTE_READONLY);
  // Nothing to do is no failure, on somebody else's file either.
  return wanted == now || ::SetFileAttributesW(system.c_str(), wanted) || Fail();
}

bool WindowsFiles::CreateDirectoryA(const std::string& path) {
  const std::wstring system = SystemPath(path);
  return !system.empty() && (::CreateDirectoryW(system.c_str(), nullptr) || Fail());
}

std::unique_ptr<FileSearch> WindowsFiles::FindFirstFileA(const std::string& pattern,
                                                         FindData* data) {
  const std::size_t name = pattern.find_last_of("\\/:") + 1;
  if (HasZeroByte(pattern)) return Fail(ERROR_INVALID_NAME);
  if (name == pattern.size()) return Fail(ERROR_FILE_NOT_FOUND);
  std::wstring folder = SystemPath(name == 0 ? "." : pattern.substr(0, name));
  if (folder.empty()) return nullptr;
  if (folder.back() != L'\\') folder += L'\\';
  auto search = std::make_unique<WindowsSearch>(folder, pattern.substr(name));
  if (!search->FindFirst(data)) return nullptr;
  return search;
}

std::string WindowsFiles::GetCurrentDirectoryA() {
  return Utf8Of(TextOfAnyLength(
      [](wchar_t* buffer, DWORD room) { return ::GetCurrentDirectoryW(room, buffer); }));
}

// The system's limit for a current folder stands.
bool WindowsFiles::SetCurrentDirectoryA(const std::string& path) {
  if (HasZeroByte(path)) return Fail(ERROR_INVALID_NAME);
  return ::SetCurrentDirectoryW(Utf16Of(path).c_str()) || Fail();
}

std::string WindowsFiles::GetModuleFileNameA() {
  return Utf8Of(TextOfAnyLength(
      [](wchar_t* buffer, DWORD room) { return ::GetModuleFileNameW(nullptr, buffer, room); }));
}

std::uint32_t WindowsFiles::GetLogicalDrives() { return ::GetLogicalDrives(); }

std::uint32_t WindowsFiles::GetLastError() { return lastError; }

}  // namespace platform
