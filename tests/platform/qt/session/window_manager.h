// The least that a window manager does, on the X server that the test runs on: windows are shown
// when they ask for it, and made iconic. It looks at what came in only when it is told to.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>

class WindowManager {
 public:
  WindowManager();
  ~WindowManager();
  WindowManager(const WindowManager&) = delete;
  WindowManager& operator=(const WindowManager&) = delete;

  // Handles all that was asked for until now, by any program.
  void Handle();
  void MakeIconic(xcb_window_t window);

  int Shown() const { return shown; }          // how often a window asked to be
  int Withdrawn() const { return withdrawn; }  // how often one was

 private:
  void SetState(xcb_window_t window, std::uint32_t state);

  xcb_connection_t* const connection;
  xcb_atom_t stateAtom = XCB_ATOM_NONE;
  int shown = 0;
  int withdrawn = 0;
};
