// The windows that are there, by their handles, and what other threads want of their controls, who
// don't wait for the user interface's thread.
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <set>

#include "app/platform/pending_updates.h"
#include "app/platform/windows/ui/system.h"

namespace platform::ui {

class DialogWindow;

class WindowTable {
 public:
  // Of ours between those of a dialog and those that are the program's; the lParam is a pointer to
  // what to call, owned by the message.
  static constexpr UINT kPostedCall = WM_USER + 0x200;
  using Call = std::function<void(DialogWindow&)>;

  // Whether the caller is on the user interface's thread, which is the one that makes windows:
  // until there has been one, any thread is.
  bool OnOwnThread() const;

  // The user interface's thread alone.
  void Add(HWND handle, DialogWindow* window, std::set<std::uint32_t> controls);
  void Remove(HWND handle);
  DialogWindow* Find(WindowHandle handle) const;  // null when it isn't there
  std::uint64_t asked = 0;                        // boxes, dialogs and menus so far

  // Any thread. False when the window isn't there, or has no such control.
  // Calls `act` later on the user interface's thread, in the order of the posts, if the window is
  // still there then.
  bool Post(WindowHandle handle, Call act);
  bool UpdateLater(WindowHandle handle, std::uint32_t control, const ControlUpdate& update);

  // Takes over what other threads have asked for, oldest first.
  PendingUpdates::All TakeUpdates(HWND handle);
  // What is set now goes over what was asked for before.
  void DropText(WindowHandle handle, std::uint32_t control);
  void DropCheck(WindowHandle handle, std::uint32_t control);

 private:
  struct Entry {
    DialogWindow* window = nullptr;
    std::set<std::uint32_t> controls;
    PendingUpdates updates = {};
  };
  static bool PostTo(HWND handle, Call act);

  std::atomic<DWORD> userInterface = 0;  // its thread, from the first window on
  mutable std::mutex mutex;              // guards all below
  std::map<HWND, Entry> windows;
};

}  // namespace platform::ui
