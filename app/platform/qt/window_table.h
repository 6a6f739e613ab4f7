// The windows that are there, by their numbers, and what other threads want of them: messages, and
// texts and check marks to be shown. Neither waits for the user interface's thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <vector>

#include "app/platform/desktop.h"
#include "app/platform/pending_updates.h"
#include "app/platform/processes.h"

namespace platform::qt {

class DialogWindow;

class WindowTable {
 public:
  // Whether the caller is on the user interface's thread, which is the one that makes windows:
  // until there has been one, any thread is.
  bool OnOwnThread() const;

  // The user interface's thread alone.
  WindowHandle Add(DialogWindow* window, std::set<std::uint32_t> controls);
  void Remove(WindowHandle handle);
  DialogWindow* Find(WindowHandle handle) const;  // null when it isn't there
  void SetState(WindowHandle handle, bool visible, bool iconic);
  std::uint64_t asked = 0;  // boxes, dialogs and menus so far

  // Any thread. All of them, oldest first, without their process.
  std::vector<TopLevelWindow> TopLevelWindows() const;

  // Any thread. False when the window isn't there, or has no such control.
  // Calls `act` later on the user interface's thread, in the order of the posts, if the window is
  // still there then.
  bool Post(WindowHandle handle, std::function<void(DialogWindow&)> act);
  bool UpdateLater(WindowHandle handle, std::uint32_t control, const ControlUpdate& update);

  // Takes over what other threads have asked for, oldest first.
  PendingUpdates::All TakeUpdates(WindowHandle handle);
  // What is set now goes over what was asked for before.
  void DropText(WindowHandle handle, std::uint32_t control);
  void DropCheck(WindowHandle handle, std::uint32_t control);

 private:
  struct Entry {
    DialogWindow* window = nullptr;
    std::set<std::uint32_t> controls;
    PendingUpdates updates = {};
    bool visible = false;
    bool iconic = false;
  };
  static void PostTo(DialogWindow* window, std::function<void(DialogWindow&)> act);

  std::atomic<std::int32_t> userInterface = 0;  // its thread, from the first window on
  mutable std::mutex mutex;                     // guards all below
  std::map<WindowHandle, Entry> windows;
  WindowHandle last = kNoWindow;
};

}  // namespace platform::qt
