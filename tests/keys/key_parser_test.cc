#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "keys/key_action.h"
#include "keys/key_tables.h"
#include "tests/keys/key_text.h"
#include "tests/keys/random_keys.h"

namespace kelvaro {
namespace {

struct ParseCase {
  const char* text;
  const char* steps;
};

void ExpectSteps(const std::vector<ParseCase>& cases, bool holdAll = false) {
  for (const ParseCase& c : cases) {
    const Parsed parsed = Parse(c.text, holdAll);
    EXPECT_EQ(parsed.result, KeyAction::kParsed) << c.text;
    EXPECT_FALSE(parsed.duplicate) << c.text;
    EXPECT_EQ(parsed.Steps(), c.steps) << c.text;
  }
}

struct FaultCase {
  std::string_view text;
  int offset;
  const char* stepsBefore;
};

void ExpectFaults(const std::vector<FaultCase>& cases, bool holdAll, bool duplicate) {
  for (const FaultCase& c : cases) {
    const Parsed parsed = Parse(c.text, holdAll);
    EXPECT_EQ(parsed.result, c.offset) << c.text;
    EXPECT_EQ(parsed.duplicate, duplicate) << c.text;
    EXPECT_EQ(parsed.Steps(), c.stepsBefore) << c.text;
  }
}

void ExpectErrors(const std::vector<FaultCase>& cases) { ExpectFaults(cases, false, false); }
void ExpectDuplicates(const std::vector<FaultCase>& cases) { ExpectFaults(cases, true, true); }

TEST(ParseKeys, Examples) {
  ExpectSteps({
      {"aB", "41 1e 00, 42 30 08"},
      {"<Ctrl>c", "43 2e 02"},
      {"<LShift><Del>", "2e d3 21"},
      {"<Ctrl><Ctrl>x", "00 00 02, 58 2d 02"},
      {"<Alt><LMouse>", "00 00 04, 00 00 30"},
      {"<Shift><<", "00 00 01, bc 33 08"},
      {"a<P:500>b", "41 1e 00, 01 f4 80, 42 30 00"},
      {"<Shift>a", "41 1e 01"},
      {"<Shift>A", "41 1e 09"},
      {"<Shift><LWin>", "5b db 21"},
  });
}

TEST(ParseKeys, EmptyTextHasNoSteps) { ExpectSteps({{"", ""}}); }

TEST(ParseKeys, ReplacesTheStepsThatWereThere) {
  KeyAction action = ActionOf({{0x43, 0x2E, 0}});
  bool duplicate = true;
  EXPECT_EQ(action.ParseKeys("a", &duplicate), -1);
  EXPECT_FALSE(duplicate);
  EXPECT_EQ(StepText(action.steps), "41 1e 00");
  EXPECT_EQ(action.ParseKeys("", &duplicate), -1);
  EXPECT_EQ(StepText(action.steps), "");
}

TEST(ParseKeys, LeavesTheHoldFlagAlone) {
  EXPECT_EQ(ParseHoldingAll("ab").action.actionFlags, 1u);
  EXPECT_EQ(Parse("ab").action.actionFlags, 0u);
}

TEST(ParseKeys, ReadsOnlyBitZeroOfTheFlags) {
  KeyAction action;
  action.actionFlags = 0xFFFFFFFE;
  bool duplicate = false;
  EXPECT_EQ(action.ParseKeys("aa", &duplicate), -1);
}

TEST(ParseKeys, LoneLastBracketIsLiteral) {
  ExpectSteps({{"<", "bc 33 08"}, {"a<", "41 1e 00, bc 33 08"}, {"<Esc><", "1b 01 00, bc 33 08"}});
}

TEST(ParseKeys, DoubledBracketIsLiteral) {
  ExpectSteps({
      {"<<", "bc 33 08"},
      {"<<<", "bc 33 08, bc 33 08"},
      {"<<<<", "bc 33 08, bc 33 08"},
      {"<<<Esc>", "bc 33 08, 1b 01 00"},
      {"<<Esc>", "bc 33 08, 45 12 08, 53 1f 00, 43 2e 00, be 34 08"},
  });
}

TEST(ParseKeys, UnclosedTokenFailsAtItsBracket) {
  ExpectErrors({{"<Esc", 0, ""}, {"ab<Esc", 2, "41 1e 00, 42 30 00"}, {"<a", 0, ""}});
}

TEST(ParseKeys, UnknownOrEmptyTokenFailsAtItsBracket) {
  ExpectErrors({
      {"<>", 0, ""},
      {"a<>", 1, "41 1e 00"},
      {"<Nope>", 0, ""},
      {"<Esc><Escape>a", 5, "1b 01 00"},
      {"< >", 0, ""},
      {"<Esc >", 0, ""},
      {"<x<Esc>", 0, ""},
      {"<Shift+a>", 0, ""},
      {std::string_view("<Esc\0>", 6), 0, ""},
  });
}

TEST(ParseKeys, ClosingBracketAloneIsShiftedPeriod) {
  ExpectSteps({{">", "be 34 08"}, {"<Esc>>", "1b 01 00, be 34 08"}});
}

TEST(ParseKeys, CharacterThatNoKeyTypesFailsAtItself) {
  ExpectErrors({
      {"\t", 0, ""},
      {"a\tb", 1, "41 1e 00"},
      {"a\n", 1, "41 1e 00"},
      {"\x7F", 0, ""},
      {"b\x80", 1, "42 30 00"},
      {"\xE9", 0, ""},
      {"\xFF", 0, ""},
      {std::string_view("a\0b", 3), 1, "41 1e 00"},
  });
}

TEST(ParseKeys, ModifiersWaitingAtAFaultBecomeNoStep) {
  ExpectErrors({
      {"<Ctrl>\t", 6, ""},
      {"<Ctrl><Nope>", 6, ""},
      {"a<Alt><Up", 6, "41 1e 00"},
      {"<Ctrl><Ctrl><Nope>", 12, "00 00 02"},
  });
}

TEST(ParseKeys, TypedBlankAndSpaceTokenAreOneStep) {
  ExpectSteps({{" ", "20 39 00"}, {"<Space>", "20 39 00"}, {"<sPaCe>", "20 39 00"}});
}

TEST(ParseKeys, TokenNamesWithoutBracketsAreLetters) {
  ExpectSteps({
      {"Up", "55 16 08, 50 19 00"},
      {"Del", "44 20 08, 45 12 00, 4c 26 00"},
      {"End", "45 12 08, 4e 31 00, 44 20 00"},
  });
}

TEST(ParseKeys, PauseKeepsSixteenBitsOfANumberThatWraps) {
  ExpectSteps({
      {"<P:0>", "00 00 80"},
      {"<P:1>", "00 01 80"},
      {"<P:256>", "01 00 80"},
      {"<P:65535>", "ff ff 80"},
      {"<P:65536>", "00 00 80"},
      {"<P:70000>", "11 70 80"},
      {"<P:4294967295>", "ff ff 80"},
      {"<P:4294967296>", "00 00 80"},
      {"<P:4294967301>", "00 05 80"},
      {"<P:10000000000>", "e4 00 80"},
      {"<P:000000000000250>", "00 fa 80"},
  });
}

TEST(ParseKeys, PauseMayBeWrittenInLowerCase) { ExpectSteps({{"<p:250>", "00 fa 80"}}); }

TEST(ParseKeys, MalformedPauseFailsAtItsBracket) {
  ExpectErrors({
      {"<P:12a>", 0, ""},
      {"<P:>", 0, ""},
      {"<P: 5>", 0, ""},
      {"<P:5 >", 0, ""},
      {"<P:-5>", 0, ""},
      {"<P:+5>", 0, ""},
      {"<P5>", 0, ""},
      {"<P>", 0, ""},
      {"a<Q:5>", 1, "41 1e 00"},
      {"<P:5", 0, ""},
      {"<P:5/>", 0, ""},
      {"<P:5:>", 0, ""},
  });
}

TEST(ParseKeys, PendingModifiersGoIntoTheNextKey) {
  ExpectSteps({
      {"<Ctrl>ab", "41 1e 02, 42 30 00"},
      {"<Shift><Ctrl><Alt><Del>", "2e d3 07"},
      {"<Alt><Ctrl><Shift><Del>", "2e d3 07"},
      {"<LCtrl><RShift>a", "41 1e 63"},
      {"<LCtrl><LAlt><RShift>!", "31 02 6f"},
      {"<Ctrl><LWin>", "5b db 22"},
      {"<Ctrl><X1Mouse>", "05 00 02"},
  });
}

TEST(ParseKeys, LeftBitOfLWinIsNoModifierThatWaits) {
  ExpectSteps({{"<LWin><Ctrl>", "5b db 20, 00 00 02"}, {"<LWin>a", "5b db 20, 41 1e 00"}});
}

TEST(ParseKeys, DifferentModifiersMergeAndTheSameTwiceFlushes) {
  ExpectSteps({
      {"<Shift><Ctrl>x", "58 2d 03"},
      {"<Shift><Shift>x", "00 00 01, 58 2d 01"},
      {"<LShift><RShift>a", "00 00 21, 41 1e 41"},
      {"<Shift><Ctrl><Shift>x", "00 00 01, 00 00 02, 58 2d 01"},
      {"<RAlt><Ctrl><LCtrl><Alt>x", "00 00 44, 00 00 02, 58 2d 26"},
      {"<Alt><Ctrl><Shift><Ctrl>", "00 00 04, 00 00 02, 00 00 01, 00 00 02"},
  });
}

TEST(ParseKeys, ImpliedShiftOfACharacterMergesWithAShiftToken) {
  ExpectSteps({{"<Shift>!", "31 02 09"}, {"<LShift>A", "41 1e 29"}});
}

TEST(ParseKeys, LiteralBracketFlushesModifiers) {
  ExpectSteps({
      {"<LShift><<a", "00 00 21, bc 33 08, 41 1e 00"},
      {"<Ctrl><Alt><", "00 00 02, 00 00 04, bc 33 08"},
  });
  // A doubled bracket behind a token is literal even where a name follows.
  ExpectSteps({{"<Ctrl><<a>", "00 00 02, bc 33 08, 41 1e 00, be 34 08"}});
}

TEST(ParseKeys, MouseTokenFlushesModifiersAndTakesNone) {
  ExpectSteps({
      {"<Ctrl><LMouse>a", "00 00 02, 00 00 30, 41 1e 00"},
      {"<LShift><RCtrl><MMouse>", "00 00 21, 00 00 42, 00 00 10"},
      {"<LMouse><RMouse>a", "00 00 30, 00 00 50, 41 1e 00"},
      {"<LMouse><Ctrl>a", "00 00 30, 41 1e 02"},
  });
}

TEST(ParseKeys, PauseFlushesModifiers) {
  ExpectSteps({
      {"<Ctrl><P:5>a", "00 00 02, 00 05 80, 41 1e 00"},
      {"<RAlt><Shift><P:0>", "00 00 44, 00 00 01, 00 00 80"},
  });
}

TEST(ParseKeys, EndOfTextFlushesModifiers) {
  ExpectSteps({
      {"<Shift>", "00 00 01"},
      {"<Ctrl><Alt>", "00 00 02, 00 00 04"},
      {"a<RCtrl><LShift>", "41 1e 00, 00 00 42, 00 00 21"},
  });
}

TEST(ParseKeys, EveryTokenGivesItsRow) {
  for (std::size_t i = 0; i < kKeyTokenCount; ++i) {
    const KeyToken& row = KeyTokenTable[i];
    const Parsed parsed = Parse(std::string("<") + row.name + ">");
    EXPECT_EQ(parsed.result, -1) << row.name;
    EXPECT_EQ(parsed.Steps(), StepText({row.vk, row.scan, row.flags})) << row.name;
  }
}

TEST(ParseKeysHoldingAll, SameKeyTwiceIsADuplicateAtTheSecond) {
  ExpectDuplicates({
      {"aa", 1, "41 1e 00"},
      {"aA", 1, "41 1e 00"},
      {"1!", 1, "31 02 00"},
      {"<Up><Up>", 4, "26 c8 00"},
      {"x<Up>y<up>", 6, "58 2d 00, 26 c8 00, 59 15 00"},
      {"<Space> ", 7, "20 39 00"},
      {" <Space>", 1, "20 39 00"},
      {"<Enter><NPEnter>", 7, "0d 1c 00"},
      {"<Win><LWin>", 5, "5b db 00"},
  });
}

TEST(ParseKeysHoldingAll, CommaAndBracketAreOneKey) {
  ExpectDuplicates({
      {",<<", 1, "bc 33 00"},
      {",<", 1, "bc 33 00"},
      {"<<,", 2, "bc 33 08"},
      {"<<<<", 2, "bc 33 08"},
      {"<<<", 2, "bc 33 08"},
  });
}

TEST(ParseKeysHoldingAll, ModifiersBeforeADuplicateBracketAreFlushedFirst) {
  ExpectDuplicates({{",a<Ctrl><<", 8, "bc 33 00, 41 1e 00, 00 00 02"}});
}

TEST(ParseKeysHoldingAll, ModifierTokenTwiceIsADuplicate) {
  ExpectDuplicates({
      {"<Ctrl>a<Ctrl>b", 7, "41 1e 02"},
      {"<LShift>a<RShift>b", 9, "41 1e 21"},
      {"<Ctrl><LMouse><Ctrl>", 14, "00 00 02, 00 00 30"},
  });
}

TEST(ParseKeysHoldingAll, PendingModifierTwiceIsADuplicateAndEarlierStepsStay) {
  ExpectDuplicates({
      {"<Ctrl><Ctrl>", 6, ""},
      {"<Shift><LShift>a", 7, ""},
      {"x<Ctrl><Alt><RCtrl>", 12, "58 2d 00"},
  });
}

TEST(ParseKeysHoldingAll, BytesOfAPauseCountAsAKey) {
  // 16640 is 0x4100, and 0x41 the key of the letter a.
  ExpectDuplicates({{"<P:16640>a", 9, "41 00 80"}});
}

TEST(ParseKeysHoldingAll, MouseTokensNeverClash) {
  ExpectSteps({{"<LMouse><LMouse>", "00 00 30, 00 00 30"}}, true);
}

TEST(ParseKeysHoldingAll, OnlyTokensCheckModifiers) {
  ExpectSteps(
      {
          {"<Shift>aB", "41 1e 01, 42 30 08"},
          {"A<Shift>b", "41 1e 08, 42 30 01"},
          {"AB", "41 1e 08, 42 30 08"},
          {"<Shift>a<<", "41 1e 01, bc 33 08"},
      },
      true);
}

TEST(ParseKeysHoldingAll, DifferentKeysModifiersAndPausesPass) {
  ExpectSteps(
      {
          {"<Ctrl>a<Alt>b", "41 1e 02, 42 30 04"},
          {"<Ctrl><Shift>", "00 00 02, 00 00 01"},
          {"a<P:5>b<P:5>", "41 1e 00, 00 05 80, 42 30 00, 00 05 80"},
          {"<LAlt>a<LWin>", "41 1e 24, 5b db 20"},
          {"<P:5><P:5>", "00 05 80, 00 05 80"},
      },
      true);
}

TEST(ParseKeysHoldingAll, OtherFaultsAreNoDuplicates) {
  ExpectFaults({{"a<Nope>", 1, "41 1e 00"}, {"a\t", 1, "41 1e 00"}, {"a<Up", 1, "41 1e 00"}}, true,
               false);
}

TEST(ParseKeys, DuplicatesPassWhenNotHoldingAll) {
  ExpectSteps({{"aa", "41 1e 00, 41 1e 00"},
               {",<<", "bc 33 00, bc 33 08"},
               {"<Ctrl>a<Ctrl>b", "41 1e 02, 42 30 02"}});
}

TEST(ParseKeys, UpperCaseLetterIsToBeReminded) {
  const struct {
    const char* text;
    bool shiftReminder;
    int result;
  } kCases[] = {
      {"B", true, -2},      {"aBc", true, -2},      {"<Shift>A", true, -2},   {"Esc", true, -2},
      {"A", true, -2},      {"Z", true, -2},        {"B", false, -1},         {"b", true, -1},
      {"!?_", true, -1},    {"<Shift>a", true, -1}, {"<TAB><Esc>", true, -1}, {"", true, -1},
      {"B<Nope>", true, 1},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(KeyAction().ParseKeys(c.text, nullptr, c.shiftReminder), c.result) << c.text;
  }
}

TEST(SmartCheck, IsTheTokenOfANameInAnyCase) {
  const struct {
    const char* name;
    const char* token;
  } kCases[] = {
      {"pgdown", "<PgDown>"}, {"eSC", "<Esc>"}, {"Shift", "<Shift>"}, {"LMouse", "<LMouse>"},
      {"NP.", "<NP.>"},       {"NP*", "<NP*>"}, {"CR", "<CR>"},       {"startapp2", "<StartApp2>"}};
  for (const auto& c : kCases) EXPECT_EQ(Bytes(KeyAction::SmartCheck(c.name)), c.token);
}

TEST(SmartCheck, OnlyTheWholeTextMatches) {
  for (const char* text : {"", "Escape", "aEsc", "Esc ", "EscEsc", "<Esc", "<Esc>", "<", "P:500"}) {
    EXPECT_EQ(Bytes(KeyAction::SmartCheck(text)), "") << text;
  }
}

TEST(ParseSteps, EatsTheTextUpToTheFaultAndAppends) {
  const struct {
    const char* text;
    bool holdAll;
    const char* rest;
    const char* steps;
    bool sawUppercase, duplicate;
  } kCases[] = {
      {"a<Esc>", false, "", "43 2e 00, 41 1e 00, 1b 01 00", false, false},
      {"Ab<Nope>c", false, "<Nope>c", "43 2e 00, 41 1e 08, 42 30 00", true, false},
      {"a<Ctrl>A", true, "A", "43 2e 00, 41 1e 00", true, true},
  };
  for (const auto& c : kCases) {
    KeyAction action = ActionOf({{0x43, 0x2E, 0}}, c.holdAll);
    ByteString text(c.text);
    bool sawUppercase = false;
    bool duplicate = false;
    action.ParseSteps(&text, &sawUppercase, &duplicate);
    EXPECT_EQ(Bytes(text), c.rest);
    EXPECT_EQ(StepText(action.steps), c.steps);
    EXPECT_EQ(sawUppercase, c.sawUppercase);
    EXPECT_EQ(duplicate, c.duplicate);
  }
}

TEST(HasKeyOrModifier, ComparesKeysAndTheThreeLowFlags) {
  const KeyAction action = ActionOf({{0x41, 0x1E, 0x02}, {0, 0, 0x30}, {0x42, 0x30, 0x08}});
  EXPECT_TRUE(action.HasKeyOrModifier(0x41, 0));
  EXPECT_TRUE(action.HasKeyOrModifier(0x42, 0));
  EXPECT_FALSE(action.HasKeyOrModifier(0x43, 0));
  EXPECT_FALSE(action.HasKeyOrModifier(0, 0));
  EXPECT_TRUE(action.HasKeyOrModifier(0, 0x02));
  EXPECT_TRUE(action.HasKeyOrModifier(0x43, 0x06));
  EXPECT_FALSE(action.HasKeyOrModifier(0, 0x05));
  // The implied shift, mouse, left, right and pause bits don't count.
  EXPECT_FALSE(action.HasKeyOrModifier(0, 0xF8));
  EXPECT_FALSE(KeyAction().HasKeyOrModifier(0x41, 0x07));
}

// A fault ends the parse at a place up to which the text is sound, and the steps are those of what
// stands before it, but for modifiers that still wait there.
TEST(ParseKeys, RandomTextsFailWhereTheSoundPartEnds) {
  RandomKeys random(20);
  int faults = 0;
  for (int round = 0; round < 20000; ++round) {
    const std::string text = random.Text();
    const bool holdAll = round % 2 == 1;
    const Parsed parsed = Parse(text, holdAll);
    if (parsed.result == -1) {
      ASSERT_FALSE(parsed.duplicate) << text;
      continue;
    }
    ++faults;
    ASSERT_GE(parsed.result, 0) << text;
    ASSERT_LT(parsed.result, static_cast<int>(text.size())) << text;
    ASSERT_TRUE(holdAll || !parsed.duplicate) << text;

    const Parsed before = Parse(text.substr(0, static_cast<std::size_t>(parsed.result)), holdAll);
    ASSERT_EQ(before.result, -1) << text;
    const KeySequence::Node* expected = before.action.steps.head;
    for (const KeyStep& step : parsed.action.steps) {
      ASSERT_NE(expected, nullptr) << text;
      ASSERT_EQ(StepText(step), StepText(*expected->value)) << text;
      expected = expected->next;
    }
    for (; expected; expected = expected->next) {
      ASSERT_EQ(expected->value->vk, 0) << text;
      ASSERT_NE(expected->value->flags & 7, 0) << text;
    }
  }
  // Neither kind of text may be the exception, or the rounds prove little.
  EXPECT_GT(faults, 2000);
  EXPECT_LT(faults, 18000);
}

TEST(ParseKeys, ReadsALongText) {
  std::string text;
  for (int i = 0; i < 20000; ++i) text += "a<Ctrl><Del><<<P:7>";
  const Parsed parsed = Parse(text);
  EXPECT_EQ(parsed.result, -1);
  EXPECT_EQ(parsed.action.steps.count, 80000);
  text += "<Up";
  EXPECT_EQ(Parse(text).result, 380000);
}

}  // namespace
}  // namespace kelvaro
