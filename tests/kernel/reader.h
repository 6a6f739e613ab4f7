// What comes out at the other end: the events of an input device as the kernel hands them to a
// program, with the kernel's times.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace kelvaro::kernel {

constexpr char kKeyboardName[] = "Kelvaro Keyboard";
constexpr char kMouseName[] = "Kelvaro Mouse";

struct InputNode {
  std::string path;  // /dev/input/event…
  std::string name;
  std::string phys;
  std::string uniq;
  std::uint16_t bus = 0;
};

// All input devices, in the order of their event numbers.
std::vector<InputNode> InputNodes();

// Path of the first device that `wanted` takes; empty if there is none.
std::string FindInput(const std::function<bool(const InputNode&)>& wanted);

struct KernelEvent {
  std::int64_t us;  // monotonic clock
  unsigned int type;
  unsigned int code;
  int value;
  std::int64_t seenUs = 0;  // when the thread that waited for it had read it
};

// The kernel keeps only some 60 events for a program that doesn't read, so a thread collects them.
class Reader {
 public:
  // Opens `path` and takes the device for itself, so that no other program acts on its events.
  // Exits the program with a message where that fails.
  explicit Reader(const std::string& path);
  ~Reader();
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  // Everything that has come since the object was made, without the sync and scan code events and
  // without the kernel's own key repeat.
  std::vector<KernelEvent> Events();

  // The same as text, "KEY_A down", "BTN_LEFT up", "REL_X 4".
  std::vector<std::string> Texts();

  // Forgets what has come so far.
  void Clear();

  // True when at least `count` events have come, which may take `ms`.
  bool WaitFor(std::size_t count, int ms);

  // What the kernel holds at this moment.
  bool IsDown(unsigned int code) const;
  bool AnyDown() const;

 private:
  void Collect();

  int fd = -1;
  int stop[2] = {-1, -1};  // a pipe; closing its end for writing ends the thread
  std::mutex lock;
  std::vector<KernelEvent> events;  // guarded by lock
  std::thread thread;
};

std::string EventText(const KernelEvent& event);

}  // namespace kelvaro::kernel
