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

}  // namespace
}  // namespace platform
