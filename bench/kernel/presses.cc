#include <fcntl.h>
#include <linux/input.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>

#include "bench/kernel/measure.h"
#include "tests/kernel/asking.h"

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

platform::PressButton ButtonOf(UinputPad& pad) {
  return [&pad](bool down) {
    down ? pad.Press(0) : pad.Release(0);
    return true;
  };
}

bool GoOn() { return true; }

void Print(const std::string& what, const platform::PressTimes& times) {
  PrintTimes(what, times.sent);
  PrintTimes("  until a waiting thread has read it", times.seen);
}

void MeasureForwarder() {
  UinputPad pad(BenchPad());
  const int out = BareDevice(kForwarderName, EV_KEY, {KEY_A});
  {
    const auto keyboard = WatchKeys(kForwarderName);
    int errorCode = 0;
    const auto forwarder =
        platform::Forwarder::Start(pad.Node(), BTN_SOUTH, out, KEY_A, &errorCode);
    if (!forwarder) {
      Fail("the forwarder doesn't start");
    }
    Print("blocking forwarder, pad to key", TimesOf(pad, *keyboard, 1000, kPresses));
  }
  close(out);
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
        TimesOf(pad, program.Keyboard(), intervalMs * 1000, kPresses));
}

// One of 200 Controls, while others ask on and on, and alone.
void MeasureSteered(int intervalMs) {
  std::string others;
  for (int i = 1; i < 200; ++i) {
    others += ",{\"buttonMask\":\"0x" + std::to_string(2 + 2 * (i % 4)) +
              "\",\"triggerItems\":[{\"kind\":" + std::to_string(i % 2) +
              ",\"index\":0,\"value\":" + std::to_string(1 + i / 2 % 2) +
              "}],\"actions\":[{\"text\":\"b\"}]}";
  }
  std::string profile = Profile(intervalMs);
  profile.insert(profile.rfind(']'), others);
  UinputPad pad(BenchPad());
  Program program(pad, profile);
  const std::string what = "200 Controls, " + std::to_string(intervalMs) + " ms";
  Print(what, TimesOf(pad, program.Keyboard(), intervalMs * 1000, kPresses));
  Asking asking(program.Id(), 1000);
  Print(what + ", 1000 requests a second",
        TimesOf(pad, program.Keyboard(), intervalMs * 1000, kPresses));
  const int answers = asking.End();
  if (answers == 0) {
    Fail("nobody answers: " + asking.Err());
  }
  std::printf("%-52s %7d\n", "  answers", answers);
}

// Of taps shorter than the interval.
void CountLostTaps(int intervalMs, const ProgramOptions& options = {}) {
  constexpr int kTaps = 100;
  UinputPad pad(BenchPad());
  Program program(pad, Profile(intervalMs), options);
  const auto lost =
      platform::CountLostTaps(ButtonOf(pad), program.Keyboard(), intervalMs * 1000, kTaps, GoOn);
  std::printf("%-52s %7d of %d\n",
              (Named(intervalMs, options) + ", taps of 1 to 4 ms lost").c_str(), *lost, kTaps);
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
  for (const int intervalMs : {1, 5}) {
    MeasureSteered(intervalMs);
  }
  CountLostTaps(5);
  CountLostTaps(5, {.words = {"--wake"}});
}

}  // namespace kelvaro::kernel
