// kelvaroctl sending keys for real, by the X server: broken off, and killed.
#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

#include <memory>
#include <string>

#include "tests/program/machine.h"

namespace kelvaro::tests {
namespace {

constexpr unsigned kLeftShift = 50;  // X key codes
constexpr unsigned kA = 38;

class PlayTest : public testing::Test {
 protected:
  void SetUp() override {
    if (access("/dev/uinput", R_OK | W_OK) == 0) GTEST_SKIP() << "keys go out by uinput here";
    SKIP_UNLESS(desktop.Works(), "xvfb", "no X server");
  }

  // Plays a text that holds Shift and A for longer than any test waits.
  std::unique_ptr<Child> Play() {
    auto environment = home.Environment();
    environment["DISPLAY"] = desktop.Name();
    return std::make_unique<Child>(std::vector<std::string>{Program("kelvaroctl"), "play", "--json",
                                                            "--hold-all", "<LShift>a<P:65535>b"},
                                   ChildOptions{environment});
  }

  bool BothDown() { return desktop.KeyIsDown(kLeftShift) && desktop.KeyIsDown(kA); }
  bool BothUp() { return !desktop.KeyIsDown(kLeftShift) && !desktop.KeyIsDown(kA); }

  Home home;
  XDesktop desktop{false};
};

TEST_F(PlayTest, ASignalEndsItAtOnceWithNothingDown) {
  for (const int signal : {SIGINT, SIGTERM}) {
    const auto play = Play();
    ASSERT_TRUE(Eventually([&] { return BothDown(); })) << play->Log();
    play->Signal(signal);
    EXPECT_EQ(play->WaitForEnd(), 128 + signal) << play->Log();
    EXPECT_TRUE(BothUp());
    // The releases are printed too, as everything that is sent.
    for (const char* released :
         {R"("vk":160,"scan":42,"flags":2})", R"("vk":65,"scan":30,"flags":2})"})
      EXPECT_NE(play->Log().find(released), std::string::npos) << play->Log();
  }
}

TEST_F(PlayTest, ASignalInTheCountdownEndsItWithNothingSent) {
  const auto play = Play();
  ASSERT_TRUE(Eventually([&] { return play->Log().find("in 3 s") != std::string::npos; }));
  play->Signal(SIGINT);
  EXPECT_EQ(play->WaitForEnd(), 128 + SIGINT);
  EXPECT_NE(play->Log().find("broken off, nothing was sent"), std::string::npos) << play->Log();
  EXPECT_EQ(play->Log().find("event"), std::string::npos) << play->Log();
}

TEST_F(PlayTest, KilledItLeavesNothingDown) {
  const auto play = Play();
  ASSERT_TRUE(Eventually([&] { return BothDown(); })) << play->Log();
  play->Signal(SIGKILL);
  EXPECT_EQ(play->WaitForEnd(), 128 + SIGKILL);
  EXPECT_TRUE(Eventually([&] { return BothUp(); }));
}

}  // namespace
}  // namespace kelvaro::tests
