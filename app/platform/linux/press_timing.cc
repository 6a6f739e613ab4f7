#include "app/platform/linux/press_timing.h"

#include <errno.h>
#include <fcntl.h>
#include <linux/input.h>
#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <utility>

#include "app/platform/linux/monotonic_time.h"
#include "app/platform/linux/waiting.h"

namespace platform {
namespace {

constexpr unsigned kSeed = 20240229;
constexpr int kTapGapUs = 50000;
constexpr int kLongestTapUs = 4000;

std::int64_t NowUs() { return MonotonicNow() / 1000; }

void SleepUntilUs(std::int64_t us) { SleepUntil(us * 1000); }

std::int64_t Microseconds(const input_event& event) {
  return std::int64_t{event.input_event_sec} * 1000000 + event.input_event_usec;
}

Descriptor OpenForUsAlone(const std::string& node, int flags, int* errorCode) {
  Descriptor opened(open(node.c_str(), O_RDONLY | O_CLOEXEC | flags));
  int clock = CLOCK_MONOTONIC;
  if (opened && ioctl(opened.Get(), EVIOCSCLOCKID, &clock) == 0 &&
      ioctl(opened.Get(), EVIOCGRAB, 1) == 0)
    return opened;
  *errorCode = errno;
  return Descriptor();
}

// In the child: system calls alone.
[[noreturn]] void Forward(int from, int button, int to, int key) {
  input_event events[16];
  ssize_t size;
  while ((size = read(from, events, sizeof events)) > 0) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(size) / sizeof events[0]; ++i) {
      if (events[i].type != EV_KEY || events[i].code != button) continue;
      input_event batch[2] = {};
      batch[0].type = EV_KEY;
      batch[0].code = static_cast<std::uint16_t>(key);
      batch[0].value = events[i].value;
      batch[1].type = EV_SYN;
      if (write(to, batch, sizeof batch) < 0) _exit(1);
    }
  }
  _exit(1);
}

}  // namespace

// The keys

std::unique_ptr<KeyWatch> KeyWatch::Open(const std::string& path, int* errorCode) {
  Descriptor opened = OpenForUsAlone(path, O_NONBLOCK, errorCode);
  if (!opened) return nullptr;
  return std::unique_ptr<KeyWatch>(new KeyWatch(std::move(opened)));
}

KeyWatch::KeyWatch(Descriptor opened)
    : node(std::move(opened)), stop(eventfd(0, EFD_CLOEXEC)), thread([this] { Collect(); }) {}

KeyWatch::~KeyWatch() {
  eventfd_write(stop.Get(), 1);
  thread.join();
}

void KeyWatch::Collect() {
  pollfd wanted[] = {{node.Get(), POLLIN, 0}, {stop.Get(), POLLIN, 0}};
  for (;;) {
    Retry([&] { return poll(wanted, 2, -1); });
    if (wanted[1].revents != 0) return;
    input_event batch[64];
    const ssize_t size = Retry([&] { return read(node.Get(), batch, sizeof batch); });
    if (size < 0 && errno != EAGAIN) return;
    const std::int64_t seen = NowUs();
    const std::size_t count = size < 0 ? 0 : static_cast<std::size_t>(size) / sizeof batch[0];
    const std::lock_guard<std::mutex> lock(mutex);
    for (const input_event* event = batch; event != batch + count; ++event)
      if (event->type == EV_KEY && event->value != 2)
        keys.push_back({event->value != 0, Microseconds(*event), seen});
    arrived.notify_all();
  }
}

std::optional<KeyWatch::Key> KeyWatch::Next(bool down, std::chrono::milliseconds limit) {
  std::unique_lock<std::mutex> lock(mutex);
  const auto end = std::chrono::steady_clock::now() + limit;
  for (;;) {
    const auto found =
        std::find_if(keys.begin(), keys.end(), [down](const Key& key) { return key.down == down; });
    if (found != keys.end()) {
      const Key key = *found;
      keys.erase(keys.begin(), found + 1);
      return key;
    }
    if (arrived.wait_until(lock, end) == std::cv_status::timeout) return std::nullopt;
  }
}

void KeyWatch::Forget() {
  const std::lock_guard<std::mutex> lock(mutex);
  keys.clear();
}

int KeyWatch::Downs() {
  const std::lock_guard<std::mutex> lock(mutex);
  return static_cast<int>(
      std::count_if(keys.begin(), keys.end(), [](const Key& key) { return key.down; }));
}

// The bare forwarder

std::unique_ptr<Forwarder> Forwarder::Start(const std::string& from, int button, int to, int key,
                                            int* errorCode) {
  const Descriptor pad = OpenForUsAlone(from, 0, errorCode);
  if (!pad) return nullptr;
  const pid_t maker = getpid();
  const pid_t child = fork();
  if (child == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != maker) _exit(1);
    Forward(pad.Get(), button, to, key);
  }
  if (child > 0) return std::unique_ptr<Forwarder>(new Forwarder(child));
  *errorCode = errno;
  return nullptr;
}

Forwarder::~Forwarder() {
  kill(child, SIGKILL);
  Retry([this] { return waitpid(child, nullptr, 0); });
}

// The presses

PressTimes TimePresses(const PressButton& press, KeyArrivals& keys, const PressPlan& plan,
                       const std::function<bool()>& goOn) {
  std::mt19937 random(kSeed);
  std::vector<int> phases(static_cast<std::size_t>(plan.presses + plan.warmUp));
  std::iota(phases.begin(), phases.end(), -plan.warmUp);
  std::shuffle(phases.begin() + plan.warmUp, phases.end(), random);
  std::uniform_int_distribution<std::int64_t> within(0, plan.intervalUs / plan.presses);
  const auto waitFor = [&](std::int64_t phase) {
    const std::int64_t earliest = NowUs() + plan.gapUs;
    const std::int64_t whole = earliest / plan.intervalUs * plan.intervalUs;
    const std::int64_t step = (phase + plan.presses) % plan.presses;
    const std::int64_t us = whole + step * plan.intervalUs / plan.presses + within(random);
    SleepUntilUs(us < earliest ? us + plan.intervalUs : us);
  };
  PressTimes times;
  const std::chrono::milliseconds limit(plan.limitMs);
  for (const int phase : phases) {
    if (!goOn()) return times;
    keys.Forget();
    waitFor(phase);
    const std::int64_t begin = NowUs();
    if (!press(true)) return times;
    const std::optional<KeyArrivals::Key> key = keys.Next(true, limit);
    if (phase >= 0 && key) {
      times.sent.push_back(static_cast<double>(key->sentUs - begin));
      times.seen.push_back(static_cast<double>(key->seenUs - begin));
    } else if (phase >= 0) {
      ++times.lost;
    }
    waitFor(phase);
    if (!press(false)) return times;
    if (key) keys.Next(false, limit);
  }
  return times;
}

std::optional<int> CountLostTaps(const PressButton& press, KeyWatch& keys, int intervalUs, int taps,
                                 const std::function<bool()>& goOn) {
  std::mt19937 random(kSeed);
  std::uniform_int_distribution<int> phase(0, intervalUs);
  std::uniform_int_distribution<int> length(1000, kLongestTapUs);
  keys.Forget();
  for (int i = 0; i < taps; ++i) {
    if (!goOn()) return std::nullopt;
    const std::int64_t begin = NowUs() + kTapGapUs + phase(random);
    SleepUntilUs(begin);
    if (!press(true)) return std::nullopt;
    SleepUntilUs(begin + length(random));
    if (!press(false)) return std::nullopt;
  }
  SleepUntilUs(NowUs() + std::int64_t{2} * (kTapGapUs + intervalUs));  // for the last one's key
  return taps - keys.Downs();
}

}  // namespace platform
