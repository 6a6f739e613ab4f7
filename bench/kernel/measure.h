// What the measurements of the real programs share: a pad, kelvaroctl at work on it, what the
// kernel says about a process, and how figures are printed. What goes wrong ends the program with a
// message.
#pragma once

#include <sys/types.h>

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/linux/press_timing.h"
#include "tests/kernel/child.h"
#include "tests/kernel/pad.h"
#include "tests/kernel/reader.h"

namespace kelvaro::kernel {

constexpr char kPadName[] = "Bench Pad";

[[noreturn]] void Fail(const std::string& what);

PadShape BenchPad();

// The node of the input device of that name, as soon as there is one.
std::string WaitForInput(const char* name);

// The keys of the device of that name, as soon as there is one, for us alone: the console would
// type them too.
std::unique_ptr<platform::KeyWatch> WatchKeys(const char* name);

// An input device of the kernel's that sends events of one type, without any library between us and
// the kernel: its descriptor. Closing it takes it away.
int BareDevice(const char* name, int type, const std::vector<int>& codes);
// The events and their sync in one write.
struct BareEvent {
  int type;
  int code;
  int value;
};
void SendBare(int device, std::initializer_list<BareEvent> events);

// A profile in its JSON form: button 1 is the key "a". `more` is put in as further members, each
// with a comma before it.
std::string Profile(int intervalMs, const std::string& more = "");

struct ProgramOptions {
  std::vector<std::string> words = {};  // further words of its command line
  bool asNobody = false;                // an ordinary user, whose threads may not be real-time ones
};

// kelvaroctl at work on a pad.
class Program {
 public:
  // Comes back once it polls. `pad` is BenchPad's.
  Program(const UinputPad& pad, const std::string& profile, const ProgramOptions& options = {});
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  platform::KeyWatch& Keyboard() { return *keyboard; }
  Reader& Mouse() { return *mouse; }
  pid_t Id() const { return child.Id(); }

 private:
  Child child;
  std::unique_ptr<platform::KeyWatch> keyboard;
  std::unique_ptr<Reader> mouse;
};

// What all threads of some processes have used so far.
struct Usage {
  double ns = 0;        // on a processor
  double switches = 0;  // times that one of them was given a processor
};
Usage UsageOf(const std::vector<pid_t>& processes);

// A figure of the kernel's about a process's memory, in KB: "Rss:", or "Pss:", the proportional set
// size, in which what several processes share counts by its part.
long MemoryKbOf(pid_t process, const std::string& figure);

// Over the seconds between two looks.
void PrintShare(const std::string& what, const Usage& before, const Usage& after, double seconds);

// Least, median, 95 % and most of some microseconds.
void PrintTimes(const std::string& what, std::vector<double> us);

// Presses the pad's first button at all phases of an interval; every key has to come.
platform::PressTimes TimesOf(UinputPad& pad, platform::KeyArrivals& keys, int intervalUs,
                             int presses);

// For how long what is used is measured.
constexpr int kSeconds = 10;
void PrintUse(const std::string& what, const std::vector<pid_t>& processes,
              const std::function<void()>& meanwhile);
// While nothing happens to them.
void PrintStillUse(const std::string& what, const std::vector<pid_t>& processes);

// A stick that goes round in a circle, four times a second, always beyond the dead zone in one axis
// or the other; a new position each 4 ms.
class Circle {
 public:
  explicit Circle(UinputPad& pad);
  void Play(int seconds);

 private:
  UinputPad& pad;
  std::int64_t next;
  int step = 0;
};

// Members of a profile: that stick moves the pointer.
constexpr char kMouseOfStick[] =
    ",\"mouse\":{\"mouseX\":{\"kind\":0,\"index\":0},"
    "\"mouseY\":{\"kind\":1,\"index\":0},\"mouseAlwaysActive\":true}";

// The measurements, each of which prints lines of its own: from press to key, then what is used.
void MeasurePresses();
void MeasureUse();

}  // namespace kelvaro::kernel
