#include "app/platform/linux/command_words.h"

#include <gtest/gtest.h>

namespace platform {
namespace {

using Words = std::vector<std::string>;

TEST(CommandWords, PartsAtBlanksOutsideOfQuotes) {
  const struct {
    const char* line;
    Words words;
  } cases[] = {
      {"", {}},
      {"   ", {}},
      {"a", {"a"}},
      {"a b\tc\nd", {"a", "b", "c", "d"}},
      {"\"/games/my game\" -map \"My Level\"", {"/games/my game", "-map", "My Level"}},
      {"a\"b c\"d", {"ab cd"}},
      {"a \"\" b", {"a", "", "b"}},
      {"\"open to the end", {"open to the end"}},
      {"'single' \\ $HOME `x` *", {"'single'", "\\", "$HOME", "`x`", "*"}},
  };
  for (const auto& row : cases) EXPECT_EQ(CommandWords(row.line), row.words) << row.line;
}

TEST(CommandLineOf, PutsAnArgumentWithBlanksInQuotesAtItsValue) {
  EXPECT_EQ(CommandLineOf({"/opt/my apps/kelvaro", "profile=My Game", "target=/g/x", "Plain Name"}),
            "\"/opt/my apps/kelvaro\" profile=\"My Game\" target=/g/x \"Plain Name\"");
}

TEST(CommandLineOf, IsTakenApartAgainByCommandWords) {
  const Words words = {"/a b/c", "profile=My Game", "args=-x [a b] -y",
                       "",       "tab\there",       "line\nend"};
  EXPECT_EQ(CommandWords(CommandLineOf(words)), words);
}

}  // namespace
}  // namespace platform
