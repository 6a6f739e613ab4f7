#include "bench/kernel/measure.h"

#include <fcntl.h>
#include <linux/input.h>
#include <linux/uinput.h>
#include <signal.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <numbers>

#include "console/percentile.h"
#include "tests/kernel/trace.h"
#include "tests/kernel/wait.h"

namespace kelvaro::kernel {

void Fail(const std::string& what) {
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

std::unique_ptr<platform::KeyWatch> WatchKeys(const char* name) {
  int errorCode = 0;
  auto keys = platform::KeyWatch::Open(WaitForInput(name), &errorCode);
  if (!keys) {
    Fail(std::string(name) + " can't be read: " + strerror(errorCode));
  }
  return keys;
}

int BareDevice(const char* name, int type, const std::vector<int>& codes) {
  const int fd = open("/dev/uinput", O_WRONLY | O_CLOEXEC);
  uinput_setup setup = {};
  std::snprintf(setup.name, sizeof setup.name, "%s", name);
  setup.id.bustype = BUS_VIRTUAL;
  bool made = fd >= 0 && ioctl(fd, UI_SET_EVBIT, type) == 0;
  for (const int code : codes) {
    made = made && ioctl(fd, type == EV_KEY ? UI_SET_KEYBIT : UI_SET_RELBIT, code) == 0;
  }
  if (!made || ioctl(fd, UI_DEV_SETUP, &setup) != 0 || ioctl(fd, UI_DEV_CREATE) != 0) {
    Fail("no bare device");
  }
  return fd;
}

void SendBare(int device, std::initializer_list<BareEvent> events) {
  input_event batch[8] = {};
  std::size_t count = 0;
  for (const BareEvent& event : events) {
    batch[count].type = static_cast<std::uint16_t>(event.type);
    batch[count].code = static_cast<std::uint16_t>(event.code);
    batch[count++].value = event.value;
  }
  batch[count].type = EV_SYN;
  batch[count++].code = SYN_REPORT;
  const std::size_t size = count * sizeof batch[0];
  if (write(device, batch, size) != static_cast<ssize_t>(size)) {
    Fail("a bare event can't be sent");
  }
}

std::string Profile(int intervalMs, const std::string& more) {
  return "{\"pollInterval\":" + std::to_string(intervalMs) +
         ",\"controls\":[{\"buttonMask\":\"0x1\",\"actions\":[{\"text\":\"a\"}]}]" + more + "}\n";
}

namespace {

std::vector<std::string> Command(const std::string& profile, const ProgramOptions& options) {
  std::vector<std::string> words = {KelvaroctlPath(), "run", "--device", kPadName};
  words.insert(words.end(), options.words.begin(), options.words.end());
  words.push_back(WriteFile(profile));
  return words;
}

// Whatever a user who sits at the machine may open.
void OpenForAll(const std::string& node) {
  if (chmod(node.c_str(), 0666) != 0) {
    Fail(node + " can't be opened for all");
  }
}

}  // namespace

Program::Program(const UinputPad& pad, const std::string& profile, const ProgramOptions& options)
    : child((OpenForAll(pad.Node()), OpenForAll("/dev/uinput"), Command(profile, options)),
            ChildOptions{.asNobody = options.asNobody}) {
  keyboard = WatchKeys(kKeyboardName);
  mouse = std::make_unique<Reader>(WaitForInput(kMouseName));
  if (!Eventually([&] { return DescriptorOf(child.Id(), pad.Node()) >= 0; }, 20000)) {
    Fail("kelvaroctl doesn't start: " + child.Err());
  }
  WaitMs(500);
}

Program::~Program() {
  child.Signal(SIGTERM);
  if (child.WaitForEnd(5s) != 0) {
    Fail("kelvaroctl doesn't end: " + child.Err());
  }
}

Usage UsageOf(const std::vector<pid_t>& processes) {
  Usage sum;
  for (const pid_t process : processes) {
    for (const auto& task :
         std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
      std::ifstream times(task.path() / "schedstat");
      double ns = 0;
      double waitedNs = 0;
      double runs = 0;
      if (!(times >> ns >> waitedNs >> runs)) {
        Fail("no processor time of a thread");
      }
      sum.ns += ns;
      sum.switches += runs;
    }
  }
  return sum;
}

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

void PrintShare(const std::string& what, const Usage& before, const Usage& after, double seconds) {
  std::printf("%-52s %9.3f %% of a processor, %7.1f switches a second\n", what.c_str(),
              (after.ns - before.ns) / seconds / 1e9 * 100,
              (after.switches - before.switches) / seconds);
  std::fflush(stdout);
}

void PrintStillUse(const std::string& what, const std::vector<pid_t>& processes) {
  PrintUse(what, processes, [] { WaitMs(kSeconds * 1000); });
}

void PrintUse(const std::string& what, const std::vector<pid_t>& processes,
              const std::function<void()>& meanwhile) {
  const std::int64_t begin = NowUs();
  const Usage before = UsageOf(processes);
  meanwhile();
  const Usage after = UsageOf(processes);
  PrintShare(what, before, after, static_cast<double>(NowUs() - begin) / 1e6);
}

Circle::Circle(UinputPad& pad) : pad(pad), next(NowUs()) {}

void Circle::Play(int seconds) {
  for (int i = 0; i < seconds * 250; ++i) {
    const double angle = 2 * std::numbers::pi * step++ / 62.5;
    pad.Put(EV_ABS, ABS_X, static_cast<int>(30000 * std::cos(angle)));
    pad.Put(EV_ABS, ABS_Y, static_cast<int>(30000 * std::sin(angle)));
    pad.Sync();
    WaitUntilUs(next += 4000);
  }
}

platform::PressTimes TimesOf(UinputPad& pad, platform::KeyArrivals& keys, int intervalUs,
                             int presses) {
  const auto press = [&pad](bool down) {
    down ? pad.Press(0) : pad.Release(0);
    return true;
  };
  const platform::PressTimes times = platform::TimePresses(
      press, keys, {.intervalUs = intervalUs, .presses = presses}, [] { return true; });
  if (times.lost > 0) {
    Fail("a press doesn't come through");
  }
  return times;
}

void PrintTimes(const std::string& what, std::vector<double> us) {
  std::sort(us.begin(), us.end());
  std::printf("%-52s %7.0f %7.0f %7.0f %7.0f\n", what.c_str(), us.front(), Percentile(us, 0.5),
              Percentile(us, 0.95), us.back());
  std::fflush(stdout);
}

}  // namespace kelvaro::kernel
