#include <gtest/gtest.h>

#include <string>

#include "app/platform/simulation/simulation.h"
#include "keys/key_action.h"
#include "tests/keys/key_text.h"

namespace kelvaro {
namespace {

using platform::simulation::Simulation;

constexpr std::uint32_t kHold = 30;
constexpr std::uint32_t kPause = 20;

struct Timing {
  std::uint8_t repeat = 0;
  std::uint32_t holdTime = kHold;
  std::uint32_t releasePause = kPause;
};

constexpr Timing kRepeating = {1, kHold, kPause};
constexpr Timing kAtOnce = {0, 0, 0};

// What one Replay at 0 ms sends, when it ends, and what a Release right after it sends.
struct Played {
  std::string pressed;
  std::uint64_t end;
  std::string released;
};

Played Play(KeyAction action, Timing timing = {}) {
  Simulation sim;
  EXPECT_TRUE(action.Replay(timing.repeat, timing.holdTime, timing.releasePause));
  Played played{sim.EventText(), sim.Now(), ""};
  sim.ClearEvents();
  EXPECT_TRUE(action.Release());
  EXPECT_EQ(sim.Now(), played.end) << "Release waits for nothing";
  played.released = sim.EventText();
  return played;
}

Played PlayText(const char* text, Timing timing = {}, bool holdAll = false) {
  const Parsed parsed = Parse(text, holdAll);
  EXPECT_EQ(parsed.result, -1) << text;
  return Play(parsed.action, timing);
}

Played PlayHoldingAll(const char* text, Timing timing = {}) { return PlayText(text, timing, true); }

// `released` null where Release doesn't matter.
void ExpectPlayed(const Played& played, const char* pressed, std::uint64_t end,
                  const char* released = nullptr) {
  EXPECT_EQ(played.pressed, pressed);
  EXPECT_EQ(played.end, end);
  if (released) {
    EXPECT_EQ(played.released, released);
  }
}

std::string SentBy(void (*send)(std::uint8_t), int flags) {
  Simulation sim;
  send(static_cast<std::uint8_t>(flags));
  return sim.EventText();
}

struct Example {
  const char* text;
  bool holdAll;
  Timing timing;
  const char* pressed;
  std::uint64_t end;
  const char* released;  // null where Release isn't called
};

TEST(Replay, Examples) {
  const Example kExamples[] = {
      {"ab", false, {}, "0 key 41 1e 0\n30 key 41 1e 2\n50 key 42 30 0\n", 80, "80 key 42 30 2\n"},
      {"ab", false, kRepeating, "0 key 41 1e 0\n30 key 41 1e 2\n50 key 42 30 0\n80 key 42 30 2\n",
       80, nullptr},
      {"<Ctrl>c",
       false,
       {},
       "0 key 11 1d 0\n0 key 43 2e 0\n",
       30,
       "30 key 11 1d 2\n30 key 43 2e 2\n"},
      {"<Ctrl>c", false, kRepeating,
       "0 key 11 1d 0\n0 key 43 2e 0\n30 key 43 2e 2\n30 key 11 1d 2\n", 30, nullptr},
      {"a<P:500>b",
       false,
       {},
       "0 key 41 1e 0\n30 key 41 1e 2\n530 key 1 f4 3\n530 key 42 30 0\n",
       560,
       "560 key 42 30 2\n"},
      {"<LMouse>", false, {}, "0 mouse 2 0 0 0\n", 30, "30 mouse 4 0 0 0\n"},
      {"A", false, {}, "0 key 10 2a 0\n0 key 41 1e 0\n", 30, "30 key 10 2a 2\n30 key 41 1e 2\n"},
      {"<Ctrl>a<Shift>b",
       true,
       {},
       "0 key 11 1d 0\n0 key 41 1e 0\n0 key 10 2a 0\n0 key 42 30 0\n",
       0,
       "0 key 11 1d 2\n0 key 41 1e 2\n0 key 10 2a 2\n0 key 42 30 2\n"},
      {"ab<P:100>c",
       true,
       {},
       "0 key 41 1e 0\n0 key 42 30 0\n100 key 43 2e 0\n",
       100,
       "100 key 41 1e 2\n100 key 42 30 2\n100 key 43 2e 2\n"},
  };
  for (const Example& e : kExamples) {
    SCOPED_TRACE(e.text);
    ExpectPlayed(PlayText(e.text, e.timing, e.holdAll), e.pressed, e.end, e.released);
  }
}

TEST(Replay, EmptySequenceSendsNothing) {
  for (const bool holdAll : {false, true}) {
    for (const std::uint8_t repeat : {0, 1}) {
      const Played played = Play(ActionOf({}, holdAll), {repeat, kHold, kPause});
      EXPECT_EQ(played.pressed, "");
      EXPECT_EQ(played.end, 0u);
      EXPECT_EQ(played.released, "");
    }
  }
}

// Counts what would block, and blocks nothing.
class CountingClock : public platform::Clock {
 public:
  void Sleep(std::uint32_t) override { ++sleeps; }
  std::uint32_t GetTickCount() override { return 0; }
  int sleeps = 0;
};

int SleepsOf(const char* text, Timing timing, bool holdAll = false) {
  Simulation sim;
  CountingClock clock;
  platform::Platform groups = sim.Groups();
  groups.clock = &clock;
  const platform::InstalledPlatform installed(groups);
  Parse(text, holdAll).action.Replay(timing.repeat, timing.holdTime, timing.releasePause);
  return clock.sleeps;
}

TEST(Replay, SleepsNeverForNothing) {
  EXPECT_EQ(SleepsOf("ab<Ctrl>c<LMouse>", kAtOnce), 0);
  EXPECT_EQ(SleepsOf("ab<Ctrl>c<LMouse>", {1, 0, 0}), 0);
  EXPECT_EQ(SleepsOf("abc", {0, 0, kPause}), 2);
  EXPECT_EQ(SleepsOf("abc", {0, kHold, 0}), 3);
  EXPECT_EQ(SleepsOf("abc", {0, kHold, kPause}, true), 0);
  EXPECT_EQ(SleepsOf("a<P:0><P:0>", kAtOnce), 0);
}

TEST(Replay, WithoutTimesSendsAllAtOnce) {
  ExpectPlayed(PlayText("ab", kAtOnce), "0 key 41 1e 0\n0 key 41 1e 2\n0 key 42 30 0\n", 0);
}

TEST(Replay, ReleasePauseStandsBeforeEachKeyButTheFirst) {
  ExpectPlayed(PlayText("abc", {0, 0, kPause}),
               "0 key 41 1e 0\n0 key 41 1e 2\n20 key 42 30 0\n20 key 42 30 2\n40 key 43 2e 0\n",
               40);
}

TEST(Replay, PauseOfZeroWaitsForNothingButTakesThePlaceOfTheReleasePause) {
  ExpectPlayed(PlayText("a<P:0>b", {0, 0, kPause}), "0 key 41 1e 0\n0 key 41 1e 2\n0 key 42 30 0\n",
               0);
}

TEST(Replay, PauseTakesThePlaceOfOneReleasePauseOnly) {
  ExpectPlayed(PlayText("a<P:50>bc", {0, 0, kPause}),
               "0 key 41 1e 0\n0 key 41 1e 2\n50 key 42 30 0\n50 key 42 30 2\n70 key 43 2e 0\n",
               70);
}

TEST(Replay, KeyAfterALeadingPauseHasNoReleasePause) {
  ExpectPlayed(PlayText("<P:50>ab"), "50 key 41 1e 0\n80 key 41 1e 2\n100 key 42 30 0\n", 130);
}

TEST(Replay, PauseIsNotHeld) {
  EXPECT_EQ(PlayText("<P:50>").end, 50u);
  EXPECT_EQ(PlayText("a<P:50>").end, 80u);
}

TEST(Replay, LongPauseSendsAStrayRelease) {
  EXPECT_EQ(PlayText("<P:1000>a").pressed, "1000 key 3 e8 3\n1000 key 41 1e 0\n");
  EXPECT_EQ(PlayText("<P:256>a").pressed, "256 key 1 0 2\n256 key 41 1e 0\n");
  EXPECT_EQ(PlayText("<P:255>a").pressed, "255 key 41 1e 0\n");
}

TEST(Replay, TwoPausesWaitForBothWithAStrayReleaseBetween) {
  ExpectPlayed(PlayText("<P:300><P:100>a"), "300 key 1 2c 2\n400 key 41 1e 0\n", 430);
}

TEST(Replay, PauseHoldingAllSendsNoStrayRelease) {
  EXPECT_EQ(PlayHoldingAll("<P:300><P:1000>a").pressed, "1300 key 41 1e 0\n");
}

TEST(Replay, LastPauseLetsTheKeyBeforeItGo) {
  ExpectPlayed(PlayText("<Ctrl>a<P:300>"),
               "0 key 11 1d 0\n0 key 41 1e 0\n30 key 41 1e 2\n30 key 11 1d 2\n", 330, "");
}

TEST(Replay, RepeatingSequenceThatEndsInALongPauseSendsAStrayRelease) {
  EXPECT_EQ(PlayText("a<P:300>", kRepeating).pressed,
            "0 key 41 1e 0\n30 key 41 1e 2\n330 key 1 2c 2\n");
  EXPECT_EQ(PlayHoldingAll("a<P:300>", kRepeating).pressed, "0 key 41 1e 0\n330 key 1 2c 2\n");
}

TEST(Replay, ModifierAloneIsPressedAndLetGoBeforeTheNextStep) {
  ExpectPlayed(PlayText("<Ctrl><LMouse>"), "0 key 11 1d 0\n30 key 11 1d 2\n50 mouse 2 0 0 0\n", 80,
               "80 mouse 4 0 0 0\n");
}

TEST(Replay, LoneModifierIsLetGoByRelease) {
  ExpectPlayed(PlayText("<RShift>"), "0 key a1 36 0\n", 30, "30 key a1 36 2\n");
}

TEST(Replay, LoneModifiersAreTappedOneAfterTheOther) {
  ExpectPlayed(PlayText("<Ctrl><Alt>"), "0 key 11 1d 0\n30 key 11 1d 2\n50 key 12 38 0\n", 80,
               "80 key 12 38 2\n");
}

TEST(Replay, LoneModifiersHoldingAllAreAChord) {
  ExpectPlayed(PlayHoldingAll("<Ctrl><Alt>"), "0 key 11 1d 0\n0 key 12 38 0\n", 0,
               "0 key 11 1d 2\n0 key 12 38 2\n");
}

TEST(Replay, KeyGoesUpBeforeItsModifiersInTheMiddleToo) {
  EXPECT_EQ(PlayText("<Shift><Ctrl>ab").pressed,
            "0 key 10 2a 0\n0 key 11 1d 0\n0 key 41 1e 0\n"
            "30 key 41 1e 2\n30 key 10 2a 2\n30 key 11 1d 2\n50 key 42 30 0\n");
}

TEST(Replay, ExtraMouseButtonsAreKeys) {
  EXPECT_EQ(PlayText("<X1Mouse>").pressed, "0 key 5 0 0\n");
  EXPECT_EQ(PlayText("<X2Mouse>").released, "30 key 6 0 2\n");
}

TEST(Replay, ExtendedKeysGoOutAsSuchWithTheirScanCodeAsStored) {
  ExpectPlayed(PlayText("<RCtrl><Left>"), "0 key a3 9d 1\n0 key 25 cb 1\n", 30,
               "30 key a3 9d 3\n30 key 25 cb 3\n");
}

TEST(Replay, AnyRepeatByteButZeroRepeats) {
  EXPECT_EQ(PlayText("a", {2, kHold, kPause}).pressed, "0 key 41 1e 0\n30 key 41 1e 2\n");
  EXPECT_EQ(PlayText("a", {0x80, kHold, kPause}).pressed, "0 key 41 1e 0\n30 key 41 1e 2\n");
}

TEST(Replay, HoldingAllWithRepeatKeepsItsTimesAndLetsGoOfTheLastStepAlone) {
  ExpectPlayed(PlayHoldingAll("<Ctrl>a<Shift>b", kRepeating),
               "0 key 11 1d 0\n0 key 41 1e 0\n50 key 10 2a 0\n50 key 42 30 0\n"
               "80 key 42 30 2\n80 key 10 2a 2\n",
               80);
}

TEST(Replay, HoldingAllWithRepeatKeepsAModifierThatAnEarlierStepHolds) {
  ExpectPlayed(Play(ActionOf({{0x41, 0x1E, 0x02}, {0x42, 0x30, 0x02}}, true), {1, 0, 0}),
               "0 key 11 1d 0\n0 key 41 1e 0\n0 key 42 30 0\n0 key 42 30 2\n", 0);
}

TEST(Replay, HoldingAllPressesShiftASecondTimeForAnUpperCaseLetter) {
  ExpectPlayed(PlayHoldingAll("<Shift>aB"),
               "0 key 10 2a 0\n0 key 41 1e 0\n0 key 10 2a 0\n0 key 42 30 0\n", 0,
               "0 key 10 2a 2\n0 key 41 1e 2\n0 key 10 2a 2\n0 key 42 30 2\n");
}

TEST(Replay, HoldingAllPressesAndReleasesEachModifierOnce) {
  ExpectPlayed(PlayHoldingAll("AB"), "0 key 10 2a 0\n0 key 41 1e 0\n0 key 42 30 0\n", 0,
               "0 key 10 2a 2\n0 key 41 1e 2\n0 key 42 30 2\n");
}

// The side bits are no modifiers, and stay for those of the step that are new.
TEST(Replay, HoldingAllTakesOnlyTheModifiersOutThatAreHeld) {
  ExpectPlayed(Play(ActionOf({{0x41, 0x1E, 0x22}, {0x42, 0x30, 0x27}, {0x43, 0x2E, 0x46}}, true)),
               "0 key a2 1d 0\n0 key 41 1e 0\n0 key a0 2a 0\n0 key a4 38 0\n0 key 42 30 0\n"
               "0 key 43 2e 0\n",
               0,
               "0 key a2 1d 2\n0 key 41 1e 2\n0 key a0 2a 2\n0 key a4 38 2\n0 key 42 30 2\n"
               "0 key 43 2e 2\n");
}

TEST(Replay, HoldingAllPressesAMouseButtonEachTime) {
  ExpectPlayed(PlayHoldingAll("<LMouse><LMouse><RMouse>"),
               "0 mouse 2 0 0 0\n0 mouse 2 0 0 0\n0 mouse 8 0 0 0\n", 0,
               "0 mouse 4 0 0 0\n0 mouse 4 0 0 0\n0 mouse 16 0 0 0\n");
}

TEST(Replay, TwiceIsTheSameTwice) {
  const Parsed parsed = Parse("<Ctrl>a<P:5>B");
  KeyAction action = parsed.action;
  Simulation sim;
  action.Replay(0, 0, 0);
  const std::string first = sim.EventText();
  sim.ClearEvents();
  sim.RunFor(1000 - sim.Now());
  action.Replay(0, 0, 0);
  EXPECT_EQ(first,
            "0 key 11 1d 0\n0 key 41 1e 0\n0 key 41 1e 2\n0 key 11 1d 2\n"
            "5 key 10 2a 0\n5 key 42 30 0\n");
  EXPECT_EQ(sim.EventText(),
            "1000 key 11 1d 0\n1000 key 41 1e 0\n1000 key 41 1e 2\n"
            "1000 key 11 1d 2\n1005 key 10 2a 0\n1005 key 42 30 0\n");
}

TEST(Release, LetsModifiersGoBeforeTheKeyOfTheLastStepAlone) {
  Simulation sim;
  KeyAction action = Parse("<Ctrl>a<Shift><Alt>b").action;
  action.Release();
  EXPECT_EQ(sim.EventText(), "0 key 10 2a 2\n0 key 12 38 2\n0 key 42 30 2\n");
}

TEST(Release, WorksFromTheStepsWithoutAReplay) {
  Simulation sim;
  KeyAction action = ParseHoldingAll("a<P:300><Ctrl>b").action;
  action.Release();
  EXPECT_EQ(sim.EventText(), "0 key 41 1e 2\n0 key 11 1d 2\n0 key 42 30 2\n");
}

struct SidedEvents {
  int flag;
  const char* down[3];  // neither side, left, right
  const char* up[3];
};

constexpr SidedEvents kSidedEvents[] = {
    {KeyFlagShift,
     {"0 key 10 2a 0\n", "0 key a0 2a 0\n", "0 key a1 36 0\n"},
     {"0 key 10 2a 2\n", "0 key a0 2a 2\n", "0 key a1 36 2\n"}},
    {KeyFlagImpliedShift,
     {"0 key 10 2a 0\n", "0 key a0 2a 0\n", "0 key a1 36 0\n"},
     {"0 key 10 2a 2\n", "0 key a0 2a 2\n", "0 key a1 36 2\n"}},
    {KeyFlagCtrl,
     {"0 key 11 1d 0\n", "0 key a2 1d 0\n", "0 key a3 9d 1\n"},
     {"0 key 11 1d 2\n", "0 key a2 1d 2\n", "0 key a3 9d 3\n"}},
    {KeyFlagAlt,
     {"0 key 12 38 0\n", "0 key a4 38 0\n", "0 key a5 b8 1\n"},
     {"0 key 12 38 2\n", "0 key a4 38 2\n", "0 key a5 b8 3\n"}},
    {KeyFlagMouse,
     {"0 mouse 32 0 0 0\n", "0 mouse 2 0 0 0\n", "0 mouse 8 0 0 0\n"},
     {"0 mouse 64 0 0 0\n", "0 mouse 4 0 0 0\n", "0 mouse 16 0 0 0\n"}},
};

TEST(PressModifiers, SendsEachModifierOnItsSide) {
  const int kSides[] = {0, KeyFlagLeft, KeyFlagRight};
  for (const SidedEvents& events : kSidedEvents) {
    for (int side = 0; side < 3; ++side) {
      EXPECT_EQ(SentBy(PressModifiers, events.flag | kSides[side]), events.down[side]);
      EXPECT_EQ(SentBy(ReleaseModifiers, events.flag | kSides[side]), events.up[side]);
    }
  }
}

TEST(PressModifiers, LeftWinsOverRight) {
  for (const SidedEvents& events : kSidedEvents) {
    EXPECT_EQ(SentBy(PressModifiers, events.flag | KeyFlagLeft | KeyFlagRight), events.down[1]);
    EXPECT_EQ(SentBy(ReleaseModifiers, events.flag | KeyFlagLeft | KeyFlagRight), events.up[1]);
  }
}

TEST(PressModifiers, SendsInOneOrderWithOneSideForAll) {
  EXPECT_EQ(SentBy(PressModifiers, 0x37),
            "0 key a0 2a 0\n0 key a2 1d 0\n0 key a4 38 0\n0 mouse 2 0 0 0\n");
  EXPECT_EQ(SentBy(PressModifiers, 0x57),
            "0 key a1 36 0\n0 key a3 9d 1\n0 key a5 b8 1\n0 mouse 8 0 0 0\n");
  EXPECT_EQ(SentBy(PressModifiers, 0x17),
            "0 key 10 2a 0\n0 key 11 1d 0\n0 key 12 38 0\n0 mouse 32 0 0 0\n");
}

TEST(ReleaseModifiers, IsNoMirrorOfThePress) {
  EXPECT_EQ(SentBy(ReleaseModifiers, 0x37),
            "0 key a0 2a 2\n0 key a2 1d 2\n0 key a4 38 2\n0 mouse 4 0 0 0\n");
}

TEST(PressModifiers, BothShiftsAreOneKey) {
  EXPECT_EQ(SentBy(PressModifiers, 0x09), "0 key 10 2a 0\n");
  EXPECT_EQ(SentBy(ReleaseModifiers, 0x09), "0 key 10 2a 2\n");
}

TEST(PressModifiers, SidesAndPausesAloneSendNothing) {
  for (const int flags : {0x00, 0x20, 0x40, 0x60, 0x80, 0xE0}) {
    EXPECT_EQ(SentBy(PressModifiers, flags), "");
    EXPECT_EQ(SentBy(ReleaseModifiers, flags), "");
  }
}

}  // namespace
}  // namespace kelvaro
