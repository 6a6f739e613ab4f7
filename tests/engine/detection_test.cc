#include <gtest/gtest.h>

#include "engine/mouse_emulation.h"
#include "tests/engine/engine_fixture.h"
#include "tests/engine/item_text.h"

namespace kelvaro {
namespace {

// --- The search ---------------------------------------------------------------------------------

// "kind index value", or "none".
std::string Detect(const DIJOYSTATE2& state) {
  TriggerItem found{77, 78, 79};
  if (!DetectMouseAxis(kAxisMax, state, &found)) {
    EXPECT_EQ(found.kind, 77) << "nothing found, but something written";
    return "none";
  }
  return ItemText(found);
}

TEST(DetectMouseAxis, AnAxisCountsFromMoreThanHalf) {
  EXPECT_EQ(Detect(Pad()), "none");
  EXPECT_EQ(Detect(WithX(16000)), "none");
  EXPECT_EQ(Detect(WithX(16001)), "0 0 0");
  EXPECT_EQ(Detect(WithX(-16000)), "none");
  EXPECT_EQ(Detect(WithX(-16001)), "0 0 0");
}

TEST(DetectMouseAxis, TheStrongestWinsAndAmongEqualsTheFirst) {
  DIJOYSTATE2 state = WithX(20000);
  state.lRz = -20001;
  EXPECT_EQ(Detect(state), "5 0 20");
  state.lX = 20001;
  EXPECT_EQ(Detect(state), "0 0 0");
  state = Pad();
  state.lVX = 20000;           // bank 1, the first kind
  state.rglSlider[1] = 20000;  // bank 0, the last kind: the banks are the outer order
  EXPECT_EQ(Detect(state), "7 0 28");
}

TEST(DetectMouseAxis, EveryBankAndKindCanBeFound) {
  for (std::uint16_t bank = 0; bank < 4; ++bank) {
    for (std::uint16_t kind = 0; kind < 8; ++kind) {
      DIJOYSTATE2 state = Pad();
      const int offsets[] = {0, 176, 208, 240};
      const int offset = offsets[bank] + 4 * kind;
      const std::int32_t value = -17000;
      std::memcpy(reinterpret_cast<char*>(&state) + offset, &value, sizeof value);
      EXPECT_EQ(Detect(state),
                std::to_string(kind) + " " + std::to_string(bank) + " " + std::to_string(offset));
    }
  }
}

TEST(DetectMouseAxis, AHatBeatsAnAxisThatIsNotAtItsEnd) {
  DIJOYSTATE2 state = WithX(20000);
  state.rgdwPOV[0] = 9000;
  EXPECT_EQ(Detect(state), "8 0 32");
  state.lX = 31999;
  EXPECT_EQ(Detect(state), "8 0 32");
  state.lX = 32000;
  EXPECT_EQ(Detect(state), "0 0 0");
  state.lX = -32000;
  EXPECT_EQ(Detect(state), "0 0 0");
  // Beyond its end isn't at its end.
  state.lX = 32001;
  EXPECT_EQ(Detect(state), "8 0 32");
  state.lX = -32001;
  EXPECT_EQ(Detect(state), "8 0 32");
  state.rgdwPOV[0] = 0xFFFFFFFF;
  EXPECT_EQ(Detect(state), "0 0 0");
}

TEST(DetectMouseAxis, OnlyTheNarrowSidesOfAHatAreLeftRight) {
  const struct {
    std::uint32_t angle;
    int kind;
  } rows[] = {{0, 9},     {4500, 9},  {6999, 9},  {7000, 8},  {9000, 8},          {11000, 8},
              {11001, 9}, {13500, 9}, {18000, 9}, {24999, 9}, {25000, 8},         {27000, 8},
              {29000, 8}, {29001, 9}, {31500, 9}, {35999, 9}, {0x10000 + 9000, 8}};
  for (const auto& row : rows) {
    EXPECT_EQ(Detect(WithHat(row.angle)), std::to_string(row.kind) + " 0 32") << row.angle;
  }
}

TEST(DetectMouseAxis, TheFirstHatThatIsPressedCounts) {
  DIJOYSTATE2 state = Pad();
  state.rgdwPOV[2] = 18000;
  state.rgdwPOV[3] = 9000;
  EXPECT_EQ(Detect(state), "9 2 40");
  state.rgdwPOV[2] = 0xFFFF;
  EXPECT_EQ(Detect(state), "8 3 44");
  state.rgdwPOV[3] = 0x1FFFF;
  EXPECT_EQ(Detect(state), "none");
}

// --- A running detection ------------------------------------------------------------------------

class Detection : public EngineTest {
 protected:
  std::string Shown() { return host.journal.Take(); }
};

TEST_F(Detection, ASecondButtonEndsItWithTheFirst) {
  engine.StartMouseDetection(MouseRole::LeftButton);
  Dispatch({3});
  Dispatch({3, 5});
  EXPECT_EQ(Shown(), "1161=B3, ended 1161, save");
  EXPECT_EQ(profile.leftButton, 2);
  EXPECT_EQ(profile.leftMask, 4u);
  EXPECT_FALSE(engine.IsDetecting());
}

TEST_F(Detection, TheDispatchThatEndsItGoesOnToTheControlsWithBothButtons) {
  Add({.name = "a", .buttons = {3, 5}});
  engine.mouseActive = true;
  engine.StartMouseDetection(MouseRole::LeftButton);
  EXPECT_EQ(Dispatch({3}), "");
  EXPECT_EQ(Dispatch({3, 5}), "press a") << "button 3 is the mouse's only from the next change on";
  EXPECT_EQ(Dispatch({3}), "release a");
}

TEST_F(Detection, AllLetGoBeforeTheEndClearsTheAssignment) {
  profile.leftButton = 7;
  profile.leftMask = 128;
  engine.StartMouseDetection(MouseRole::LeftButton);
  Dispatch({3});
  Dispatch({});
  EXPECT_EQ(Shown(), "1161=B3, 1161=<none>");
  engine.EndMouseDetection();
  EXPECT_EQ(profile.leftButton, 0);
  EXPECT_EQ(profile.leftMask, 0u);
}

TEST_F(Detection, AnAxisAndAHatAtOnceTakeTheHatUnlessTheAxisIsAtItsEnd) {
  DIJOYSTATE2 state = WithX(20000);
  state.rgdwPOV[0] = 9000;
  engine.StartMouseDetection(MouseRole::X);
  Dispatch(state);
  state.lX = 32000;
  Dispatch(state);
  EXPECT_EQ(Shown(), "1159=POV0, 1159=Axis_X0");
  engine.EndMouseDetection();
  EXPECT_EQ(ItemText(profile.mouseX), "0 0 0");
}

TEST_F(Detection, EachAxisFieldSetsItsInputWithItsOffset) {
  const struct {
    MouseRole role;
    const char* field;
    Relaxed<TriggerItem>* input;
  } rows[] = {{MouseRole::X, "1159", &profile.mouseX},
              {MouseRole::Y, "1160", &profile.mouseY},
              {MouseRole::Wheel, "1163", &profile.mouseWheel}};
  DIJOYSTATE2 state = With(&DIJOYSTATE2::lVRy, -17000);
  for (const auto& row : rows) {
    engine.StartMouseDetection(row.role);
    Dispatch(state);
    engine.EndMouseDetection();
    EXPECT_EQ(Shown(), row.field + std::string("=Axis_RY1, ended ") + row.field);
    EXPECT_EQ(ItemText(*row.input), "4 1 192");
  }
  EXPECT_EQ(ItemText(profile.mouseX), "4 1 192") << "those after it left it alone";
  EXPECT_EQ(profile.leftMask, 0u);
}

TEST_F(Detection, EachButtonFieldSetsItsButton) {
  const struct {
    MouseRole role;
    const char* field;
    Relaxed<std::uint16_t>* index;
    Relaxed<std::uint64_t>* mask;
  } rows[] = {{MouseRole::LeftButton, "1161", &profile.leftButton, &profile.leftMask},
              {MouseRole::MiddleButton, "1162", &profile.middleButton, &profile.middleMask},
              {MouseRole::RightButton, "1164", &profile.rightButton, &profile.rightMask}};
  for (const auto& row : rows) {
    engine.StartMouseDetection(row.role);
    Dispatch({9});
    engine.EndMouseDetection();
    EXPECT_EQ(Shown(), row.field + std::string("=B9, ended ") + row.field)
        << "the caller that ends it saves";
    EXPECT_FALSE(engine.IsDetecting());
    EXPECT_EQ(*row.index, 8);
    EXPECT_EQ(*row.mask, 256u);
    *row.mask = 0;
    *row.index = 0;
  }
  EXPECT_EQ(ItemText(profile.mouseX), "11 0 0");
}

TEST_F(Detection, NothingMovedClearsAnAxis) {
  profile.mouseY = MouseInput(1);
  engine.StartMouseDetection(MouseRole::Y);
  Dispatch(WithX(16000));
  EXPECT_EQ(Shown(), "1160=<none>");
  engine.EndMouseDetection();
  EXPECT_EQ(ItemText(profile.mouseY), "11 0 0");
}

TEST_F(Detection, WithoutAnyChangeAnAxisKeepsItsInput) {
  profile.mouseY = MouseInput(3, 2);
  engine.StartMouseDetection(MouseRole::Y);
  engine.EndMouseDetection();
  EXPECT_EQ(ItemText(profile.mouseY), "3 2 220");
}

TEST_F(Detection, WithoutAnyChangeAButtonFollowsTheKindOfTheDetectionBefore) {
  // Nothing was detected before: cleared.
  profile.leftButton = 4;
  profile.leftMask = 16;
  engine.StartMouseDetection(MouseRole::LeftButton);
  engine.EndMouseDetection();
  EXPECT_EQ(profile.leftButton, 0);
  EXPECT_EQ(profile.leftMask, 0u);
  // An axis was: the button stays.
  engine.StartMouseDetection(MouseRole::X);
  Dispatch(WithX(kAxisMax));
  engine.EndMouseDetection();
  profile.leftButton = 4;
  profile.leftMask = 16;
  engine.StartMouseDetection(MouseRole::LeftButton);
  engine.EndMouseDetection();
  EXPECT_EQ(profile.leftButton, 4);
  EXPECT_EQ(profile.leftMask, 16u);
  // A button was: the index that is there counts, even that of a button that wasn't assigned.
  engine.StartMouseDetection(MouseRole::MiddleButton);
  Dispatch({2});
  engine.EndMouseDetection();
  profile.leftButton = 0;
  profile.leftMask = 0;
  engine.StartMouseDetection(MouseRole::LeftButton);
  engine.EndMouseDetection();
  EXPECT_EQ(profile.leftButton, 0);
  EXPECT_EQ(profile.leftMask, 1u);
}

TEST_F(Detection, ButtonsFromThirtyTwoOnGetTheMaskThatTheyGetEverywhere) {
  engine.StartMouseDetection(MouseRole::LeftButton);
  Dispatch({33});
  EXPECT_EQ(Shown(), "1161=B33");
  engine.EndMouseDetection();
  EXPECT_EQ(profile.leftButton, 32);
  EXPECT_EQ(profile.leftMask, 1u);
  engine.StartMouseDetection(MouseRole::LeftButton);
  Dispatch({32});
  engine.EndMouseDetection();
  EXPECT_EQ(profile.leftButton, 31);
  EXPECT_EQ(profile.leftMask, 0xFFFFFFFF80000000u);
}

TEST_F(Detection, TwoButtonsAndNotOneEndThatOfAnAxis) {
  engine.StartMouseDetection(MouseRole::Wheel);
  Dispatch(WithX(kAxisMax, {1}));
  EXPECT_TRUE(engine.IsDetecting());
  Dispatch(WithX(0, {1, 64}));
  EXPECT_EQ(Shown(), "1163=Axis_X0, ended 1163, save");
  EXPECT_EQ(ItemText(profile.mouseWheel), "0 0 0");
}

TEST_F(Detection, ThreeButtonsAtOnceEndItOnce) {
  engine.StartMouseDetection(MouseRole::LeftButton);
  Dispatch({1, 2, 3});
  EXPECT_EQ(Shown(), "ended 1161, save");
  EXPECT_EQ(profile.leftMask, 0u) << "no button had been detected";
}

TEST_F(Detection, ButtonsThatHaveNoBitDoNotCount) {
  engine.StartMouseDetection(MouseRole::LeftButton);
  Dispatch({65, 66});
  EXPECT_EQ(Shown(), "1161=<none>");
}

TEST_F(Detection, RunsWithTheMouseControlsOnOrOffAndSendsNothing) {
  profile.rightMask = MouseButtonMask(0);
  for (const bool on : {false, true}) {
    engine.mouseActive = on;
    engine.StartMouseDetection(MouseRole::LeftButton);
    Dispatch({1});
    EXPECT_EQ(Shown(), "1161=B1");
    EXPECT_TRUE(engine.rightDown);
    Dispatch({});
    engine.EndMouseDetection();
    Shown();
    EXPECT_EQ(MouseEvents(), "");
  }
}

TEST_F(Detection, TheMaskThatTheControlsSeeIsLeftWhole) {
  profile.leftMask = MouseButtonMask(0);
  engine.mouseActive = true;
  engine.StartMouseDetection(MouseRole::RightButton);
  Dispatch({1});
  EXPECT_EQ(Shown(), "1164=B1") << "though button 1 is the mouse's already";
}

TEST_F(Detection, EndingNoneDoesNothing) {
  profile.leftMask = 4;
  engine.EndMouseDetection();
  EXPECT_EQ(Shown(), "");
  EXPECT_EQ(profile.leftMask, 4u);
  EXPECT_FALSE(engine.IsDetecting());
}

TEST_F(Detection, AfterTheEndControlsFireAgain) {
  Add({.name = "a", .buttons = {1}});
  engine.StartMouseDetection(MouseRole::X);
  EXPECT_EQ(Dispatch({1}), "");
  engine.EndMouseDetection();
  EXPECT_EQ(Dispatch({1, 2}), "press a");
}

TEST_F(Detection, ItsCallsComeUnderTheLocksThatTheyAreSaidToHold) {
  std::string locks;
  host.onCall = [&] {
    locks += engine.mouseLock.IsTaken() ? "m" : "-";
    locks += profile.profileLock.IsTaken() ? "p " : "- ";
  };
  engine.StartMouseDetection(MouseRole::LeftButton);
  Dispatch({1, 2});
  EXPECT_EQ(locks, "m- m- ");  // ended, save
  locks.clear();
  engine.StartMouseDetection(MouseRole::LeftButton);
  engine.EndMouseDetection();
  EXPECT_EQ(locks, "-- ");
}

TEST_F(Detection, AHatIsShownByTheBitsOfItsOffset) {
  engine.StartMouseDetection(MouseRole::X);
  for (int hat = 0; hat < 4; ++hat) {
    DIJOYSTATE2 state = Pad();
    state.rgdwPOV[hat] = 9000;
    Dispatch(state);
    state.rgdwPOV[hat] = 18000;
    Dispatch(state);
  }
  EXPECT_EQ(Shown(),
            "1159=POV0, 1159=POV0, 1159=POV1right, 1159=POV1, 1159=POV2down, 1159=POV2, "
            "1159=POV3down+right, 1159=POV3");
}

TEST_F(Detection, EndedOnTheMainThreadWhileThePadIsPolled) {
  auto& pad = Plug(5);
  RunTo(12);
  engine.StartMouseDetection(MouseRole::X);
  pad.MoveAxis("Axis_Z0", -kAxisMax);
  RunTo(17);
  EXPECT_EQ(Shown(), "1159=Axis_Z0");
  engine.EndMouseDetection();
  engine.mouseActive = true;
  sim.ClearEvents();
  RunTo(20);
  EXPECT_EQ(MouseEvents(), "1 -4 0 0");
}

}  // namespace
}  // namespace kelvaro
