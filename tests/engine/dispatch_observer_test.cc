#include "engine/dispatch_observer.h"

#include "tests/engine/engine_fixture.h"

namespace kelvaro {
namespace {

// Notes what it hears between what the actions note, so that the order shows.
class NotingObserver : public DispatchObserver {
 public:
  explicit NotingObserver(Journal* journal) : journal(journal) {}

  void ChangeBegins(const DeviceSnapshot& snapshot) override {
    journal->Note("begin " + std::to_string(snapshot.dispatchButtons));
  }
  void ChangeEnds() override { journal->Note("end"); }
  void MouseTakes(std::uint64_t buttons) override {
    journal->Note("mouse takes " + std::to_string(buttons));
  }
  void ControlJudged(const Control& control, Verdict verdict, const Control* container) override {
    static const char* const kNames[] = {"rests",     "ends", "mouse has",
                                         "contained", "down", "fires"};
    journal->Note(Name(control) + " " + kNames[static_cast<int>(verdict)] +
                  (container ? " in " + Name(*container) : ""));
  }
  void MouseSwitched(bool on) override { journal->Note(on ? "mouse on" : "mouse off"); }
  void RepeatLost(const Control& control, const Control& next) override {
    journal->Note(Name(control) + " lost to " + Name(next));
  }
  void Repeats(const Control& control) override { journal->Note(Name(control) + " repeats"); }

 private:
  static std::string Name(const Control& control) {
    return "#" + std::to_string(control.controlId);
  }

  Journal* const journal;
};

class Observed : public EngineTest {
 protected:
  Observed() { engine.SetObserver(&observer); }
  ~Observed() override { engine.SetObserver(nullptr); }

  NotingObserver observer{&journal};
};

TEST_F(Observed, EachControlIsJudgedBeforeAnythingComesOfIt) {
  Add({.name = "a", .buttons = {1}});
  Add({.name = "ab", .buttons = {1, 2}});
  EXPECT_EQ(Dispatch({1}), "begin 1, #2 rests, #1 fires, press a, end");
  EXPECT_EQ(Dispatch({1, 2}), "begin 3, #2 fires, press ab, #1 contained in #2, end");
  EXPECT_EQ(Dispatch({1, 2, 3}), "begin 7, #2 down, #1 contained in #2, end");
  EXPECT_EQ(Dispatch({1}), "begin 1, #2 ends, release ab, #1 down, end");
  EXPECT_EQ(Dispatch({}), "begin 0, #2 rests, #1 ends, release a, end");
}

TEST_F(Observed, WhatTheMouseTakesIsToldOnceItIsOn) {
  Add({.name = "m", .buttons = {3}, .toggles = true});
  Add({.name = "a", .buttons = {1}});
  Add({.name = "x", .items = {Axis(input_kind::kAxisX, AxisPos)}});
  profile.leftMask = 1;
  profile.mouseX = MouseInput(input_kind::kAxisX);
  EXPECT_EQ(Dispatch({3}), "begin 4, #1 fires, press m, mouse on, #2 rests, #3 rests, end");
  EXPECT_EQ(Dispatch(WithX(kAxisMax, {1})),
            "begin 1, mouse takes 1, #1 ends, release m, #2 rests, #3 mouse has, end");
  EXPECT_EQ(Dispatch({3}), "begin 4, #1 fires, press m, mouse off, #2 rests, #3 rests, end");
  EXPECT_EQ(Dispatch(WithX(kAxisMax, {1})),
            "begin 1, #1 ends, release m, #2 fires, press a, #3 fires, press x, end");
}

// A button above the 32nd makes the 32nd change sides, and stays itself.
TEST_F(Observed, OnlyAButtonThatWasHeldIsToldAsTaken) {
  profile.mouseAlwaysActive = true;
  profile.leftMask = MouseButtonMask(31);
  EXPECT_EQ(Dispatch({40}), "begin 549755813888, end");
  EXPECT_EQ(Dispatch({32, 40}), "begin 551903297536, mouse takes 2147483648, end");
}

TEST_F(Observed, WhatARunLetsGoAtItsEndIsToldOutsideOfAChange) {
  Add({.name = "a", .buttons = {1}});
  Dispatch({1});
  engine.LetGo();
  EXPECT_EQ(journal.Take(), "#1 ends, release a");
}

TEST_F(Observed, ARepeatIsToldAndTheOneThatLosesTheSlot) {
  Add({.name = "a", .buttons = {1}, .repeats = true});
  Add({.name = "b", .buttons = {2}, .repeats = true});
  Plug(5);
  RunTo(12);
  journal.Take();
  Hold(18, {1}, 530);
  EXPECT_EQ(journal.Take(),
            "20 begin 1, 20 #1 fires, 20 press a, 20 #2 rests, 20 end, "
            "520 #1 repeats, 520 press a");
  Hold(538, {1, 2}, 598);
  EXPECT_EQ(journal.Take(),
            "540 begin 3, 540 #1 down, 540 #2 fires, 540 press b, 540 #1 lost to #2, 540 end");
  Hold(598, {1}, 1200);
  EXPECT_EQ(journal.Take(), "600 begin 1, 600 #1 down, 600 #2 ends, 600 end");
}

TEST_F(Observed, TheControlThatHasTheSlotLosesNothingToItself) {
  Add({.name = "a", .buttons = {1}, .repeats = true});
  Dispatch({1});
  journal.Take();
  engine.repeatWorker.Start(&Copy(profile.controls.head->value));
  EXPECT_EQ(journal.Take(), "");
}

// Polls at 25, 30 and 35 find the dispatch at work, which began at 20 and ends at 38.
TEST_F(Observed, PollsThatADispatchKeepsOutAreCounted) {
  Add({.name = "a", .buttons = {1}, .pressMs = 18});
  Plug(5);
  RunTo(12);
  const std::uint32_t before = device.LostPolls();
  Hold(18, {1}, 37);
  EXPECT_EQ(device.LostPolls() - before, 3U);
  RunTo(100);
  EXPECT_EQ(device.LostPolls() - before, 3U);
}

}  // namespace
}  // namespace kelvaro
