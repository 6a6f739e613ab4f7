#include "keys/key_action.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/keys/key_text.h"

namespace kelvaro {
namespace {

TEST(KeyAction, IsNewWithTypeOneNoFlagsAndNoSteps) {
  KeyAction action;
  EXPECT_EQ(action.actionType, 1u);
  EXPECT_EQ(action.actionFlags, 0u);
  EXPECT_EQ(action.steps.count, 0);
}

TEST(KeyAction, ClearEmptiesStepsAndFlagsAndKeepsTheType) {
  KeyAction action = ActionOf({{0x41, 0x1E, 0}}, true);
  action.Clear();
  EXPECT_EQ(action.actionType, 1u);
  EXPECT_EQ(action.actionFlags, 0u);
  EXPECT_EQ(StepText(action.steps), "");
}

TEST(KeyAction, CopyFromReplacesTypeStepsAndFlags) {
  KeyAction source = ActionOf({{0x41, 0x1E, 0}, {0x42, 0x30, 0x08}}, true);
  source.actionType = 7;
  source.actionFlags = 0x80000001;
  KeyAction copy = ActionOf({{0x43, 0x2E, 0}});
  copy.CopyFrom(source);
  EXPECT_EQ(copy.actionType, 7u);
  EXPECT_EQ(copy.actionFlags, 0x80000001u);
  EXPECT_EQ(StepText(copy.steps), "41 1e 00, 42 30 08");
}

TEST(KeyAction, CopyFromItselfChangesNothing) {
  KeyAction action = ActionOf({{0x41, 0x1E, 0}}, true);
  action.CopyFrom(action);
  EXPECT_EQ(StepText(action.steps), "41 1e 00");
  EXPECT_EQ(action.actionFlags, 1u);
}

TEST(KeyAction, CopyTypeCopiesTheTypeAlone) {
  KeyAction source = ActionOf({{0x41, 0x1E, 0}}, true);
  source.actionType = 7;
  KeyAction copy;
  copy.CopyType(source);
  EXPECT_EQ(copy.actionType, 7u);
  EXPECT_EQ(copy.actionFlags, 0u);
  EXPECT_EQ(copy.steps.count, 0);
}

TEST(KeyAction, CloneIsAKeyActionWithStepsOfItsOwn) {
  auto source = std::make_unique<KeyAction>(ActionOf({{0x41, 0x1E, 0}}, true));
  const InputAction& base = *source;
  const std::unique_ptr<InputAction> clone(base.Clone());
  source->Clear();
  source.reset();

  const auto* keys = dynamic_cast<const KeyAction*>(clone.get());
  ASSERT_NE(keys, nullptr);
  EXPECT_EQ(keys->actionType, 1u);
  EXPECT_EQ(keys->actionFlags, 1u);
  EXPECT_EQ(StepText(keys->steps), "41 1e 00");
}

}  // namespace
}  // namespace kelvaro
