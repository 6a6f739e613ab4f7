#include "rendlink/program/windows/shell_shortcuts.h"

#include "app/platform/windows/owned_interface.h"
#include "app/platform/windows/ui/text.h"
#include "rendlink/files.h"

// Last.
#include <shlobj.h>

namespace kelvaro::rendlink {
namespace {

using platform::Owned;
using platform::ui::Wide;

// Fails where a step before has failed.
class Steps {
 public:
  bool Take(::HRESULT result) {
    if (SUCCEEDED(last)) last = result;
    return SUCCEEDED(last);
  }
  std::string Error() const {
    const auto number = static_cast<std::uint32_t>(last);
    return ErrorText(HRESULT_FACILITY(last) == FACILITY_WIN32 ? HRESULT_CODE(number) : number);
  }

 private:
  ::HRESULT last = S_OK;
};

Owned<IShellLinkW> NewLink(Steps* steps) {
  void* made = nullptr;
  steps->Take(
      CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW, &made));
  return Owned<IShellLinkW>(static_cast<IShellLinkW*>(made));
}

// Whether all of the arguments went into it.
::HRESULT Holds(IShellLinkW& link, const std::wstring& arguments) {
  std::wstring held(arguments.size() + 2, L'\0');
  const ::HRESULT result = link.GetArguments(held.data(), static_cast<int>(held.size()));
  if (FAILED(result)) return result;
  return held.c_str() == arguments ? S_OK : HRESULT_FROM_WIN32(ERROR_BUFFER_OVERFLOW);
}

bool Fill(IShellLinkW& link, const Shortcut& shortcut, Steps* steps) {
  const std::wstring arguments = Wide(shortcut.arguments);
  return steps->Take(link.SetPath(Wide(shortcut.program).c_str())) &&
         steps->Take(link.SetArguments(arguments.c_str())) && steps->Take(Holds(link, arguments)) &&
         steps->Take(link.SetDescription(Wide(shortcut.comment).c_str())) &&
         steps->Take(link.SetIconLocation(Wide(shortcut.icon).c_str(), 0));
}

// All bytes that it would write into its file.
bool Save(IShellLinkW& link, std::string* bytes, Steps* steps) {
  void* made = nullptr;
  steps->Take(link.QueryInterface(IID_IPersistStream, &made));
  const Owned<IPersistStream> saved(static_cast<IPersistStream*>(made));
  IStream* memory = nullptr;
  steps->Take(CreateStreamOnHGlobal(nullptr, TRUE, &memory));
  const Owned<IStream> stream(memory);
  STATSTG facts = {};
  if (!saved || !stream || !steps->Take(saved->Save(stream.get(), TRUE)) ||
      !steps->Take(stream->Stat(&facts, STATFLAG_NONAME)) ||
      !steps->Take(stream->Seek({}, STREAM_SEEK_SET, nullptr)))
    return false;
  bytes->resize(facts.cbSize.LowPart);
  ULONG read = 0;
  return steps->Take(stream->Read(bytes->data(), facts.cbSize.LowPart, &read)) &&
         steps->Take(read == facts.cbSize.LowPart ? S_OK : E_FAIL);
}

}  // namespace

// The shell's own file operations know no path of any length, so that its bytes are asked for.
bool ShellShortcuts::Make(const Shortcut& shortcut, std::string* bytes, std::string* error) {
  Steps steps;
  const Owned<IShellLinkW> link = NewLink(&steps);
  if (link && Fill(*link, shortcut, &steps) && Save(*link, bytes, &steps)) return true;
  *error = steps.Error();
  return false;
}

}  // namespace kelvaro::rendlink
