#include "app/platform/linux/keyboard_layout.h"

// Before X11, whose macros hide its names.
#include <gtest/gtest.h>

#include <X11/Xlib.h>
#include <X11/keysym.h>
#include <linux/input-event-codes.h>

#include <array>
#include <string>

#include "tests/host/processes.h"

namespace platform {
namespace {

using namespace kelvaro::tests;

class KeyboardLayoutTest : public ::testing::Test {
 protected:
  void SetUp() override {
    SKIP_UNLESS(server.Id() > 0 && !server.Address().empty(), "xvfb", "Xvfb can't be started");
    editor = XOpenDisplay(name.c_str());
    ASSERT_NE(editor, nullptr);
  }
  void TearDown() override {
    if (editor) XCloseDisplay(editor);
  }

  // Gives a key two symbols, alone and with Shift.
  void Put(std::uint16_t code, KeySym alone, KeySym shifted) {
    std::array<KeySym, 2> symbols{alone, shifted};
    XChangeKeyboardMapping(editor, code + 8, 2, symbols.data(), 1);
    XSync(editor, False);
  }
  // Asked anew each time.
  std::string Types(std::uint16_t code, bool shift = false) const {
    const auto layout = KeyboardLayout::Open(name);
    EXPECT_NE(layout, nullptr);
    return layout ? layout->Types(code, shift) : "none";
  }

  Server server{[](const std::string& pipe) { return XServerCommand(pipe, "640x480"); }};
  const std::string name = ":" + server.Address();
  Display* editor = nullptr;
};

TEST_F(KeyboardLayoutTest, TellsTheCharacterAloneAndWithShift) {
  EXPECT_EQ(Types(KEY_Y), "y");
  EXPECT_EQ(Types(KEY_Y, true), "Y");
  EXPECT_EQ(Types(KEY_SEMICOLON), ";");
  EXPECT_EQ(Types(KEY_SEMICOLON, true), ":");
}

TEST_F(KeyboardLayoutTest, TellsWhatAnotherLayoutMakesOfAKey) {
  Put(KEY_Y, XK_z, XK_Z);
  EXPECT_EQ(Types(KEY_Y), "z");
  EXPECT_EQ(Types(KEY_Y, true), "Z");
  Put(KEY_SEMICOLON, XK_odiaeresis, 0x010020AC);
  EXPECT_EQ(Types(KEY_SEMICOLON), "\xC3\xB6");
  EXPECT_EQ(Types(KEY_SEMICOLON, true), "\xE2\x82\xAC");
  Put(KEY_EQUAL, XK_dead_acute, 0x0101F3AE);
  EXPECT_EQ(Types(KEY_EQUAL), "dead_acute");
  EXPECT_EQ(Types(KEY_EQUAL, true), "\xF0\x9F\x8E\xAE");
}

TEST_F(KeyboardLayoutTest, ACodeWithoutAKeyTypesNothing) {
  EXPECT_EQ(Types(0), "");
  EXPECT_EQ(Types(KEY_MICMUTE), "") << "beyond what X has room for";
}

TEST(KeyboardLayout, WhereNoServerAnswersThereIsNone) {
  EXPECT_EQ(KeyboardLayout::Open(":987"), nullptr);
}

}  // namespace
}  // namespace platform
