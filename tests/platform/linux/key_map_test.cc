#include "app/platform/linux/key_map.h"

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <algorithm>
#include <set>
#include <string>

#include "keys/key_tables.h"

namespace platform {
namespace {

using kelvaro::KeyChar;
using kelvaro::KeyCharTable;
using kelvaro::KeyToken;
using kelvaro::KeyTokenTable;
using kelvaro::LetterScanTable;

// Tokens that are modifiers or mouse buttons alone: they stand for no key of their own.
bool HasKey(const KeyToken& token) { return token.vk != 0; }

// What the kernel has no key for. docs/keys-on-linux.md names them too.
const std::set<std::string> kWithoutKernelKey = {"Attn", "ExSel"};

TEST(KeyMap, EveryTokenReachesAKernelKeyButThoseThatHaveNone) {
  int rows = 0;
  for (const KeyToken* token = KeyTokenTable; token->name; ++token) {
    ++rows;
    if (!HasKey(*token)) continue;
    const bool expected = kWithoutKernelKey.count(token->name) == 0;
    EXPECT_EQ(KernelKeyCode(token->vk, token->scan) != 0, expected) << token->name;
  }
  EXPECT_EQ(rows, 99);
}

TEST(KeyMap, EveryTypedCharacterReachesAKernelKey) {
  for (const KeyChar* row = KeyCharTable; row->character; ++row)
    EXPECT_NE(KernelKeyCode(row->vk, row->scan), 0) << row->character;
}

TEST(KeyMap, EveryLetterReachesItsOwnKernelKey) {
  const std::uint16_t letters[] = {KEY_A, KEY_B, KEY_C, KEY_D, KEY_E, KEY_F, KEY_G, KEY_H, KEY_I,
                                   KEY_J, KEY_K, KEY_L, KEY_M, KEY_N, KEY_O, KEY_P, KEY_Q, KEY_R,
                                   KEY_S, KEY_T, KEY_U, KEY_V, KEY_W, KEY_X, KEY_Y, KEY_Z};
  for (std::uint8_t i = 0; i < 26; ++i) {
    const auto vk = static_cast<std::uint8_t>('A' + i);
    EXPECT_EQ(KernelKeyCode(vk, LetterScanTable[i]), letters[i]) << char('A' + i);
    EXPECT_EQ(KernelKeyCode(vk, 0), letters[i]) << char('A' + i);
  }
}

TEST(KeyMap, EveryDigitReachesItsOwnKernelKey) {
  // 0 has scan code 0x0B, 1 to 9 have 0x02 to 0x0A.
  EXPECT_EQ(KernelKeyCode('0', 0x0B), KEY_0);
  EXPECT_EQ(KernelKeyCode('1', 0x02), KEY_1);
  EXPECT_EQ(KernelKeyCode('9', 0x0A), KEY_9);
  EXPECT_EQ(KernelKeyCode('0', 0), KEY_0);
  EXPECT_EQ(KernelKeyCode('1', 0), KEY_1);
  EXPECT_EQ(KernelKeyCode('9', 0), KEY_9);
}

struct NamedKey {
  const char* token;
  std::uint16_t code;
};

// Every token with a key, by hand.
const NamedKey kNamedKeys[] = {
    {"Space", KEY_SPACE},
    {"Esc", KEY_ESC},
    {"CAPS", KEY_CAPSLOCK},
    {"TAB", KEY_TAB},
    {"Backspace", KEY_BACKSPACE},
    {"BS", KEY_BACKSPACE},
    {"Del", KEY_DELETE},
    {"Left", KEY_LEFT},
    {"Up", KEY_UP},
    {"Right", KEY_RIGHT},
    {"Down", KEY_DOWN},
    {"Home", KEY_HOME},
    {"End", KEY_END},
    {"PgUp", KEY_PAGEUP},
    {"PgDown", KEY_PAGEDOWN},
    {"Insert", KEY_INSERT},
    {"Enter", KEY_ENTER},
    {"CR", KEY_ENTER},
    {"Cancel", KEY_CANCEL},
    {"Snapshot", KEY_SYSRQ},
    {"Help", KEY_HELP},
    {"NP0", KEY_KP0},
    {"NP1", KEY_KP1},
    {"NP2", KEY_KP2},
    {"NP3", KEY_KP3},
    {"NP4", KEY_KP4},
    {"NP5", KEY_KP5},
    {"NP6", KEY_KP6},
    {"NP7", KEY_KP7},
    {"NP8", KEY_KP8},
    {"NP9", KEY_KP9},
    {"NP/", KEY_KPSLASH},
    {"NP*", KEY_KPASTERISK},
    {"NP-", KEY_KPMINUS},
    {"NP+", KEY_KPPLUS},
    {"NPEnter", KEY_KPENTER},
    {"NPCR", KEY_KPENTER},
    {"NPDel", KEY_KPDOT},
    {"NP.", KEY_KPDOT},
    {"F1", KEY_F1},
    {"F2", KEY_F2},
    {"F3", KEY_F3},
    {"F4", KEY_F4},
    {"F5", KEY_F5},
    {"F6", KEY_F6},
    {"F7", KEY_F7},
    {"F8", KEY_F8},
    {"F9", KEY_F9},
    {"F10", KEY_F10},
    {"F11", KEY_F11},
    {"F12", KEY_F12},
    {"Numlock", KEY_NUMLOCK},
    {"Scroll", KEY_SCROLLLOCK},
    {"Pause", KEY_PAUSE},
    {"Win", KEY_LEFTMETA},
    {"LWin", KEY_LEFTMETA},
    {"RWin", KEY_RIGHTMETA},
    {"Menu", KEY_COMPOSE},
    {"LMenu", KEY_LEFTALT},
    {"RMenu", KEY_RIGHTALT},
    {"CrSel", KEY_PROPS},
    {"ErEOF", KEY_DEL_EOL},
    {"Play", KEY_PLAY},
    {"Zoom", KEY_ZOOM},
    {"OEMClear", KEY_CLEAR},
    {"X1Mouse", BTN_SIDE},
    {"X2Mouse", BTN_EXTRA},
    {"BrowserBack", KEY_BACK},
    {"BrowserForward", KEY_FORWARD},
    {"BrowserRefresh", KEY_REFRESH},
    {"BrowserStop", KEY_STOP},
    {"BrowserSrch", KEY_SEARCH},
    {"BrowserFav", KEY_BOOKMARKS},
    {"BrowserHome", KEY_HOMEPAGE},
    {"VolUp", KEY_VOLUMEUP},
    {"VolDn", KEY_VOLUMEDOWN},
    {"VolMute", KEY_MUTE},
    {"MediaNext", KEY_NEXTSONG},
    {"MediaPrev", KEY_PREVIOUSSONG},
    {"MediaStop", KEY_STOPCD},
    {"MediaPP", KEY_PLAYPAUSE},
    {"MediaSel", KEY_MEDIA},
    {"StartMail", KEY_MAIL},
    {"StartApp1", KEY_COMPUTER},
    {"StartApp2", KEY_CALC},
};

TEST(KeyMap, TokensReachTheKeysOfTheirNames) {
  std::size_t withKey = 0;
  for (const KeyToken* token = KeyTokenTable; token->name; ++token) {
    if (!HasKey(*token) || kWithoutKernelKey.count(token->name)) continue;
    ++withKey;
    const auto* named =
        std::find_if(std::begin(kNamedKeys), std::end(kNamedKeys),
                     [&](const NamedKey& key) { return std::string(key.token) == token->name; });
    ASSERT_NE(named, std::end(kNamedKeys)) << token->name;
    EXPECT_EQ(KernelKeyCode(token->vk, token->scan), named->code) << token->name;
  }
  EXPECT_EQ(withKey, std::size(kNamedKeys));
}

TEST(KeyMap, ModifiersReachTheirOwnSides) {
  const struct {
    std::uint8_t vk, scan;
    std::uint16_t code;
  } rows[] = {
      {0x10, 0x2A, KEY_LEFTSHIFT}, {0xA0, 0x2A, KEY_LEFTSHIFT}, {0xA1, 0x36, KEY_RIGHTSHIFT},
      {0x11, 0x1D, KEY_LEFTCTRL},  {0xA2, 0x1D, KEY_LEFTCTRL},  {0xA3, 0x9D, KEY_RIGHTCTRL},
      {0x12, 0x38, KEY_LEFTALT},   {0xA4, 0x38, KEY_LEFTALT},   {0xA5, 0xB8, KEY_RIGHTALT}};
  for (const auto& row : rows) EXPECT_EQ(KernelKeyCode(row.vk, row.scan), row.code) << +row.vk;
}

TEST(KeyMap, TheScanCodeDecidesWhereThereIsOne) {
  EXPECT_EQ(KernelKeyCode(0x0D, 0x1C), KEY_ENTER);
  EXPECT_EQ(KernelKeyCode(0x0D, 0x9C), KEY_KPENTER);
  EXPECT_EQ(KernelKeyCode(0x2E, 0x53), KEY_KPDOT);
  EXPECT_EQ(KernelKeyCode(0x2E, 0xD3), KEY_DELETE);
  EXPECT_EQ(KernelKeyCode('B', 0x1E), KEY_A);
}

TEST(KeyMap, WhatIsNoKeyIsNone) {
  EXPECT_EQ(KernelKeyCode(0, 0), 0);
  EXPECT_EQ(KernelKeyCode(0x01, 0), 0);  // the mouse's buttons
  EXPECT_EQ(KernelKeyCode(0x02, 0), 0);
  EXPECT_EQ(KernelKeyCode(0x04, 0), 0);
  EXPECT_EQ(KernelKeyCode(0x01, 0xF4), 0);  // the release behind a pause of 500 ms
  EXPECT_EQ(KernelKeyCode(0x05, 0x14 | 0xE0), 0);
}

TEST(KeyMap, NumLockRulesTheDigitsAndTheDotOfTheNumberPad) {
  const std::set<std::string> ruled = {"NP0", "NP1", "NP2", "NP3", "NP4",   "NP5",
                                       "NP6", "NP7", "NP8", "NP9", "NPDel", "NP."};
  for (const KeyToken* token = KeyTokenTable; token->name; ++token)
    EXPECT_EQ(DependsOnNumLock(KernelKeyCode(token->vk, token->scan)),
              ruled.count(token->name) == 1)
        << token->name;
}

TEST(KeyMap, XCannotNameTheHighKeys) {
  const std::set<std::string> high = {"ErEOF", "Zoom", "OEMClear"};
  for (const KeyToken* token = KeyTokenTable; token->name; ++token)
    EXPECT_EQ(IsInX(KernelKeyCode(token->vk, token->scan)), high.count(token->name) == 0)
        << token->name;
}

TEST(KeyMap, PowerKeysAreLeftOut) {
  for (const std::uint8_t scan : {0xDE, 0xDF, 0xE3}) EXPECT_EQ(KernelKeyCode(0, scan), 0) << +scan;
  const std::vector<std::uint16_t> codes = KernelKeyboardCodes();
  for (const std::uint16_t code : {KEY_POWER, KEY_SLEEP, KEY_WAKEUP})
    EXPECT_EQ(std::count(codes.begin(), codes.end(), code), 0) << code;
}

TEST(KeyMap, TheKeyboardAnnouncesAllThatCanBeSentAndNoMouseButton) {
  const std::vector<std::uint16_t> codes = KernelKeyboardCodes();
  EXPECT_TRUE(std::is_sorted(codes.begin(), codes.end()));
  const std::set<std::uint16_t> announced(codes.begin(), codes.end());
  EXPECT_EQ(announced.size(), codes.size());
  for (int vk = 0; vk < 256; ++vk)
    for (int scan = 0; scan < 256; ++scan) {
      const std::uint16_t code =
          KernelKeyCode(static_cast<std::uint8_t>(vk), static_cast<std::uint8_t>(scan));
      const bool mouse = code == BTN_SIDE || code == BTN_EXTRA;
      EXPECT_EQ(announced.count(code) != 0, code != 0 && !mouse) << vk << " " << scan;
    }
}

}  // namespace
}  // namespace platform
