#include "app/platform/windows/ui/windows_desktop.h"

#include <algorithm>
#include <utility>

#include "app/platform/windows/ui/text.h"

namespace platform::ui {
namespace {

// Of the process, as the hook's procedure takes no context.
WindowsDesktop* hookOwner = nullptr;

// How often other threads' boxes are looked for until they are gone.
constexpr DWORD kLookEvery = 10;  // ms

// In front of that window, where it is one.
BOOL CALLBACK CloseIfBox(HWND window, LPARAM behind) {
  wchar_t name[16] = {};
  GetClassNameW(window, name, static_cast<int>(std::size(name)));
  HWND owner = GetWindow(window, GW_OWNER);
  while (owner && behind && owner != reinterpret_cast<HWND>(behind))
    owner = GetWindow(owner, GW_OWNER);
  if (behind && !owner && GetWindow(window, GW_OWNER)) return TRUE;
  // The class of all boxes and dialogs of the system's own. Each takes Esc's command, shown or not.
  if (std::wstring_view(name) == L"#32770") PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
  return TRUE;
}

void CloseBoxesOf(DWORD thread, HWND behind = nullptr) {
  EnumThreadWindows(thread, &CloseIfBox, reinterpret_cast<LPARAM>(behind));
}

std::int32_t AnswerOf(int button, std::uint32_t type) {
  if (button == 0) return 0;
  if (type & MB_YESNO) return button == IDYES ? IDYES : IDNO;
  return IDOK;
}

int ShowBox(HWND owner, const std::string& text, const std::string& caption, std::uint32_t type) {
  // In front of no window it stands before all of this thread's.
  const UINT before = owner ? 0 : MB_TASKMODAL | MB_SETFOREGROUND;
  return MessageBoxW(owner, Wide(text).c_str(), Wide(caption).c_str(), type | before);
}

}  // namespace

class WindowsDesktop::InFront {
 public:
  InFront(WindowsDesktop& desktop, WindowHandle dialog) : desktop(desktop) {
    desktop.waiting.push_back(dialog);
    ++desktop.windows.asked;
  }
  ~InFront() { desktop.waiting.pop_back(); }
  InFront(const InFront&) = delete;
  InFront& operator=(const InFront&) = delete;

 private:
  WindowsDesktop& desktop;
};

WindowsDesktop::WindowsDesktop() = default;

WindowsDesktop::~WindowsDesktop() {
  if (systemHook) ::UnhookWindowsHookEx(systemHook);
  if (hookOwner == this) hookOwner = nullptr;
}

void WindowsDesktop::Dispatch(MSG& message) {
  const HWND root = message.hwnd ? GetAncestor(message.hwnd, GA_ROOT) : nullptr;
  DialogWindow* const window = Window(SeamWindow(root));
  if (window && window->Takes(message)) return;
  TranslateMessage(&message);
  DispatchMessageW(&message);
}

void WindowsDesktop::CloseAll() {
  for (const WindowHandle dialog : std::vector<WindowHandle>(waiting)) {
    if (DialogWindow* window = Window(dialog)) return window->Close();
  }
}

// --- Boxes

std::int32_t WindowsDesktop::InFrontOf(WindowHandle owner,
                                       const std::function<std::int32_t(HWND owner)>& show) {
  if (DialogWindow* behind = Window(owner)) behind->BringUp();
  const bool seen = Window(owner) && IsWindowVisible(owner) && !IsIconic(owner);
  const InFront entry(*this, kNoWindow);
  return show(seen ? SystemWindow(owner) : nullptr);
}

std::int32_t WindowsDesktop::AskHere(WindowHandle owner, const std::string& text,
                                     const std::string& caption, std::uint32_t type) {
  return InFrontOf(
      owner, [&](HWND before) { return AnswerOf(ShowBox(before, text, caption, type), type); });
}

std::int32_t WindowsDesktop::MessageBoxA(WindowHandle owner, const std::string& text,
                                         const std::string& caption, std::uint32_t type) {
  if (windows.OnOwnThread()) return AskHere(owner, text, caption, type);
  const DWORD thread = GetCurrentThreadId();
  {
    const std::lock_guard<std::mutex> guard(mutex);
    if (othersRefused) return 0;
    asking.push_back(thread);
  }
  const HWND before = ::IsWindowVisible(SystemWindow(owner)) && !::IsIconic(SystemWindow(owner))
                          ? SystemWindow(owner)
                          : nullptr;
  const std::int32_t answer = AnswerOf(ShowBox(before, text, caption, type), type);
  const std::lock_guard<std::mutex> guard(mutex);
  asking.erase(std::find(asking.begin(), asking.end(), thread));
  return answer;
}

// A box that closes tells the window that it stands before, and waits until that has heard it: so
// this thread goes on to take what is sent to it. What has been asked for and isn't up yet is
// looked for until it is.
void WindowsDesktop::DismissBoxesOfOtherThreads() {
  for (;;) {
    std::vector<DWORD> threads;
    {
      const std::lock_guard<std::mutex> guard(mutex);
      othersRefused = true;
      threads = asking;
    }
    // A thread that was ended by force asks no more.
    std::erase_if(threads, [](DWORD id) {
      const HANDLE thread = OpenThread(SYNCHRONIZE, FALSE, id);
      const bool gone = !thread || WaitForSingleObject(thread, 0) == WAIT_OBJECT_0;
      if (thread) CloseHandle(thread);
      return gone;
    });
    if (threads.empty()) return;
    for (const DWORD thread : threads) CloseBoxesOf(thread);
    MsgWaitForMultipleObjects(0, nullptr, FALSE, kLookEvery, QS_SENDMESSAGE);
    MSG none = {};
    PeekMessageW(&none, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
  }
}

void WindowsDesktop::Tell(const std::string& text) {
  WindowHandle first = kNoWindow;
  {
    const std::lock_guard<std::mutex> guard(mutex);
    untold.push_back(text);
    first = firstWindow;
  }
  windows.Post(first, [this](DialogWindow&) { TellNow(); });
}

void WindowsDesktop::TellNow() {
  for (;;) {
    std::string text;
    {
      const std::lock_guard<std::mutex> guard(mutex);
      if (untold.empty() || firstWindow == kNoWindow) return;
      text = std::move(untold.front());
      untold.erase(untold.begin());
    }
    AskHere(firstWindow, text, "Kelvaro", MB_OK | MB_ICONEXCLAMATION);
  }
}

// --- Dialogs

std::int32_t WindowsDesktop::RunDialog(const DialogTemplate& dialog, WindowHandle owner,
                                       WindowListener& listener) {
  DialogWindow* const behind = Window(owner);
  if (owner != kNoWindow && !behind) return -1;
  if (behind) behind->BringUp();
  const auto isUp = [this](WindowHandle window) {
    {
      const std::lock_guard<std::mutex> guard(mutex);
      if (firstWindow == kNoWindow) firstWindow = window;
    }
    windows.Post(window, [this](DialogWindow&) { TellNow(); });
  };
  const Surroundings around{windows,
                            icons,
                            [this](MSG& message) { Dispatch(message); },
                            [this](WindowHandle window) { return area.Lacks(window); },
                            [this] { TaskBarCame(); },
                            isUp,
                            [this] { CloseAll(); }};
  DialogWindow window(dialog, behind, listener, around);
  if (!window.Handle()) return -1;
  const WindowHandle handle = SeamWindow(window.Handle());
  const InFront entry(*this, handle);
  const std::int32_t result = window.Run();
  area.DeleteAll(handle);
  const std::lock_guard<std::mutex> guard(mutex);
  if (firstWindow == handle) firstWindow = kNoWindow;
  return result;
}

// Windows in front of it end with it: otherwise its handler could never return.
bool WindowsDesktop::EndDialog(WindowHandle handle, std::int32_t result) {
  DialogWindow* const window = Window(handle);
  if (!window) return false;
  window->End(result);
  for (auto entry = waiting.rbegin(); entry != waiting.rend() && *entry != handle; ++entry) {
    if (DialogWindow* inFront = Window(*entry)) {
      inFront->End(IDCANCEL);
    } else {
      EndMenu();
      CloseBoxesOf(GetCurrentThreadId(), window->Handle());
    }
  }
  // A loop that waits for a message looks whether it has ended.
  PostMessageW(window->Handle(), WM_NULL, 0, 0);
  return true;
}

// --- Windows

bool WindowsDesktop::ShowWindow(WindowHandle handle, std::int32_t command) {
  DialogWindow* const window = Window(handle);
  if (window) window->ShowWindow(command);
  return window;
}

bool WindowsDesktop::IsWindowVisible(WindowHandle window) {
  return Window(window) && ::IsWindowVisible(SystemWindow(window));
}

bool WindowsDesktop::IsIconic(WindowHandle window) {
  return Window(window) && ::IsIconic(SystemWindow(window));
}

bool WindowsDesktop::IsZoomed(WindowHandle window) {
  return Window(window) && ::IsZoomed(SystemWindow(window));
}

bool WindowsDesktop::SetForegroundWindow(WindowHandle window) {
  return Window(window) && ::IsWindowVisible(SystemWindow(window)) &&
         ::SetForegroundWindow(SystemWindow(window));
}

bool WindowsDesktop::SetWindowTextA(WindowHandle window, const std::string& text) {
  return Window(window) && SetWindowTextW(SystemWindow(window), Wide(text).c_str());
}

bool WindowsDesktop::SetWindowIcon(WindowHandle window, IconHandle icon, bool large) {
  if (!Window(window)) return false;
  Ask(SystemWindow(window), WM_SETICON, large ? ICON_BIG : ICON_SMALL, icons.Find(icon, large));
  return true;
}

bool WindowsDesktop::GetWindowRect(WindowHandle window, Rect* rect) {
  RECT found = {};
  if (!Window(window) || !::GetWindowRect(SystemWindow(window), &found)) return false;
  *rect = RectOf(found);
  return true;
}

bool WindowsDesktop::GetClientRect(WindowHandle window, Rect* rect) {
  RECT found = {};
  if (!Window(window) || !::GetClientRect(SystemWindow(window), &found)) return false;
  *rect = RectOf(found);
  return true;
}

bool WindowsDesktop::MoveWindow(WindowHandle handle, const Rect& rect) {
  DialogWindow* const window = Window(handle);
  if (window) window->MoveWhole(rect);
  return window;
}

bool WindowsDesktop::InvalidateRect(WindowHandle window, const Rect& rect) {
  const RECT place = RectOf(rect);
  return Window(window) && ::InvalidateRect(SystemWindow(window), &place, TRUE);
}

bool WindowsDesktop::UpdateWindow(WindowHandle window) {
  return Window(window) && ::UpdateWindow(SystemWindow(window));
}

// --- What all windows share

bool WindowsDesktop::GetDesktopRect(Rect* rect) {
  RECT found = {};
  if (!::GetWindowRect(GetDesktopWindow(), &found)) return false;
  *rect = RectOf(found);
  return true;
}

std::int32_t WindowsDesktop::GetSystemMetrics(std::int32_t index) {
  return ::GetSystemMetrics(index);
}

Colour WindowsDesktop::GetSysColor(std::int32_t index) { return ::GetSysColor(index); }

bool WindowsDesktop::GetCursorPos(Point* point) {
  POINT at = {};
  if (!::GetCursorPos(&at)) return false;
  *point = {static_cast<std::int32_t>(at.x), static_cast<std::int32_t>(at.y)};
  return true;
}

std::uint16_t WindowsDesktop::GetKeyState(std::uint8_t vk) {
  return static_cast<std::uint16_t>(::GetKeyState(vk));
}

bool WindowsDesktop::PostMessageA(WindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                                  std::intptr_t lParam) {
  return Window(window) && PostMessageW(SystemWindow(window), message, wParam, lParam);
}

std::uint32_t WindowsDesktop::SetTimer(WindowHandle handle, std::uint32_t id, std::uint32_t ms) {
  DialogWindow* const window = Window(handle);
  return window ? window->SetTimer(id, ms) : 0;
}

bool WindowsDesktop::KillTimer(WindowHandle handle, std::uint32_t id) {
  DialogWindow* const window = Window(handle);
  return window && window->KillTimer(id);
}

bool WindowsDesktop::SleepTimer(WindowHandle handle, std::uint32_t id) {
  DialogWindow* const window = Window(handle);
  return window && window->SleepTimer(id);
}

bool WindowsDesktop::WakeTimer(WindowHandle handle, std::uint32_t id) {
  DialogWindow* const window = Window(handle);
  return window && window->WakeTimer(id);
}

// --- The hook

LRESULT CALLBACK WindowsDesktop::OnHook(int code, WPARAM w, LPARAM l) {
  if (code == HCBT_MINMAX && LOWORD(l) == SW_MINIMIZE && hookOwner) {
    const DialogWindow* const window = hookOwner->Window(w);
    if (!window || !window->IsQuiet()) hookOwner->hooks.TellMinimising(w);
  }
  return ::CallNextHookEx(nullptr, code, w, l);
}

HookHandle WindowsDesktop::SetWindowsHookExA(std::int32_t kind, HookProc procedure) {
  if (kind != WH_CBT || !procedure) return 0;
  if (!systemHook) {
    hookOwner = this;
    systemHook = ::SetWindowsHookExW(kind, &WindowsDesktop::OnHook, nullptr, GetCurrentThreadId());
    if (!systemHook) return 0;
  }
  hooked.push_back(hooks.Add(procedure));
  return hooked.back();
}

bool WindowsDesktop::UnhookWindowsHookEx(HookHandle hook) {
  if (!hooks.Remove(hook)) return false;
  std::erase(hooked, hook);
  if (hooked.empty()) ::UnhookWindowsHookEx(std::exchange(systemHook, nullptr));
  return true;
}

std::intptr_t WindowsDesktop::CallNextHookEx(HookHandle hook, std::int32_t code,
                                             std::uintptr_t wParam, std::intptr_t lParam) {
  return hooks.CallNext(hook, code, wParam, lParam);
}

// --- Pictures, the notification area, menus

IconHandle WindowsDesktop::LoadIconA(std::uint32_t id) { return icons.Load(id); }
bool WindowsDesktop::DestroyIcon(IconHandle icon) { return icons.Destroy(icon); }
BitmapHandle WindowsDesktop::LoadBitmapA(std::uint32_t id) { return LoadBitmapOf(id); }

bool WindowsDesktop::Shell_NotifyIconA(std::uint32_t message, const NOTIFYICONDATA& data) {
  switch (message) {
    case NIM_ADD:
      return Window(data.hWnd) && area.Add(data);
    case NIM_DELETE:
      return area.Delete(data.hWnd, data.uID);
    default:
      return false;
  }
}

void WindowsDesktop::TaskBarCame() {
  for (const WindowHandle handle : area.ShowAll())
    if (DialogWindow* window = Window(handle)) window->IconCameOrWent();
}

// The area tells of the right button, and the program shows the menu.
bool WindowsDesktop::SetNotifyIconMenu(WindowHandle window, std::uint32_t id,
                                       std::span<const MenuItem>) {
  return area.Has(window, id);
}

bool WindowsDesktop::TrackPopupMenu(WindowHandle window, std::span<const MenuItem> items,
                                    std::uint32_t flags, Point screen) {
  if (!Window(window)) return false;
  const HMENU menu = CreatePopupMenu();
  for (const MenuItem& item : items) {
    if (!item.text || !*item.text) {
      AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    } else {
      AppendMenuW(menu, MF_STRING, item.command, Wide(item.text).c_str());
    }
  }
  const InFront entry(*this, kNoWindow);
  const bool shown = ::TrackPopupMenu(menu, flags, static_cast<int>(screen.x),
                                      static_cast<int>(screen.y), 0, SystemWindow(window), nullptr);
  DestroyMenu(menu);
  return shown;
}

}  // namespace platform::ui
