#include "desktop_fixture.h"

#include <deque>

#include "app/platform/windows/ui/text.h"
#include "app/platform/windows/ui/windows_ui.h"
#include "app/platform/windows/windows_platform.h"
#include "tests/windows/hands.h"

namespace platform {
namespace {

using ui::SystemWindow;

std::deque<std::function<void()>> acts;

void CALLBACK DoNext(HWND, UINT, UINT_PTR timer, DWORD) {
  ::KillTimer(nullptr, timer);
  const std::function<void()> act = std::move(acts.front());
  acts.pop_front();
  act();
}

// The class of the system's boxes.
BOOL CALLBACK KeepBox(HWND window, LPARAM found) {
  wchar_t name[16] = {};
  GetClassNameW(window, name, static_cast<int>(std::size(name)));
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process != GetCurrentProcessId() || std::wstring_view(name) != L"#32770" ||
      !IsWindowVisible(window))
    return TRUE;
  *reinterpret_cast<HWND*>(found) = window;
  return FALSE;
}

HWND BoxThatIsUp() {
  HWND box = nullptr;
  EnumWindows(&KeepBox, reinterpret_cast<LPARAM>(&box));
  return box;
}

std::string TextOf(HWND window) {
  std::wstring text(1024, L'\0');
  text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), 1024)));
  return ui::Bytes(text);
}

}  // namespace

struct DesktopTest::Machine {
  Machine() : groups(system.Groups()) {
    ui.AddTo(&groups);
    installed = std::make_unique<InstalledPlatform>(groups);
  }

  WindowsPlatform system;
  ui::WindowsUi ui;
  Platform groups;
  std::unique_ptr<InstalledPlatform> installed;
};

DesktopTest::DesktopTest() : machine(std::make_unique<Machine>()) { acts.clear(); }
DesktopTest::~DesktopTest() = default;

std::int32_t DesktopTest::Run(const DialogTemplate& dialog, std::function<void()> script,
                              WindowHandle owner) {
  Later([this, script = std::move(script)] {
    const WindowHandle window = recorder.window;
    EXPECT_TRUE(WaitFor([&] { return GetActiveWindow() == SystemWindow(window) || Box(); }));
    recorder.lines.clear();
    script();
    desktop().EndDialog(window, IDOK);
  });
  return desktop().RunDialog(dialog, owner, recorder);
}

void DesktopTest::Click(std::uint32_t id) {
  Rect place;
  ASSERT_TRUE(controls().GetControlRect(Window(), id, &place));
  ClickAt(id, {place.Width() / 2, place.Height() / 2});
}

// Posted to the window that the pointer would find there.
void DesktopTest::ClickAt(std::uint32_t id, Point inside) {
  const HWND window = SystemWindow(Window());
  const HWND control = GetDlgItem(window, static_cast<int>(id));
  if (!IsWindowEnabled(window) || !IsWindowEnabled(control) || !IsWindowVisible(control)) return;
  const LPARAM at = MAKELPARAM(inside.x, inside.y);
  PostMessageW(control, WM_LBUTTONDOWN, MK_LBUTTON, at);
  PostMessageW(control, WM_LBUTTONUP, 0, at);
  Settle();
}

void DesktopTest::Key(std::uint8_t vk, unsigned held) {
  constexpr struct {
    unsigned flag;
    std::uint8_t vk;
  } kHeld[] = {{kShift, VK_SHIFT}, {kControl, VK_CONTROL}, {kAlt, VK_MENU}};
  for (const auto& row : kHeld)
    if (held & row.flag) kelvaro::tests::SendKey(row.vk, 0);
  kelvaro::tests::SendKey(vk, 0);
  kelvaro::tests::SendKey(vk, KEYEVENTF_KEYUP);
  for (const auto& row : kHeld)
    if (held & row.flag) kelvaro::tests::SendKey(row.vk, KEYEVENTF_KEYUP);
  Settle();
}

void DesktopTest::Type(const std::string& ascii) {
  kelvaro::tests::TypeText(ascii);
  Settle();
}

void DesktopTest::PressCloseBox() {
  PostMessageW(SystemWindow(Window()), WM_SYSCOMMAND, SC_CLOSE, 0);
  Settle();
}

void DesktopTest::PressMinimiseBox() {
  PostMessageW(SystemWindow(Window()), WM_SYSCOMMAND, SC_MINIMIZE, 0);
  Settle();
}

void DesktopTest::PressMaximiseBox() {
  PostMessageW(SystemWindow(Window()), WM_SYSCOMMAND, SC_MAXIMIZE, 0);
  Settle();
}

std::optional<SeenBox> DesktopTest::Box() const {
  const HWND box = BoxThatIsUp();
  if (!box) return std::nullopt;
  constexpr int kTextOfBox = 0xFFFF;
  return SeenBox{TextOf(GetDlgItem(box, kTextOfBox)), TextOf(box)};
}

void DesktopTest::Answer(std::int32_t button) {
  const HWND box = BoxThatIsUp();
  // One with a single button calls it so whatever it is.
  const HWND pressed = GetDlgItem(box, button);
  PostMessageW(pressed ? pressed : GetDlgItem(box, IDCANCEL), BM_CLICK, 0, 0);
}

bool DesktopTest::IsSeen(std::uint32_t id) const {
  return IsWindowVisible(GetDlgItem(SystemWindow(Window()), static_cast<int>(id)));
}

void DesktopTest::Later(std::function<void()> act) {
  acts.push_back(std::move(act));
  ::SetTimer(nullptr, 0, USER_TIMER_MINIMUM, &DoNext);
}

void DesktopTest::Settle() {
  // A menu takes its keys itself.
  GUITHREADINFO info = {};
  info.cbSize = sizeof info;
  if (GetGUIThreadInfo(GetCurrentThreadId(), &info) && (info.flags & GUI_INMENUMODE)) return;
  const DWORD start = GetTickCount();
  do {
    MSG message = {};
    // Another thread may post all the time.
    while (GetTickCount() - start < 1000 && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
      machine->ui.Desktop().Dispatch(message);
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT);
  } while (GetTickCount() - start < 30);
}

bool DesktopTest::WaitFor(const std::function<bool()>& condition) {
  const DWORD start = GetTickCount();
  while (!condition()) {
    if (GetTickCount() - start > 10000) return false;
    Settle();
  }
  return true;
}

}  // namespace platform
