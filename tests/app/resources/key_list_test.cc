#include "app/resources/key_list.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "app/resources/control_ids.h"
#include "app/resources/resources.h"
#include "keys/key_tables.h"
#include "tests/app/resources/dialog_tables.h"

namespace kelvaro::resources {
namespace {

bool IsHeading(const std::string& row) { return row.starts_with("== ") && row.ends_with(" =="); }

TEST(KeyList, HasAHundredAndThirtyTwoRowsInTheDropList) {
  const auto rows = Find(kDefineControl, define_control::kSpecialKeyList)->rows;
  ASSERT_EQ(rows.size(), 132u);
  for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_STREQ(rows[i], kSpecialKeys[i]) << i;
}

// Counted by hand: 100 rows of keys and notes below 9 headings, so 23 rows are blank.
TEST(KeyList, HasNineSectionsWithTheirNumberOfRows) {
  std::vector<std::pair<std::string, int>> sections;
  int blank = 0;
  for (const std::string row : kSpecialKeys) {
    if (row.empty()) {
      ++blank;
    } else if (IsHeading(row)) {
      sections.emplace_back(row.substr(3, row.size() - 6), 0);
    } else {
      ++sections.back().second;
    }
  }
  EXPECT_EQ(sections, (std::vector<std::pair<std::string, int>>{{"Key Modifiers", 9},
                                                                {"Edit block", 10},
                                                                {"Windows & System Control", 15},
                                                                {"Mouse", 5},
                                                                {"Number Pad Keys", 18},
                                                                {"Special", 24},
                                                                {"Mystery", 7},
                                                                {"Web Browser", 7},
                                                                {"Media", 5}}));
  EXPECT_EQ(blank, 23);
}

TEST(KeyList, SetsSectionsApartByOneBlankRowAndNeverTwo) {
  std::string before;
  bool first = true;
  for (const std::string row : kSpecialKeys) {
    if (IsHeading(row) && !first) {
      EXPECT_EQ(before, "") << row;
    }
    if (row.empty()) {
      EXPECT_NE(before, "");
      EXPECT_FALSE(IsHeading(before));
    }
    before = row;
    first = false;
  }
  EXPECT_NE(before, "");
}

TEST(KeyList, NamesKeysThatTheKeyLanguageKnows) {
  int keys = 0;
  for (const std::string row : kSpecialKeys) {
    if (!row.starts_with("<") || row.starts_with("<P:n>")) continue;
    const std::size_t end = row.find('>');
    ASSERT_NE(end, std::string::npos) << row;
    EXPECT_GE(FindToken(row.data() + 1, end - 1), 0) << row;
    ++keys;
  }
  EXPECT_EQ(keys, 98);  // all but the pause and the note below it
}

TEST(KeyList, SaysWhatEachKeyIs) {
  EXPECT_STREQ(kSpecialKeys[1], "<ALT>");
  EXPECT_EQ(Fingerprint({std::begin(kSpecialKeys), std::end(kSpecialKeys)}), 0xBAB38221BF6288DAu);
}

}  // namespace
}  // namespace kelvaro::resources
