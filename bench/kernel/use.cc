#include <fcntl.h>
#include <linux/input.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <ctime>

#include "bench/kernel/measure.h"
#include "tests/kernel/trace.h"
#include "tests/kernel/wait.h"
#include "tests/kernel/window_program.h"

namespace kelvaro::kernel {
namespace {

constexpr char kPointerName[] = "Bench Pointer";

// A thread that sleeps until the next millisecond and reads; with `pointer` it also sends a motion.
[[noreturn]] void RunBareLoop(const UinputPad& pad, bool pointer) {
  sched_param priority = {};
  priority.sched_priority = 1;
  sched_setscheduler(0, SCHED_FIFO, &priority);
  prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);
  const int in = open(pad.Node().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  const int out = pointer ? BareDevice(kPointerName, EV_REL, {REL_X, REL_Y}) : -1;
  input_event events[64];
  timespec next = {};
  clock_gettime(CLOCK_MONOTONIC, &next);
  for (int round = 1;; ++round) {
    next.tv_nsec += 1000000;
    if (next.tv_nsec >= 1000000000) {
      next.tv_nsec -= 1000000000;
      ++next.tv_sec;
    }
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &next, nullptr);
    if (read(in, events, sizeof events) >= 0 || errno != EAGAIN) {
      _exit(1);  // the pad isn't still
    }
    if (pointer) {
      SendBare(out, {{EV_REL, REL_X, 1 + round % 9}, {EV_REL, REL_Y, 1 + round % 7}});
    }
  }
}

// The least that polling can cost, alone and with a pointer that moves.
void MeasureBareLoop(bool pointer) {
  UinputPad pad(BenchPad());
  const pid_t loop = fork();
  if (loop == 0) {
    RunBareLoop(pad, pointer);
  }
  const std::unique_ptr<Reader> reader =
      pointer ? std::make_unique<Reader>(WaitForInput(kPointerName)) : nullptr;
  WaitMs(500);
  PrintStillUse(pointer ? "bare loop, 1000 sleeps, reads and motions a second"
                        : "bare loop, 1000 sleeps and reads a second",
                {loop});
  int status = 0;
  kill(loop, SIGKILL);
  if (waitpid(loop, &status, 0) != loop || !WIFSIGNALED(status)) {
    Fail("the bare loop ended by itself");
  }
}

void MeasureStillPad(int intervalMs) {
  UinputPad pad(BenchPad());
  Program program(pad, Profile(intervalMs));
  PrintStillUse("kelvaroctl, pad still, " + std::to_string(intervalMs) + " ms", {program.Id()});
}

// kelvaro, off-screen, with a still pad.
void MeasureWindow(bool hidden, int intervalMs) {
  UinputPad pad(BenchPad());
  const WindowProgram window;
  window.AddProfile(
      "Bench", Profile(intervalMs, std::string(",\"profileName\":\"Bench\",\"deviceName\":\"") +
                                       kPadName + "\""));
  window.Set("Start Minimized", hidden ? 1 : 0);
  const std::unique_ptr<Child> child = window.Start();
  // Also while its files are fetched from the host and the clock runs ahead.
  if (!Eventually([&] { return DescriptorOf(child->Id(), pad.Node()) >= 0; }, 600000)) {
    Fail("kelvaro doesn't start: " + child->Err());
  }
  WaitMs(3000);
  const std::string what = hidden ? "window hidden" : "window open";
  PrintStillUse(what + ", pad still, " + std::to_string(intervalMs) + " ms", {child->Id()});
  std::printf("%-52s %9ld KB, %ld KB\n", (what + ", memory: resident, proportional").c_str(),
              MemoryKbOf(child->Id(), "Rss:"), MemoryKbOf(child->Id(), "Pss:"));
  std::fflush(stdout);
  child->Signal(SIGTERM);
  if (child->WaitForEnd(10s) != 0) {
    Fail("kelvaro doesn't end: " + child->Err());
  }
}

void MeasurePointer(int intervalMs) {
  UinputPad pad(BenchPad());
  Program program(pad, Profile(intervalMs, kMouseOfStick));
  std::printf("%-52s %9ld KB\n", "memory (proportional) at rest", MemoryKbOf(program.Id(), "Pss:"));
  Circle circle(pad);
  circle.Play(1);
  program.Mouse().Clear();
  const std::int64_t begin = NowUs();
  PrintUse("stick at 250 Hz, pointer moving, " + std::to_string(intervalMs) + " ms", {program.Id()},
           [&] { circle.Play(kSeconds); });
  const std::int64_t end = NowUs();
  std::vector<std::int64_t> frames;
  for (const KernelEvent& event : program.Mouse().Events()) {
    if (event.us >= begin && event.us < end && (frames.empty() || frames.back() != event.us)) {
      frames.push_back(event.us);
    }
  }
  std::printf("%-52s %9.1f\n", "pointer frames a second",
              static_cast<double>(frames.size()) * 1e6 / static_cast<double>(end - begin));
  double squares = 0;
  double most = 0;
  for (std::size_t i = 1; i < frames.size(); ++i) {
    const double off = std::abs(static_cast<double>(frames[i] - frames[i - 1]) - intervalMs * 1000);
    squares += off * off;
    most = std::max(most, off);
  }
  if (frames.size() < 2) {
    Fail("the pointer doesn't move");
  }
  std::printf("%-52s %9.0f us (standard), %.0f us (most)\n",
              "  off that interval between two frames",
              std::sqrt(squares / static_cast<double>(frames.size() - 1)), most);
  std::printf("%-52s %9ld KB\n", "memory (proportional) after the run",
              MemoryKbOf(program.Id(), "Pss:"));
}

}  // namespace

void MeasureUse() {
  MeasureBareLoop(false);
  MeasureBareLoop(true);
  for (const int intervalMs : {1, 5}) {
    MeasureStillPad(intervalMs);
  }
  for (const int intervalMs : {1, 5}) {
    MeasurePointer(intervalMs);
  }
  std::printf("\n");
  MeasureWindow(true, 1);
  MeasureWindow(true, 5);
  MeasureWindow(false, 5);
}

}  // namespace kelvaro::kernel
