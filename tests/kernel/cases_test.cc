// The case files again, through a real pad: the recording is played by a pad made through uinput,
// and the kernel's events of the virtual keyboard and mouse are held against the expected ones, as
// are the lines that kelvaroctl prints. The machine's clock skips idle time, so times are compared
// too, with some milliseconds of grace.

#include <gtest/gtest.h>
#include <linux/input.h>
#include <sys/syscall.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <map>
#include <set>
#include <sstream>

#include "app/platform/input.h"
#include "app/platform/recording/recording.h"
#include "tests/cases/case_file.h"
#include "tests/host/json.h"
#include "tests/kernel/pad.h"
#include "tests/kernel/profile_run.h"
#include "tests/kernel/trace.h"
#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

using platform::Recording;
using platform::StateChange;

struct TimedText {
  std::int64_t ms;
  std::string text;
};

// The kernel numbers the keys of the main block as the keyboard does; the extended keys that cases
// use stand in a list.
unsigned int KeyCodeOf(unsigned int scan, bool press) {
  static const std::map<unsigned int, unsigned int> extended = {
      {0x9C, KEY_KPENTER}, {0x9D, KEY_RIGHTCTRL}, {0xB5, KEY_KPSLASH}, {0xB8, KEY_RIGHTALT},
      {0xC7, KEY_HOME},    {0xC8, KEY_UP},        {0xC9, KEY_PAGEUP},  {0xCB, KEY_LEFT},
      {0xCD, KEY_RIGHT},   {0xCF, KEY_END},       {0xD0, KEY_DOWN},    {0xD1, KEY_PAGEDOWN},
      {0xD2, KEY_INSERT},  {0xD3, KEY_DELETE}};
  if (scan >= 1 && scan <= 0x58) {
    return scan;
  }
  const auto found = extended.find(scan);
  if (found == extended.end() && !press) {
    return 0;  // the stray release after a long pause; nothing such was ever down
  }
  if (found == extended.end()) {
    ADD_FAILURE() << "scan code " << scan << " has no kernel key code in this test";
    return 0;
  }
  return found->second;
}

// A whole number; it is one wherever this is asked.
int Number(const tests::Json& value) { return static_cast<int>(value.Signed().value()); }

// What the kernel passes on of the events of a case: it drops what changes nothing. A release that
// its own virtual key hadn't pressed doesn't get so far.
std::vector<TimedText> KernelTexts(const std::vector<std::string>& lines) {
  std::vector<TimedText> texts;
  std::map<unsigned int, bool> down;
  std::map<unsigned int, std::set<unsigned int>> holders;  // virtual keys, of each kernel key
  const auto key = [&](std::int64_t t, unsigned int code, bool press) {
    if (code != 0 && down[code] != press) {
      down[code] = press;
      texts.push_back({t, EventText({0, EV_KEY, code, press ? 1 : 0})});
    }
  };
  const auto turn = [&](std::int64_t t, unsigned int code, int value) {
    if (value != 0) {
      texts.push_back({t, EventText({0, EV_REL, code, value})});
    }
  };
  for (const std::string& line : lines) {
    const tests::Json event = tests::Parsed(line);
    const std::int64_t t = event["t"].Signed().value();
    const auto flags = static_cast<unsigned int>(Number(event["flags"]));
    if (event["event"].Text() == "key") {
      const bool press = (flags & platform::KEYEVENTF_KEYUP) == 0;
      const unsigned int code = KeyCodeOf(static_cast<unsigned int>(Number(event["scan"])), press);
      const auto vk = static_cast<unsigned int>(Number(event["vk"]));
      std::set<unsigned int>& vks = holders[code];
      if (press) {
        vks.insert(vk);
      }
      if (press || vks.erase(vk) != 0) {
        key(t, code, press);
      }
      continue;
    }
    if ((flags & platform::MOUSEEVENTF_MOVE) != 0) {
      turn(t, REL_X, Number(event["dx"]));
      turn(t, REL_Y, Number(event["dy"]));
    }
    if ((flags & platform::MOUSEEVENTF_WHEEL) != 0) {
      turn(t, REL_WHEEL_HI_RES, Number(event["data"]));
    }
    const struct {
      std::uint32_t down;
      std::uint32_t up;
      unsigned int code;
    } edges[] = {
        {platform::MOUSEEVENTF_LEFTDOWN, platform::MOUSEEVENTF_LEFTUP, BTN_LEFT},
        {platform::MOUSEEVENTF_RIGHTDOWN, platform::MOUSEEVENTF_RIGHTUP, BTN_RIGHT},
        {platform::MOUSEEVENTF_MIDDLEDOWN, platform::MOUSEEVENTF_MIDDLEUP, BTN_MIDDLE},
    };
    for (const auto& edge : edges) {
      if ((flags & (edge.down | edge.up)) != 0) {
        key(t, edge.code, (flags & edge.down) != 0);
      }
    }
  }
  return texts;
}

// What kelvaroctl printed, or was expected to: everything but the time.
std::vector<TimedText> PrintedTexts(const std::vector<std::string>& lines) {
  std::vector<TimedText> texts;
  for (const std::string& line : lines) {
    // The time is the first member of each.
    const std::int64_t t = tests::Parsed(line)["t"].Signed().value();
    texts.push_back({t, line.substr(line.find(',') + 1)});
  }
  return texts;
}

// Compares in order; a time within `early` before and `late` after the expected one is right.
::testing::AssertionResult SameInTime(const std::vector<TimedText>& expected,
                                      const std::vector<TimedText>& actual, std::int64_t early,
                                      std::int64_t late) {
  std::vector<std::string> left;
  std::vector<std::string> right;
  for (const TimedText& entry : expected) {
    left.push_back(std::to_string(entry.ms) + " " + entry.text);
  }
  for (std::size_t i = 0; i < actual.size(); ++i) {
    std::int64_t ms = actual[i].ms;
    if (i < expected.size() && ms >= expected[i].ms - early && ms <= expected[i].ms + late) {
      ms = expected[i].ms;
    }
    right.push_back(std::to_string(ms) + " " + actual[i].text);
  }
  return SameColumns(left, right);
}

class RecordedPad {
 public:
  explicit RecordedPad(const Recording& recording)
      : pad(ShapeOf(recording)), held(recording.device.buttons, false) {}

  const std::string& Node() const { return pad.Node(); }
  void Stir() { pad.Stir(); }

  // False for a change that no pad of the kernel can make.
  bool Apply(const StateChange& change) {
    if (change.hasLost) {
      return false;
    }
    if (change.hasButtons) {
      for (std::size_t i = 0; i < held.size(); ++i) {
        const bool down =
            std::find(change.buttons.begin(), change.buttons.end(), i + 1) != change.buttons.end();
        if (down != held[i]) {
          held[i] = down;
          pad.Put(EV_KEY, codes[i], down ? 1 : 0);
        }
      }
    }
    static const unsigned int axes[] = {ABS_X,  ABS_Y,  ABS_Z,        ABS_RX,
                                        ABS_RY, ABS_RZ, ABS_THROTTLE, ABS_RUDDER};
    for (const auto& [axis, value] : change.axes) {
      if (axis.bank != 0) {
        return false;
      }
      pad.Put(EV_ABS, axes[axis.kind], value);
    }
    for (const auto& [hat, angle] : change.povs) {
      if (angle != 0xFFFFFFFF && angle % 4500 != 0) {
        return false;
      }
      pad.PutHat(static_cast<int>(hat), static_cast<int>(angle));
    }
    pad.Sync();
    return true;
  }

 private:
  PadShape ShapeOf(const Recording& recording) {
    PadShape shape;
    shape.name = recording.device.name;
    codes = recording.device.buttons <= 11 ? GamePadButtons(recording.device.buttons)
                                           : ManyButtons(128);
    codes.resize(recording.device.buttons);
    shape.buttons = codes;
    for (const unsigned int axis :
         {ABS_X, ABS_Y, ABS_Z, ABS_RX, ABS_RY, ABS_RZ, ABS_THROTTLE, ABS_RUDDER}) {
      if (shape.axes.size() < recording.device.axes) {
        shape.axes.push_back({axis});
      }
    }
    shape.hats = static_cast<int>(recording.device.povs);
    return shape;
  }

  std::vector<unsigned int> codes;
  UinputPad pad;
  std::vector<bool> held;
};

// The moment of one poll of the pad, found by watching the process at work.
std::int64_t PollMoment(pid_t process, RecordedPad& pad, int interval) {
  const int descriptor = DescriptorOf(process, pad.Node());
  for (const SystemCall& call : TraceCalls(process, 3 * interval, [&] { pad.Stir(); })) {
    if (call.number == SYS_read && static_cast<int>(call.first) == descriptor) {
      return call.us;
    }
  }
  ADD_FAILURE() << "the pad isn't polled";
  return NowUs();
}

class KernelCase : public testing::TestWithParam<std::string> {};

TEST_P(KernelCase, SendsTheseEvents) {
  cases::Case wanted;
  std::string error;
  ASSERT_TRUE(cases::ReadCase(GetParam(), &wanted, &error)) << error;
  Recording recording;
  std::istringstream lines(wanted.recording);
  ASSERT_TRUE(platform::ReadRecording(lines, &recording, &error)) << error;
  const tests::Json profile = tests::Parsed(wanted.profile);
  const int interval = static_cast<int>(profile["pollInterval"].Signed().value_or(5));

  std::vector<std::string> options;
  std::int64_t end = static_cast<std::int64_t>(recording.Length()) + 1000;
  for (std::size_t i = 0; i < wanted.options.size(); ++i) {
    // Its time counts from the start of the program, and the recording begins somewhat later.
    if (wanted.options[i] == "--until") {
      end = std::stoll(wanted.options.at(++i));
    } else {
      options.push_back(wanted.options[i]);
    }
  }

  RecordedPad pad(recording);
  ProfileRun run(wanted.profile, recording.device.name, pad.Node(), options);
  ASSERT_TRUE(run.Started());
  // Time 0 is the moment of a poll. A change is sent half an interval before the poll that is to
  // see it, so that it is clear which one does.
  const std::int64_t step = static_cast<std::int64_t>(interval) * 1000;
  std::int64_t begin = PollMoment(run.Process().Id(), pad, interval);
  while (begin < NowUs() + 50000) {
    begin += step;
  }
  const auto pollAt = [&](std::int64_t t) { return begin + (t * 1000 + step - 1) / step * step; };
  for (const StateChange& change : recording.changes) {
    const std::int64_t t = static_cast<std::int64_t>(change.t);
    if (t >= end) {
      break;
    }
    WaitUntilUs(pollAt(t) - step / 2);
    ASSERT_TRUE(pad.Apply(change))
        << "no real pad can do this; the case is to say \"simulation only\"";
  }
  WaitUntilUs(begin + end * 1000);
  run.Process().Signal(SIGINT);
  EXPECT_EQ(run.Process().WaitForEnd(5s), 0) << run.Process().Err();

  // Keyboard and mouse are two devices; their times put their events in one row.
  std::vector<KernelEvent> events = run.Keyboard().Events();
  const std::vector<KernelEvent> pointer = run.Mouse().Events();
  events.insert(events.end(), pointer.begin(), pointer.end());
  std::stable_sort(events.begin(), events.end(),
                   [](const KernelEvent& a, const KernelEvent& b) { return a.us < b.us; });
  std::vector<TimedText> sent;
  for (const KernelEvent& event : events) {
    sent.push_back({(event.us - begin) / 1000, EventText(event)});
  }
  // The repeat worker looks every 10 ms, from a start of its own.
  bool repeats = false;
  for (const tests::Json& control : profile["controls"].Elements()) {
    repeats = repeats || control["repeatEnabled"].Bool();
  }
  const std::int64_t early = repeats ? 10 : 0;
  const std::int64_t late = repeats ? 25 : 4;
  EXPECT_TRUE(SameInTime(KernelTexts(wanted.events), sent, early, late));

  // The program's own clock starts elsewhere: its first event is taken for on time.
  std::vector<TimedText> expected = PrintedTexts(wanted.events);
  std::vector<TimedText> printed = PrintedTexts(Lines(run.Process().Out()));
  if (!expected.empty() && !printed.empty()) {
    const std::int64_t shift = printed[0].ms - expected[0].ms;
    for (TimedText& entry : printed) {
      entry.ms -= shift;
    }
  }
  EXPECT_TRUE(SameInTime(expected, printed, early + 4, late)) << run.Process().Err();
}

std::vector<std::string> RealCases() {
  std::vector<std::string> paths;
  for (const std::string& path : cases::CaseFiles(KELVARO_CASES)) {
    cases::Case wanted;
    std::string error;
    // One that can't be read is kept: its test says why.
    if (!cases::ReadCase(path, &wanted, &error) || !wanted.simulationOnly) {
      paths.push_back(path);
    }
  }
  return paths;
}

INSTANTIATE_TEST_SUITE_P(Cases, KernelCase, testing::ValuesIn(RealCases()),
                         [](const auto& info) { return cases::CaseName(info.param); });

}  // namespace
}  // namespace kelvaro::kernel
