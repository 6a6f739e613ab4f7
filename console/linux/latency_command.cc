// kelvaroctl latency: from press to key on this machine, through a pad and a keyboard of our own.
// Both are grabbed, so that nothing of it reaches another program.

#include <errno.h>
#include <libevdev/libevdev-uinput.h>
#include <libevdev/libevdev.h>
#include <linux/input.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

#include "app/platform/linux/kernel_events.h"
#include "app/platform/linux/press_timing.h"
#include "app/platform/linux/uinput_input.h"
#include "app/platform/linux/virtual_pad.h"
#include "app/platform/recording/recording.h"
#include "console/commands.h"
#include "console/console_error.h"
#include "console/engine_session.h"
#include "console/file_machine.h"
#include "console/latency_report.h"
#include "console/profile_source.h"
#include "console/real_machine.h"
#include "console/stop_signals.h"
#include "console/write_file.h"

namespace kelvaro::console {
namespace {

using Kind = LatencyWay::Kind;

constexpr std::uint32_t kUsualPresses = 200;
constexpr std::uint32_t kFewest = 10;
constexpr std::uint32_t kMostTaps = 100;
constexpr std::uint32_t kWayMs = 10000;  // about, unless a number of presses is asked for
constexpr int kGapUs = 15000;
constexpr std::uint64_t kTillReadable = 5000;  // ms; the rules of udev's take a moment

// A key that hardly a keyboard has: button 1 of the pad is F24.
constexpr int kKey = KEY_F24;
constexpr char kControls[] =
    R"({"controls":[{"buttonMask":"0x1","actions":[{"steps":[[135,0,0]]}]}]})";

// Systems let the user at the machine read game pads, but no keyboards: so this one has the buttons
// of a pad as well.
bool Describe(libevdev* device) {
  input_absinfo range{};
  range.minimum = -1;
  range.maximum = 1;
  bool fine = true;
  for (const unsigned code : {kKey, BTN_SOUTH, BTN_EAST, BTN_NORTH, BTN_WEST})
    fine = libevdev_enable_event_code(device, EV_KEY, code, nullptr) == 0 && fine;
  for (const unsigned code : {ABS_X, ABS_Y})
    fine = libevdev_enable_event_code(device, EV_ABS, code, &range) == 0 && fine;
  return fine;
}

// The pad, the keys that come of it, and who reads them.
class Course {
 public:
  explicit Course(StopSignals& signals)
      : signals(signals), padName("Kelvaro Measured Pad " + std::to_string(getpid())) {}

  // False, with *error, where the devices can't be made or read; or where a signal came, without.
  bool Open(std::string* error) {
    int errorCode = 0;
    pad = platform::VirtualPad::Open({padName, 11, 3, 0}, &errorCode);
    if (pad)
      keys = platform::MakeUinput(platform::kMeasuredKeysName, platform::UinputProduct::Keyboard,
                                  Describe, &errorCode);
    if (!keys) {
      *error = "can't make a pad: " + platform::UinputAdvice(errorCode);
      return false;
    }
    output = std::make_unique<platform::KernelEvents>(libevdev_uinput_get_fd(keys.get()),
                                                      libevdev_uinput_get_fd(keys.get()));
    const std::string node = platform::NodeOf(keys);
    if (!ReadableInTime([&] {
          if (!watch) watch = platform::KeyWatch::Open(node, &errorCode);
          return watch && access(pad->Node().c_str(), R_OK) == 0;
        })) {
      if (signals.Wait(0)) return false;
      if (watch) errorCode = EACCES;
      *error = (watch ? pad->Node() : node) + ", which this made, can't be kept for itself: " +
               (errorCode == EBUSY ? "another program has grabbed it" : strerror(errorCode));
      return false;
    }
    return true;
  }

  const std::string& PadName() const { return padName; }
  platform::LinuxInput& Output() { return *output; }
  std::uint32_t Refused() const { return output->FailedEvents(); }

  std::unique_ptr<platform::Forwarder> Forward(std::string* error) {
    int errorCode = 0;
    auto forwarder = platform::Forwarder::Start(
        pad->Node(), BTN_SOUTH, libevdev_uinput_get_fd(keys.get()), kKey, &errorCode);
    if (!forwarder) *error = std::string("the bare forwarder can't start: ") + strerror(errorCode);
    return forwarder;
  }

  // False when a signal ends it, or the pad fails.
  bool TimePresses(int presses, LatencyWay* way) {
    platform::PressPlan plan;
    plan.intervalUs = static_cast<int>(way->interval) * 1000;
    plan.presses = presses;
    plan.gapUs = kGapUs;
    platform::PressTimes times = platform::TimePresses(Press(), *watch, plan, GoOn());
    way->kernel = std::move(times.sent);
    way->read = std::move(times.seen);
    way->lost = times.lost;
    std::sort(way->kernel.begin(), way->kernel.end());
    std::sort(way->read.begin(), way->read.end());
    return way->read.size() + static_cast<std::size_t>(way->lost) ==
           static_cast<std::size_t>(presses);
  }
  bool CountTaps(int taps, LatencyWay* way) {
    way->taps = taps;
    way->tapsLost = platform::CountLostTaps(Press(), *watch, static_cast<int>(way->interval) * 1000,
                                            taps, GoOn());
    return way->tapsLost.has_value();
  }

 private:
  bool ReadableInTime(const std::function<bool()>& readable) {
    constexpr std::uint64_t kStep = 20;  // ms
    for (std::uint64_t waited = 0; !readable(); waited += kStep)
      if (waited >= kTillReadable || signals.Wait(kStep)) return false;
    return true;
  }

  // Made before, so that only the sending is measured.
  platform::PressButton Press() {
    platform::DIJOYSTATE2 state = platform::StateAtRest();
    const auto up = pad->ReportOf(state);
    state.rgbButtons[0] = 0x80;
    return [this, up, down = pad->ReportOf(state)](bool isDown) {
      int errorCode = 0;
      return pad->Send(isDown ? down : up, &errorCode);
    };
  }
  std::function<bool()> GoOn() {
    return [this] { return !signals.Wait(0); };
  }

  StopSignals& signals;
  const std::string padName;  // nobody else's
  std::unique_ptr<platform::VirtualPad> pad;
  std::unique_ptr<platform::KeyWatch> watch;  // outlives the keys, so that nobody sees their end
  platform::UinputDevice keys;
  std::unique_ptr<platform::KernelEvents> output;  // of the engine
};

struct Amount {
  int presses = 0;
  int taps = 0;
};

Amount AmountFor(const LatencyOptions& options, std::uint32_t interval) {
  const std::uint32_t pressMs = 2 * (kGapUs / 1000 + interval);
  const std::uint32_t tapMs = 50 + interval / 2;
  Amount amount;
  amount.presses = static_cast<int>(
      options.presses.value_or(std::clamp(kWayMs / pressMs, kFewest, kUsualPresses)));
  amount.taps =
      std::min(amount.presses, static_cast<int>(std::clamp(kWayMs / tapMs, kFewest, kMostTaps)));
  return amount;
}

// False, with *error, where the way can't be gone; without, where a signal or the pad ended it.
bool MeasureMachine(Course& course, const Amount& amount, LatencyWay* way, std::string* error) {
  const auto forwarder = course.Forward(error);
  return forwarder && course.TimePresses(amount.presses, way);
}

bool MeasureKelvaro(Course& course, const Amount& amount, LatencyWay* way, std::string* error) {
  ProfileFile profile;
  ProfileFault fault;
  if (!ReadProfileBytes(kControls, "controls", &profile, &fault)) {
    *error = fault.message;
    return false;
  }
  profile.pollInterval = way->interval;
  RealMachine machine;
  machine.SendTo(course.Output());
  EngineSession session(profile);
  session.SetAnswerAtOnce(way->kind == Kind::Wake);
  session.TakeDeviceAlone();
  DeviceChoice choice;
  choice.name = course.PadName();
  if (!session.Begin(choice, false, error)) return false;
  const bool whole = course.TimePresses(amount.presses, way) && course.CountTaps(amount.taps, way);
  session.End();
  if (course.Refused() > 0) *error = "the system refused some of the keys";
  return whole && error->empty();
}

// The exit status; *ways are whole where that is kDone.
int Measure(const LatencyOptions& options, std::uint32_t interval, StopSignals& signals,
            std::vector<LatencyWay>* ways, Streams streams) {
  const Amount amount = AmountFor(options, interval);
  Course course(signals);
  std::string error;
  bool good = course.Open(&error);
  if (good) {
    streams.err << "Presses a button of a pad of its own; neither the pad nor the keys reach "
                   "another program. Ctrl-C ends it."
                << std::endl;
  }
  for (const Kind kind : {Kind::Machine, Kind::Interval, Kind::Wake}) {
    if (!good) break;
    LatencyWay& way = ways->emplace_back();
    way.kind = kind;
    way.interval = interval;
    streams.err << "  " << ways->size() << " of 3: " << LatencyName(way) << ", " << amount.presses
                << " presses" << std::endl;
    good = kind == Kind::Machine ? MeasureMachine(course, amount, &way, &error)
                                 : MeasureKelvaro(course, amount, &way, &error);
  }
  if (good) return kDone;
  if (signals.Wait(0)) return kBad;
  return Complain(streams.err, error.empty() ? "the pad that this made has gone" : error);
}

}  // namespace

int LatencyCommand(const LatencyOptions& options, Streams streams) {
  ProfileFile profile;
  if (options.profile) {
    const FileMachine machine;
    if (!FindProfile(*options.profile, &profile, streams.err)) return kBad;
  }
  std::vector<LatencyWay> ways;
  {
    StopSignals signals;
    const int status = Measure(options, profile.pollInterval, signals, &ways, streams);
    signals.EndAsAsked();
    if (status != kDone) return status;
  }
  streams.out << (options.json ? LatencyJson(ways) : LatencyText(ways)) << std::flush;
  if (!options.svg) return kDone;
  std::string error;
  if (WriteWholeFile(*options.svg, LatencySvg(ways), &error)) return kDone;
  return Complain(streams.err, *options.svg + ": " + error);
}

}  // namespace kelvaro::console
