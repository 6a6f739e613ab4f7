#include "app/platform/drop_rows.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace platform {
namespace {

std::vector<std::string> Texts(const DropRows& rows) {
  std::vector<std::string> texts;
  for (std::int32_t row = 0; row < rows.Count(); ++row) texts.push_back(rows.Text(row));
  return texts;
}

TEST(DropRows, StandInTheOrderOfTheirAddingUnlessSorted) {
  DropRows plain(false);
  DropRows sorted(true);
  for (const char* text : {"b", "A", "C", "B"}) {
    plain.Add(text);
    sorted.Add(text);
  }
  EXPECT_EQ(Texts(plain), (std::vector<std::string>{"b", "A", "C", "B"}));
  EXPECT_EQ(Texts(sorted), (std::vector<std::string>{"A", "b", "B", "C"})) << "behind its equal";
  EXPECT_EQ(sorted.Add("a\xFC"), 1);
}

TEST(DropRows, TheChoiceStaysWithItsRow) {
  DropRows rows(true);
  rows.Add("m");
  rows.Select(0);
  rows.Add("a");
  EXPECT_EQ(rows.Selected(), 1);
  EXPECT_TRUE(rows.Delete(0));
  EXPECT_EQ(rows.Selected(), 0);
  EXPECT_TRUE(rows.Delete(0));
  EXPECT_EQ(rows.Selected(), -1) << "without it no other is chosen";
  EXPECT_FALSE(rows.Delete(0));
}

TEST(DropRows, OfARowThatIsntThereNoneIsChosen) {
  DropRows rows(false);
  EXPECT_EQ(rows.Selected(), -1) << "at first";
  rows.Add("a");
  for (const std::int32_t row : {0, 1, -1, -7}) {
    rows.Select(row);
    EXPECT_EQ(rows.Selected(), row == 0 ? 0 : -1);
  }
  rows.Select(0);
  rows.Clear();
  EXPECT_EQ(rows.Selected(), -1);
  EXPECT_EQ(rows.Text(0), "");
}

TEST(DropRows, SearchesFoldTheCaseOfAsciiLettersAlone) {
  DropRows rows(false);
  for (const char* text : {"one", "two", "three", "\xC3\x9C"}) rows.Add(text);
  EXPECT_EQ(rows.FindPrefix("T"), 1);
  EXPECT_EQ(rows.FindPrefix("THR"), 2);
  EXPECT_EQ(rows.FindPrefix(""), 0);
  EXPECT_EQ(rows.FindPrefix("x"), -1);
  EXPECT_EQ(rows.FindExact("TWO"), 1);
  EXPECT_EQ(rows.FindExact("tw"), -1);
  EXPECT_EQ(rows.FindExact("\xC3\xBC"), -1);
}

TEST(DropRows, EachCarriesANumber) {
  DropRows rows(false);
  rows.Add("a");
  EXPECT_EQ(rows.Data(0), 0);
  EXPECT_TRUE(rows.SetData(0, -2));
  EXPECT_EQ(rows.Data(0), -2);
  EXPECT_FALSE(rows.SetData(1, 1));
  EXPECT_EQ(rows.Data(1), -1);
}

}  // namespace
}  // namespace platform
