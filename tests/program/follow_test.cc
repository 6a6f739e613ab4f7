// kelvaroctl follow on real desktops, with the windows of real programs.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <filesystem>
#include <memory>

#include "tests/program/own_programs.h"

// Last, as its macros hide others' names.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace kelvaro::tests {
namespace {

namespace fs = std::filesystem;

constexpr char kRules[] = R"({"default":"Desk","rules":[
  {"program":"doom*","title":"*level 2*","profile":"Second"},
  {"program":"DOOM*","profile":"Doom"},
  {"class":"tetris","profile":"Tetris"},
  {"class":"doom*","title":"*level 3*","profile":"Second"}]})";

constexpr char kDoomLine[] =
    "program 'doom2', class 'doom2', title 'Doom: Level 1': rule 2, profile 'Doom'";
constexpr char kTetrisLine[] =
    "program 'tetris', class 'tetris', title 'Blocks': rule 3, profile 'Tetris'";

// The programs in a folder of their own, with the profiles that the rules name.
class FollowTest : public OwnPrograms {
 protected:
  FollowTest()
      : OwnPrograms({"Desk", "Second", "Doom", "Tetris"}, R"("deviceName":"No such pad")") {
    // Sway runs as nobody, who has to reach all of this.
    fs::permissions(home.folder, fs::perms::all);
    for (const char* name : {"config", "runtime", "cache", "data"})
      fs::permissions(home.In(name), fs::perms::all);
    fs::permissions(home.In("runtime"), fs::perms::owner_all);
    for (const char* name : {"doom2", "tetris"})
      fs::copy_file(KELVARO_SHOWN_WINDOW, folder + "/" + name);
    environment = home.Environment();
  }

  std::unique_ptr<Child> Start(std::vector<std::string> command) {
    command[0] = folder + "/" + command[0];
    return std::make_unique<Child>(command, ChildOptions{environment, asNobody});
  }

  std::unique_ptr<Child> Follow(const std::vector<std::string>& options) {
    std::vector<std::string> command = {"kelvaroctl", "follow",
                                        Put(folder + "/rules.json", kRules)};
    command.insert(command.end(), options.begin(), options.end());
    auto follow = Start(command);
    Eventually([&] {
      return follow->Err().find("Ctrl-C ends it") != std::string::npos || !follow->Running();
    });
    return follow;
  }

  // Waits until its last line is as told.
  static testing::AssertionResult Says(const Child& follow, const std::string& line) {
    const auto said = [&] {
      const std::string out = follow.Out();
      return out == line + "\n" || out.ends_with("\n" + line + "\n");
    };
    if (Eventually(said)) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "not \"" << line << "\" but:\n" << follow.Log();
  }

  // Waits until the Kelvaro that runs plays that profile.
  testing::AssertionResult Plays(const std::string& profile) {
    std::string said;
    const auto plays = [&] {
      const auto status = Start({"kelvaroctl", "status", "--json"});
      status->WaitForEnd();
      said = status->Log();
      return said.find(R"("profile":")" + profile + '"') != std::string::npos;
    };
    if (Eventually(plays)) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "not " << profile << " but: " << said;
  }

  std::map<std::string, std::string> environment;
  bool asNobody = false;
};

class FollowOnX11 : public FollowTest {
 protected:
  void SetUp() override {
    desktop = std::make_unique<XDesktop>(false);
    SKIP_UNLESS(desktop->Works(), "xvfb", "no X server");
    environment["DISPLAY"] = desktop->Name();
    environment["QT_QPA_PLATFORM"] = "xcb";
    display = XOpenDisplay(desktop->Name().c_str());
    ASSERT_NE(display, nullptr);
  }
  void TearDown() override {
    if (display) XCloseDisplay(display);
  }

  void SetTitle(Window window, const std::string& title) {
    XChangeProperty(display, window, XInternAtom(display, "_NET_WM_NAME", False),
                    XInternAtom(display, "UTF8_STRING", False), 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(title.data()),
                    static_cast<int>(title.size()));
    XFlush(display);
  }

  std::unique_ptr<XDesktop> desktop;
  Display* display = nullptr;
};

TEST_F(FollowOnX11, ADryRunSaysWhichRuleFitsEachWindow) {
  const auto follow = Follow({"--dry-run"});
  EXPECT_NE(follow->Err().find("as the X server " + desktop->Name() + " tells it"),
            std::string::npos);
  ASSERT_TRUE(Says(*follow, "no window: the default, profile 'Desk'"));
  const auto doom = Start({"doom2", "Doom: Level 1"});
  ASSERT_TRUE(Says(*follow, kDoomLine));
  {
    const auto tetris = Start({"tetris", "Blocks"});
    ASSERT_TRUE(Says(*follow, kTetrisLine));
  }
  // The window behind comes to the front again.
  ASSERT_TRUE(Says(*follow, kDoomLine));
  SetTitle(desktop->Find("Doom: Level 1", false).id, "Doom: Level 2");
  ASSERT_TRUE(Says(*follow,
                   "program 'doom2', class 'doom2', title 'Doom: Level 2': rule 1, "
                   "profile 'Second'"));
  ExpectEndsByCtrlC(*follow);
}

TEST_F(FollowOnX11, AWindowThatTellsNoProcessIsKnownByItsClassAndTitle) {
  const auto follow = Follow({"--dry-run", "--json"});
  ASSERT_TRUE(Says(*follow,
                   R"({"event":"window","program":null,"class":null,"title":null,"rule":0,)"
                   R"("profile":"Desk"})"));
  const Window window =
      XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 200, 100, 0, 0, 0);
  char instance[] = "blocks";
  char kind[] = "Tetris";
  XClassHint hint{instance, kind};
  XSetClassHint(display, window, &hint);
  XStoreName(display, window,
             "Bl\xF6"
             "cke");  // Latin 1
  XMapWindow(display, window);
  XFlush(display);
  EXPECT_TRUE(Says(*follow,
                   R"({"event":"window","program":"","class":"Tetris","title":"Blöcke","rule":3,)"
                   R"("profile":"Tetris"})"));
  XDestroyWindow(display, window);
  XFlush(display);
  EXPECT_TRUE(Says(*follow,
                   R"({"event":"window","program":null,"class":null,"title":null,"rule":0,)"
                   R"("profile":"Desk"})"));
}

TEST_F(FollowOnX11, SaysThatOtherWindowsOfAWaylandDesktopAreUntold) {
  environment["WAYLAND_DISPLAY"] = "none";
  const auto follow = Follow({"--dry-run"});
  EXPECT_TRUE(Eventually([&] {
    return follow->Err().find("tells of no windows but those of X11 programs") != std::string::npos;
  })) << follow->Log();
}

TEST_F(FollowOnX11, KelvarosOwnWindowChangesNothing) {
  const auto follow = Follow({"--dry-run"});
  ASSERT_TRUE(Says(*follow, "no window: the default, profile 'Desk'"));
  const auto window = Start({"kelvaro"});
  EXPECT_TRUE(Says(*follow, "Kelvaro's own window: all stays as it is")) << window->Log();
}

TEST_F(FollowOnX11, WhatIsRefusedIsToldAndAskedForAgain) {
  const std::string profile = folder + "/Profiles/Doom.idprof";
  const std::string elsewhere = home.In("Doom.idprof");
  environment["QT_QPA_PLATFORM"] = "offscreen";
  const auto window = Start({"kelvaro"});
  const auto follow = Follow({});
  ASSERT_TRUE(Says(*follow, "no window: the default, profile 'Desk'")) << window->Log();
  fs::rename(profile, elsewhere);
  environment["QT_QPA_PLATFORM"] = "xcb";
  const auto doom = Start({"doom2", "Doom: Level 1"});
  const std::string refusal =
      "kelvaroctl: " + std::to_string(window->Id()) + ": there is no stored profile 'Doom'";
  ASSERT_TRUE(Eventually([&] { return follow->Err().find(refusal) != std::string::npos; }))
      << follow->Log();
  EXPECT_TRUE(Plays("Desk"));
  fs::rename(elsewhere, profile);
  SetTitle(desktop->Find("Doom: Level 1", false).id, "Doom: Level 3");
  EXPECT_TRUE(Says(
      *follow, "program 'doom2', class 'doom2', title 'Doom: Level 3': rule 2, profile 'Doom'"));
  EXPECT_TRUE(Plays("Doom"));
}

TEST_F(FollowOnX11, TheEndOfTheServerEndsIt) {
  const auto follow = Follow({"--dry-run"});
  ASSERT_TRUE(Says(*follow, "no window: the default, profile 'Desk'"));
  XCloseDisplay(display);
  display = nullptr;
  desktop.reset();
  EXPECT_EQ(follow->WaitForEnd(), 1);
  EXPECT_NE(follow->Err().find("kelvaroctl: the X server has ended\n"), std::string::npos)
      << follow->Log();
}

TEST_F(FollowOnX11, ARunningWindowGetsTheProfileAndANewOneToo) {
  const auto follow = Follow({});
  ASSERT_TRUE(Eventually([&] {
    return follow->Err().find("No Kelvaro runs") != std::string::npos;
  })) << follow->Log();
  const auto doom = Start({"doom2", "Doom: Level 1"});
  ASSERT_TRUE(Eventually([&] { return desktop->Find("Doom: Level 1", false).id != 0; }));
  environment["QT_QPA_PLATFORM"] = "offscreen";
  auto first = Start({"kelvaro"});
  ASSERT_TRUE(Says(*follow, kDoomLine)) << first->Log();
  EXPECT_TRUE(Plays("Doom"));
  environment["QT_QPA_PLATFORM"] = "xcb";
  {
    const auto tetris = Start({"tetris", "Blocks"});
    ASSERT_TRUE(Says(*follow, kTetrisLine));
    EXPECT_TRUE(Plays("Tetris"));
    // Another one comes in place of the first.
    first->Signal(SIGTERM);
    EXPECT_EQ(first->WaitForEnd(), 0) << first->Log();
    ASSERT_TRUE(Eventually([&] {
      const std::string err = follow->Err();
      return err.find("No Kelvaro runs") != err.rfind("No Kelvaro runs");
    })) << follow->Log();
    environment["QT_QPA_PLATFORM"] = "offscreen";
    first = Start({"kelvaro"});
    EXPECT_TRUE(Plays("Tetris")) << follow->Log();
  }
  ASSERT_TRUE(Says(*follow, kDoomLine));
  EXPECT_TRUE(Plays("Doom"));
  doom->Signal(SIGKILL);
  EXPECT_TRUE(Says(*follow, "no window: the default, profile 'Desk'"));
  EXPECT_TRUE(Plays("Desk"));
  ExpectEndsByCtrlC(*follow);
}

TEST_F(FollowOnX11, KilledItLeavesTheProfileAsItIsAndTheNextOneGoesOn) {
  const auto doom = Start({"doom2", "Doom: Level 1"});
  ASSERT_TRUE(Eventually([&] { return desktop->Find("Doom: Level 1", false).id != 0; }));
  environment["QT_QPA_PLATFORM"] = "offscreen";
  const auto window = Start({"kelvaro"});
  ASSERT_TRUE(Plays("Desk")) << window->Log();
  const auto killed = Follow({});
  EXPECT_TRUE(Plays("Doom")) << killed->Log();
  killed->Signal(SIGKILL);
  EXPECT_EQ(killed->WaitForEnd(), 128 + SIGKILL);
  doom->Signal(SIGKILL);
  EXPECT_EQ(doom->WaitForEnd(), 128 + SIGKILL);
  EXPECT_TRUE(Plays("Doom"));
  const auto next = Follow({});
  EXPECT_TRUE(Plays("Desk")) << next->Log();
  ExpectEndsByCtrlC(*next);
}

// A desktop on Wayland, which doesn't run for root.
class FollowOnWayland : public FollowTest {
 protected:
  FollowOnWayland() {
    asNobody = geteuid() == 0;
    for (const auto& entry : fs::recursive_directory_iterator(home.folder))
      if (asNobody && chown(entry.path().c_str(), 65534, 65534) != 0) ADD_FAILURE() << entry;
    environment["QT_QPA_PLATFORM"] = "wayland";
    environment["QT_WAYLAND_DISABLE_WINDOWDECORATION"] = "1";
  }

  bool IsThere(const std::string& socket) {
    return Eventually([&] { return fs::is_socket(home.In("runtime/" + socket)); });
  }

  void ExpectFollowsWindows(Child& follow, const std::string& doomLine = kDoomLine,
                            const std::string& tetrisLine = kTetrisLine) {
    ASSERT_TRUE(Says(follow, "no window: the default, profile 'Desk'"));
    const auto doom = Start({"doom2", "Doom: Level 1"});
    ASSERT_TRUE(Says(follow, doomLine)) << doom->Log();
    {
      const auto tetris = Start({"tetris", "Blocks"});
      ASSERT_TRUE(Says(follow, tetrisLine)) << tetris->Log();
    }
    ASSERT_TRUE(Says(follow, doomLine));
    doom->Signal(SIGKILL);
    ASSERT_TRUE(Says(follow, "no window: the default, profile 'Desk'"));
  }
};

class FollowOnSway : public FollowOnWayland {
 protected:
  void SetUp() override {
    environment["SWAYSOCK"] = home.In("runtime/sway");
    environment["WLR_BACKENDS"] = "headless";
    environment["WLR_LIBINPUT_NO_DEVICES"] = "1";
    environment["WLR_RENDERER"] = "pixman";
    const std::vector<std::string> command = {"sway", "-c",
                                              Put(home.In("sway.conf"), "xwayland disable\n")};
    sway = std::make_unique<Child>(command, ChildOptions{environment, asNobody});
    SKIP_UNLESS(IsThere("sway") && IsThere("wayland-1"), "sway",
                "sway can't be started: " << sway->Log());
    environment["WAYLAND_DISPLAY"] = "wayland-1";
  }

  std::unique_ptr<Child> sway;
};

TEST_F(FollowOnSway, TellsItsWindowsAndItsEnd) {
  const auto follow = Follow({"--dry-run"});
  EXPECT_NE(follow->Err().find("as sway tells it"), std::string::npos) << follow->Log();
  ExpectFollowsWindows(*follow);
  sway->Signal(SIGTERM);
  EXPECT_EQ(follow->WaitForEnd(), 1);
  EXPECT_NE(follow->Err().find("kelvaroctl: sway has ended\n"), std::string::npos) << follow->Log();
}

// Other compositors of its kind have no such socket.
class FollowOnWlroots : public FollowOnSway {
 protected:
  void SetUp() override {
    FollowOnSway::SetUp();
    environment["SWAYSOCK"] = "";
  }
};

constexpr char kUntoldDoomLine[] =
    "class 'doom2', title 'Doom: Level 1': the default, profile 'Desk'";
constexpr char kUntoldTetrisLine[] = "class 'tetris', title 'Blocks': rule 3, profile 'Tetris'";

TEST_F(FollowOnWlroots, TellsItsWindowsWithoutTheirProgramsAndItsEnd) {
  const auto follow = Follow({"--dry-run"});
  EXPECT_NE(follow->Err().find("as the Wayland compositor wayland-1 tells it"), std::string::npos)
      << follow->Log();
  EXPECT_TRUE(Eventually([&] {
    return follow->Err().find("no rule with a program fits") != std::string::npos;
  })) << follow->Log();
  ExpectFollowsWindows(*follow, kUntoldDoomLine, kUntoldTetrisLine);
  sway->Signal(SIGKILL);
  EXPECT_EQ(follow->WaitForEnd(), 1);
  EXPECT_NE(follow->Err().find("kelvaroctl: the Wayland compositor has ended\n"), std::string::npos)
      << follow->Log();
}

TEST_F(FollowOnWlroots, AnotherTitleIsToldAndKelvarosOwnWindowChangesNothing) {
  const auto doom = Start({"doom2", "Doom: Level 1", "Doom: Level 3"});
  const auto follow = Follow({"--dry-run"});
  ASSERT_TRUE(Says(*follow, kUntoldDoomLine)) << doom->Log();
  doom->Signal(SIGUSR1);
  ASSERT_TRUE(Says(*follow, "class 'doom2', title 'Doom: Level 3': rule 4, profile 'Second'"));
  const auto window = Start({"kelvaro"});
  EXPECT_TRUE(Says(*follow, "Kelvaro's own window: all stays as it is")) << window->Log();
  ExpectEndsByCtrlC(*follow);
}

TEST_F(FollowOnWlroots, ARunningWindowGetsTheProfile) {
  environment["QT_QPA_PLATFORM"] = "offscreen";
  const auto window = Start({"kelvaro"});
  environment["QT_QPA_PLATFORM"] = "wayland";
  const auto follow = Follow({});
  ASSERT_TRUE(Says(*follow, "no window: the default, profile 'Desk'")) << window->Log();
  {
    const auto tetris = Start({"tetris", "Blocks"});
    ASSERT_TRUE(Says(*follow, kUntoldTetrisLine)) << tetris->Log();
    EXPECT_TRUE(Plays("Tetris"));
  }
  EXPECT_TRUE(Says(*follow, "no window: the default, profile 'Desk'"));
  EXPECT_TRUE(Plays("Desk"));
}

TEST_F(FollowOnWayland, KWinTellsItsWindowsAndItsEnd) {
  const std::string address = "unix:path=" + home.In("runtime/bus");
  environment["DBUS_SESSION_BUS_ADDRESS"] = address;
  Child bus({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + address},
            {environment, asNobody});
  // A copy has none of the rights that a container may forbid.
  const std::string program = home.In("kwin_wayland");
  std::error_code none;
  fs::copy_file("/usr/bin/kwin_wayland", program, none);
  Child kwin({program, "--virtual", "--socket", "wayland-9", "--no-lockscreen"},
             {environment, asNobody});
  SKIP_UNLESS(IsThere("bus") && !none && IsThere("wayland-9"), "kwin",
              "KWin can't be started: " << kwin.Log());
  environment["WAYLAND_DISPLAY"] = "wayland-9";
  // It joins the bus a little later.
  std::unique_ptr<Child> follow;
  ASSERT_TRUE(Eventually([&] {
    follow = Follow({"--dry-run"});
    return follow->Err().find("as KWin tells it") != std::string::npos;
  })) << follow->Log();
  ExpectFollowsWindows(*follow);
  kwin.Signal(SIGTERM);
  EXPECT_EQ(follow->WaitForEnd(), 1);
  EXPECT_NE(follow->Err().find("kelvaroctl: KWin has ended\n"), std::string::npos) << follow->Log();
}

}  // namespace
}  // namespace kelvaro::tests
