#include "read_shortcut.h"

#include <fstream>
#include <iterator>

#include "app/platform/windows/owned_interface.h"
#include "app/platform/windows/ui/text.h"

// Last.
#include <shlobj.h>

namespace kelvaro::rendlink {
namespace {

using platform::Owned;
using platform::ui::Bytes;
using platform::ui::Wide;

template <typename Interface>
Owned<Interface> Other(IShellLinkW& link, REFIID which) {
  void* found = nullptr;
  link.QueryInterface(which, &found);
  return Owned<Interface>(static_cast<Interface*>(found));
}

// Of a file whose path is longer than the shell's own operations take.
bool LoadBytes(IShellLinkW& link, const std::wstring& path) {
  std::ifstream file(("\\\\?\\" + Bytes(path)).c_str(), std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  IStream* made = nullptr;
  CreateStreamOnHGlobal(nullptr, TRUE, &made);
  const Owned<IStream> stream(made);
  ULONG written = 0;
  stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written);
  stream->Seek({}, STREAM_SEEK_SET, nullptr);
  return SUCCEEDED(Other<IPersistStream>(link, IID_IPersistStream)->Load(stream.get()));
}

bool Load(IShellLinkW& link, const std::wstring& path) {
  if (path.size() >= MAX_PATH) return LoadBytes(link, path);
  return SUCCEEDED(Other<IPersistFile>(link, IID_IPersistFile)->Load(path.c_str(), STGM_READ));
}

}  // namespace

std::optional<Shortcut> ReadShortcut(const std::string& path) {
  void* made = nullptr;
  if (FAILED(
          CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW, &made)))
    return std::nullopt;
  const Owned<IShellLinkW> link(static_cast<IShellLinkW*>(made));
  if (!Load(*link, Wide(path))) return std::nullopt;
  Shortcut held;
  std::wstring text(40'000, L'\0');
  const int room = static_cast<int>(text.size());
  int number = -1;
  if (SUCCEEDED(link->GetPath(text.data(), room, nullptr, SLGP_RAWPATH)))
    held.program = Bytes(text.c_str());
  if (SUCCEEDED(link->GetArguments(text.data(), room))) held.arguments = Bytes(text.c_str());
  if (SUCCEEDED(link->GetDescription(text.data(), room))) held.comment = Bytes(text.c_str());
  if (SUCCEEDED(link->GetIconLocation(text.data(), room, &number)) && number == 0)
    held.icon = Bytes(text.c_str());
  return held;
}

}  // namespace kelvaro::rendlink
