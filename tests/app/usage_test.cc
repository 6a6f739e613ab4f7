#include "app/start/usage.h"

#include <gtest/gtest.h>

#include <string>

namespace kelvaro {
namespace {

TEST(UsageText, HasALineForEachArgumentAfterWhatTheProgramDoes) {
  const std::string text = UsageText();
  EXPECT_TRUE(text.starts_with("usage: kelvaro [PROFILE] ")) << text;
  EXPECT_NE(
      text.find("[dir=FOLDER]\n"
                "\n"
                "Shows the window of Kelvaro, which turns a game pad or joystick into keys and "
                "mouse.\n"
                "\n"
                "  PROFILE         select the first profile whose name begins so\n"
                "  profile=NAME    the same; "),
      std::string::npos)
      << text;
  EXPECT_TRUE(
      text.ends_with("\n"
                     "  --version       print the version and end\n"
                     "\n"
                     "Without a display \"kelvaroctl run\" plays a profile.\n"))
      << text;
}

TEST(UsageText, HasAColumnThatEachArgumentFitsIn) {
  for (const Argument& argument : Arguments())
    EXPECT_LT((argument.word + argument.value).size(), 16u) << argument.word;
}

}  // namespace
}  // namespace kelvaro
