#include "keys/key_tables.h"

#include <gtest/gtest.h>

#include <cctype>
#include <set>
#include <string>

#include "keys/key_step.h"
#include "tests/keys/key_text.h"

namespace kelvaro {
namespace {

const KeyToken& Token(const char* name) {
  const std::int32_t row = FindToken(ByteString(name));
  EXPECT_GE(row, 0) << name;
  return KeyTokenTable[row < 0 ? static_cast<std::int32_t>(kKeyTokenCount) : row];
}

std::string TokenText(const KeyToken& row) { return StepText({row.vk, row.scan, row.flags}); }

const KeyChar& CharRow(char c) {
  const KeyChar* row = KeyCharTable;
  while (row->character && row->character != c) ++row;
  EXPECT_EQ(row->character, c);
  return *row;
}

// "41 1e 00", or "none".
std::string TypedKey(char c) {
  KeyStep step;
  return FindTypedKey(c, &step) ? StepText(step) : "none";
}

TEST(KeyTokenTable, HasNinetyNineRowsAndASentinel) {
  std::size_t rows = 0;
  while (KeyTokenTable[rows].name) ++rows;
  EXPECT_EQ(rows, 99u);
  EXPECT_EQ(rows, kKeyTokenCount);
}

TEST(KeyTokenTable, KeepsItsOrder) {
  const struct {
    std::size_t row;
    const char* name;
  } kRows[] = {
      {0, "Shift"},    {3, "Ctrl"},      {6, "Alt"},        {9, "Space"},      {13, "Backspace"},
      {14, "BS"},      {15, "Del"},      {25, "Enter"},     {26, "CR"},        {30, "NP0"},
      {40, "NP/"},     {44, "NPEnter"},  {45, "NPCR"},      {46, "NPDel"},     {47, "NP."},
      {48, "F1"},      {60, "Numlock"},  {63, "Win"},       {64, "LWin"},      {67, "LMenu"},
      {69, "LMouse"},  {72, "Attn"},     {79, "X1Mouse"},   {88, "VolUp"},     {89, "VolDn"},
      {90, "VolMute"}, {95, "MediaSel"}, {96, "StartMail"}, {98, "StartApp2"},
  };
  for (const auto& expected : kRows) EXPECT_STREQ(KeyTokenTable[expected.row].name, expected.name);
}

TEST(KeyTokenTable, KeepsTheRowsThatLookLikeSlips) {
  const struct {
    const char* name;
    const char* row;
  } kRows[] = {
      {"X1Mouse", "05 00 00"}, {"X2Mouse", "06 00 00"},  {"Win", "5b db 00"},
      {"LWin", "5b db 20"},    {"RWin", "5c dc 00"},     {"Menu", "5d dd 00"},
      {"LMenu", "a4 00 00"},   {"RMenu", "a5 00 00"},    {"Cancel", "03 00 00"},
      {"Help", "2f 00 00"},    {"Enter", "0d 1c 00"},    {"CR", "0d 1c 00"},
      {"NPEnter", "0d 9c 00"}, {"NPCR", "0d 9c 00"},     {"NPDel", "2e 53 00"},
      {"NP.", "2e 53 00"},     {"Del", "2e d3 00"},      {"Snapshot", "2c b7 00"},
      {"Pause", "13 c5 00"},   {"NP/", "6f b5 00"},      {"NP*", "6a 37 00"},
      {"NP-", "6d 4a 00"},     {"NP+", "6b 4e 00"},      {"Numlock", "90 45 00"},
      {"Scroll", "91 46 00"},  {"F11", "7a 57 00"},      {"F12", "7b 58 00"},
      {"VolUp", "af 00 00"},   {"VolDn", "ae 00 00"},    {"VolMute", "ad 00 00"},
      {"MediaPP", "b3 00 00"}, {"MediaSel", "b5 00 00"}, {"StartMail", "b4 00 00"},
      {"ErEOF", "f9 00 00"},   {"OEMClear", "fe 00 00"}, {"CAPS", "14 3a 00"},
      {"TAB", "09 0f 00"},
  };
  for (const auto& expected : kRows) {
    EXPECT_EQ(TokenText(Token(expected.name)), expected.row) << expected.name;
  }
}

TEST(KeyTokenTable, ModifiersAndMouseButtonsHaveFlagsAlone) {
  const struct {
    const char* kind;
    std::uint8_t flag;
  } kKinds[] = {{"Shift", KeyFlagShift}, {"Ctrl", KeyFlagCtrl}, {"Alt", KeyFlagAlt}};
  std::set<std::string> names;
  for (const auto& kind : kKinds) {
    const std::string name = kind.kind;
    for (const std::string side : {"", "L", "R"}) {
      const KeyToken& row = Token((side + name).c_str());
      EXPECT_EQ(row.flags, kind.flag | (side == "L"   ? KeyFlagLeft
                                        : side == "R" ? KeyFlagRight
                                                      : 0));
      names.insert(side + name);
    }
  }
  EXPECT_EQ(Token("LMouse").flags, KeyFlagMouse | KeyFlagLeft);
  EXPECT_EQ(Token("MMouse").flags, KeyFlagMouse);
  EXPECT_EQ(Token("RMouse").flags, KeyFlagMouse | KeyFlagRight);
  names.insert({"LMouse", "MMouse", "RMouse"});

  for (std::size_t i = 0; i < kKeyTokenCount; ++i) {
    const KeyToken& row = KeyTokenTable[i];
    const bool flagsAlone = names.count(row.name) == 1;
    EXPECT_EQ(row.vk == 0, flagsAlone) << row.name;
    if (flagsAlone) {
      EXPECT_EQ(row.scan, 0) << row.name;
    } else if (row.name != std::string("LWin")) {
      EXPECT_EQ(row.flags, 0) << row.name;
    }
  }
}

// The keys that a keyboard sends with a prefix byte.
TEST(KeyTokenTable, JustTheseKeysAreExtended) {
  const std::set<std::string> kExtended = {
      "Del",      "Left", "Up",      "Right", "Down",  "Home", "End",  "PgUp", "PgDown", "Insert",
      "Snapshot", "NP/",  "NPEnter", "NPCR",  "Pause", "Win",  "LWin", "RWin", "Menu",
  };
  std::set<std::string> extended;
  for (std::size_t i = 0; i < kKeyTokenCount; ++i) {
    if (KeyTokenTable[i].scan & 0x80) extended.insert(KeyTokenTable[i].name);
  }
  EXPECT_EQ(extended, kExtended);
}

// The plain keyboard's own keys have one, and what later keyboards and terminals added has none.
TEST(KeyTokenTable, JustTheKeysOfThePlainKeyboardHaveAScanCode) {
  const std::set<std::string> kWithout = {"Cancel", "Help", "X1Mouse", "X2Mouse"};
  for (std::size_t i = 0; i < kKeyTokenCount; ++i) {
    const KeyToken& row = KeyTokenTable[i];
    const bool added = row.vk == 0 || row.vk >= 0xA4 || kWithout.count(row.name) == 1;
    EXPECT_EQ(row.scan == 0, added) << row.name;
  }
}

TEST(KeyTokenTable, RunsOfKeysCountUp) {
  for (int n = 0; n <= 9; ++n) {
    EXPECT_EQ(Token(("NP" + std::to_string(n)).c_str()).vk, 0x60 + n);
  }
  for (int n = 1; n <= 12; ++n) {
    const KeyToken& row = Token(("F" + std::to_string(n)).c_str());
    EXPECT_EQ(row.vk, 0x70 + n - 1);
    EXPECT_EQ(row.scan, n <= 10 ? 0x3B + n - 1 : 0x57 + n - 11);
  }
  const char* const kBrowser[] = {
      "BrowserBack", "BrowserForward", "BrowserRefresh", "BrowserStop", "BrowserSrch", "BrowserFav",
      "BrowserHome", "VolMute",        "VolDn",          "VolUp",       "MediaNext",   "MediaPrev",
      "MediaStop",   "MediaPP",        "StartMail",      "MediaSel",    "StartApp1",   "StartApp2"};
  std::uint8_t vk = 0xA6;
  for (const char* name : kBrowser) EXPECT_EQ(Token(name).vk, vk++) << name;
  const char* const kTerminal[] = {"Attn", "CrSel", "ExSel", "ErEOF", "Play", "Zoom"};
  vk = 0xF6;
  for (const char* name : kTerminal) EXPECT_EQ(Token(name).vk, vk++) << name;
}

// Scan codes count along the rows of the pad.
TEST(KeyTokenTable, NumberPadLiesInItsGrid) {
  const char* const kGrid[] = {"NP7", "NP8", "NP9", "NP-", "NP4", "NP5",  "NP6",
                               "NP+", "NP1", "NP2", "NP3", "NP0", "NPDel"};
  std::uint8_t scan = 0x47;
  for (const char* name : kGrid) EXPECT_EQ(Token(name).scan, scan++) << name;
}

// The grey keys repeat those of the pad, extended.
TEST(KeyTokenTable, GreyKeysLieWhereThePadHasThem) {
  const struct {
    const char* grey;
    const char* pad;
    std::uint8_t vk;
  } kKeys[] = {
      {"Home", "NP7", 0x24}, {"Up", "NP8", 0x26},        {"PgUp", "NP9", 0x21},
      {"Left", "NP4", 0x25}, {"Right", "NP6", 0x27},     {"End", "NP1", 0x23},
      {"Down", "NP2", 0x28}, {"PgDown", "NP3", 0x22},    {"Insert", "NP0", 0x2D},
      {"Del", "NP.", 0x2E},  {"NPEnter", "Enter", 0x0D},
  };
  for (const auto& key : kKeys) {
    EXPECT_EQ(Token(key.grey).scan, Token(key.pad).scan | 0x80) << key.grey;
    EXPECT_EQ(Token(key.grey).vk, key.vk) << key.grey;
  }
}

TEST(KeyTokenTable, NoNameHoldsAClosingBracket) {
  for (std::size_t i = 0; i < kKeyTokenCount; ++i) {
    EXPECT_EQ(std::string(KeyTokenTable[i].name).find('>'), std::string::npos);
  }
}

TEST(FindToken, EveryNameInAnyCaseFindsItsRow) {
  for (std::size_t i = 0; i < kKeyTokenCount; ++i) {
    const std::string name = KeyTokenTable[i].name;
    std::string upper, lower, mixed;
    for (std::size_t at = 0; at < name.size(); ++at) {
      upper += static_cast<char>(std::toupper(name[at]));
      lower += static_cast<char>(std::tolower(name[at]));
      mixed += at % 2 ? upper.back() : lower.back();
    }
    for (const std::string& spelling : {name, upper, lower, mixed}) {
      EXPECT_EQ(FindToken(ByteString(spelling.c_str())), static_cast<std::int32_t>(i)) << spelling;
    }
  }
}

TEST(FindToken, WantsTheWholeName) {
  for (const char* name :
       {"", " ", "Escape", "Es", " Esc", "Esc ", "NP", "F", "F13", "P:5", "<Esc>"}) {
    EXPECT_EQ(FindToken(ByteString(name)), -1) << name;
  }
  EXPECT_EQ(FindToken(TextOf(std::string_view("Esc\0", 4))), -1);
  EXPECT_EQ(FindToken(TextOf(std::string_view("E\0c", 3))), -1);
}

TEST(FindToken, ReadsNoFurtherThanItsLength) {
  EXPECT_EQ(FindToken("Escape", 3), 10);
  EXPECT_EQ(FindToken("Escape", 6), -1);
}

TEST(CompareNoCase, FoldsAsciiLettersAlone) {
  EXPECT_TRUE(CompareNoCase("aZ09", "Az09", 4));
  // The neighbours of the letters differ in the same bit as the cases do.
  EXPECT_FALSE(CompareNoCase("@", "`", 1));
  EXPECT_FALSE(CompareNoCase("[", "{", 1));
  EXPECT_FALSE(CompareNoCase("\xC9", "\xE9", 1));
  EXPECT_TRUE(CompareNoCase("\xC9", "\xC9", 1));
}

TEST(CompareNoCase, WantsEqualLengths) {
  EXPECT_FALSE(CompareNoCase("Up", "Upp", 3));
  EXPECT_FALSE(CompareNoCase("Up", "U", 1));
  EXPECT_FALSE(CompareNoCase("Up", "Up\0", 3));
  EXPECT_TRUE(CompareNoCase("Up", "Upward", 2));
  EXPECT_TRUE(CompareNoCase("", "x", 0));
}

TEST(KeyCharTable, HasThirtyThreeRowsInThisOrderAndASentinel) {
  std::string characters;
  for (const KeyChar* row = KeyCharTable; row->character; ++row) characters += row->character;
  EXPECT_EQ(characters.size(), 33u);
  EXPECT_EQ(characters.size(), kKeyCharCount);
  EXPECT_EQ(characters, " ;=,-./`:+<_>?~[\\]'{|}\"!@#$%^&*()");
}

// Unshifted and shifted character of one key each.
TEST(KeyCharTable, BothCharactersOfAKeyShareIt) {
  for (const char* pair : {";:", "=+", ",<", "-_", ".>", "/?", "`~", "[{", "\\|", "]}", "'\""}) {
    const KeyChar& plain = CharRow(pair[0]);
    const KeyChar& shifted = CharRow(pair[1]);
    EXPECT_EQ(plain.flags, 0) << pair;
    EXPECT_EQ(shifted.flags, KeyFlagImpliedShift) << pair;
    EXPECT_EQ(plain.vk, shifted.vk) << pair;
    EXPECT_EQ(plain.scan, shifted.scan) << pair;
  }
}

TEST(KeyCharTable, ShiftedDigitsShareTheKeyOfTheDigit) {
  for (const char* pair : {"1!", "2@", "3#", "4$", "5%", "6^", "7&", "8*", "9(", "0)"}) {
    KeyStep digit;
    ASSERT_TRUE(FindTypedKey(pair[0], &digit));
    const KeyChar& shifted = CharRow(pair[1]);
    EXPECT_EQ(digit.flags, 0) << pair;
    EXPECT_EQ(shifted.flags, KeyFlagImpliedShift) << pair;
    EXPECT_EQ(shifted.vk, digit.vk) << pair;
    EXPECT_EQ(shifted.scan, digit.scan) << pair;
  }
}

// Scan codes count from left to right along each row of the keyboard.
TEST(KeyCharTable, ScanCodesFollowTheRowsOfTheKeyboard) {
  const struct {
    std::uint8_t first;
    const char* keys;
  } kRows[] = {{0x02, "1234567890-="},
               {0x10, "qwertyuiop[]"},
               {0x1E, "asdfghjkl;'`"},
               {0x2B, "\\zxcvbnm,./"},
               {0x39, " "}};
  for (const auto& row : kRows) {
    std::uint8_t scan = row.first;
    for (const char* key = row.keys; *key; ++key, ++scan) {
      KeyStep step;
      ASSERT_TRUE(FindTypedKey(*key, &step)) << *key;
      EXPECT_EQ(step.scan, scan) << *key;
    }
  }
}

TEST(KeyCharTable, VirtualKeysAreThoseOfTheUnitedStatesLayout) {
  std::uint8_t vk = 0xBA;
  for (const char* key = ";=,-./`"; *key; ++key) EXPECT_EQ(CharRow(*key).vk, vk++) << *key;
  vk = 0xDB;
  for (const char* key = "[\\]'"; *key; ++key) EXPECT_EQ(CharRow(*key).vk, vk++) << *key;
  EXPECT_EQ(CharRow(' ').vk, 0x20);
}

TEST(LetterScanTable, FollowsTheRowsOfTheKeyboard) {
  const struct {
    std::uint8_t first;
    const char* letters;
  } kRows[] = {{0x10, "QWERTYUIOP"}, {0x1E, "ASDFGHJKL"}, {0x2C, "ZXCVBNM"}};
  for (const auto& row : kRows) {
    std::uint8_t scan = row.first;
    for (const char* letter = row.letters; *letter; ++letter) {
      EXPECT_EQ(LetterScanTable[*letter - 'A'], scan++) << *letter;
    }
  }
}

TEST(FindTypedKey, LettersOfBothCasesAreOneKeyAndUpperCaseImpliesShift) {
  for (int i = 0; i < 26; ++i) {
    const auto vk = static_cast<std::uint8_t>('A' + i);
    const auto lower = static_cast<char>('a' + i);
    EXPECT_EQ(TypedKey(lower), StepText({vk, LetterScanTable[i], 0})) << lower;
    EXPECT_EQ(TypedKey(static_cast<char>(vk)), StepText({vk, LetterScanTable[i], 0x08})) << lower;
  }
  EXPECT_EQ(TypedKey('a'), "41 1e 00");
  EXPECT_EQ(TypedKey('Z'), "5a 2c 08");
}

TEST(FindTypedKey, DigitsStartWithOneAndEndWithZero) {
  EXPECT_EQ(TypedKey('1'), "31 02 00");
  EXPECT_EQ(TypedKey('5'), "35 06 00");
  EXPECT_EQ(TypedKey('9'), "39 0a 00");
  EXPECT_EQ(TypedKey('0'), "30 0b 00");
}

TEST(FindTypedKey, EveryRowOfTheTableIsTyped) {
  for (const KeyChar* row = KeyCharTable; row->character; ++row) {
    EXPECT_EQ(TypedKey(row->character), StepText({row->vk, row->scan, row->flags}));
  }
}

TEST(FindTypedKey, NoOtherCharacterThanThePrintableOnesOfAsciiIsTyped) {
  for (int c = 0; c < 256; ++c) {
    EXPECT_EQ(TypedKey(static_cast<char>(c)) != "none", c >= 0x20 && c <= 0x7E) << c;
  }
}

TEST(FindTypedKey, WritesNothingForACharacterThatNoKeyTypes) {
  KeyStep step{1, 2, 3};
  EXPECT_FALSE(FindTypedKey('\t', &step));
  EXPECT_EQ(StepText(step), "01 02 03");
}

}  // namespace
}  // namespace kelvaro
