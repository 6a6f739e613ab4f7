// Windows as the logic sees them: dialogs made from tables, the messages that they get, boxes,
// menus, pictures and the notification icon. The operations are the published ones of the same
// names. A window is known by a number, 0 for none. All of it belongs to one thread, the user
// interface's, except what says otherwise. Operations on a window that isn't there are false.
// The class is long because its operations share the windows: none can be carried out apart.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "app/platform/canvas.h"
#include "app/platform/dialog_template.h"

namespace platform {

using WindowHandle = std::uintptr_t;
constexpr WindowHandle kNoWindow = 0;

constexpr std::uint32_t MB_OK = 0x0;
constexpr std::uint32_t MB_YESNO = 0x4;
constexpr std::uint32_t MB_ICONSTOP = 0x10;
constexpr std::uint32_t MB_ICONQUESTION = 0x20;
constexpr std::uint32_t MB_ICONEXCLAMATION = 0x30;

constexpr std::int32_t IDOK = 1;
constexpr std::int32_t IDCANCEL = 2;
constexpr std::int32_t IDYES = 6;
constexpr std::int32_t IDNO = 7;

// ShowWindow
constexpr std::int32_t SW_HIDE = 0;
constexpr std::int32_t SW_SHOWNORMAL = 1;
constexpr std::int32_t SW_SHOWNOACTIVATE = 4;
constexpr std::int32_t SW_SHOW = 5;
constexpr std::int32_t SW_MINIMIZE = 6;
constexpr std::int32_t SW_RESTORE = 9;

// OnSize
constexpr std::uint32_t SIZE_RESTORED = 0;
constexpr std::uint32_t SIZE_MINIMIZED = 1;
constexpr std::uint32_t SIZE_MAXIMIZED = 2;
constexpr std::uint32_t SIZE_MAXSHOW = 3;
constexpr std::uint32_t SIZE_MAXHIDE = 4;

// OnNcHitTest
constexpr std::int32_t HTCLIENT = 1;
constexpr std::int32_t HTBOTTOMRIGHT = 17;

// Private messages begin here.
constexpr std::uint32_t WM_NULL = 0x0;
constexpr std::uint32_t WM_CLOSE = 0x10;
constexpr std::uint32_t WM_APP = 0x8000;

// Mouse messages of the notification icon.
constexpr std::intptr_t WM_LBUTTONDOWN = 0x201;
constexpr std::intptr_t WM_LBUTTONDBLCLK = 0x203;
constexpr std::intptr_t WM_RBUTTONDOWN = 0x204;
constexpr std::intptr_t WM_RBUTTONUP = 0x205;

constexpr std::int32_t WH_CBT = 5;
constexpr std::int32_t HCBT_MINMAX = 1;

// GetSystemMetrics
constexpr std::int32_t SM_CXVSCROLL = 2;
constexpr std::int32_t SM_CXICON = 11;
constexpr std::int32_t SM_CYICON = 12;
constexpr std::int32_t SM_CYHSCROLL = 20;

// GetSysColor
constexpr std::int32_t COLOR_3DFACE = 15;
constexpr std::int32_t COLOR_3DSHADOW = 16;
constexpr std::int32_t COLOR_BTNTEXT = 18;
constexpr std::int32_t COLOR_3DHILIGHT = 20;
constexpr std::int32_t COLOR_3DDKSHADOW = 21;

constexpr std::uint32_t NIM_ADD = 0;
constexpr std::uint32_t NIM_DELETE = 2;
constexpr std::uint32_t NIF_MESSAGE = 1;
constexpr std::uint32_t NIF_ICON = 2;
constexpr std::uint32_t NIF_TIP = 4;

constexpr std::uint32_t TPM_RIGHTBUTTON = 2;

using BitmapHandle = std::uintptr_t;  // 0 for none
using HookHandle = std::uintptr_t;    // 0 for none
using HookProc = std::intptr_t (*)(std::int32_t code, std::uintptr_t wParam, std::intptr_t lParam);

// The published short form, of 88 bytes where pointers have 4.
struct NOTIFYICONDATA {
  std::uint32_t cbSize = 88;
  WindowHandle hWnd = kNoWindow;
  std::uint32_t uID = 0;
  std::uint32_t uFlags = 0;
  std::uint32_t uCallbackMessage = 0;  // comes with wParam the id and lParam the mouse message
  IconHandle hIcon = 0;
  char szTip[64] = {};
};

// 0 leaves that one as the system has it.
struct MinMaxInfo {
  std::int32_t minTrackWidth = 0;
  std::int32_t minTrackHeight = 0;
  std::int32_t maxTrackWidth = 0;
  std::int32_t maxTrackHeight = 0;
};

// What happened to a control.
enum class Notice : std::uint8_t {
  Clicked,             // a button, check box, radio button, link or label; Enter on a default
                       // button, Esc as IDCANCEL; an entry of a menu, by its command
  DoubleClicked,       // a list; value is the row below the pointer, -1 for none
  SelectionChanged,    // by the person: a drop list, a tab control
  Changed,             // the text of an edit, by the person
  FocusLost,           // an edit
  Scrolled,            // a slider, by the person; value is the position
  KeyDown,             // a list, or the window itself as id 0 (F1 always); value: the virtual key
  HeaderItemChanging,  // a list: a column is about to get another width, also by the program
  HeaderItemChanged,   // a list: it has it
  HeaderDragEnded,     // a list: a header was dropped; its new order counts only after the notice
  Painted,             // a list: it has drawn itself
  ControlMessage,      // value: a message of Controls::PostControlMessage
};

// The states in which a drawn button is to be drawn.
struct DrawItem {
  std::uint32_t id = 0;
  Rect rect;  // at 0,0
  bool pressed = false;
  bool focused = false;
  bool disabled = false;
  bool focusAction = false;  // it is drawn because the focus came or went
};

// The program's side of a dialog. All calls come on the user interface's thread.
class WindowListener {
 public:
  virtual ~WindowListener() = default;

  // The window is made, with all its controls, and not yet shown.
  virtual void OnInitDialog(WindowHandle window) = 0;
  virtual void OnNotice(std::uint32_t id, Notice notice, std::int32_t value) = 0;
  virtual void OnClose() = 0;  // the close box
  // Posted messages, in the order of their posting.
  virtual void OnMessage(std::uint32_t message, std::uintptr_t wParam, std::intptr_t lParam) = 0;
  virtual void OnTimer(std::uint32_t id) = 0;
  virtual void OnSize(std::uint32_t type, std::int32_t width, std::int32_t height) = 0;
  virtual void OnMove(std::int32_t x, std::int32_t y) = 0;  // of the inside, on the screen
  virtual void OnGetMinMaxInfo(MinMaxInfo* info) = 0;       // sizes of the whole window
  virtual void OnPaint(Canvas& canvas) = 0;                 // behind the controls
  virtual std::int32_t OnNcHitTest(Point screen) = 0;
  virtual void OnDrawItem(const DrawItem& item, Canvas& canvas) = 0;
  // The text for a control below the pointer that is a tool or for which tips are enabled; empty
  // for no tip.
  virtual std::string OnToolTip(std::uint32_t id) = 0;
  // The window is still there, for the last time.
  virtual void OnDestroy() = 0;
};

class Desktop {
 public:
  virtual ~Desktop() = default;

  // Asks modally in front of `owner` and returns the button, or 0 when the box can't be shown.
  // Timers and posted messages go on meanwhile. Any thread.
  virtual std::int32_t MessageBoxA(WindowHandle owner, const std::string& text,
                                   const std::string& caption, std::uint32_t type) = 0;

  // Dismisses the boxes that other threads have up, which they then take for closed, and refuses
  // those that they ask for from then on. For the end of the program, before the user interface's
  // thread waits for theirs.
  virtual void DismissBoxesOfOtherThreads() = 0;

  // Tells the person, in a box that nothing waits for, once a window without an owner is up. Any
  // thread.
  virtual void Tell(const std::string& text) = 0;

  // Makes a dialog, calls OnInitDialog, shows it unless it was ended there, and handles its
  // messages until EndDialog; then hides it, calls OnDestroy and destroys it. `owner` takes no
  // input meanwhile. EndDialog's result, or -1 when no window can be made (no call came then).
  // The template must outlive the dialog. In front of no owner it is a window of its own, with a
  // place on the task bar.
  virtual std::int32_t RunDialog(const DialogTemplate& dialog, WindowHandle owner,
                                 WindowListener& listener) = 0;
  // Returns at once; the dialog ends when its handler returns.
  virtual bool EndDialog(WindowHandle window, std::int32_t result) = 0;

  virtual bool ShowWindow(WindowHandle window, std::int32_t command) = 0;
  virtual bool IsWindowVisible(WindowHandle window) = 0;
  virtual bool IsIconic(WindowHandle window) = 0;
  virtual bool IsZoomed(WindowHandle window) = 0;
  virtual bool SetForegroundWindow(WindowHandle window) = 0;
  virtual bool SetWindowTextA(WindowHandle window, const std::string& text) = 0;
  virtual bool SetWindowIcon(WindowHandle window, IconHandle icon, bool large) = 0;
  virtual bool GetWindowRect(WindowHandle window, Rect* rect) = 0;  // on screen, its own frame too
  virtual bool GetClientRect(WindowHandle window, Rect* rect) = 0;  // at 0,0
  // Moves and sizes the whole window and paints it.
  virtual bool MoveWindow(WindowHandle window, const Rect& rect) = 0;
  virtual bool InvalidateRect(WindowHandle window, const Rect& rect) = 0;
  virtual bool UpdateWindow(WindowHandle window) = 0;

  virtual bool GetDesktopRect(Rect* rect) = 0;  // of the desktop's own window
  virtual std::int32_t GetSystemMetrics(std::int32_t index) = 0;
  virtual Colour GetSysColor(std::int32_t index) = 0;
  virtual bool GetCursorPos(Point* point) = 0;
  // The high bit is set while the key is down.
  virtual std::uint16_t GetKeyState(std::uint8_t vk) = 0;

  // Any thread; doesn't wait. Messages to one window keep their order.
  virtual bool PostMessageA(WindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                            std::intptr_t lParam) = 0;
  // Calls OnTimer(id) every `ms` milliseconds; periods that pass while a handler runs fold into
  // one. The id, or 0 when there can be no timer.
  virtual std::uint32_t SetTimer(WindowHandle window, std::uint32_t id, std::uint32_t ms) = 0;
  virtual bool KillTimer(WindowHandle window, std::uint32_t id) = 0;
  // No calls, and no wake-ups of the processor, until WakeTimer; then they go on at the points of
  // time at which they would have come. False for a timer that isn't there.
  virtual bool SleepTimer(WindowHandle window, std::uint32_t id) = 0;
  virtual bool WakeTimer(WindowHandle window, std::uint32_t id) = 0;

  // Of the kinds WH_CBT alone, and of its codes HCBT_MINMAX: before a window of this thread is
  // minimised, with wParam the window and lParam SW_MINIMIZE. 0 when it can't be set.
  virtual HookHandle SetWindowsHookExA(std::int32_t kind, HookProc procedure) = 0;
  virtual bool UnhookWindowsHookEx(HookHandle hook) = 0;
  virtual std::intptr_t CallNextHookEx(HookHandle hook, std::int32_t code, std::uintptr_t wParam,
                                       std::intptr_t lParam) = 0;

  // Pictures by their number among the program's own. 0 for any other number.
  virtual IconHandle LoadIconA(std::uint32_t id) = 0;
  virtual bool DestroyIcon(IconHandle icon) = 0;
  virtual BitmapHandle LoadBitmapA(std::uint32_t id) = 0;

  // Adds or removes the icon of the notification area. Where there is no such area the icon counts
  // as added, appears as soon as there is one, and a window with an icon is minimised where it
  // would be hidden, since nothing could bring it back.
  virtual bool Shell_NotifyIconA(std::uint32_t message, const NOTIFYICONDATA& data) = 0;
  // Not a published one: gives an added icon its menu, for desktops that show icons' menus
  // themselves and so never report the right button. Its commands come as TrackPopupMenu's do.
  // False when the icon isn't there.
  virtual bool SetNotifyIconMenu(WindowHandle window, std::uint32_t id,
                                 std::span<const MenuItem> items) = 0;

  // Shows the entries at a point of the screen until the person chooses one, which comes as Clicked
  // with its command, or none. Returns after that; false when it can't be shown, as where only the
  // desktop may put a menu beside the icon.
  virtual bool TrackPopupMenu(WindowHandle window, std::span<const MenuItem> items,
                              std::uint32_t flags, Point screen) = 0;
};

// Of the installed platform; see platform.h.
Desktop& desktop();

}  // namespace platform
