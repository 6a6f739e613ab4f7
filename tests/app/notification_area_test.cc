#include <gtest/gtest.h>

#include <string>

#include "app/resources/control_ids.h"
#include "app/resources/resources.h"
#include "tests/app/calls.h"
#include "tests/app/main_window_fixture.h"

namespace kelvaro {
namespace {

using namespace main_window;

using NotificationAreaTest = MainWindowTest;

// ---- The icon.

TEST_F(NotificationAreaTest, TheIconIsThatOfTheProgramWithItsName) {
  Begin();
  ASSERT_TRUE(screen.IconShown());
  const platform::NOTIFYICONDATA icon = screen.NotificationIcon();
  EXPECT_EQ(icon.cbSize, 88u);
  EXPECT_EQ(icon.hWnd, Handle());
  EXPECT_EQ(icon.uID, 0u);
  EXPECT_EQ(icon.uFlags, 7u) << "message, icon, tip";
  EXPECT_EQ(icon.uCallbackMessage, 0x8000u);
  EXPECT_EQ(screen.NotificationPicture(), 128u);
  EXPECT_STREQ(icon.szTip, "Kelvaro");
}

// ---- Hiding and coming back.

TEST_F(NotificationAreaTest, MinimisingHidesTheWindow) {
  Begin();
  ASSERT_TRUE(screen.Shown());
  screen.Minimise();
  EXPECT_FALSE(screen.Shown());
  EXPECT_TRUE(screen.Minimised()) << "it is both, and comes back from both";
  EXPECT_TRUE(screen.Running());
}

TEST_F(NotificationAreaTest, ADoubleClickBringsItBackAndNotToTheFront) {
  Begin();
  screen.Minimise();
  sim.LogCalls(true);
  screen.IconDoubleClick();
  EXPECT_TRUE(screen.Shown());
  EXPECT_FALSE(screen.Minimised());
  EXPECT_EQ(CallsOf(sim, {"ShowWindow", "SetForegroundWindow"}),
            (Strings{"ShowWindow 5", "ShowWindow 9"}));
}

TEST_F(NotificationAreaTest, ADoubleClickLeavesAShownWindowShown) {
  Begin();
  screen.IconDoubleClick();
  EXPECT_TRUE(screen.Shown());
  EXPECT_FALSE(screen.Minimised());
}

TEST_F(NotificationAreaTest, TheMessageToShowDoesAsTheDoubleClick) {
  Begin();
  screen.Minimise();
  sim.LogCalls(true);
  Post(0x8002);
  EXPECT_TRUE(screen.Shown());
  EXPECT_EQ(CallsOf(sim, {"ShowWindow"}), (Strings{"ShowWindow 5", "ShowWindow 9"}));
}

TEST_F(NotificationAreaTest, AMaximisedWindowComesBackMaximised) {
  Begin();
  screen.Maximise();
  screen.Minimise();
  screen.IconDoubleClick();
  EXPECT_TRUE(screen.Shown());
  EXPECT_TRUE(screen.Maximised());
}

TEST_F(NotificationAreaTest, StartMinimizedHidesItWithoutMinimising) {
  Preset("Start Minimized", 1);
  Begin();
  EXPECT_FALSE(screen.Shown());
  EXPECT_FALSE(screen.Minimised());
  EXPECT_TRUE(screen.Running());
  screen.IconDoubleClick();
  EXPECT_TRUE(screen.Shown());
}

// The warning of the start is posted before the message that hides: the window is shown, the
// warning asks, and the window hides behind it.
TEST_F(NotificationAreaTest, AWarningOfTheStartItselfStandsAlone) {
  Preset("Start Minimized", 1);
  WithoutPad();
  Begin();
  EXPECT_TRUE(screen.BoxUp());
  EXPECT_FALSE(platform::desktop().IsWindowVisible(Handle()));
  EXPECT_EQ(CurrentTab(), 2u);
}

// ---- Events of the icon.

TEST_F(NotificationAreaTest, EventsOfAnotherIconAreIgnored) {
  Begin();
  screen.Minimise();
  screen.IconMessage(1, platform::WM_LBUTTONDBLCLK);
  EXPECT_FALSE(screen.Shown());
  screen.IconMessage(1, platform::WM_RBUTTONDOWN);
  EXPECT_FALSE(screen.MenuUp());
}

TEST_F(NotificationAreaTest, OtherMouseMessagesAreIgnored) {
  Begin();
  screen.Minimise();
  for (const std::intptr_t message :
       {std::intptr_t{0x200}, platform::WM_LBUTTONDOWN, std::intptr_t{0x202},
        platform::WM_RBUTTONUP, std::intptr_t{0x206}, std::intptr_t{0x207}}) {
    screen.IconMessage(0, message);
    EXPECT_FALSE(screen.Shown()) << message;
    EXPECT_FALSE(screen.MenuUp()) << message;
  }
}

TEST_F(NotificationAreaTest, TheRightButtonOpensTheMenuGoingDown) {
  Begin();
  screen.IconMessage(0, platform::WM_RBUTTONDOWN);
  ASSERT_TRUE(screen.MenuUp());
  EXPECT_EQ(screen.Menu(), (Strings{"Exit", "", "Show Kelvaro"}));
  screen.DismissMenu();
  EXPECT_FALSE(screen.MenuUp());
  EXPECT_TRUE(screen.Running());
}

TEST_F(NotificationAreaTest, TheWindowComesInFrontBeforeTheMenuAndIsTouchedAfterIt) {
  Begin();
  sim.LogCalls(true);
  screen.IconRightClick();
  screen.DismissMenu();
  EXPECT_EQ(
      CallsOf(sim, {"SetForegroundWindow", "GetCursorPos", "TrackPopupMenu", "PostMessageA 0"}),
      (Strings{"SetForegroundWindow", "GetCursorPos", "TrackPopupMenu", "PostMessageA 0"}));
}

TEST_F(NotificationAreaTest, WithoutAPlaceForItThereIsNoMenu) {
  Begin();
  sim.FailNext("GetCursorPos");
  sim.LogCalls(true);
  screen.IconRightClick();
  EXPECT_FALSE(screen.MenuUp());
  EXPECT_EQ(CallsOf(sim, {"TrackPopupMenu", "PostMessageA 0"}), Strings{});
  screen.IconRightClick();
  EXPECT_TRUE(screen.MenuUp()) << "only that once";
}

TEST_F(NotificationAreaTest, AMenuThatCannotBeShownLeavesTheWayForTheNext) {
  Begin();
  sim.FailNext("TrackPopupMenu");
  screen.IconRightClick();
  EXPECT_FALSE(screen.MenuUp());
  EXPECT_TRUE(screen.Boxes().empty());
  screen.IconRightClick();
  EXPECT_TRUE(screen.MenuUp());
}

TEST_F(NotificationAreaTest, ASecondRightClickWhileTheMenuIsUpDoesNothing) {
  Begin();
  screen.IconRightClick();
  screen.IconRightClick();
  EXPECT_EQ(screen.MenusShown(), 1u);
  EXPECT_TRUE(screen.MenuUp());
}

TEST_F(NotificationAreaTest, ShowKelvaroShowsTheWindowInItsNormalState) {
  Begin();
  screen.Maximise();
  screen.Minimise();
  screen.IconRightClick();
  sim.LogCalls(true);
  screen.ChooseMenu("Show Kelvaro");
  EXPECT_TRUE(screen.Shown());
  EXPECT_FALSE(screen.Minimised());
  EXPECT_FALSE(screen.Maximised());
  EXPECT_EQ(CallsOf(sim, {"ShowWindow"}), Strings{"ShowWindow 1"});
}

// Some desktops that show icons show their menus, too.
TEST_F(NotificationAreaTest, TheIconHasTheSameMenuForThoseThatShowItThemselves) {
  Begin();
  screen.Minimise();
  EXPECT_EQ(screen.IconMenu(), (Strings{"Exit", "", "Show Kelvaro"}));
  screen.ChooseIconMenu("Show Kelvaro");
  EXPECT_TRUE(screen.Shown());
  EXPECT_FALSE(screen.Minimised());
  screen.ChooseIconMenu("Exit");
  EXPECT_FALSE(screen.Running());
}

// ---- While it is minimised and couldn't be hidden.

TEST_F(NotificationAreaTest, AMinimisedWindowShowsTheIconInItsMiddle) {
  sim.FailNext("SetWindowsHookExA");
  Begin();
  screen.Resize(570, 378);
  screen.Minimise();
  ASSERT_TRUE(screen.Shown()) << "without the hook nothing hides it";
  ASSERT_TRUE(screen.Minimised());
  // (570 - 32 + 1) / 2 and (378 - 32 + 1) / 2, rounded toward zero.
  EXPECT_EQ(screen.Paint(), (Strings{"erase 0,0,570,378", "icon 269,173 128"}));
}

// ---- The welcome.

TEST_F(NotificationAreaTest, TheWelcomeComesBeforeTheWindowIsSeenAndOnce) {
  FirstStart();
  Begin();
  ASSERT_EQ(screen.Front(), welcome::kDialog);
  EXPECT_EQ(screen.Title(), "Welcome to Kelvaro");
  EXPECT_FALSE(platform::desktop().IsWindowVisible(Handle()));
  EXPECT_EQ(Settings().welcomeDisplay, 1u) << "before it is shown";
  screen.Close();
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  EXPECT_TRUE(screen.Shown());
  screen.Close();
  EXPECT_EQ(Number("Welcome Display"), 1u);
  Begin();
  EXPECT_EQ(screen.Front(), main_window::kDialog);
}

TEST_F(NotificationAreaTest, TheMessageForTheWelcomeShowsItAtAnyTime) {
  Begin();
  Post(0x8009);
  EXPECT_EQ(screen.Front(), welcome::kDialog);
}

// ---- The links.

// A build may have none of them; then nothing looks or works like a link.
TEST_F(NotificationAreaTest, TheLinksOpenTheMakersAddressesIfThereAreAny) {
  Begin();
  screen.ChooseTab(kTabControl, 3);
  const std::string web = resources::kWebAddress, mail = resources::kSupportAddress;
  Strings opened;
  if (!web.empty()) opened.push_back(web);
  if (!mail.empty()) opened.push_back("mailto:" + mail);
  EXPECT_EQ(screen.Text(kWebLink), web.empty() ? "none in this build" : web);
  EXPECT_EQ(screen.Text(kMailLink), mail.empty() ? "none in this build" : mail);
  EXPECT_EQ(screen.TextColour(kWebLink) == CStaticLink::kLinkColour, !web.empty());
  EXPECT_EQ(screen.TextColour(kMailLink) == CStaticLink::kLinkColour, !mail.empty());
  screen.Click(kWebLink);
  screen.Click(kMailLink);
  EXPECT_EQ(screen.OpenedAddresses(), opened);
}

// ---- Help.

TEST_F(NotificationAreaTest, TheHelpButtonShowsItsTopic) {
  Begin();
  screen.Click(kHelp);
  ASSERT_EQ(screen.HelpCalls().size(), 2u);
  EXPECT_EQ(screen.HelpCalls()[1].command, platform::HH_DISPLAY_TOPIC);
  EXPECT_EQ(screen.HelpCalls()[1].file, "/game/Help/Kelvaro.chm");
  EXPECT_EQ(screen.HelpCalls()[1].topic, "Creation Maintenance and Location.htm");
}

TEST_F(NotificationAreaTest, WithoutHelpTheButtonDoesNothingAndNothingIsToldAtTheEnd) {
  screen.SetHelpLibrary("hhctrl.ocx", false);
  Begin();
  EXPECT_FALSE(DefineControl().helpAvailable);
  screen.Click(kHelp);
  screen.Close();
  EXPECT_TRUE(screen.HelpCalls().empty());
  EXPECT_EQ(screen.LoadedLibraries(), Strings{"hhctrl.ocx"}) << "looked for once";
}

TEST_F(NotificationAreaTest, HelpThatDoesNotStartIsNone) {
  sim.FailNext("HtmlHelp");
  Begin();
  screen.Click(kHelp);
  screen.Press(screen.kF1);
  EXPECT_TRUE(screen.HelpCalls().empty());
}

TEST_F(NotificationAreaTest, AtTheEndHelpIsClosedAndGivenBack) {
  Begin();
  EXPECT_TRUE(DefineControl().helpAvailable);
  screen.Close();
  ASSERT_EQ(screen.HelpCalls().size(), 3u);
  EXPECT_EQ(screen.HelpCalls()[0].command, platform::HH_INITIALIZE);
  EXPECT_EQ(screen.HelpCalls()[1].command, platform::HH_CLOSE_ALL);
  EXPECT_EQ(screen.HelpCalls()[2].command, platform::HH_UNINITIALIZE);
  EXPECT_EQ(screen.HelpCalls()[2].cookie, screen.HelpCalls()[0].cookie);
}

}  // namespace
}  // namespace kelvaro
