#include "app/platform/linux/kernel_events.h"

#include <errno.h>
#include <string.h>
#include <unistd.h>

#include <array>
#include <utility>

#include "app/platform/linux/descriptor.h"
#include "app/platform/linux/key_map.h"

namespace platform {
namespace {

struct ButtonEdge {
  std::uint32_t flag;
  std::uint16_t code;
};

constexpr ButtonEdge kDownEdges[] = {{MOUSEEVENTF_LEFTDOWN, BTN_LEFT},
                                     {MOUSEEVENTF_RIGHTDOWN, BTN_RIGHT},
                                     {MOUSEEVENTF_MIDDLEDOWN, BTN_MIDDLE}};
constexpr ButtonEdge kUpEdges[] = {{MOUSEEVENTF_LEFTUP, BTN_LEFT},
                                   {MOUSEEVENTF_RIGHTUP, BTN_RIGHT},
                                   {MOUSEEVENTF_MIDDLEUP, BTN_MIDDLE}};

input_event Event(std::uint16_t type, std::uint16_t code, std::int32_t value) {
  input_event event{};  // the kernel fills in the time
  event.type = type;
  event.code = code;
  event.value = value;
  return event;
}

// The mouse buttons lie between the keyboard's codes.
bool IsKeyboardCode(std::uint16_t code) { return code < BTN_MISC || code >= KEY_OK; }

input_event Report() { return Event(EV_SYN, SYN_REPORT, 0); }

// Room for all that one call can hold: two axes, three buttons twice, two wheels, two reports.
class Batch {
 public:
  void Add(const input_event& event) { events[count++] = event; }
  const input_event* Data() const { return events.data(); }
  std::size_t Count() const { return count; }

 private:
  std::array<input_event, 12> events{};
  std::size_t count = 0;
};

}  // namespace

KernelEvents::KernelEvents(int keyboard, int mouse) : keyboardFd(keyboard), mouseFd(mouse) {}

void KernelEvents::keybd_event(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags,
                               std::uint32_t /*extra*/) {
  const std::uint16_t code = KernelKeyCode(vk, scan);
  if (code == 0) return;
  const bool isDown = (flags & KEYEVENTF_KEYUP) == 0;
  if (!holders.Note(code, vk, isDown)) return;
  const input_event events[] = {Event(EV_KEY, code, isDown ? 1 : 0), Report()};
  Send(IsKeyboardCode(code) ? keyboardFd : mouseFd, events, 2);
}

void KernelEvents::mouse_event(std::uint32_t flags, std::int32_t dx, std::int32_t dy,
                               std::int32_t data, std::uint32_t /*extra*/) {
  Batch batch;
  if (flags & MOUSEEVENTF_MOVE) {
    if (dx != 0) batch.Add(Event(EV_REL, REL_X, dx));
    if (dy != 0) batch.Add(Event(EV_REL, REL_Y, dy));
  }
  for (const ButtonEdge& edge : kDownEdges)
    if (flags & edge.flag) batch.Add(Event(EV_KEY, edge.code, 1));
  // A button that goes down and up in one call is a click; within one report it would be nothing.
  for (std::size_t i = 0; i < std::size(kDownEdges); ++i)
    if ((flags & kDownEdges[i].flag) && (flags & kUpEdges[i].flag)) {
      batch.Add(Report());
      break;
    }
  for (const ButtonEdge& edge : kUpEdges)
    if (flags & edge.flag) batch.Add(Event(EV_KEY, edge.code, 0));
  if ((flags & MOUSEEVENTF_WHEEL) && data != 0) {
    if (const std::int32_t notches = wheel.Add(data)) batch.Add(Event(EV_REL, REL_WHEEL, notches));
    batch.Add(Event(EV_REL, REL_WHEEL_HI_RES, data));
  }
  if (batch.Count() == 0) return;
  batch.Add(Report());
  Send(mouseFd, batch.Data(), batch.Count());
}

void KernelEvents::OnFailure(std::function<void(const std::string&)> listener) {
  failureListener = std::move(listener);
}

void KernelEvents::Send(int fd, const input_event* events, std::size_t count) {
  const std::size_t size = count * sizeof *events;
  const ssize_t written = Retry([&] { return write(fd, events, size); });
  if (written == static_cast<ssize_t>(size)) return;
  const int reason = written < 0 ? errno : EIO;
  if (failed.fetch_add(1) == 0 && failureListener) failureListener(strerror(reason));
}

}  // namespace platform
