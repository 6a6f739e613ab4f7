#include <fcntl.h>
#include <linux/input.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <numeric>
#include <random>

#include "bench/kernel/measure.h"
#include "tests/kernel/trace.h"
#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

constexpr int kPresses = 1000;
constexpr int kWarmUp = 30;
constexpr char kForwarderName[] = "Bench Forwarder";

// The event and its sync in one write.
void SendKey(int fd, int value) { SendBare(fd, {{EV_KEY, KEY_A, value}}); }

// What the kernel alone takes, from before the write to after the read.
void MeasureReadBack() {
  const int out = BareDevice("Bench Echo", EV_KEY, {KEY_A});
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

// From just before the pad's event on, in microseconds.
struct Times {
  std::vector<double> sent;  // to the time that the kernel gives the key event
  std::vector<double> seen;  // to when a thread that waited for it has read it
};

// The presses come in random order at evenly spread phases of `intervalUs`: the median then doesn't
// depend on luck, as it would by some 15 us with phases taken at random.
Times PressTimes(UinputPad& pad, Reader& keyboard, int intervalUs) {
  std::mt19937 random(20240229);
  std::vector<int> phases(kPresses + kWarmUp);
  std::iota(phases.begin(), phases.end(), -kWarmUp);
  std::shuffle(phases.begin() + kWarmUp, phases.end(), random);
  Times times;
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
      const KernelEvent key = keyboard.Events()[0];
      times.sent.push_back(static_cast<double>(key.us - begin));
      times.seen.push_back(static_cast<double>(key.seenUs - begin));
    }
    next(phase);
    pad.Release(0);
    if (!keyboard.WaitFor(2, 2000)) {
      Fail("a release doesn't come through");
    }
  }
  return times;
}

void Print(const std::string& what, const Times& times) {
  PrintTimes(what, times.sent);
  PrintTimes("  until a waiting thread has read it", times.seen);
}

// A program that does nothing but wait for the pad and send a key.
void MeasureForwarder() {
  UinputPad pad(BenchPad());
  const pid_t forwarder = fork();
  if (forwarder == 0) {
    const int out = BareDevice(kForwarderName, EV_KEY, {KEY_A});
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
    Print("blocking forwarder, pad to key", PressTimes(pad, keyboard, 1000));
  }
  kill(forwarder, SIGKILL);
  waitpid(forwarder, nullptr, 0);
}

std::string Named(int intervalMs, const ProgramOptions& options) {
  std::string name = "kelvaroctl";
  for (const std::string& word : options.words) {
    name += " " + word;
  }
  return name + ", " + std::to_string(intervalMs) + " ms" +
         (options.asNobody ? ", no real-time threads" : "");
}

void MeasureProgram(int intervalMs, const ProgramOptions& options = {}) {
  UinputPad pad(BenchPad());
  Program program(pad, Profile(intervalMs), options);
  Print(Named(intervalMs, options) + ", pad to key",
        PressTimes(pad, program.Keyboard(), intervalMs * 1000));
}

// Of taps shorter than the interval.
void CountLostTaps(int intervalMs, const ProgramOptions& options = {}) {
  constexpr int kTaps = 100;
  UinputPad pad(BenchPad());
  Program program(pad, Profile(intervalMs), options);
  std::mt19937 random(20240229);
  std::uniform_int_distribution<int> phase(0, intervalMs * 1000);
  std::uniform_int_distribution<int> length(1000, 4000);
  for (int i = 0; i < kTaps; ++i) {
    const std::int64_t press = NowUs() + 50000 + phase(random);
    WaitUntilUs(press);
    pad.Press(0);
    WaitUntilUs(press + length(random));
    pad.Release(0);
  }
  WaitMs(100);
  int downs = 0;
  for (const KernelEvent& event : program.Keyboard().Events()) {
    downs += event.value;
  }
  std::printf("%-52s %7d of %d\n",
              (Named(intervalMs, options) + ", taps of 1 to 4 ms lost").c_str(), kTaps - downs,
              kTaps);
  std::fflush(stdout);
}

}  // namespace

void MeasurePresses() {
  std::printf("%-52s %7s %7s %7s %7s\n", "microseconds", "least", "median", "95 %", "most");
  MeasureReadBack();
  MeasureForwarder();
  for (const int intervalMs : {1, 5}) {
    MeasureProgram(intervalMs);
    MeasureProgram(intervalMs, {.asNobody = true});
    MeasureProgram(intervalMs, {.words = {"--wake"}});
    MeasureProgram(intervalMs, {.words = {"--wake"}, .asNobody = true});
  }
  CountLostTaps(5);
  CountLostTaps(5, {.words = {"--wake"}});
}

}  // namespace kelvaro::kernel
