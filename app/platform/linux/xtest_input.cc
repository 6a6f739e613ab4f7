#include "app/platform/linux/xtest_input.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <linux/input-event-codes.h>
#include <string.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "app/platform/linux/key_map.h"

namespace platform {
namespace {

constexpr unsigned kKeycodeOffset = 8;
constexpr unsigned kLeft = 1;
constexpr unsigned kMiddle = 2;
constexpr unsigned kRight = 3;
constexpr unsigned kWheelUp = 4;
constexpr unsigned kWheelDown = 5;
constexpr unsigned kSide = 8;
constexpr unsigned kExtra = 9;

// A notch is a click of a button here. More in one call than a hand could turn are dropped, so that
// a wild value doesn't keep the server busy for minutes.
constexpr std::int32_t kMostNotches = 1000;

// The server tells every client about keyboard changes; they are thrown away once in a while.
constexpr unsigned kEventsBetweenReads = 256;

}  // namespace

std::unique_ptr<XTestInput> XTestInput::Open(const std::string& name, std::string* error) {
  const auto fail = [&](const std::string& text) {
    if (error) *error = text;
    return nullptr;
  };
  if (name.empty() && !std::getenv("DISPLAY"))
    return fail("there is no X server (DISPLAY is not set)");
  Display* display = XOpenDisplay(name.empty() ? nullptr : name.c_str());
  if (!display)
    return fail(std::string("no X server answers at ") +
                XDisplayName(name.empty() ? nullptr : name.c_str()));
  int unused = 0;
  if (!XTestQueryExtension(display, &unused, &unused, &unused, &unused)) {
    XCloseDisplay(display);
    return fail("the X server has no XTEST extension");
  }
  int errorCode = 0;
  std::unique_ptr<XTestGuard> guard = XTestGuard::Start(DisplayString(display), &errorCode);
  if (!guard) {
    XCloseDisplay(display);
    return fail(std::string("the process that is to let go of keys can't be started: ") +
                strerror(errorCode));
  }
  return std::unique_ptr<XTestInput>(new XTestInput(display, std::move(guard)));
}

XTestInput::XTestInput(Display* opened, std::unique_ptr<XTestGuard> guard)
    : display(opened), guard(std::move(guard)) {
  XDisplayKeycodes(display, &lowestKeycode, &highestKeycode);
  // The library's own answer to a server that went away is to end the process, and it does so in
  // the first of these two; the second, which belongs to one connection, decides once the first
  // returns. Other connections still end the process.
  XSetIOErrorHandler([](Display*) { return 0; });
  XSetIOErrorExitHandler(
      display, [](Display*, void* self) { static_cast<XTestInput*>(self)->broken = true; }, this);
}

XTestInput::~XTestInput() {
  if (!broken) XCloseDisplay(display);  // a broken connection can't even be closed
}

void XTestInput::keybd_event(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags,
                             std::uint32_t /*extra*/) {
  const std::uint16_t code = KernelKeyCode(vk, scan);
  if (code == 0) return;
  const bool down = (flags & KEYEVENTF_KEYUP) == 0;
  const std::lock_guard<std::mutex> lock(mutex);
  if (!Alive() || !holders.Note(code, vk, down)) return;
  if (code == BTN_SIDE || code == BTN_EXTRA) {
    Button(code == BTN_SIDE ? kSide : kExtra, down);
  } else {
    Key(code + kKeycodeOffset, down);
  }
  Flush();
}

void XTestInput::mouse_event(std::uint32_t flags, std::int32_t dx, std::int32_t dy,
                             std::int32_t data, std::uint32_t /*extra*/) {
  const std::lock_guard<std::mutex> lock(mutex);
  if (!Alive()) return;
  if ((flags & MOUSEEVENTF_MOVE) && (dx != 0 || dy != 0))
    XTestFakeRelativeMotionEvent(display, dx, dy, CurrentTime);
  if (flags & MOUSEEVENTF_LEFTDOWN) Button(kLeft, true);
  if (flags & MOUSEEVENTF_RIGHTDOWN) Button(kRight, true);
  if (flags & MOUSEEVENTF_MIDDLEDOWN) Button(kMiddle, true);
  if (flags & MOUSEEVENTF_LEFTUP) Button(kLeft, false);
  if (flags & MOUSEEVENTF_RIGHTUP) Button(kRight, false);
  if (flags & MOUSEEVENTF_MIDDLEUP) Button(kMiddle, false);
  if (flags & MOUSEEVENTF_WHEEL) {
    const std::int32_t notches = std::clamp(wheel.Add(data), -kMostNotches, kMostNotches);
    for (std::int32_t i = 0; i < std::abs(notches); ++i) {
      Button(notches > 0 ? kWheelUp : kWheelDown, true);
      Button(notches > 0 ? kWheelUp : kWheelDown, false);
    }
  }
  Flush();
}

std::uint32_t XTestInput::FailedEvents() const {
  const std::lock_guard<std::mutex> lock(mutex);
  return failed;
}

void XTestInput::OnFailure(std::function<void(const std::string&)> listener) {
  const std::lock_guard<std::mutex> lock(mutex);
  failureListener = std::move(listener);
}

bool XTestInput::Alive() {
  if (!broken) return true;
  if (failed++ == 0 && failureListener) failureListener("the X server has gone away");
  return false;
}

// The server answers a key code out of its range by an error, which would end the process.
void XTestInput::Key(unsigned keycode, bool down) {
  if (static_cast<int>(keycode) < lowestKeycode || static_cast<int>(keycode) > highestKeycode)
    return;
  std::atomic<bool>& held = guard->Down().keys[keycode];
  if (down) held = true;
  XTestFakeKeyEvent(display, keycode, down ? True : False, CurrentTime);
  if (!down) Released(&held);
}

void XTestInput::Button(unsigned button, bool down) {
  std::atomic<bool>& held = guard->Down().buttons[button];
  if (down) held = true;
  XTestFakeButtonEvent(display, button, down ? True : False, CurrentTime);
  if (!down) Released(&held);
}

// The guard must still let go of what the server doesn't have yet.
void XTestInput::Released(std::atomic<bool>* held) {
  XFlush(display);
  if (!broken) *held = false;
}

void XTestInput::Flush() {
  XFlush(display);
  if (broken || ++sent % kEventsBetweenReads != 0) return;
  XEvent event;
  while (!broken && XPending(display) > 0) XNextEvent(display, &event);
}

}  // namespace platform
