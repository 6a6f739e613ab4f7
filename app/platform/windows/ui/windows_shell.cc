#include "app/platform/windows/ui/windows_shell.h"

#include "app/platform/windows/owned_interface.h"
#include "app/platform/windows/ui/text.h"

// Last.
#include <shlobj.h>
#include <shobjidl.h>

namespace platform::ui {
namespace {

Owned<IShellItem> ItemOf(const std::wstring& path) {
  IShellItem* item = nullptr;
  if (path.empty() || FAILED(SHCreateItemFromParsingName(path.c_str(), nullptr, IID_IShellItem,
                                                         reinterpret_cast<void**>(&item))))
    return nullptr;
  return Owned<IShellItem>(item);
}

// In the suggested folder, or that of the suggested file with its name.
void Suggest(IFileDialog& dialog, const std::string& suggested) {
  const std::wstring path = Wide(suggested);
  const DWORD found = GetFileAttributesW(path.c_str());
  if (found != INVALID_FILE_ATTRIBUTES && (found & FILE_ATTRIBUTE_DIRECTORY)) {
    if (const Owned<IShellItem> folder = ItemOf(path)) dialog.SetFolder(folder.get());
    return;
  }
  const std::size_t slash = path.find_last_of(L"\\/");
  if (slash != std::wstring::npos)
    if (const Owned<IShellItem> folder = ItemOf(path.substr(0, slash)))
      dialog.SetFolder(folder.get());
  const std::wstring name = slash == std::wstring::npos ? path : path.substr(slash + 1);
  if (!name.empty()) dialog.SetFileName(name.c_str());
}

bool Choose(WindowsDesktop& desktop, WindowHandle owner, IFileDialog& dialog,
            const std::string& title, const std::string& suggested, std::string* path) {
  dialog.SetTitle(Wide(title).c_str());
  Suggest(dialog, suggested);
  const std::int32_t result = desktop.InFrontOf(
      owner, [&](HWND before) { return static_cast<std::int32_t>(dialog.Show(before)); });
  IShellItem* chosen = nullptr;
  if (FAILED(result) || FAILED(dialog.GetResult(&chosen))) return false;
  const Owned<IShellItem> item(chosen);
  wchar_t* name = nullptr;
  if (FAILED(item->GetDisplayName(SIGDN_FILESYSPATH, &name))) return false;
  *path = Bytes(name);
  CoTaskMemFree(name);
  return true;
}

Owned<IFileDialog> MakeDialog(bool forSaving, DWORD options) {
  IFileDialog* dialog = nullptr;
  if (FAILED(CoCreateInstance(forSaving ? CLSID_FileSaveDialog : CLSID_FileOpenDialog, nullptr,
                              CLSCTX_INPROC_SERVER, IID_IFileDialog,
                              reinterpret_cast<void**>(&dialog))))
    return nullptr;
  dialog->SetOptions(options);
  return Owned<IFileDialog>(dialog);
}

}  // namespace

std::intptr_t WindowsShell::ShellExecuteA(const std::string& target) {
  return reinterpret_cast<std::intptr_t>(
      ShellExecuteW(nullptr, L"open", Wide(target).c_str(), nullptr, nullptr, SW_SHOWNORMAL));
}

bool WindowsShell::MessageBeep(std::uint32_t type) { return ::MessageBeep(type); }

LibraryHandle WindowsShell::LoadLibraryA(const std::string& name) {
  return reinterpret_cast<LibraryHandle>(LoadLibraryW(Wide(name).c_str()));
}

HtmlHelpFunction WindowsShell::GetHelpFunction(LibraryHandle library, std::uint32_t ordinal) {
  return reinterpret_cast<HtmlHelpFunction>(reinterpret_cast<void*>(GetProcAddress(
      reinterpret_cast<HMODULE>(library), reinterpret_cast<const char*>(std::uintptr_t{ordinal}))));
}

std::string WindowsShell::GetCommandLineA(char) { return Bytes(GetCommandLineW()); }

bool WindowsShell::ChooseFile(WindowHandle owner, const std::string& title, bool forSaving,
                              const std::string& suggested, std::string* path) {
  // A shortcut that is saved is itself the file; one that is opened stands for its target.
  const DWORD purpose =
      forSaving ? FOS_OVERWRITEPROMPT | FOS_NODEREFERENCELINKS : FOS_FILEMUSTEXIST;
  const DWORD options = FOS_FORCEFILESYSTEM | FOS_NOCHANGEDIR | purpose;
  const Owned<IFileDialog> dialog = MakeDialog(forSaving, options);
  return dialog && Choose(desktop, owner, *dialog, title, suggested, path);
}

bool WindowsShell::ChooseFolder(WindowHandle owner, const std::string& title,
                                const std::string& suggested, std::string* path) {
  const Owned<IFileDialog> dialog =
      MakeDialog(false, FOS_FORCEFILESYSTEM | FOS_NOCHANGEDIR | FOS_PICKFOLDERS);
  return dialog && Choose(desktop, owner, *dialog, title, suggested, path);
}

}  // namespace platform::ui
