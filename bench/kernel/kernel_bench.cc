// What the real programs cost on a real kernel: the time from a pad's event to its key event,
// beside the least that any program can do; processor time with the pad still and with the pointer
// moving; the evenness of the pointer; memory. The one without a window first, then the window.
//
// Made for a machine whose clock counts instructions, one a nanosecond (tests/kernel/vm --icount):
// the figures then say how much is done and don't depend on the host or its load.

#include <fcntl.h>
#include <linux/input.h>
#include <linux/uinput.h>
#include <sched.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <numbers>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "tests/kernel/child.h"
#include "tests/kernel/pad.h"
#include "tests/kernel/reader.h"
#include "tests/kernel/trace.h"
#include "tests/kernel/wait.h"
#include "tests/kernel/window_program.h"

namespace kelvaro::kernel {
namespace {

constexpr int kPresses = 300;
constexpr int kWarmUp = 30;
constexpr int kSeconds = 10;
constexpr char kPadName[] = "Bench Pad";
constexpr char kForwarderName[] = "Bench Forwarder";

[[noreturn]] void Fail(const std::string& what) {
  std::fprintf(stderr, "kernel_bench: %s\n", what.c_str());
  std::exit(1);
}

PadShape BenchPad() {
  PadShape shape;
  shape.name = kPadName;
  shape.buttons = GamePadButtons(11);
  shape.axes = {{ABS_X}, {ABS_Y}, {ABS_RX}, {ABS_RY}};
  shape.hats = 1;
  return shape;
}

// A keyboard of one key, without any library between us and the kernel.
int BareKeyboard(const char* name) {
  const int fd = open("/dev/uinput", O_WRONLY | O_CLOEXEC);
  uinput_setup setup = {};
  std::snprintf(setup.name, sizeof setup.name, "%s", name);
  setup.id.bustype = BUS_VIRTUAL;
  if (fd < 0 || ioctl(fd, UI_SET_EVBIT, EV_KEY) != 0 || ioctl(fd, UI_SET_KEYBIT, KEY_A) != 0 ||
      ioctl(fd, UI_DEV_SETUP, &setup) != 0 || ioctl(fd, UI_DEV_CREATE) != 0) {
    Fail("no bare keyboard");
  }
  return fd;
}

// The event and its sync in one write.
void SendKey(int fd, int value) {
  input_event events[2] = {};
  events[0].type = EV_KEY;
  events[0].code = KEY_A;
  events[0].value = value;
  events[1].type = EV_SYN;
  events[1].code = SYN_REPORT;
  if (write(fd, events, sizeof events) != static_cast<ssize_t>(sizeof events)) {
    Fail("a bare key can't be sent");
  }
}

std::string WaitForInput(const char* name) {
  std::string path;
  const auto found = [&] {
    path = FindInput([&](const InputNode& node) { return node.name == name; });
    return !path.empty();
  };
  if (!Eventually(found, 20000)) {
    Fail(std::string("there is no ") + name);
  }
  return path;
}

void PrintTimes(const char* what, std::vector<double> us) {
  std::sort(us.begin(), us.end());
  // Between the two nearest where it falls between.
  const auto at = [&](double part) {
    const double place = part * static_cast<double>(us.size() - 1);
    const std::size_t below = static_cast<std::size_t>(place);
    const std::size_t above = std::min(below + 1, us.size() - 1);
    return us[below] + (us[above] - us[below]) * (place - static_cast<double>(below));
  };
  std::printf("%-44s %9.0f %9.0f %9.0f %9.0f\n", what, us.front(), at(0.5), at(0.95), us.back());
  std::fflush(stdout);
}

// (a): what the kernel alone takes, from before the write to after the read.
void MeasureReadBack() {
  const int out = BareKeyboard("Bench Echo");
  const int in = open(WaitForInput("Bench Echo").c_str(), O_RDONLY | O_CLOEXEC);
  // For us alone: the console would type it too.
  if (in < 0 || ioctl(in, EVIOCGRAB, 1) != 0) {
    Fail("the bare keyboard can't be read");
  }
  std::vector<double> times;
  for (int i = 0; i < kPresses + kWarmUp; ++i) {
    timespec begin = {};
    timespec end = {};
    input_event events[8];
    clock_gettime(CLOCK_MONOTONIC, &begin);
    SendKey(out, 1);
    const ssize_t size = read(in, events, sizeof events);
    clock_gettime(CLOCK_MONOTONIC, &end);
    if (size <= 0) {
      Fail("a bare key doesn't come back");
    }
    SendKey(out, 0);
    if (read(in, events, sizeof events) <= 0) {
      Fail("a bare key doesn't come back");
    }
    if (i >= kWarmUp) {
      times.push_back(static_cast<double>(end.tv_sec - begin.tv_sec) * 1e6 +
                      static_cast<double>(end.tv_nsec - begin.tv_nsec) / 1e3);
    }
  }
  close(in);
  close(out);
  PrintTimes("uinput write, read straight back", times);
}

// From just before the pad's event to the time that the kernel gives the key event. The presses
// come in random order at 300 evenly spread phases of `intervalUs`: the median then doesn't depend
// on luck, as it would by some 30 us with phases taken at random.
std::vector<double> PressTimes(UinputPad& pad, Reader& keyboard, int intervalUs) {
  std::mt19937 random(20240229);
  std::vector<int> phases(kPresses + kWarmUp);
  std::iota(phases.begin(), phases.end(), -kWarmUp);
  std::shuffle(phases.begin() + kWarmUp, phases.end(), random);
  std::vector<double> times;
  const auto next = [&](int phase) {
    const std::int64_t whole = (NowUs() + 25000) / intervalUs * intervalUs;
    const std::int64_t step = intervalUs / kPresses;
    std::uniform_int_distribution<std::int64_t> within(0, step);
    WaitUntilUs(whole + (phase + kPresses) % kPresses * intervalUs / kPresses + within(random));
  };
  for (const int phase : phases) {
    keyboard.Clear();
    next(phase);
    const std::int64_t begin = NowUs();
    pad.Press(0);
    if (!keyboard.WaitFor(1, 2000)) {
      Fail("a press doesn't come through");
    }
    if (phase >= 0) {
      times.push_back(static_cast<double>(keyboard.Events()[0].us - begin));
    }
    next(phase);
    pad.Release(0);
    if (!keyboard.WaitFor(2, 2000)) {
      Fail("a release doesn't come through");
    }
  }
  return times;
}

// (b): a program that does nothing but wait for the pad and send a key.
void MeasureForwarder() {
  UinputPad pad(BenchPad());
  const pid_t forwarder = fork();
  if (forwarder == 0) {
    const int out = BareKeyboard(kForwarderName);
    const int in = open(pad.Node().c_str(), O_RDONLY | O_CLOEXEC);
    input_event events[16];
    ssize_t size;
    while ((size = read(in, events, sizeof events)) > 0) {
      for (std::size_t i = 0; i < static_cast<std::size_t>(size) / sizeof events[0]; ++i) {
        if (events[i].type == EV_KEY && events[i].code == BTN_SOUTH) {
          SendKey(out, events[i].value);
        }
      }
    }
    _exit(0);
  }
  {
    Reader keyboard(WaitForInput(kForwarderName));
    if (!Eventually([&] { return DescriptorOf(forwarder, pad.Node()) >= 0; }, 5000)) {
      Fail("the forwarder doesn't start");
    }
    PrintTimes("blocking forwarder, pad to key", PressTimes(pad, keyboard, 1000));
  }
  kill(forwarder, SIGKILL);
  waitpid(forwarder, nullptr, 0);
}

// Nanoseconds that all threads of a process have spent on a processor.
double ProcessorNsOf(pid_t process) {
  double sum = 0;
  for (const auto& task :
       std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
    std::ifstream file(task.path() / "schedstat");
    double ns = 0;
    if (!(file >> ns)) {
      Fail("no processor time of a thread");
    }
    sum += ns;
  }
  return sum;
}

// A figure of the kernel's about a process's memory, in KB: "Rss:", or "Pss:", the proportional set
// size, in which what several processes share counts by its part.
long MemoryKbOf(pid_t process, const std::string& figure) {
  std::ifstream file("/proc/" + std::to_string(process) + "/smaps_rollup");
  for (std::string word; file >> word;) {
    long kb = 0;
    if (word == figure && file >> kb) {
      return kb;
    }
  }
  Fail("no memory figures");
}

// kelvaroctl at work on `pad`.
class Program {
 public:
  Program(const UinputPad& pad, const std::string& profile)
      : child({KelvaroctlPath(), "run", "--device", kPadName, WriteFile(profile)}) {
    keyboard = std::make_unique<Reader>(WaitForInput(kKeyboardName));
    mouse = std::make_unique<Reader>(WaitForInput(kMouseName));
    if (!Eventually([&] { return DescriptorOf(child.Id(), pad.Node()) >= 0; }, 20000)) {
      Fail("kelvaroctl doesn't start: " + child.Err());
    }
    WaitMs(500);
  }

  ~Program() {
    child.Signal(SIGTERM);
    if (child.WaitForEnd(5s) != 0) {
      Fail("kelvaroctl doesn't end: " + child.Err());
    }
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  Reader& Keyboard() { return *keyboard; }
  Reader& Mouse() { return *mouse; }

  pid_t Id() const { return child.Id(); }
  double ProcessorNs() const { return ProcessorNsOf(child.Id()); }

  long MemoryKb() const { return MemoryKbOf(child.Id(), "Pss:"); }

 private:
  Child child;
  std::unique_ptr<Reader> keyboard;
  std::unique_ptr<Reader> mouse;
};

std::string Profile(int interval, const std::string& more) {
  return "{\"pollInterval\":" + std::to_string(interval) +
         ",\"controls\":[{\"buttonMask\":\"0x1\",\"actions\":[{\"text\":\"a\"}]}]" + more + "}\n";
}

void MeasureProgram(int interval) {
  UinputPad pad(BenchPad());
  Program program(pad, Profile(interval, ""));
  PrintTimes(("kelvaroctl, polling each " + std::to_string(interval) + " ms, pad to key").c_str(),
             PressTimes(pad, program.Keyboard(), interval * 1000));
}

void PrintShare(const std::string& what, double ns, double seconds) {
  std::printf("%-44s %9.3f %% of a processor\n", what.c_str(), ns / seconds / 1e9 * 100);
  std::fflush(stdout);
}

// The least that polling can cost: a thread that sleeps until the next millisecond and reads.
void MeasureBareLoop() {
  UinputPad pad(BenchPad());
  const pid_t loop = fork();
  if (loop == 0) {
    sched_param priority = {};
    priority.sched_priority = 1;
    sched_setscheduler(0, SCHED_FIFO, &priority);
    prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);
    const int in = open(pad.Node().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    input_event events[64];
    timespec next = {};
    clock_gettime(CLOCK_MONOTONIC, &next);
    for (;;) {
      next.tv_nsec += 1000000;
      if (next.tv_nsec >= 1000000000) {
        next.tv_nsec -= 1000000000;
        ++next.tv_sec;
      }
      clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &next, nullptr);
      if (read(in, events, sizeof events) >= 0 || errno != EAGAIN) {
        _exit(1);  // the pad isn't still
      }
    }
  }
  WaitMs(500);
  const std::int64_t begin = NowUs();
  const double before = ProcessorNsOf(loop);
  WaitMs(kSeconds * 1000);
  const double used = ProcessorNsOf(loop) - before;
  PrintShare("bare loop, 1000 sleeps and reads a second", used,
             static_cast<double>(NowUs() - begin) / 1e6);
  int status = 0;
  kill(loop, SIGKILL);
  if (waitpid(loop, &status, 0) != loop || !WIFSIGNALED(status)) {
    Fail("the bare loop ended by itself");
  }
}

// While nothing happens to the process.
void PrintStillShare(const std::string& what, pid_t process) {
  const std::int64_t begin = NowUs();
  const double before = ProcessorNsOf(process);
  WaitMs(kSeconds * 1000);
  const double used = ProcessorNsOf(process) - before;
  PrintShare(what, used, static_cast<double>(NowUs() - begin) / 1e6);
}

void MeasureStillPad(int interval) {
  UinputPad pad(BenchPad());
  Program program(pad, Profile(interval, ""));
  PrintStillShare("pad still, " + std::to_string(1000 / interval) + " polls a second",
                  program.Id());
}

// kelvaro, off-screen, with a still pad.
void MeasureWindow(bool hidden) {
  UinputPad pad(BenchPad());
  const WindowProgram window;
  window.AddProfile(
      "Bench",
      Profile(5, std::string(",\"profileName\":\"Bench\",\"deviceName\":\"") + kPadName + "\""));
  window.Set("Start Minimized", hidden ? 1 : 0);
  const std::unique_ptr<Child> child = window.Start();
  // Also while its files are fetched from the host and the clock runs ahead.
  if (!Eventually([&] { return DescriptorOf(child->Id(), pad.Node()) >= 0; }, 600000)) {
    Fail("kelvaro doesn't start: " + child->Err());
  }
  WaitMs(3000);
  const std::string what = hidden ? "window hidden" : "window open";
  PrintStillShare(what + ", pad still, 5 ms", child->Id());
  std::printf("%-44s %9ld KB, %ld KB\n", (what + ", memory: resident, proportional").c_str(),
              MemoryKbOf(child->Id(), "Rss:"), MemoryKbOf(child->Id(), "Pss:"));
  std::fflush(stdout);
  child->Signal(SIGTERM);
  if (child->WaitForEnd(10s) != 0) {
    Fail("kelvaro doesn't end: " + child->Err());
  }
}

void MeasurePointer() {
  UinputPad pad(BenchPad());
  Program program(pad, Profile(5,
                               ",\"mouse\":{\"mouseX\":{\"kind\":0,\"index\":0},"
                               "\"mouseY\":{\"kind\":1,\"index\":0},\"mouseAlwaysActive\":true}"));
  std::printf("%-44s %9ld KB\n", "memory (proportional) at rest", program.MemoryKb());
  // Round in a circle, four times a second, always beyond the dead zone in one axis or the other;
  // a new position each 4 ms.
  const auto position = [&](int step) {
    const double angle = 2 * std::numbers::pi * step / 62.5;
    pad.Put(EV_ABS, ABS_X, static_cast<int>(30000 * std::cos(angle)));
    pad.Put(EV_ABS, ABS_Y, static_cast<int>(30000 * std::sin(angle)));
    pad.Sync();
  };
  std::int64_t next = NowUs();
  int step = 0;
  const auto play = [&](int steps) {
    for (int i = 0; i < steps; ++i) {
      position(step++);
      WaitUntilUs(next += 4000);
    }
  };
  play(250);
  program.Mouse().Clear();
  const std::int64_t begin = NowUs();
  const double before = program.ProcessorNs();
  play(kSeconds * 250);
  const double used = program.ProcessorNs() - before;
  const std::int64_t end = NowUs();
  std::vector<std::int64_t> frames;
  for (const KernelEvent& event : program.Mouse().Events()) {
    if (event.us >= begin && event.us < end && (frames.empty() || frames.back() != event.us)) {
      frames.push_back(event.us);
    }
  }
  PrintShare("stick at 250 Hz, pointer moving, 5 ms", used, static_cast<double>(end - begin) / 1e6);
  std::printf("%-44s %9.1f\n", "pointer frames a second",
              static_cast<double>(frames.size()) * 1e6 / static_cast<double>(end - begin));
  double squares = 0;
  double most = 0;
  for (std::size_t i = 1; i < frames.size(); ++i) {
    const double off = std::abs(static_cast<double>(frames[i] - frames[i - 1]) - 5000);
    squares += off * off;
    most = std::max(most, off);
  }
  if (frames.size() < 2) {
    Fail("the pointer doesn't move");
  }
  std::printf("%-44s %9.0f us (standard), %.0f us (most)\n", "  off the 5 ms between two frames",
              std::sqrt(squares / static_cast<double>(frames.size() - 1)), most);
  std::printf("%-44s %9ld KB\n", "memory (proportional) after the run", program.MemoryKb());
}

int Main() {
  std::printf("%-44s %9s %9s %9s %9s\n", "microseconds", "least", "median", "95 %", "most");
  MeasureReadBack();
  MeasureForwarder();
  MeasureProgram(1);
  MeasureProgram(5);
  std::printf("\n");
  MeasureBareLoop();
  MeasureStillPad(1);
  MeasureStillPad(5);
  MeasurePointer();
  std::printf("\n");
  MeasureWindow(true);
  MeasureWindow(false);
  return 0;
}

}  // namespace
}  // namespace kelvaro::kernel

int main() { return kelvaro::kernel::Main(); }
