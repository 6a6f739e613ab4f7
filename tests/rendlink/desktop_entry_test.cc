#include "rendlink/desktop_entry.h"

#include <gtest/gtest.h>

namespace kelvaro::rendlink {
namespace {

std::string Text(const DesktopEntry& entry) {
  std::string text;
  std::string refusal;
  EXPECT_TRUE(DesktopEntryText(entry, &text, &refusal)) << refusal;
  return text;
}

TEST(DesktopEntryText, IsThese) {
  EXPECT_EQ(Text({"Race",
                  "Starts race with the profile My Game",
                  "/games/race/race.png",
                  {"/opt/kelvaro/kelvaro", "profile=My Game", "target=/games/race/race.sh",
                   "args=-map [100% $HOME \\ `x`] 'y'", "dir=/games/r\xC3\xA9sum\xC3\xA9"}}),
            "[Desktop Entry]\n"
            "Type=Application\n"
            "Name=Race\n"
            "Comment=Starts race with the profile My Game\n"
            "Exec=/opt/kelvaro/kelvaro \"profile=My Game\" target=/games/race/race.sh "
            "\"args=-map [100%% \\\\$HOME \\\\\\\\ \\\\`x\\\\`] 'y'\" "
            "dir=/games/r\xC3\xA9sum\xC3\xA9\n"
            "Icon=/games/race/race.png\n"
            "Terminal=false\n"
            "Categories=Game;\n");
}

TEST(DesktopEntryText, BlanksAtTheEndsBackslashesAndTabsOfAnyValueAreEscaped) {
  const std::string text = Text({" a ", "b\\c\td", " ", {"/k"}});
  EXPECT_NE(text.find("\nName=\\sa\\s\n"), std::string::npos) << text;
  EXPECT_NE(text.find("\nComment=b\\\\c\\td\n"), std::string::npos) << text;
  EXPECT_NE(text.find("\nIcon=\\s\n"), std::string::npos) << text;
}

TEST(DesktopEntryText, RefusesWhatSuchAFileCantHold) {
  struct {
    DesktopEntry entry;
    std::string refusal;
  } const kRows[] = {
      {{"n", "c", "i", {"/a=b/kelvaro"}},
       "The path of Kelvaro has the character = in it, which a launcher can't start."},
      {{"n\nm", "c", "i", {"/k"}},
       "The launcher's name has a control character in it, which a launcher can't hold."},
      {{"n", "c", "\xFF", {"/k"}},
       "The path of the icon isn't UTF-8 text, and a launcher can't hold other."},
      {{"n", "c", "i", {"/k", "target=/\xE9"}},
       "The word \"target=/\xE9\" isn't UTF-8 text, and a launcher can't hold other."},
      {{"n", "c\x01", "i", {"/k"}},
       "The comment has a control character in it, which a launcher can't hold."},
  };
  for (const auto& row : kRows) {
    std::string text = "untouched";
    std::string refusal;
    EXPECT_FALSE(DesktopEntryText(row.entry, &text, &refusal)) << row.refusal;
    EXPECT_EQ(refusal, row.refusal);
    EXPECT_EQ(text, "untouched");
  }
}

TEST(ExecWords, UndoesQuotesAndFieldCodes) {
  struct {
    const char* exec;
    Words words;
  } const kRows[] = {
      {"", {}},
      {"game", {"game"}},
      {"game %U --x", {"game", "--x"}},
      {"\"/my games/g\" 100%%", {"/my games/g", "100%"}},
      {"\"a\\\"b\\$\\\\\" \"\"", {"a\"b$\\", ""}},
      {"  a \t b  ", {"a", "b"}},
      {"a\\b", {"a\\b"}},
      {"a %", {"a", "%"}},
  };
  for (const auto& row : kRows) EXPECT_EQ(ExecWords(row.exec), row.words) << row.exec;
}

}  // namespace
}  // namespace kelvaro::rendlink
