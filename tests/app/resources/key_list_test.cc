#include "app/resources/key_list.h"

#include <gtest/gtest.h>

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
  const std::vector<std::string> kRows = {
      "== Key Modifiers ==",
      "<ALT>",
      "<LALT>",
      "<RALT>",
      "<CTRL>",
      "<LCTRL> = left control key",
      "<RCTRL> = right control key",
      "<SHIFT>",
      "<LSHIFT> = left shift key",
      "<RSHIFT> = right shift key",
      "== Edit block ==",
      "<DEL> = Delete",
      "<END>",
      "<HOME>",
      "<INSERT>",
      "<PGDOWN> = page down",
      "<PGUP> = page up",
      "<LEFT> = left arrow",
      "<UP> = up arrow",
      "<RIGHT> = right arrow",
      "<DOWN> = down arrow",
      "== Windows & System Control ==",
      "<P:n> = pause 'n' milliseconds (n is numeric)",
      "(there are 1000 milliseconds in 1 second)",
      "<MENU> = application key",
      "<LMENU> = left alt key",
      "<RMENU> = right alt key",
      "<WIN> = windows key",
      "<LWIN> = left windows key",
      "<RWIN> = right windows key",
      "<HELP> = help key ?",
      "<VolDn> = system volume down (2000/XP only)",
      "<VolMute> = no system volume/mute (2000/XP only)",
      "<VolUp> = system volume up (2000/XP only)",
      "<StartMail> = launch mail (2000/XP only)",
      "<StartApp1> = launch application 1 key (2000/XP only)",
      "<StartApp2> = launch application 2 key (2000/XP only)",
      "== Mouse ==",
      "<LMouse> = left mouse button",
      "<MMouse> = middle mouse button",
      "<RMouse> = right mouse button",
      "<X1Mouse> = X1 mouse button (2000/XP only)",
      "<X2Mouse> = X2 mouse button (2000/XP only)",
      "== Number Pad Keys ==",
      "<NP0> = number pad 0",
      "<NP1> = number pad 1",
      "<NP2> = number pad 2",
      "<NP3> = number pad 3",
      "<NP4> = number pad 4",
      "<NP5> = number pad 5",
      "<NP6> = number pad 6",
      "<NP7> = number pad 7",
      "<NP8> = number pad 8",
      "<NP9> = number pad 9",
      "<NP/> = number pad /",
      "<NP*> = number pad *",
      "<NP-> = number pad -",
      "<NP+> = number pad +",
      "<NPEnter> = number pad enter",
      "<NPCR> = number pad enter",
      "<NPDel> = number pad Del key (also '.')",
      "<NP.> = number pad Del key (also '.')",
      "== Special ==",
      "<BS> = Backspace",
      "<Backspace> = Backspace",
      "<CANCEL> = ctrl-break",
      "<CAPS> = Caps Lock",
      "<CR> = enter/return",
      "<ENTER> = enter/return",
      "<ESC>",
      "<F1> = function key 1",
      "<F2> = function key 2",
      "<F3> = function key 3",
      "<F4> = function key 4",
      "<F5> = function key 5",
      "<F6> = function key 6",
      "<F7> = function key 7",
      "<F8> = function key 8",
      "<F9> = function key 9",
      "<F10> = function key 10",
      "<F11> = function key 11",
      "<F12> = function key 12",
      "<NUMLOCK>",
      "<PAUSE> = pause key",
      "<SCROLL> = scroll lock",
      "<SNAPSHOT> = print-screen",
      "<TAB>",
      "== Mystery ==",
      "<Attn>",
      "<CrSel>",
      "<ExSel>",
      "<ErEOF>",
      "<Play>",
      "<Zoom>",
      "<OEMClear>",
      "== Web Browser ==",
      "<BrowserBack> = web browser back (2000/XP only)",
      "<BrowserForward> = web browser forward (2000/XP only)",
      "<BrowserRefresh> = web browser refresh (2000/XP only)",
      "<BrowserStop> = web browser stop (2000/XP only)",
      "<BrowserSrch> = web browser search (2000/XP only)",
      "<BrowserFav> = web browser favorites (2000/XP only)",
      "<BrowserHome> = web browser home page (2000/XP only)",
      "== Media ==",
      "<MediaNext> = media next track (2000/XP only)",
      "<MediaPrev> = media previous track (2000/XP only)",
      "<MediaStop> = media stop (2000/XP only)",
      "<MediaPP> = media play/pause (2000/XP only)",
      "<MediaSel> = media select (2000/XP only)",
  };
  std::vector<std::string> rows;
  for (const std::string row : kSpecialKeys) {
    if (!row.empty()) rows.push_back(row);
  }
  EXPECT_EQ(rows, kRows);
}

}  // namespace
}  // namespace kelvaro::resources
