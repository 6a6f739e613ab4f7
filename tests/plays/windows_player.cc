// A person before Windows' own windows, which run on a thread of their own: posts clicks, types
// keys and looks.
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <thread>

#include "app/window/main_window.h"
#include "tests/host/patience.h"
#include "tests/plays/play.h"

// Last.
#include "app/platform/windows/ui/text.h"
#include "app/platform/windows/ui/windows_ui.h"
#include "app/platform/windows/windows_platform.h"
#include "tests/windows/dinput8/pad_hands.h"
#include "tests/windows/hands.h"

namespace kelvaro::tests {
namespace {

using platform::ui::Ask;

constexpr char kProductKey[] = "Software\\Marnstone";
constexpr UINT kCall = WM_APP;

// Knows what is in front.
class WatchedDesktop final : public platform::ui::WindowsDesktop {
 public:
  std::int32_t RunDialog(const platform::DialogTemplate& dialog, platform::WindowHandle owner,
                         platform::WindowListener& listener) override {
    dialogs.push_back(&dialog);
    const std::int32_t result = WindowsDesktop::RunDialog(dialog, owner, listener);
    dialogs.pop_back();
    return result;
  }
  std::int32_t MessageBoxA(platform::WindowHandle owner, const std::string& text,
                           const std::string& caption, std::uint32_t type) override {
    boxes.push_back(BoxLine(caption, text));
    const std::int32_t answer = WindowsDesktop::MessageBoxA(owner, text, caption, type);
    boxes.pop_back();
    return answer;
  }

  // User interface's thread.
  std::vector<const platform::DialogTemplate*> dialogs;
  std::vector<std::string> boxes;
};

LRESULT CALLBACK OnCall(HWND window, UINT message, WPARAM w, LPARAM l) {
  if (message != kCall) return DefWindowProcW(window, message, w, l);
  (*reinterpret_cast<const std::function<void()>*>(l))();
  return 0;
}

HWND MakeCallWindow() {
  WNDCLASSW kind = {};
  kind.lpfnWndProc = &OnCall;
  kind.hInstance = GetModuleHandleW(nullptr);
  kind.lpszClassName = L"KelvaroPlayer";
  RegisterClassW(&kind);
  return CreateWindowExW(0, kind.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                         kind.hInstance, nullptr);
}

bool IsOf(HWND window, const wchar_t* name) {
  wchar_t own[32] = {};
  GetClassNameW(window, own, 32);
  return std::wstring_view(own) == name;
}

// The window that is used: the one of our dialogs, or a box, that is visible and enabled.
struct Sought {
  const wchar_t* kind;
  HWND found = nullptr;
};
BOOL CALLBACK KeepUsable(HWND window, LPARAM sought) {
  auto& wanted = *reinterpret_cast<Sought*>(sought);
  if (!IsOf(window, wanted.kind) || !IsWindowVisible(window) || !IsWindowEnabled(window))
    return TRUE;
  wanted.found = window;
  return FALSE;
}

// The dialog that no other stands before, usable or not.
BOOL CALLBACK KeepLast(HWND window, LPARAM last) {
  HWND& found = *reinterpret_cast<HWND*>(last);
  if (IsOf(window, L"KelvaroDialog") && (!found || GetWindow(window, GW_OWNER) == found))
    found = window;
  return TRUE;
}

HWND LastDialog() {
  HWND last = nullptr;
  // Once for each that stands behind: they come from the front to the back.
  for (HWND before = nullptr;; before = last) {
    EnumThreadWindows(GetCurrentThreadId(), &KeepLast, reinterpret_cast<LPARAM>(&last));
    if (last == before) return last;
  }
}

void ClickAt(HWND control, POINT at, UINT down = WM_LBUTTONDOWN) {
  const LPARAM where = MAKELPARAM(at.x, at.y);
  PostMessageW(control, down, MK_LBUTTON, where);
  PostMessageW(control, WM_LBUTTONUP, 0, where);
}

POINT MiddleOf(const RECT& place) {
  return {(place.left + place.right) / 2, (place.top + place.bottom) / 2};
}

// Only what the program itself keeps, beside this test's own file.
void ForgetAll() {
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  const auto profiles = std::filesystem::path(path).parent_path() / "Profiles";
  std::filesystem::remove_all(profiles);
  std::filesystem::create_directory(profiles);
  RegDeleteTreeA(HKEY_CURRENT_USER, kProductKey);
}

class WindowsPlayer final : public Player {
 public:
  WindowsPlayer();
  ~WindowsPlayer() override;

  void Do(const Act& act) override;
  Lines Await(const Sight& before, const Lines& expected) override;
  Sight Look() override;

 private:
  void Run();
  // On the user interface's thread, whatever loop it is in.
  void Call(const std::function<void()>& act) {
    SendMessageW(calls, kCall, 0, reinterpret_cast<LPARAM>(&act));
  }
  HWND Front() {
    Sought sought{L"KelvaroDialog"};
    EnumThreadWindows(thread, &KeepUsable, reinterpret_cast<LPARAM>(&sought));
    return sought.found;
  }
  HWND Reach(std::uint32_t id);
  void DoTo(HWND control, const Act& act);
  void Choose(HWND list, const std::string& row);
  void ClickRow(HWND list, int row, bool twice);
  void FocusOn(HWND control) { Ask(Front(), WM_NEXTDLGCTL, control, TRUE); }
  void Answer(int button);

  PadHands pad;
  WatchedDesktop* desktop = nullptr;
  HWND calls = nullptr;
  const HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  std::atomic<bool> ended = false;
  std::atomic<DWORD> thread = 0;  // the user interface's
  std::thread ui;
};

WindowsPlayer::WindowsPlayer() {
  ForgetAll();
  const DWORD shown = 1;
  RegSetKeyValueA(HKEY_CURRENT_USER, (std::string(kProductKey) + "\\Kelvaro").c_str(),
                  "Welcome Display", REG_DWORD, &shown, sizeof shown);
  ui = std::thread([this] { Run(); });
  WaitForSingleObject(ready, INFINITE);
  Eventually([this] { return Front() && GetForegroundWindow() == Front(); });
}

WindowsPlayer::~WindowsPlayer() {
  Eventually([this] {
    if (ended) return true;
    Answer(IDNO);
    if (const HWND front = Front()) PostMessageW(front, WM_SYSCOMMAND, SC_CLOSE, 0);
    return false;
  });
  ui.join();
  CloseHandle(ready);
  ForgetAll();
}

void WindowsPlayer::Run() {
  thread = GetCurrentThreadId();
  platform::WindowsPlatform system;
  platform::ui::WindowsUi prepared;
  WatchedDesktop own;
  platform::ui::WindowsControls controls(own.Windows());
  platform::ui::WindowsShell shell(own);
  platform::Platform groups = system.Groups();
  groups.desktop = &own;
  groups.controls = &controls;
  groups.shell = &shell;
  const platform::InstalledPlatform installed(groups);
  desktop = &own;
  calls = MakeCallWindow();
  SetEvent(ready);
  {
    MainWindow window;
    window.DoModal(platform::kNoWindow);
  }
  ended = true;
  DestroyWindow(calls);
}

HWND WindowsPlayer::Reach(std::uint32_t id) {
  Eventually([this] { return Front() != nullptr; });
  const HWND control = GetDlgItem(Front(), static_cast<int>(id));
  if (!control || !IsWindowVisible(control) || !IsWindowEnabled(control))
    throw std::logic_error("nobody can reach " + std::to_string(id));
  return control;
}

void WindowsPlayer::Do(const Act& act) {
  if (act.verb == "answer") return Answer(std::stoi(act.rest));
  if (act.verb == "key") return PressKey(static_cast<std::uint8_t>(std::stoi(act.rest)));
  if (act.verb == "press" || act.verb == "release")
    return pad.Button(static_cast<std::size_t>(std::stoi(act.rest) - 1), act.verb == "press");
  if (act.verb == "close") {
    PostMessageW(Front(), WM_SYSCOMMAND, SC_CLOSE, 0);
    return;
  }
  DoTo(Reach(act.control), act);
}

void WindowsPlayer::DoTo(HWND control, const Act& act) {
  RECT inside = {};
  GetClientRect(control, &inside);
  if (act.verb == "click" && IsOf(control, L"SysListView32"))
    return ClickAt(control, {2, inside.bottom - 2});
  if (act.verb == "click" && !IsOf(control, L"ComboBox"))
    return ClickAt(control, {std::min(8L, inside.right / 2), inside.bottom / 2});
  if (act.verb == "click" || act.verb == "focus") return FocusOn(control);
  if (act.verb == "choose") return Choose(control, act.rest);
  if (act.verb == "select" || act.verb == "double")
    return ClickRow(control, std::stoi(act.rest), act.verb == "double");
  if (act.verb == "tab") {
    RECT place = {};
    Ask(control, TCM_GETITEMRECT, std::stoi(act.rest), &place);
    return ClickAt(control, MiddleOf(place));
  }
  if (act.verb != "type") throw std::logic_error("no such act: " + act.verb);
  FocusOn(control);
  Ask(control, EM_SETSEL, 0, -1);
  if (act.rest.empty()) return PressKey(VK_DELETE);
  TypeText(act.rest);
}

// Unfolds it, and goes to the row by arrow keys.
void WindowsPlayer::Choose(HWND list, const std::string& row) {
  const std::wstring text = platform::ui::Wide(row);
  const auto place = static_cast<int>(Ask(list, CB_FINDSTRINGEXACT, -1, text.c_str()));
  if (place < 0) throw std::logic_error("no such row: " + row);
  FocusOn(list);
  Ask(list, CB_SHOWDROPDOWN, TRUE);
  PressKey(VK_HOME);
  for (int i = 0; i < place; ++i) PressKey(VK_DOWN);
  PressKey(VK_RETURN);
}

void WindowsPlayer::ClickRow(HWND list, int row, bool twice) {
  RECT place = {};
  GetClientRect(list, &place);
  POINT at = {5, place.bottom - 2};
  if (row >= 0) {
    place = {LVIR_LABEL, 0, 0, 0};
    if (!Ask(list, LVM_GETITEMRECT, row, &place)) throw std::logic_error("no such row");
    at.y = MiddleOf(place).y;
  }
  ClickAt(list, at);
  if (twice) ClickAt(list, at, WM_LBUTTONDBLCLK);
}

void WindowsPlayer::Answer(int button) {
  Sought box{L"#32770"};
  EnumThreadWindows(thread, &KeepUsable, reinterpret_cast<LPARAM>(&box));
  if (!box.found) return;
  // One with a single button calls it so whatever it is.
  const HWND pressed = GetDlgItem(box.found, button);
  PostMessageW(pressed ? pressed : GetDlgItem(box.found, IDCANCEL), BM_CLICK, 0, 0);
}

// Three times in a row, with nothing left to be done: an act may not have begun yet.
Lines WindowsPlayer::Await(const Sight& before, const Lines& expected) {
  constexpr int kLooks = 3;
  Lines seen;
  int looks = 0;
  Eventually([&] {
    DWORD waiting = 0;
    Call([&] { waiting = HIWORD(GetQueueStatus(QS_INPUT | QS_POSTMESSAGE)); });
    seen = Changes(before, Look());
    looks = seen == expected && waiting == 0 ? looks + 1 : 0;
    return looks == kLooks;
  });
  return seen;
}

Sight WindowsPlayer::Look() {
  Sight sight;
  Call([&] {
    // With its window gone the program may still be about to end.
    const HWND front = desktop->dialogs.empty() ? nullptr : LastDialog();
    if (front) {
      const auto id = static_cast<std::uint32_t>(LOWORD(Ask(front, DM_GETDEFID)));
      sight = SightOf(*desktop->dialogs.back(), platform::ui::SeamWindow(front), id);
    }
    if (!desktop->boxes.empty()) sight.box = desktop->boxes.back();
  });
  return sight;
}

}  // namespace

std::unique_ptr<Player> StartPlayer() { return std::make_unique<WindowsPlayer>(); }

}  // namespace kelvaro::tests
