#include "console/import/foreign_keys.h"

#include <gtest/gtest.h>

#include "app/platform/linux/key_map.h"
#include "console/key_text.h"
#include "keys/key_tables.h"

namespace kelvaro::console {
namespace {

// The one step of a key's text; a text of anything else is none.
KeyStep StepOf(const std::string& key) {
  KeyAction action;
  EXPECT_FALSE(ParseKeyText(TextOf(key), &action).faulty) << key;
  EXPECT_EQ(action.steps.count, 1u) << key;
  return action.steps.count == 1 ? *action.steps.head->value : KeyStep{};
}

// The kernel's key that a step presses, modifiers included.
std::uint16_t KernelKeyOf(const KeyStep& step) {
  const bool right = (step.flags & KeyFlagRight) != 0;
  if (step.vk != 0) return platform::KernelKeyCode(step.vk, step.scan);
  if ((step.flags & KeyFlagShift) != 0) {
    return platform::KernelKeyCode(right ? 0xA1 : 0x10, right ? 0x36 : 0x2A);
  }
  if ((step.flags & KeyFlagCtrl) != 0) {
    return platform::KernelKeyCode(right ? 0xA3 : 0x11, right ? 0x9D : 0x1D);
  }
  return platform::KernelKeyCode(right ? 0xA5 : 0x12, right ? 0xB8 : 0x38);
}

TEST(ForeignKeys, AnX11CodeIsTheKernelsAndEight) {
  std::size_t known = 0;
  for (std::uint32_t code = 0; code < 300; ++code) {
    const std::string key = KeyOfX11(code);
    if (key.empty()) continue;
    ++known;
    EXPECT_EQ(KernelKeyOf(StepOf(key)) + 8u, code) << key;
  }
  EXPECT_EQ(known, 126u);
}

// Whose kernel key X can name, that is; buttons of the mouse are none.
TEST(ForeignKeys, EveryKeyOfTheKeyLanguageHasAnX11Code) {
  std::size_t checked = 0;
  const auto check = [&checked](const KeyStep& step) {
    constexpr std::uint16_t kFirstButton = 0x100;
    if ((step.flags & KeyFlagMouse) != 0) return;
    const std::uint16_t code = KernelKeyOf(step);
    if (code == 0 || code >= kFirstButton || !platform::IsInX(code)) return;
    EXPECT_EQ(KernelKeyOf(StepOf(KeyOfX11(code + 8u))), code);
    ++checked;
  };
  for (const KeyToken* row = KeyTokenTable; row->name; ++row) {
    check({row->vk, row->scan, row->flags});
  }
  for (char c = ' '; c <= '~'; ++c) {
    KeyStep step;
    if (FindTypedKey(c, &step)) check(step);
  }
  EXPECT_GT(checked, 150u);
}

TEST(ForeignKeys, QtCodesAreThese) {
  const struct {
    std::uint32_t code;
    const char* key;
  } kCases[] = {
      {0x41, "a"},
      {0x5A, "z"},
      {0x61, "a"},
      {0x30, "0"},
      {0x20, "<Space>"},
      {0x3C, "<<"},
      {0x2D, "-"},
      {0x1000000, "<Esc>"},
      {0x1000001, "<TAB>"},
      {0x1000003, "<Backspace>"},
      {0x1000004, "<Enter>"},
      {0x1000005, "<NPEnter>"},
      {0x1000007, "<Del>"},
      {0x1000012, "<Left>"},
      {0x1000013, "<Up>"},
      {0x1000014, "<Right>"},
      {0x1000015, "<Down>"},
      {0x1000016, "<PgUp>"},
      {0x1000017, "<PgDown>"},
      {0x1000020, "<Shift>"},
      {0x1000021, "<Ctrl>"},
      {0x1000022, "<Win>"},
      {0x1000023, "<Alt>"},
      {0x1000030, "<F1>"},
      {0x100003B, "<F12>"},
      {0x100003C, ""},  // F13
      {0x11000020, "<RShift>"},
      {0x11000021, "<RCtrl>"},
      {0x10000037, "<NP7>"},
      {0x1000002A, "<NP*>"},
      {0x1000, ""},
      {0, ""},
      {0xFFFFFFFF, ""},
  };
  for (const auto& c : kCases) EXPECT_EQ(KeyOfQt(c.code), c.key) << std::hex << c.code;
}

TEST(ForeignKeys, EveryKeyIsOneStepOfTheKeyLanguage) {
  std::size_t known = 0;
  for (const std::uint32_t base :
       {0u, 0x1000000u, 0x1001100u, 0x1020000u, 0x10000000u, 0x11000000u}) {
    for (std::uint32_t code = base; code < base + 0x100; ++code) {
      const std::string key = KeyOfQt(code);
      if (key.empty()) continue;
      ++known;
      StepOf(key);
    }
  }
  EXPECT_EQ(known, 190u);
}

TEST(ForeignKeys, TheWheelIsNoButton) {
  EXPECT_EQ(MouseButtonKey(1), "<LMouse>");
  EXPECT_EQ(MouseButtonKey(2), "<MMouse>");
  EXPECT_EQ(MouseButtonKey(3), "<RMouse>");
  for (const std::uint32_t wheel : {0u, 4u, 5u, 6u, 7u, 10u}) {
    EXPECT_EQ(MouseButtonKey(wheel), "") << wheel;
  }
  EXPECT_EQ(MouseButtonKey(8), "<X1Mouse>");
  EXPECT_EQ(MouseButtonKey(9), "<X2Mouse>");
}

}  // namespace
}  // namespace kelvaro::console
