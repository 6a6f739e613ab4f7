#include "rendlink/program/windows/windows_session.h"

#include "app/platform/windows/ui/text.h"
#include "app/platform/windows/win32.h"
#include "rendlink/files.h"

// Last.
#include <shlobj.h>

namespace kelvaro::rendlink {
namespace {

using platform::ui::Bytes;
using platform::ui::Wide;

std::string Folder(REFKNOWNFOLDERID which) {
  wchar_t* found = nullptr;
  const bool is = SUCCEEDED(SHGetKnownFolderPath(which, KF_FLAG_DEFAULT, nullptr, &found));
  std::string path = is ? Bytes(found) : std::string();
  CoTaskMemFree(found);
  return path;
}

// Of operations that tell a text's length, or the room that it needs with its end.
template <typename Get>
std::string TextOf(Get get) {
  std::wstring text(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = get(static_cast<DWORD>(text.size()), text.data());
    if (length < text.size()) return Bytes(text.substr(0, length));
    text.resize(length);
  }
}

}  // namespace

std::string FindProgram(const std::string& typed) {
  return TextOf([name = Wide(typed)](DWORD room, wchar_t* buffer) {
    return SearchPathW(nullptr, name.c_str(), L".exe", room, buffer, nullptr);
  });
}

std::string WindowsSession::DesktopFolder() { return Folder(FOLDERID_Desktop); }

std::string WindowsSession::MenuFolder() { return Folder(FOLDERID_Programs); }

std::string WindowsSession::FullPath(const std::string& typed) {
  if (typed.empty()) return {};
  const std::string found = IsFile(typed) || IsFolder(typed) ? "" : FindProgram(typed);
  return TextOf([path = Wide(found.empty() ? typed : found)](DWORD room, wchar_t* buffer) {
    return GetFullPathNameW(path.c_str(), room, buffer, nullptr);
  });
}

}  // namespace kelvaro::rendlink
