#include "engine/mouse_emulation.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/device/device_calls.h"
#include "tests/engine/engine_fixture.h"
#include "tests/foundation/allocations.h"

namespace kelvaro {
namespace {

// --- Sliders and the curve ----------------------------------------------------------------------

TEST(MouseDeadZone, IsAHundredthShortOfThePercentage) {
  const struct {
    std::int32_t position, axisMax, deadZone;
  } rows[] = {{0, 32000, 0},     {1, 32000, 319},    {5, 32000, 1599}, {10, 32000, 3199},
              {25, 32000, 7999}, {50, 32000, 15999}, {5, 1000, 49},    {50, 1000, 499}};
  for (const auto& row : rows) {
    EXPECT_EQ(MouseDeadZone(row.position, row.axisMax), row.deadZone)
        << row.position << "% of " << row.axisMax;
  }
}

TEST(MouseCurve, HasAFloorOfOneAndGrowsByAFifth) {
  const struct {
    std::int32_t position;
    double gain;
  } rows[] = {{0, 1.0}, {1, 1.0}, {2, 1.0}, {3, 1.0}, {4, 1.2}, {15, 3.4}, {50, 10.4}};
  for (const auto& row : rows) {
    EXPECT_NEAR(MakeMouseCurve(kAxisMax, 0, row.position + 2).gain, row.gain, 1e-12)
        << row.position;
  }
}

TEST(MouseCurve, SpansFromTheDeadZoneToTheLimit) {
  EXPECT_EQ(MakeMouseCurve(32000, 0, 2).span, 32000.0);
  EXPECT_EQ(MakeMouseCurve(32000, 1599, 2).span, 30401.0);
  EXPECT_EQ(MakeMouseCurve(32000, 15999, 2).span, 16001.0);
}

TEST(NextAccumulated, AnAxisAddsWhatItsDistanceBeyondTheDeadZoneGives) {
  const MouseCurve flat = MakeMouseCurve(kAxisMax, 0, 2);         // 1.0
  const MouseCurve steep = MakeMouseCurve(kAxisMax, 0, 52);       // 10.4
  const MouseCurve damped = MakeMouseCurve(kAxisMax, 15999, 17);  // 3.4 over 16001
  const struct {
    std::int32_t value;
    MouseCurve curve;
    double before, after;
  } rows[] = {
      {320, flat, 0.0, 0.0101},    {320, flat, 0.5, 0.5101},      {-320, flat, 0.0, -0.0101},
      {-320, flat, 0.5, 0.4899},   {16000, flat, 0.0, 0.75},      {32000, flat, 0.0, 2.0},
      {-32000, flat, 0.0, -2.0},   {3200, steep, 0.0, 0.204},     {32000, steep, 0.0, 11.4},
      {15999, damped, 0.9, 0.0},   {-15999, damped, -0.9, 0.0},   {0, flat, 0.9, 0.0},
      {32000, damped, 0.25, 4.65}, {-32000, damped, 0.25, -4.15}, {1, flat, 0.0, 3.12509765625e-05},
  };
  for (const auto& row : rows) {
    EXPECT_NEAR(NextAccumulated(MouseInput(0), WithX(row.value), row.curve, row.before), row.after,
                1e-12)
        << row.value << " on " << row.before;
  }
}

TEST(NextAccumulated, JustBeyondTheDeadZoneAddsALittleAndKeepsTheRest) {
  const MouseCurve curve = MakeMouseCurve(kAxisMax, 1599, 2);
  const double r = 1.0 / 30401.0;
  EXPECT_DOUBLE_EQ(NextAccumulated(MouseInput(0), WithX(1600), curve, 0.5), 0.5 + (r + r * r));
  EXPECT_DOUBLE_EQ(NextAccumulated(MouseInput(0), WithX(-1600), curve, 0.5), 0.5 - (r + r * r));
}

// 65535, which is how some devices say centred, is up here, all 32 bits being looked at.
TEST(NextAccumulated, AHatGivesOneCountWhateverWasWaiting) {
  const struct {
    std::uint32_t angle;
    double sideways, upDown;
  } rows[] = {
      {0, 0.0, -1.0},         {4499, 0.0, -1.0},      {4500, 1.0, -1.0},   {4501, 1.0, 0.0},
      {9000, 1.0, 0.0},       {13499, 1.0, 0.0},      {13500, 1.0, 1.0},   {13501, 0.0, 1.0},
      {18000, 0.0, 1.0},      {22499, 0.0, 1.0},      {22500, -1.0, 1.0},  {22501, -1.0, 0.0},
      {27000, -1.0, 0.0},     {31499, -1.0, 0.0},     {31500, -1.0, -1.0}, {31501, 0.0, -1.0},
      {35999, 0.0, -1.0},     {36000, 0.0, -1.0},     {65535, 0.0, -1.0},  {0x7FFFFFFF, 0.0, -1.0},
      {0x80000000, 0.0, 0.0}, {0xFFFFFFFF, 0.0, 0.0},
  };
  const MouseCurve steep = MakeMouseCurve(kAxisMax, 0, 52);
  for (const auto& row : rows) {
    const DIJOYSTATE2 state = WithHat(row.angle);
    EXPECT_EQ(NextAccumulated(MouseInput(input_kind::kPov), state, steep, 0.9), row.sideways)
        << row.angle;
    EXPECT_EQ(NextAccumulated(MouseInput(input_kind::kPovVertical), state, steep, 0.9), row.upDown)
        << row.angle;
  }
}

TEST(NextAccumulated, ReadsTheFieldThatTheItemNames) {
  const MouseCurve flat = MakeMouseCurve(kAxisMax, 0, 2);
  DIJOYSTATE2 state = Pad();
  state.rglFSlider[1] = 32000;
  state.lVRz = -32000;
  state.rgdwPOV[3] = 9000;
  EXPECT_DOUBLE_EQ(NextAccumulated(MouseInput(7, 3), state, flat, 0.0), 2.0);
  EXPECT_DOUBLE_EQ(NextAccumulated(MouseInput(5, 1), state, flat, 0.0), -2.0);
  EXPECT_DOUBLE_EQ(NextAccumulated(MouseInput(8, 3), state, flat, 0.0), 1.0);
  EXPECT_DOUBLE_EQ(NextAccumulated(MouseInput(8, 0), state, flat, 0.0), 0.0);
}

TEST(NextAccumulated, NothingAssignedGivesNothing) {
  const MouseCurve flat = MakeMouseCurve(kAxisMax, 0, 2);
  EXPECT_EQ(NextAccumulated({input_kind::kNone, 0, 0}, WithX(kAxisMax), flat, 0.9), 0.0);
}

TEST(NextAccumulated, AnInputOutsideOfTheStateIsAtRest) {
  // As a damaged profile may have it: hats 60 and 16374, of which the second ends at 65532.
  const MouseCurve flat = MakeMouseCurve(kAxisMax, 0, 2);
  for (const std::uint16_t index : {60, 16374}) {
    EXPECT_EQ(NextAccumulated(MouseInput(input_kind::kPovVertical, index), Pad(), flat, 0.9), 0.0);
    EXPECT_EQ(NextAccumulated(MouseInput(input_kind::kPov, index), Pad(), flat, 0.9), 0.0);
  }
  EXPECT_EQ(NextAccumulated({0, 0, 269}, Pad(), flat, 0.9), 0.0);
  DIJOYSTATE2 last = Pad();
  last.rglFSlider[1] = kAxisMax;
  EXPECT_DOUBLE_EQ(NextAccumulated({0, 0, 268}, last, flat, 0.0), 2.0);
}

class MouseSliders : public EngineTest {};

// By the numbers of the Mouse tab.
TEST_F(MouseSliders, EachSetsItsMemberAndWhatTheStepDerivesFromIt) {
  engine.ApplyMouseSlider(ControlEngine::kMovementSensitivitySlider, 7);
  engine.ApplyMouseSlider(ControlEngine::kMovementDamperSlider, 10);
  engine.ApplyMouseSlider(ControlEngine::kWheelDamperSlider, 50);
  engine.ApplyMouseSlider(ControlEngine::kWheelSensitivitySlider, 0);
  EXPECT_EQ(profile.movementSensitivity, 7);
  EXPECT_EQ(engine.movementFactor, 9);
  EXPECT_EQ(profile.movementDamper, 10);
  EXPECT_EQ(engine.movementDeadZone, 3199);
  EXPECT_EQ(profile.wheelDamper, 50);
  EXPECT_EQ(engine.wheelDeadZone, 15999);
  EXPECT_EQ(profile.wheelSensitivity, 0);
  EXPECT_EQ(engine.wheelFactor, 2);
}

TEST_F(MouseSliders, AnUnknownSliderLeavesTheDefaultsThatApplyFromTheStart) {
  engine.ApplyMouseSlider(1053, 40);
  EXPECT_EQ(profile.movementSensitivity, 15);
  EXPECT_EQ(engine.movementFactor, 17);
  EXPECT_EQ(engine.wheelFactor, 17);
  EXPECT_EQ(engine.movementDeadZone, 1599);
  EXPECT_EQ(engine.wheelDeadZone, 1599);
}

TEST_F(MouseSliders, APositionBeyondTheEndsIsTheEnd) {
  engine.ApplyMouseSlider(ControlEngine::kMovementDamperSlider, 51);
  EXPECT_EQ(profile.movementDamper, 50);
  EXPECT_EQ(engine.movementDeadZone, 15999);
  engine.ApplyMouseSlider(ControlEngine::kMovementSensitivitySlider, -1);
  EXPECT_EQ(profile.movementSensitivity, 0);
  EXPECT_EQ(engine.movementFactor, 2);
}

TEST_F(MouseSliders, ALoadedProfileIsAppliedWhole) {
  profile.movementDamper = 0;
  profile.movementSensitivity = 50;
  profile.wheelDamper = 25;
  profile.wheelSensitivity = 3;
  profile.acceleration = 99;
  engine.ApplyMouseSettings();
  EXPECT_EQ(engine.movementDeadZone, 0);
  EXPECT_EQ(engine.movementFactor, 52);
  EXPECT_EQ(engine.wheelDeadZone, 7999);
  EXPECT_EQ(engine.wheelFactor, 5);
  EXPECT_EQ(profile.acceleration, 99);
}

// --- One poll after another ---------------------------------------------------------------------

// The mouse controls are on, nothing is assigned, no dead zone, the flat curve.
class MousePoll : public EngineTest {
 protected:
  MousePoll() {
    engine.mouseActive = true;
    engine.ApplyMouseSlider(ControlEngine::kMovementDamperSlider, 0);
    engine.ApplyMouseSlider(ControlEngine::kMovementSensitivitySlider, 0);
    engine.ApplyMouseSlider(ControlEngine::kWheelDamperSlider, 0);
    engine.ApplyMouseSlider(ControlEngine::kWheelSensitivitySlider, 0);
  }
};

TEST_F(MousePoll, AHundredthOfTheWayTakesAHundredPollsToACount) {
  profile.mouseX = MouseInput(0);
  for (int poll = 1; poll < 100; ++poll) ASSERT_EQ(Poll(WithX(320)), "") << poll;
  EXPECT_NEAR(engine.accumulatedX, 0.9999, 1e-9);
  EXPECT_EQ(Poll(WithX(320)), "1 1 0 0");
  EXPECT_EQ(engine.accumulatedX, 0.0) << "what was above the count isn't carried over";
  for (int poll = 1; poll < 100; ++poll) ASSERT_EQ(Poll(WithX(320)), "") << poll;
  EXPECT_EQ(Poll(WithX(320)), "1 1 0 0");
}

TEST_F(MousePoll, AtTheLimitTheDefaultSettingsSendFourCountsAPoll) {
  engine.ApplyMouseSlider(ControlEngine::kMovementDamperSlider, 5);
  engine.ApplyMouseSlider(ControlEngine::kMovementSensitivitySlider, 15);
  profile.mouseX = MouseInput(0);
  for (int poll = 0; poll < 3; ++poll) EXPECT_EQ(Poll(WithX(kAxisMax)), "1 4 0 0");
  EXPECT_EQ(Poll(WithX(-kAxisMax)), "1 -4 0 0");
}

TEST_F(MousePoll, AtTheDeadZoneExactlyTheWaitingFractionIsDropped) {
  engine.ApplyMouseSlider(ControlEngine::kMovementDamperSlider, 5);
  profile.mouseX = MouseInput(0);
  engine.accumulatedX = 0.9;
  EXPECT_EQ(Poll(WithX(1599)), "");
  EXPECT_EQ(engine.accumulatedX, 0.0);
  engine.accumulatedX = 0.9;
  EXPECT_EQ(Poll(WithX(1600)), "");
  EXPECT_GT(engine.accumulatedX, 0.9);
}

TEST_F(MousePoll, MinusOneExactlyIsSentAndAnythingLessIsNot) {
  profile.mouseX = MouseInput(0);
  // Half way adds 0.5 + 0.25.
  engine.accumulatedX = -0.25;
  EXPECT_EQ(Poll(WithX(-16000)), "1 -1 0 0");
  EXPECT_EQ(engine.accumulatedX, 0.0);
  engine.accumulatedX = -0.249;
  EXPECT_EQ(Poll(WithX(-16000)), "");
  EXPECT_NEAR(engine.accumulatedX, -0.999, 1e-12);
  engine.accumulatedX = 0.25;
  EXPECT_EQ(Poll(WithX(16000)), "1 1 0 0");
}

TEST_F(MousePoll, ASendSpendsAllOfIt) {
  profile.mouseX = MouseInput(0);
  engine.accumulatedX = 0.9;
  EXPECT_EQ(Poll(WithX(kAxisMax)), "1 2 0 0");  // 2.9
  EXPECT_EQ(engine.accumulatedX, 0.0);
}

TEST_F(MousePoll, AFractionInTheOtherAxisStaysWhenOneSends) {
  profile.mouseX = MouseInput(0);
  profile.mouseY = MouseInput(1);
  DIJOYSTATE2 state = WithX(kAxisMax);
  state.lY = 16000;
  EXPECT_EQ(Poll(state), "1 2 0 0");
  EXPECT_EQ(engine.accumulatedX, 0.0);
  EXPECT_EQ(engine.accumulatedY, 0.75);
  EXPECT_EQ(Poll(state), "1 2 1 0");
  EXPECT_EQ(engine.accumulatedY, 0.0);
}

TEST_F(MousePoll, TheWheelIsNegatedAndRaw) {
  profile.mouseWheel = MouseInput(2);
  DIJOYSTATE2 state = With(&DIJOYSTATE2::lZ, kAxisMax);
  EXPECT_EQ(Poll(state), "2049 0 0 -2");
  state.lZ = -kAxisMax;
  EXPECT_EQ(Poll(state), "2049 0 0 2");
  EXPECT_EQ(engine.accumulatedWheel, 0.0);
}

TEST_F(MousePoll, TheWheelHasADeadZoneAndACurveOfItsOwn) {
  engine.ApplyMouseSlider(ControlEngine::kWheelDamperSlider, 50);
  engine.ApplyMouseSlider(ControlEngine::kWheelSensitivitySlider, 50);
  profile.mouseX = MouseInput(2);
  profile.mouseWheel = MouseInput(3);
  DIJOYSTATE2 state = With(&DIJOYSTATE2::lRx, 15999);
  EXPECT_EQ(Poll(state), "");
  EXPECT_EQ(engine.accumulatedWheel, 0.0);
  state.lRx = kAxisMax;  // 1 + 10.4
  EXPECT_EQ(Poll(state), "2049 0 0 -11");
}

TEST_F(MousePoll, ASharedAxisMovesUntilTheWheelFires) {
  // The wheel is damped, so the pointer has the lower half of the axis for itself.
  engine.ApplyMouseSlider(ControlEngine::kWheelDamperSlider, 50);
  profile.mouseY = MouseInput(1);
  profile.mouseWheel = MouseInput(1);
  DIJOYSTATE2 state = Pad();
  state.lY = 15999;  // 0.49996875 + 0.24996875 a poll
  EXPECT_EQ(Poll(state), "");
  EXPECT_EQ(Poll(state), "1 0 1 0");
  // Silencing drops what Y had waiting, also where Y itself had nothing to send.
  engine.accumulatedY = -1.5;
  engine.accumulatedWheel = 0.99;
  state.lY = 24000;
  EXPECT_EQ(Poll(state), "2049 0 0 -1");
  EXPECT_EQ(engine.accumulatedY, 0.0);
}

TEST_F(MousePoll, AWheelSilencesTheDirectionThatSharesItsInput) {
  const TriggerItem none = {input_kind::kNone, 0, 0};
  const TriggerItem atX = MouseInput(0), atY = MouseInput(1), atZ = MouseInput(2);
  const struct {
    const char* name;
    TriggerItem x, y, wheel;
    const char* sent;
  } rows[] = {
      {"three inputs travel in one event", atX, atY, atZ, "2049 2 2 -2"},
      {"wheel and pointer", atX, none, atZ, "2049 2 0 -2"},
      {"Y's input silences Y", none, atY, atY, "2049 0 0 -2"},
      {"Y's input leaves X alone, though it is X's too", atY, atY, atY, "2049 2 0 -2"},
      {"X's input silences X", atX, atY, atX, "2049 0 2 -2"},
      {"another bank is another input", none, atY, MouseInput(1, 1), "2049 0 2 -2"},
  };
  DIJOYSTATE2 state = WithX(kAxisMax);
  state.lY = state.lZ = state.lVY = kAxisMax;
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    profile.mouseX = row.x;
    profile.mouseY = row.y;
    profile.mouseWheel = row.wheel;
    EXPECT_EQ(Poll(state), row.sent);
    EXPECT_EQ(engine.accumulatedX, 0.0);
    EXPECT_EQ(engine.accumulatedY, 0.0);
  }
}

TEST_F(MousePoll, NothingAssignedNeverSends) {
  DIJOYSTATE2 state = WithX(kAxisMax, {1});
  state.lY = -kAxisMax;
  state.rgdwPOV[0] = 9000;
  engine.accumulatedX = engine.accumulatedY = engine.accumulatedWheel = 0.9;
  for (int poll = 0; poll < 10; ++poll) EXPECT_EQ(Poll(state), "");
  EXPECT_EQ(engine.accumulatedX, 0.0);
  EXPECT_EQ(engine.accumulatedY, 0.0);
  EXPECT_EQ(engine.accumulatedWheel, 0.0);
}

TEST_F(MousePoll, ASidewaysHatMovesOneCountAPoll) {
  profile.mouseX = MouseInput(input_kind::kPov);
  engine.ApplyMouseSlider(ControlEngine::kMovementSensitivitySlider, 50);
  EXPECT_EQ(Poll(WithHat(9000)), "1 1 0 0");
  EXPECT_EQ(Poll(WithHat(9000)), "1 1 0 0");
  EXPECT_EQ(Poll(WithHat(27000)), "1 -1 0 0");
  EXPECT_EQ(Poll(WithHat(platform::kPovCentred)), "");
  EXPECT_EQ(Poll(WithHat(0)), "");
}

TEST_F(MousePoll, TheSlotTellsWhichWayAHatMovesThePointer) {
  profile.mouseY = MouseInput(input_kind::kPov);
  EXPECT_EQ(Poll(WithHat(9000)), "1 0 1 0");
  EXPECT_EQ(Poll(WithHat(0)), "");
  profile.mouseY = MouseInput(input_kind::kPovVertical);
  EXPECT_EQ(Poll(WithHat(0)), "1 0 -1 0");
  EXPECT_EQ(Poll(WithHat(18000)), "1 0 1 0");
  EXPECT_EQ(Poll(WithHat(9000)), "");
}

TEST_F(MousePoll, AHatOnTheWheelTurnsItACountAPoll) {
  profile.mouseWheel = MouseInput(input_kind::kPovVertical);
  EXPECT_EQ(Poll(WithHat(0)), "2049 0 0 1");
  EXPECT_EQ(Poll(WithHat(18000)), "2049 0 0 -1");
}

TEST_F(MousePoll, AnySingleFlagTurnsItOn) {
  profile.mouseX = MouseInput(0);
  engine.mouseActive = false;
  EXPECT_EQ(Poll(WithX(kAxisMax)), "");
  EXPECT_FALSE(engine.MouseIsOn());
  profile.mouseAlwaysActive = true;
  EXPECT_EQ(Poll(WithX(kAxisMax)), "1 2 0 0");
  profile.mouseAlwaysActive = false;
  engine.SetTestMode(true);
  EXPECT_EQ(Poll(WithX(kAxisMax)), "1 2 0 0");
  engine.SetTestMode(false);
  engine.mouseActive = true;
  EXPECT_EQ(Poll(WithX(kAxisMax)), "1 2 0 0");
}

TEST_F(MousePoll, AccumulatorsOutlastTheTimeThatItIsOff) {
  profile.mouseX = MouseInput(0);
  Poll(WithX(16000));
  engine.mouseActive = false;
  EXPECT_EQ(Poll(WithX(0)), "");
  EXPECT_EQ(engine.accumulatedX, 0.75);
  engine.mouseActive = true;
  EXPECT_EQ(Poll(WithX(16000)), "1 1 0 0");
}

TEST_F(MousePoll, WithTheDialogOpenThePointerStandsStill) {
  profile.mouseX = MouseInput(0);
  profile.mouseAlwaysActive = true;
  host.dialogOpen = true;
  EXPECT_EQ(Poll(WithX(kAxisMax)), "");
  EXPECT_EQ(engine.accumulatedX, 0.0);
  host.dialogOpen = false;
  EXPECT_EQ(Poll(WithX(kAxisMax)), "1 2 0 0");
}

TEST_F(MousePoll, DuringADetectionThePointerStandsStill) {
  profile.mouseX = MouseInput(0);
  engine.StartMouseDetection(MouseRole::X);
  EXPECT_EQ(Poll(WithX(kAxisMax)), "");
  EXPECT_EQ(engine.accumulatedX, 0.0);
}

TEST_F(MousePoll, APollThatFindsTheLockTakenMovesNothing) {
  profile.mouseX = MouseInput(0);
  // Also where it is this thread that holds it, which an acquire would not wait for.
  {
    LockGuard poll(device.deviceLock);
    LockGuard guard(engine.mouseLock);
    EXPECT_EQ(Poll(WithX(16000)), "");
    EXPECT_EQ(engine.accumulatedX, 0.0);
  }
  EXPECT_EQ(Poll(WithX(16000)), "");
  EXPECT_EQ(engine.accumulatedX, 0.75);
  EXPECT_FALSE(engine.mouseLock.IsTaken()) << "and it lets go of the lock itself";
  Poll(WithX(16000));
  EXPECT_FALSE(engine.mouseLock.IsTaken());
}

TEST_F(MousePoll, CountsBeyondWhatAnEventHoldsAreCutToIt) {
  // No device that honours its range gets there.
  profile.mouseX = MouseInput(0);
  profile.mouseWheel = MouseInput(2);
  DIJOYSTATE2 state = WithX(std::numeric_limits<std::int32_t>::min());
  state.lZ = std::numeric_limits<std::int32_t>::max();
  EXPECT_EQ(Poll(state), "2049 -2147483648 0 -2147483648");
}

TEST_F(MousePoll, AllocatesNothing) {
  profile.mouseX = MouseInput(0);
  profile.mouseY = MouseInput(input_kind::kPov);
  profile.mouseWheel = MouseInput(2);
  const DIJOYSTATE2 quiet = WithX(3);
  LockGuard guard(device.deviceLock);
  MouseStep(&device, &quiet, &engine);
  const std::uint64_t before = Allocations();
  for (int poll = 0; poll < 1000; ++poll) MouseStep(&device, &quiet, &engine);
  engine.mouseActive = false;
  for (int poll = 0; poll < 1000; ++poll) MouseStep(&device, &quiet, &engine);
  EXPECT_EQ(Allocations() - before, 0u);
  EXPECT_TRUE(sim.Events().empty());
}

// Events go nowhere, so that what is counted is the step's own.
class NullInput : public platform::Input {
 public:
  void keybd_event(std::uint8_t, std::uint8_t, std::uint32_t, std::uint32_t) override {}
  void mouse_event(std::uint32_t, std::int32_t, std::int32_t, std::int32_t,
                   std::uint32_t) override {
    ++events;
  }
  int events = 0;
};

TEST_F(MousePoll, SendsOneEventAPollAtMostAndAllocatesNothingForIt) {
  NullInput input;
  platform::Platform groups = sim.Groups();
  groups.input = &input;
  platform::InstalledPlatform installed(groups);
  profile.mouseX = MouseInput(0);
  profile.mouseY = MouseInput(1);
  profile.mouseWheel = MouseInput(2);
  DIJOYSTATE2 state = WithX(kAxisMax);
  state.lY = state.lZ = kAxisMax;
  LockGuard guard(device.deviceLock);
  const std::uint64_t before = Allocations();
  for (int poll = 0; poll < 1000; ++poll) MouseStep(&device, &state, &engine);
  EXPECT_EQ(Allocations() - before, 0u);
  EXPECT_EQ(input.events, 1000);
}

// --- Buttons ------------------------------------------------------------------------------------

class MouseButtons : public EngineTest {
 protected:
  MouseButtons() { engine.mouseActive = true; }
  // The mouse events of one changed state.
  std::string Change(std::initializer_list<std::uint32_t> buttons) {
    keys = Dispatch(buttons);
    return MouseEvents();
  }
  void Assign(Relaxed<std::uint64_t>* mask, std::uint16_t index) { *mask = MouseButtonMask(index); }
  std::string keys;
};

TEST_F(MouseButtons, OneEventDownAndOneUp) {
  Assign(&profile.leftMask, 2);
  EXPECT_EQ(Change({3}), "2 0 0 0");
  EXPECT_TRUE(engine.leftDown);
  EXPECT_EQ(Change({3, 4}), "");
  EXPECT_EQ(Change({3}), "");
  EXPECT_EQ(Change({}), "4 0 0 0");
  EXPECT_FALSE(engine.leftDown);
}

TEST_F(MouseButtons, EachHasItsEventsAndThoseOfOneChangeTravelInOneCall) {
  Assign(&profile.leftMask, 0);
  Assign(&profile.middleMask, 1);
  Assign(&profile.rightMask, 2);
  EXPECT_EQ(Change({1}), "2 0 0 0");
  EXPECT_EQ(Change({2}), "36 0 0 0");  // left up 4, middle down 32
  EXPECT_EQ(Change({3}), "72 0 0 0");  // middle up 64, right down 8
  EXPECT_EQ(Change({}), "16 0 0 0");
  EXPECT_EQ(Change({1, 2, 3}), "42 0 0 0");
  EXPECT_TRUE(engine.leftDown && engine.middleDown && engine.rightDown);
  EXPECT_EQ(Change({}), "84 0 0 0");
}

TEST_F(MouseButtons, AnUnassignedOneSendsNothing) {
  EXPECT_EQ(Change({1}), "");
  EXPECT_FALSE(engine.leftDown);
}

TEST_F(MouseButtons, TwoMouseButtonsMayShareOneButton) {
  Assign(&profile.leftMask, 0);
  Assign(&profile.rightMask, 0);
  Add({.name = "a", .buttons = {1}});
  EXPECT_EQ(Change({1}), "10 0 0 0");
  EXPECT_EQ(keys, "") << "taken out once, not put back by the second";
  EXPECT_EQ(Change({}), "20 0 0 0");
}

TEST_F(MouseButtons, ButtonThirtyThreeWrapsToTheFirst) {
  Assign(&profile.leftMask, 32);
  EXPECT_EQ(Change({33}), "");
  EXPECT_EQ(Change({}), "");
  EXPECT_EQ(Change({1}), "2 0 0 0");
}

TEST_F(MouseButtons, IndexThirtyOneAnswersToAllTheUpperButtonsToo) {
  Assign(&profile.leftMask, 31);
  Add({.name = "32", .buttons = {32}});
  Add({.name = "40", .buttons = {40}});
  EXPECT_EQ(Change({32}), "2 0 0 0");
  EXPECT_EQ(keys, "");
  EXPECT_EQ(Change({32, 40}), "2 0 0 0") << "another edge of the same mask";
  EXPECT_EQ(keys, "press 40") << "the upper half isn't taken out";
  EXPECT_EQ(Change({40}), "2 0 0 0");
  EXPECT_EQ(keys, "press 32") << "bit 31 changes sides though that button is up";
  EXPECT_EQ(Change({}), "4 0 0 0");
  EXPECT_EQ(keys, "release 32, release 40");
}

TEST_F(MouseButtons, GoingOffWhileAButtonIsHeldSendsNoUpEvent) {
  Assign(&profile.leftMask, 0);
  EXPECT_EQ(Change({1}), "2 0 0 0");
  engine.mouseActive = false;
  EXPECT_EQ(Change({1, 2}), "");
  EXPECT_EQ(Change({}), "");
  EXPECT_TRUE(engine.leftDown);
  engine.mouseActive = true;
  EXPECT_EQ(Change({2}), "") << "no edge of that button";
  EXPECT_EQ(Change({1}), "2 0 0 0");
  EXPECT_EQ(Change({}), "4 0 0 0");
}

TEST_F(MouseButtons, GoingOnWhileAButtonIsHeldSendsNoDownEvent) {
  Assign(&profile.leftMask, 0);
  Add({.name = "a", .buttons = {1}});
  engine.mouseActive = false;
  EXPECT_EQ(Change({1}), "");
  EXPECT_EQ(keys, "press a");
  engine.mouseActive = true;
  EXPECT_EQ(Change({1, 2}), "");
  EXPECT_EQ(keys, "release a") << "though it is the mouse's from here on";
  EXPECT_EQ(Change({}), "4 0 0 0");
}

TEST_F(MouseButtons, AnySingleFlagTurnsThemOn) {
  Assign(&profile.leftMask, 0);
  engine.mouseActive = false;
  EXPECT_EQ(Change({1}), "");
  EXPECT_EQ(Change({}), "");
  engine.SetTestMode(true);
  EXPECT_EQ(Change({1}), "2 0 0 0");
  EXPECT_EQ(Change({}), "4 0 0 0");
  engine.SetTestMode(false);
  profile.mouseAlwaysActive = true;
  EXPECT_EQ(Change({1}), "2 0 0 0");
  EXPECT_EQ(Change({}), "4 0 0 0");
}

TEST_F(MouseButtons, DuringADetectionFlagsFollowButNothingIsSent) {
  Assign(&profile.leftMask, 0);
  engine.mouseActive = false;
  engine.StartMouseDetection(MouseRole::MiddleButton);
  EXPECT_EQ(Change({1}), "");
  EXPECT_TRUE(engine.leftDown);
  EXPECT_EQ(Change({}), "");
  EXPECT_FALSE(engine.leftDown);
}

// --- Whole runs ---------------------------------------------------------------------------------

class MouseRun : public MousePoll {};

TEST_F(MouseRun, ThePointerMovesAtEachPollAndNotAtChangesOnly) {
  profile.mouseX = MouseInput(0);
  auto& pad = Plug(5);
  pad.MoveAxis("Axis_X0", kAxisMax);
  RunTo(1000);
  EXPECT_EQ(sim.Events().size(), 200u);
  EXPECT_EQ(sim.Events().front().t, start + 5);
  EXPECT_EQ(sim.Events().back().t, start + 1000);
}

TEST_F(MouseRun, APollsMotionComesBeforeItsKeysAndButtons) {
  profile.mouseX = MouseInput(0);
  profile.leftMask = MouseButtonMask(0);
  auto& pad = Plug(5);
  RunTo(12);
  pad.MoveAxis("Axis_X0", kAxisMax);
  pad.Press({1});
  RunTo(17);
  EXPECT_EQ(MouseEvents(), "1 2 0 0, 2 0 0 0");
}

// Of an hour in which `does` is done once: the polls, and whether the pointer moved.
class MouseRest : public MousePoll {
 protected:
  MouseRest() {
    profile.mouseX = MouseInput(0);
    engine.mouseActive = false;
    sim.LogCalls(true);
    Plug(5).MoveAxis("Axis_X0", kAxisMax);
    RunTo(1000);
  }
  std::int64_t PollsOfAnHour() {
    sim.ClearCalls();
    sim.RunFor(3'600'000);
    return test::CountDeviceCalls(sim, "Poll");
  }
  // The pointer moves at the next point of the grid and at each further one.
  void ExpectItMoves() {
    const std::uint64_t now = sim.Now();
    sim.ClearEvents();
    sim.RunFor(15);
    ASSERT_EQ(sim.Events().size(), 3u);
    EXPECT_EQ(sim.Events().front().t, start + ((now - start) / 5 + 1) * 5);
  }
};

TEST_F(MouseRest, APadThatLiesStillIsNotPolledWhileTheMouseControlsAreOff) {
  EXPECT_EQ(PollsOfAnHour(), 0);
}

TEST_F(MouseRest, NorWhileAllItsInputsRestAndNothingWaits) {
  engine.SetTestMode(true);
  ExpectItMoves();
  pad->MoveAxis("Axis_X0", 0);
  EXPECT_EQ(PollsOfAnHour(), 2);  // the change, and that nothing follows it
}

TEST_F(MouseRest, ItMovesAtOnceByWhateverTurnsItOn) {
  sim.RunFor(3);
  engine.SetTestMode(true);
  ExpectItMoves();
  engine.SetTestMode(false);
  sim.RunFor(100);
  EXPECT_EQ(PollsOfAnHour(), 0);
  profile.mouseAlwaysActive = true;
  engine.MouseChanged();
  ExpectItMoves();
  profile.mouseAlwaysActive = false;
  Add({.name = "toggle", .buttons = {1}, .toggles = true});
  pad->Press({1});
  sim.RunFor(5);
  ExpectItMoves();
}

TEST_F(MouseRest, ItMovesAtOnceAfterADetectionAndASmallerDamper) {
  engine.SetTestMode(true);
  engine.StartMouseDetection(MouseRole::LeftButton);
  EXPECT_EQ(PollsOfAnHour(), 1);
  engine.EndMouseDetection();
  ExpectItMoves();
  pad->MoveAxis("Axis_X0", 8000);
  engine.ApplyMouseSlider(ControlEngine::kMovementDamperSlider, 50);
  EXPECT_LE(PollsOfAnHour(), 3);
  engine.ApplyMouseSlider(ControlEngine::kMovementDamperSlider, 0);
  sim.RunFor(5);
  EXPECT_LT(0, PollsOfAnHour());
}

// Below a count, it grows at each poll.
TEST_F(MouseRest, AnInputThatStillAccumulatesIsNoRest) {
  engine.SetTestMode(true);
  engine.ApplyMouseSlider(ControlEngine::kMovementDamperSlider, 0);
  pad->MoveAxis("Axis_X0", 1);
  EXPECT_EQ(PollsOfAnHour(), 720'000);
}

// The step that finds the lock taken says nothing.
TEST_F(MouseRest, AStepThatCouldNotLookIsRepeated) {
  engine.SetTestMode(true);
  pad->MoveAxis("Axis_X0", 0);
  sim.RunFor(12);
  engine.mouseLock.Acquire(1);
  engine.MouseChanged();
  EXPECT_EQ(PollsOfAnHour(), 720'000);
  engine.mouseLock.Release();
  EXPECT_EQ(PollsOfAnHour(), 1);
}

TEST_F(MouseRun, ALongReplayHoldsThePointer) {
  profile.mouseX = MouseInput(0);
  Add({.name = "long", .buttons = {1}, .pressMs = 30});
  auto& pad = Plug(5);
  pad.MoveAxis("Axis_X0", kAxisMax);
  RunTo(12);
  pad.Press({1});
  sim.ClearEvents();
  RunTo(60);
  std::vector<std::uint64_t> times;
  for (const auto& event : sim.Events()) times.push_back(event.t - start);
  // The replay runs from 15 to 45. The tick at 45 comes before it ends and is lost too.
  EXPECT_EQ(times, (std::vector<std::uint64_t>{15, 50, 55, 60}));
}

TEST_F(MouseRun, ItStandsStillAndDoesNotWaitWhileAnotherThreadHasTheMouseState) {
  profile.mouseX = MouseInput(0);
  auto& pad = Plug(5);
  pad.MoveAxis("Axis_X0", kAxisMax);
  RunTo(12);  // the change has been dealt with, so that only polls meet the lock
  MouseEvents();
  engine.mouseLock.Acquire(1);
  RunTo(22);
  EXPECT_EQ(MouseEvents(), "");
  engine.mouseLock.Release();
  RunTo(25);
  EXPECT_EQ(MouseEvents(), "1 2 0 0") << "the tick at 25 isn't held up by those before it";
}

TEST_F(MouseRun, ALostDeviceMovesNothingAndKeepsButtonsDown) {
  profile.mouseX = MouseInput(0);
  profile.leftMask = MouseButtonMask(0);
  auto& pad = Plug(5);
  pad.MoveAxis("Axis_X0", kAxisMax);
  pad.Press({1});
  RunTo(10);
  EXPECT_EQ(MouseEvents(), "1 2 0 0, 2 0 0 0, 1 2 0 0");
  pad.Lose();
  RunTo(200);
  EXPECT_EQ(MouseEvents(), "");
  EXPECT_TRUE(engine.leftDown);
  pad.MoveAxis("Axis_X0", 0);
  pad.Press({});
  pad.Return();
  RunTo(300);
  EXPECT_EQ(MouseEvents(), "4 0 0 0");
}

}  // namespace
}  // namespace kelvaro
