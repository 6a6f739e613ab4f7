#include "rendlink/program/windows/output.h"

#include "app/platform/windows/owned_handle.h"
#include "app/platform/windows/ui/text.h"

namespace kelvaro::rendlink {
namespace {

bool Write(HANDLE stream, const std::string& text) {
  DWORD mode = 0;
  DWORD written = 0;
  if (!GetConsoleMode(stream, &mode))
    return WriteFile(stream, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
  const std::wstring wide = platform::ui::Wide(text);
  return WriteConsoleW(stream, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
}

bool WriteToConsole(const std::string& text) {
  if (!AttachConsole(ATTACH_PARENT_PROCESS)) return false;
  const platform::OwnedHandle console(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
                                                  FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                                  OPEN_EXISTING, 0, nullptr));
  const bool written = console && Write(console.Get(), text);
  FreeConsole();
  return written;
}

void Say(DWORD which, const std::string& text, std::uint32_t box) {
  if (text.empty()) return;
  const HANDLE stream = StandardStream(which);
  if (stream ? Write(stream, text) : WriteToConsole("\n" + text)) return;
  platform::desktop().MessageBoxA(platform::kNoWindow, text, "Rendlink", box);
}

}  // namespace

HANDLE StandardStream(DWORD which) {
  const HANDLE stream = GetStdHandle(which);
  const bool is =
      stream && stream != INVALID_HANDLE_VALUE && GetFileType(stream) != FILE_TYPE_UNKNOWN;
  return is ? stream : nullptr;
}

void Say(const std::string& out, const std::string& err) {
  Say(STD_OUTPUT_HANDLE, out, MB_OK);
  Say(STD_ERROR_HANDLE, err, MB_ICONEXCLAMATION);
}

}  // namespace kelvaro::rendlink
