// Hours of play: the window and a second one of the same person on one X server, 200 Controls, and
// a pad that plays on and on, is pulled out and put back, and sleeps with the machine.
// KELVARO_SOAK_MINUTES, on the machine's clock, makes it longer.

#include <gtest/gtest.h>
#include <linux/input.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <set>

#include "tests/kernel/pad.h"
#include "tests/kernel/profile_run.h"
#include "tests/kernel/trace.h"
#include "tests/kernel/wait.h"
#include "tests/kernel/window_program.h"
#include "tests/program/machine.h"

namespace kelvaro::kernel {
namespace {

constexpr char kPad[] = "Soak Pad";
constexpr char kProfile[] = "Soak Profile";
constexpr std::size_t kControls = 200;
constexpr int kHats = 4;
constexpr int kHat = 8;                                // the kind of a hat's trigger
constexpr int kFull = 32000;                           // an axis' way
constexpr std::int64_t kRoundUs = 36 * 1000 * 1000LL;  // 100 rounds an hour
constexpr int kRoundsToASleep = 10;
constexpr long kGrowth = 1024;  // KB; a hundred bytes lost at each press would be more in an hour
constexpr int kSettledMinutes = 30;  // until then either window may need memory for the first time
// While files come from the host, the machine's clock runs far ahead.
constexpr int kPatienceMs = 20 * 60 * 1000;
constexpr std::chrono::milliseconds kPatience{kPatienceMs};

bool InTime(const std::function<bool()>& done) { return tests::Eventually(done, kPatience); }

int Minutes() {
  const char* minutes = std::getenv("KELVARO_SOAK_MINUTES");
  return minutes ? std::atoi(minutes) : 1;
}

PadShape Shape() {
  PadShape shape{.name = kPad, .buttons = ManyButtons(128)};
  shape.axes = {{ABS_X}, {ABS_Y}, {ABS_Z}, {ABS_RX}, {ABS_RY}, {ABS_RZ}};
  shape.hats = kHats;
  return shape;
}

// What a Control of the profile waits for, in the order of the profile: 64 buttons, 12 ends of
// axes, 16 directions of hats, and pairs of buttons.
struct Play {
  int kind = -1;  // of the trigger; -1 for buttons
  int index = 0;
  int value = 0;
  std::vector<std::size_t> buttons = {};
};

std::vector<Play> Plays() {
  std::vector<Play> plays;
  for (std::size_t button = 0; button < 64; ++button) plays.push_back({.buttons = {button}});
  for (int axis = 0; axis < 6; ++axis)
    for (const int value : {1, 2}) plays.push_back({.kind = axis, .index = 0, .value = value});
  for (int hat = 0; hat < kHats; ++hat)
    for (const int value : {1, 2, 4, 8})
      plays.push_back({.kind = kHat, .index = hat, .value = value});
  for (std::size_t button = 0; plays.size() < kControls; ++button)
    plays.push_back({.buttons = {button % 64, (button + 1 + button / 64) % 64}});
  return plays;
}

std::string ControlOf(const Play& play, const std::string& text) {
  if (play.kind >= 0) return ItemControl(play.kind, play.index, play.value, text);
  std::uint64_t mask = 0;
  for (const std::size_t button : play.buttons) mask |= 1ULL << button;
  return MaskControl(mask, text);
}

void Hold(UinputPad& pad, const Play& play, bool down) {
  constexpr std::array<unsigned, 6> kAxes = {ABS_X, ABS_Y, ABS_Z, ABS_RX, ABS_RY, ABS_RZ};
  static const std::map<int, int> kAngles = {{1, 27000}, {2, 0}, {4, 9000}, {8, 18000}};
  if (play.kind == kHat) return pad.TurnHat(play.index, down ? kAngles.at(play.value) : -1);
  if (play.kind >= 0) {
    const int full = play.value == 1 ? -kFull : kFull;
    return pad.Move(kAxes[static_cast<std::size_t>(play.kind)], down ? full : 0);
  }
  for (const std::size_t button : play.buttons) pad.PutButton(button, down);
  pad.Sync();
}

// What a process holds, once it is at rest.
struct Holdings {
  long residentKb = 0;
  long anonymousKb = 0;
  std::size_t descriptors = 0;
  std::size_t threads = 0;
};

Holdings HoldingsOf(pid_t process) {
  Holdings holdings;
  const std::string folder = "/proc/" + std::to_string(process) + "/";
  std::ifstream file(folder + "smaps_rollup");
  for (std::string word; file >> word;) {
    if (word == "Rss:") file >> holdings.residentKb;
    if (word == "Anonymous:") file >> holdings.anonymousKb;
  }
  holdings.descriptors = tests::OpenFiles(process).size();
  for ([[maybe_unused]] const auto& thread : std::filesystem::directory_iterator(folder + "task"))
    ++holdings.threads;
  return holdings;
}

struct Instance {
  std::unique_ptr<Child> child;
  std::unique_ptr<Reader> keyboard;
  std::unique_ptr<Reader> mouse;
  Holdings settled = {};
  std::vector<std::int64_t> backUs = {};  // from the plug to the first key
};

class Soak : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { tests::patience = kPatience; }
  void SetUp() override { SKIP_UNLESS(desktop.Works(), "xvfb", "Xvfb and icewm can't be started"); }

  void Prepare() {
    std::vector<std::string> controls;
    for (std::size_t i = 0; i < kControls; ++i)
      controls.push_back(ControlOf(plays[i], keys[i % keys.size()].text));
    program.AddProfile(kProfile, ProfileOf(controls, std::string("\"profileName\":\"") + kProfile +
                                                         "\",\"deviceName\":\"" + kPad + "\""));
    pad = std::make_unique<UinputPad>(Shape());
  }

  bool Start() {
    Instance& instance = instances.emplace_back();
    instance.child = program.Start(desktop.Name());
    instance.keyboard = ReaderOfANew(kKeyboardName, *instance.child);
    instance.mouse = ReaderOfANew(kMouseName, *instance.child);
    return instance.keyboard && instance.mouse &&
           InTime([&] { return DescriptorOf(instance.child->Id(), pad->Node()) >= 0; }) &&
           ComesToRest(kPatience);
  }

  std::unique_ptr<Reader> ReaderOfANew(const char* name, const Child& child) {
    std::string path;
    InTime([&] {
      path = FindInput(
          [&](const InputNode& node) { return node.name == name && !known.contains(node.path); });
      return !path.empty();
    });
    if (path.empty()) ADD_FAILURE() << "no " << name << ": " << child.Err();
    known.insert(path);
    return path.empty() ? nullptr : std::make_unique<Reader>(path);
  }

  // Exactly these have come from each keyboard since the last time.
  void ExpectFromAll(const std::vector<std::string>& expected) {
    for (Instance& instance : instances) {
      instance.keyboard->WaitFor(expected.size(), kPatienceMs);
      ASSERT_TRUE(SameColumns(expected, instance.keyboard->Texts())) << instance.child->Err();
    }
  }

  void ForgetEvents() {
    for (Instance& instance : instances) instance.keyboard->Clear();
  }

  std::string KeyOf(std::size_t control) const { return "KEY_" + keys[control % keys.size()].name; }

  std::size_t AnyControl() {
    return std::uniform_int_distribution<std::size_t>(0, plays.size() - 1)(random);
  }
  void WaitAWhile(int most) { WaitMs(std::uniform_int_distribution<int>(0, most)(random)); }

  // One Control down and up, and nothing else.
  void PlayOne() {
    const std::size_t control = AnyControl();
    SCOPED_TRACE("control " + std::to_string(control));
    ForgetEvents();
    Hold(*pad, plays[control], true);
    ASSERT_NO_FATAL_FAILURE(ExpectFromAll({KeyOf(control) + " down"}));
    WaitAWhile(80);
    Hold(*pad, plays[control], false);
    ASSERT_NO_FATAL_FAILURE(ExpectFromAll({KeyOf(control) + " down", KeyOf(control) + " up"}));
    WaitAWhile(80);
    ++presses;
  }

  // Out while something is held, and back with something else held.
  void PullAndPutBack() {
    const std::size_t held = AnyControl();
    ForgetEvents();
    Hold(*pad, plays[held], true);
    ASSERT_NO_FATAL_FAILURE(ExpectFromAll({KeyOf(held) + " down"}));
    pad.reset();
    ASSERT_NO_FATAL_FAILURE(ExpectFromAll({KeyOf(held) + " down", KeyOf(held) + " up"}));
    WaitAWhile(3000);
    ForgetEvents();
    const std::size_t button = AnyControl() % 64;
    const std::int64_t begin = NowUs();
    pad = std::make_unique<UinputPad>(Shape());
    pad->Press(button);
    ASSERT_NO_FATAL_FAILURE(ExpectFromAll({KeyOf(button) + " down"}));
    for (Instance& instance : instances)
      instance.backUs.push_back(instance.keyboard->Events().front().us - begin);
    pad->Release(button);
    ASSERT_NO_FATAL_FAILURE(ExpectFromAll({KeyOf(button) + " down", KeyOf(button) + " up"}));
    presses += 2;
  }

  // All programs stand still for a second, as they do while a machine sleeps. No deeper: this
  // machine doesn't wake from a whole sleep.
  void Sleep() {
    const std::size_t held = AnyControl();
    ForgetEvents();
    Hold(*pad, plays[held], true);
    ASSERT_NO_FATAL_FAILURE(ExpectFromAll({KeyOf(held) + " down"}));
    const std::int64_t begin = NowUs();
    for (const auto& [file, word] : {std::pair{"/sys/module/suspend/parameters/pm_test_delay", "1"},
                                     {"/sys/power/pm_test", "freezer"},
                                     {"/sys/power/state", "freeze"}}) {
      std::ofstream out(file);
      ASSERT_TRUE(out << word << std::flush) << file;
    }
    EXPECT_GE(NowUs() - begin, 900000) << "the machine hasn't slept";
    Hold(*pad, plays[held], false);
    ASSERT_NO_FATAL_FAILURE(ExpectFromAll({KeyOf(held) + " down", KeyOf(held) + " up"}));
    ++presses;
    ++sleeps;
  }

  void Round(int number) {
    SCOPED_TRACE("round " + std::to_string(number));
    const std::int64_t end = NowUs() + kRoundUs;
    ASSERT_NO_FATAL_FAILURE(PullAndPutBack());
    if (number % kRoundsToASleep == 0) {
      ASSERT_NO_FATAL_FAILURE(Sleep());
    }
    while (NowUs() < end) ASSERT_NO_FATAL_FAILURE(PlayOne());
    for (Instance& instance : instances) {
      ASSERT_TRUE(instance.child->Running()) << instance.child->Err();
      ASSERT_FALSE(instance.keyboard->AnyDown() || instance.mouse->AnyDown());
    }
  }

  void ExpectNoGrowth(Instance& instance) {
    Holdings last;
    EXPECT_TRUE(InTime([&] {
      last = HoldingsOf(instance.child->Id());
      return last.descriptors == instance.settled.descriptors &&
             last.threads == instance.settled.threads;
    })) << "descriptors "
        << instance.settled.descriptors << ", then " << last.descriptors << "; threads "
        << instance.settled.threads << ", then " << last.threads;
    if (Minutes() >= kSettledMinutes) {
      EXPECT_LE(last.residentKb, instance.settled.residentKb + kGrowth);
    }
    std::sort(instance.backUs.begin(), instance.backUs.end());
    const auto back = [&](std::size_t percent) {
      return instance.backUs[(instance.backUs.size() - 1) * percent / 100] / 1000.0;
    };
    std::printf("soak: %d min, %ld presses, %d sleeps, %zu plugs\n", Minutes(), presses, sleeps,
                instance.backUs.size());
    std::printf("  back after %.1f ms (median), %.1f (95 %%), %.1f (slowest)\n", back(50), back(95),
                back(100));
    std::printf("  resident %ld, then %ld KB; anonymous %ld, then %ld KB\n",
                instance.settled.residentKb, last.residentKb, instance.settled.anonymousKb,
                last.anonymousKb);
    std::printf("  descriptors %zu; threads %zu\n", last.descriptors, last.threads);
  }

  const std::vector<NamedKey> keys = SixtyFourKeys();
  const std::vector<Play> plays = Plays();
  std::mt19937 random{1};
  tests::XDesktop desktop{false};
  WindowProgram program;
  std::unique_ptr<UinputPad> pad;
  std::set<std::string> known;  // nodes that are being read
  std::vector<Instance> instances;
  long presses = 0;
  int sleeps = 0;
};

TEST_F(Soak, TwoWindowsPlayEveryPressAndDoNotGrow) {
  ASSERT_NO_FATAL_FAILURE(Prepare());
  ASSERT_TRUE(Start());
  ASSERT_TRUE(Start());
  const int rounds = std::max(2, Minutes() * 100 / 60);
  const int settled = std::max(1, rounds / 10);
  for (int round = 0; round < rounds; ++round) {
    ASSERT_NO_FATAL_FAILURE(Round(round));
    std::fprintf(stderr, "round %d of %d\n", round + 1, rounds);
    if (round + 1 != settled) continue;
    ASSERT_TRUE(ComesToRest(kPatience));
    for (Instance& instance : instances) instance.settled = HoldingsOf(instance.child->Id());
  }
  ASSERT_TRUE(ComesToRest(kPatience));
  for (Instance& instance : instances) ExpectNoGrowth(instance);
  ForgetEvents();
  pad->Press(0);
  ASSERT_NO_FATAL_FAILURE(ExpectFromAll({KeyOf(0) + " down"}));
  for (Instance& instance : instances) {
    instance.child->Signal(SIGTERM);
    EXPECT_EQ(instance.child->WaitForEnd(kPatience), 0) << instance.child->Err();
  }
  ASSERT_NO_FATAL_FAILURE(ExpectFromAll({KeyOf(0) + " down", KeyOf(0) + " up"}));
}

}  // namespace
}  // namespace kelvaro::kernel
