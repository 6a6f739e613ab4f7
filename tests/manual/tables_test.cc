// The manual's tables of names, held against the program's own.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "engine/mouse_emulation.h"
#include "keys/key_tables.h"
#include "tests/console/console_run.h"
#include "tests/engine/axes.h"
#include "tests/manual/example.h"
#include "tests/manual/page.h"

namespace kelvaro::manual {
namespace {

std::string OnlyOfClass(const Page& page, const std::string& element, const std::string& name) {
  const std::vector<std::string> found = OfClass(page, element, name);
  EXPECT_EQ(found.size(), 1u) << page.name << " " << name;
  return found.empty() ? std::string() : found[0];
}

// The names in the table, as its rows have them: those of one key in one row.
std::vector<std::vector<std::string>> NamesOfKeys() {
  std::vector<std::vector<std::string>> names;
  for (const auto& cells : Rows(OnlyOfClass(PageNamed("Names of Keys.htm"), "table", "tokens"))) {
    EXPECT_EQ(cells.size(), 2u) << cells[0];
    EXPECT_FALSE(OneLine(cells.back()).empty()) << cells[0];
    names.emplace_back();
    for (const std::string& each : Between(cells[0], "<tt>", "</tt>")) {
      const std::string token = PlainText(each);
      EXPECT_TRUE(token.size() > 2 && token.front() == '<' && token.back() == '>') << token;
      names.back().push_back(token.substr(1, token.size() - 2));
    }
  }
  return names;
}

TEST(NamesOfKeysPage, HasEachNameOnceAsTheProgramSpellsIt) {
  std::vector<std::string> told;
  for (const auto& row : NamesOfKeys()) told.insert(told.end(), row.begin(), row.end());
  std::vector<std::string> known;
  for (const KeyToken* row = KeyTokenTable; row->name; ++row) known.emplace_back(row->name);
  std::sort(told.begin(), told.end());
  std::sort(known.begin(), known.end());
  EXPECT_EQ(told, known);
}

TEST(NamesOfKeysPage, NamesInOneRowAreOneKeyAndTheFirstIsShown) {
  std::map<std::string, std::string> rowOf;
  for (const auto& names : NamesOfKeys()) {
    const KeyToken& first = KeyTokenTable[FindToken(names[0].c_str())];
    const std::string key = std::to_string(first.vk) + " " + std::to_string(first.scan) + " " +
                            std::to_string(first.flags);
    EXPECT_EQ(rowOf[key], "") << names[0] << " is a key of two rows";
    rowOf[key] = names[0];
    for (const std::string& name : names) {
      const console::Outcome run = console::Kelvaroctl({"keys", "<" + name + ">"});
      EXPECT_EQ(run.out.substr(0, run.out.find('\n')), "<" + names[0] + ">") << name;
    }
  }
}

TEST(NamesOfKeysPage, ShowsEachSignThatStandsForItself) {
  const std::string text = PlainText(OnlyOfClass(PageNamed("Names of Keys.htm"), "tt", "signs"));
  std::set<char> told;
  for (const char c : text) {
    if (c != ' ') told.insert(c);
  }
  std::set<char> known;
  for (const KeyChar* row = KeyCharTable; row->character; ++row) {
    if (row->character != ' ' && row->character != '<') known.insert(row->character);
  }
  EXPECT_EQ(told, known);
}

TEST(NamesOfTriggersPage, HasNamesAsTheProgramSpellsThem) {
  const auto rows = Rows(OnlyOfClass(PageNamed("Names of Triggers.htm"), "table", "triggers"));
  EXPECT_GE(rows.size(), 10u);
  for (const auto& cells : rows) {
    const std::string name = OneLine(cells[0]);
    std::string trigger;
    ASSERT_TRUE(TriggerJson(name, &trigger)) << name;
    const console::TestFile profile("profile.json", "{\"controls\":[{" + trigger + "}]}");
    const console::Outcome shown = console::Kelvaroctl({"show", "--json", profile.path});
    EXPECT_NE(shown.out.find("\"triggerText\":\"" + name + "\""), std::string::npos)
        << name << "\n"
        << shown.out << shown.err;
  }
}

// Pushed all the way, of each sensitivity that the table names, also the ends of "0 to 3".
TEST(MousePage, TellsTheSpeedsThatComeOfTheCurve) {
  DIJOYSTATE2 state;
  state.lX = kAxisMax;
  const auto rows =
      Rows(OnlyOfClass(PageNamed("Mouse Device and Settings.htm"), "table", "speeds"));
  EXPECT_GE(rows.size(), 4u);
  for (const auto& cells : rows) {
    ASSERT_EQ(cells.size(), 3u);
    const std::string range = OneLine(cells[0]);
    for (const std::string& each : {range, range.substr(range.rfind(' ') + 1)}) {
      const MouseCurve curve =
          MakeMouseCurve(kAxisMax, MouseDeadZone(5, kAxisMax), std::stoi(each) + 2);
      const int counts =
          static_cast<int>(NextAccumulated(MouseInput(input_kind::kAxisX), state, curve, 0.0));
      EXPECT_EQ(std::to_string(counts), OneLine(cells[1])) << each;
      EXPECT_EQ(std::to_string(counts * 200), OneLine(cells[2])) << each;
    }
  }
}

}  // namespace
}  // namespace kelvaro::manual
