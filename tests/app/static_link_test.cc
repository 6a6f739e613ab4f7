#include "app/layout/static_link.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "app/layout/dialog.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"
#include "tests/person/desktop_simulation.h"
#include "tests/person/screen.h"

namespace kelvaro {
namespace {

using namespace main_window;

using platform::ControlKind;
using platform::Notice;
using platform::simulation::Screen;
using Simulation = platform::simulation::DesktopSimulation;
using Strings = std::vector<std::string>;

constexpr std::uint32_t kWithout = 2999;
constexpr std::uint32_t kEmpty = 2998;
constexpr std::uint32_t kPlain = 2997;

constexpr platform::ControlTemplate kControls[] = {
    {ControlKind::Link, kWebLink, "caption of 1175", 4, 4, 80, 10},
    {ControlKind::Link, kWithout, "https://caption.example/", 4, 20, 80, 10},
    {ControlKind::Link, kEmpty, "", 4, 36, 80, 10},
    {ControlKind::Label, kPlain, "no link", 4, 52, 80, 10},
};
constexpr platform::DialogTemplate kResource = {23, "Links", 90, 66, 0, kControls};

class LinkDialog : public Dialog {
 public:
  LinkDialog() : Dialog(kResource) {}

  CStaticLink links[3];

 protected:
  void OnInit() override {
    for (std::size_t i = 0; i < 3; ++i) links[i].Attach(window, kControls[i].id);
  }
  void OnNotice(std::uint32_t id, Notice notice, std::int32_t value) override {
    for (std::size_t i = 0; i < 3; ++i) {
      if (id == kControls[i].id && notice == Notice::Clicked) links[i].OnClick();
    }
    Dialog::OnNotice(id, notice, value);
  }
};

class StaticLinkTest : public ::testing::Test {
 protected:
  void SetUp() override {
    screen.Start([this] { return dialog.DoModal(platform::kNoWindow); });
  }
  void TearDown() override { screen.Leave(); }

  Simulation sim;
  Screen& screen = sim.Screen();
  LinkDialog dialog;
  CStaticLink& withString = dialog.links[0];
  CStaticLink& without = dialog.links[1];
};

TEST_F(StaticLinkTest, LooksLikeALink) {
  EXPECT_EQ(screen.TextColour(kWithout), platform::Rgb(0, 0, 255));
  EXPECT_EQ(screen.Font(kWithout), screen.Font(kPlain) + " underlined");
  EXPECT_TRUE(screen.HandCursor(kWithout));
}

TEST_F(StaticLinkTest, AClickOpensTheTargetAndLeavesItsMark) {
  without.hyperlink.target = "https://target.example/";
  screen.Redraws(kWithout);
  screen.Click(kWithout);
  EXPECT_EQ(screen.OpenedAddresses(), Strings{"https://target.example/"});
  EXPECT_EQ(screen.TextColour(kWithout), platform::Rgb(128, 0, 128));
  EXPECT_EQ(without.colour, CStaticLink::kVisitedColour);
  EXPECT_GE(screen.Redraws(kWithout), 1u);
  EXPECT_EQ(screen.Beeps(), 0u);
  EXPECT_EQ(screen.TextColour(kWebLink), platform::Rgb(0, 0, 255));
}

TEST_F(StaticLinkTest, AnOpenedLinkOpensAgain) {
  without.hyperlink.target = "mailto:support@target.example";
  screen.Click(kWithout);
  screen.Click(kWithout);
  EXPECT_EQ(screen.OpenedAddresses(), Strings(2, "mailto:support@target.example"));
  EXPECT_EQ(screen.TextColour(kWithout), platform::Rgb(128, 0, 128));
}

TEST_F(StaticLinkTest, WithoutATargetTheStringOfItsNumberIsIt) {
  ASSERT_NE(resources::String(kWebLink), nullptr);
  screen.Click(kWebLink);
  EXPECT_EQ(screen.OpenedAddresses(), Strings{resources::String(kWebLink)});
  EXPECT_EQ(Bytes(withString.hyperlink.target), resources::String(kWebLink));
}

TEST_F(StaticLinkTest, WithoutATargetAndAStringItsTextIsIt) {
  ASSERT_EQ(resources::String(kWithout), nullptr);
  screen.Click(kWithout);
  EXPECT_EQ(screen.OpenedAddresses(), Strings{"https://caption.example/"});
}

TEST_F(StaticLinkTest, WithoutAnythingToOpenNothingHappens) {
  screen.Click(kEmpty);
  EXPECT_EQ(screen.OpenedAddresses(), Strings{});
  EXPECT_EQ(screen.Beeps(), 0u);
  EXPECT_EQ(screen.TextColour(kEmpty), platform::Rgb(0, 0, 255));
}

TEST_F(StaticLinkTest, ResultsUpToThirtyTwoAreFailuresAndBeep) {
  sim.FailNext("ShellExecuteA", 0);
  screen.Click(kWithout);
  EXPECT_EQ(screen.Beeps(), 1u);
  sim.FailNext("ShellExecuteA", 32);
  screen.Click(kWithout);
  EXPECT_EQ(screen.Beeps(), 2u);
  EXPECT_EQ(screen.TextColour(kWithout), platform::Rgb(0, 0, 255));
  sim.FailNext("ShellExecuteA", 33);
  screen.Click(kWithout);
  EXPECT_EQ(screen.Beeps(), 2u);
  EXPECT_EQ(screen.TextColour(kWithout), platform::Rgb(128, 0, 128));
}

TEST(HyperlinkTest, AnEmptyTargetIsNotOpened) {
  Simulation sim;
  sim.LogCalls(true);
  EXPECT_EQ(Hyperlink().Navigate(), 0);
  EXPECT_EQ(sim.Calls(), Strings{});
}

TEST(CStaticLinkTest, WithoutAHandTheOrdinaryPointerStays) {
  Simulation sim;
  sim.FailAlways("SetHandCursor");
  LinkDialog dialog;
  Screen& screen = sim.Screen();
  screen.Start([&] { return dialog.DoModal(platform::kNoWindow); });
  EXPECT_FALSE(screen.HandCursor(kWithout));
  screen.Click(kWithout);
  EXPECT_EQ(screen.OpenedAddresses().size(), 1u);
  screen.Leave();
}

}  // namespace
}  // namespace kelvaro
