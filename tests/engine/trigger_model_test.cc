// Long random play against a second telling of the rules.
#include <gtest/gtest.h>

#include <random>

#include "engine/control.h"
#include "engine/device_snapshot.h"
#include "tests/engine/axes.h"
#include "tests/engine/trigger_model.h"

namespace kelvaro {
namespace {

// Few inputs, so that Triggers and states meet often, among them the ends of the masks and banks.
constexpr int kButtons[] = {0, 1, 2, 31, 63};
constexpr TriggerItem kInputs[] = {{0, 0, 0}, {7, 3, 0}, {3, 1, 0}, {8, 0, 0}, {8, 3, 0}};
constexpr std::int32_t kPositions[] = {0, 0, 100, 16000, 16001, 32000, -16000, -16001, -32000};
constexpr std::uint32_t kAngles[] = {0xFFFFFFFF, 0xFFFFFFFF, 0x0000FFFF, 0,     4500,
                                     9000,       13500,      18000,      24000, 30000};

class Player {
 public:
  explicit Player(std::uint32_t seed) : random(seed) {}

  std::uint32_t Below(std::uint32_t n) { return static_cast<std::uint32_t>(random() % n); }
  template <typename T, std::size_t N>
  T OneOf(const T (&values)[N]) {
    return values[Below(N)];
  }

  ModelTrigger MakeTrigger() {
    ModelTrigger trigger;
    trigger.press = Below(3) == 0;
    for (std::uint32_t n = Below(4); n > 0; --n) trigger.buttons.insert(OneOf(kButtons));
    for (std::uint32_t n = Below(4); n > 0; --n) {
      TriggerItem item = OneOf(kInputs);
      item.value = static_cast<std::uint16_t>(item.kind == 8 ? Below(16)
                                              : Below(8)     ? 1 + Below(2)
                                                             : Below(4));
      if (Below(8) == 0) item.value = static_cast<std::uint16_t>(item.value + 256 * Below(256));
      if (Below(12) == 0) item.kind = static_cast<std::uint16_t>(9 + Below(4));
      trigger.items.push_back(item);
    }
    return trigger;
  }

  // The next state: as a rule one thing changes, now and then all is let go, or what the Trigger
  // wants is pushed.
  void Move(const ModelTrigger& trigger, DIJOYSTATE2* state) {
    switch (Below(8)) {
      case 0: {
        *state = DIJOYSTATE2();
        for (std::uint32_t& hat : state->rgdwPOV) hat = 0xFFFFFFFF;
        return;
      }
      case 1:
      case 2: {
        for (const int n : trigger.buttons) state->rgbButtons[n] = 128;
        for (const TriggerItem& item : trigger.items) {
          if (item.kind == 8) {
            state->rgdwPOV[item.index] = item.value & 2 ? 0 : item.value & 8 ? 18000 : 9000;
          } else if (item.kind < 8) {
            SetAxis(item, item.value % 256 == 1 ? -20000 : 20000, state);
          }
        }
        return;
      }
      case 3:
      case 4: {
        state->rgdwPOV[Below(2) ? 0 : 3] = OneOf(kAngles);
        SetAxis(kInputs[Below(3)], OneOf(kPositions), state);
        return;
      }
      default: {
        std::uint8_t& button = state->rgbButtons[OneOf(kButtons)];
        button = button ? 0 : 1;
        return;
      }
    }
  }

 private:
  static void SetAxis(const TriggerItem& input, std::int32_t value, DIJOYSTATE2* state) {
    if (input.kind == 0) state->lX = value;
    if (input.kind == 7) state->rglFSlider[1] = value;
    if (input.kind == 3) state->lVRx = value;
  }

  std::mt19937 random;
};

TEST(TriggerModel, AgreesOnLongRandomPlay) {
  int pressed = 0, released = 0, armed = 0, spoiled = 0, swallowed = 0;
  for (std::uint32_t seed = 1; seed <= 4000; ++seed) {
    Player player(seed);
    ModelTrigger model = player.MakeTrigger();
    Control control;
    control.activateOnPress = model.press;
    std::uint64_t mask = 0;
    for (const int n : model.buttons) mask |= std::uint64_t{1} << n;
    control.SetButtonMask(mask);
    for (const TriggerItem& item : model.items) control.triggerItems.AddTail(item);
    if (player.Below(10) == 0) control.triggerArmed = model.armed = true;
    if (player.Below(10) == 0) control.triggerSpoiled = model.spoiled = true;

    DIJOYSTATE2 state;
    DeviceSnapshot snapshot;
    for (int step = 0; step < 100; ++step) {
      player.Move(model, &state);
      UpdateSnapshot(&snapshot, state);
      const ModelTrigger before = model;
      const bool expected = ModelEvaluate(&model, state);
      ASSERT_EQ(control.EvaluateTrigger(kAxisMax, snapshot), expected)
          << "seed " << seed << ", step " << step;
      ASSERT_EQ(control.triggerArmed, model.armed ? 1 : 0) << "seed " << seed << ", step " << step;
      ASSERT_EQ(control.triggerSpoiled, model.spoiled ? 1 : 0)
          << "seed " << seed << ", step " << step;
      RollSnapshot(&snapshot);

      if (expected) ++(model.press ? pressed : released);
      if (model.armed && !before.armed) ++armed;
      if (model.spoiled && !before.spoiled) ++spoiled;
      if (before.armed && !model.armed && !expected) ++swallowed;
    }
  }
  // The play got everywhere.
  EXPECT_GT(pressed, 10000);
  EXPECT_GT(released, 10000);
  EXPECT_GT(armed, 10000);
  EXPECT_GT(spoiled, 1000);
  EXPECT_GT(swallowed, 1000);
}

}  // namespace
}  // namespace kelvaro
