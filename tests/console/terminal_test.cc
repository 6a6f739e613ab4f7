#include "console/terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>

#include "app/platform/linux/descriptor.h"
#include "tests/host/files.h"
#include "tests/host/refused_calls.h"

namespace kelvaro::console {
namespace {

class OnATerminal : public testing::Test {
 protected:
  OnATerminal() {
    EXPECT_EQ(grantpt(master.Get()), 0);
    EXPECT_EQ(unlockpt(master.Get()), 0);
    terminal = platform::Descriptor(open(ptsname(master.Get()), O_RDWR | O_NOCTTY));
    EXPECT_GE(terminal.Get(), 0);
  }

  void Resize(unsigned short columns) {
    winsize size{};
    size.ws_row = 24;
    size.ws_col = columns;
    EXPECT_EQ(ioctl(terminal.Get(), TIOCSWINSZ, &size), 0);
  }

  const tests::Variable noColor{"NO_COLOR"};
  const tests::Variable term{"TERM", "xterm"};
  const platform::Descriptor master{posix_openpt(O_RDWR | O_NOCTTY)};
  platform::Descriptor terminal;
};

TEST_F(OnATerminal, ItsWidthCounts) {
  Resize(63);
  EXPECT_EQ(TerminalOn(terminal.Get()).columns, 63u);
  Resize(0);
  EXPECT_EQ(TerminalOn(terminal.Get()).columns, 80u) << "it doesn't tell";
  Resize(63);
  tests::WhereRefused({{SYS_ioctl, ENOTTY, TIOCGWINSZ}},
                      [&] { EXPECT_EQ(TerminalOn(terminal.Get()).columns, 80u); });
}

TEST_F(OnATerminal, ThereAreColoursUnlessTheEnvironmentSaysNo) {
  EXPECT_TRUE(TerminalOn(terminal.Get()).colours);
  noColor.Set("");
  EXPECT_TRUE(TerminalOn(terminal.Get()).colours) << "an empty one doesn't count";
  noColor.Set("1");
  EXPECT_FALSE(TerminalOn(terminal.Get()).colours);
  noColor.Set(nullptr);
  term.Set("dumb");
  EXPECT_FALSE(TerminalOn(terminal.Get()).colours);
  term.Set(nullptr);
  EXPECT_TRUE(TerminalOn(terminal.Get()).colours);
}

TEST(NoTerminal, HasEightyColumnsAndNoColours) {
  const platform::Descriptor file(open("/dev/null", O_WRONLY));
  const Terminal terminal = TerminalOn(file.Get());
  EXPECT_EQ(terminal.columns, 80u);
  EXPECT_FALSE(terminal.colours);
}

}  // namespace
}  // namespace kelvaro::console
