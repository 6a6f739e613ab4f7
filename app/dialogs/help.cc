#include "app/dialogs/help.h"

#include <optional>

#include "app/layout/dialog.h"
#include "foundation/paths.h"
#include "foundation/registry_key.h"

namespace kelvaro {

namespace {

// The default value of this key is the path of the program that shows help. A path has at most this
// many bytes, with its terminator.
constexpr char kHelpKey[] = "CLSID\\{ADB880A6-D8FF-11CF-9377-00AA003B7A11}\\InprocServer32";
constexpr std::uint32_t kPathBufferSize = 260;
constexpr char kHelpLibrary[] = "hhctrl.ocx";
constexpr std::uint32_t kHelpOrdinal = 14;

// As the first look has found it, null for nothing.
std::optional<platform::HtmlHelpFunction> help;

platform::LibraryHandle LoadHelpLibrary() {
  platform::LibraryHandle library = 0;
  RegistryKey key(platform::HKEY_CLASSES_ROOT, kHelpKey, false);
  ByteString path;
  if (key.GetString(nullptr, "", &path) && !path.IsEmpty() && path.Length() < kPathBufferSize) {
    library = platform::shell().LoadLibraryA(Bytes(path));
  }
  return library ? library : platform::shell().LoadLibraryA(kHelpLibrary);
}

}  // namespace

std::uintptr_t HtmlHelp(platform::WindowHandle caller, const char* file, std::uint32_t command,
                        std::uintptr_t data) {
  if (!help) {
    const platform::LibraryHandle library = LoadHelpLibrary();
    help = library ? platform::shell().GetHelpFunction(library, kHelpOrdinal) : nullptr;
  }
  return *help ? (*help)(caller, file, command, data) : 0;
}

void ShowHelpTopic(const char* topic) {
  ByteString path = ProgramFolder();
  EnsureTrailingSeparator(&path);
  path.Append("Help");
  EnsureTrailingSeparator(&path);
  path.Append("Kelvaro.chm");
  HtmlHelp(platform::kNoWindow, path.Text(), platform::HH_DISPLAY_TOPIC,
           reinterpret_cast<std::uintptr_t>(topic));
}

void ForgetHelp() { help.reset(); }

}  // namespace kelvaro
