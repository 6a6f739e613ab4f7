// The program `kelvaro` itself: as a process, on real displays.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>

#include "app/platform/entry_text.h"
#include "app/platform/linux/instance_socket.h"
#include "app/resources/desktop_id.h"
#include "app/resources/settings_keys.h"
#include "tests/program/machine.h"
#include "tests/program/stored_settings.h"

namespace kelvaro::tests {
namespace {

namespace fs = std::filesystem;
using Variables = std::map<std::string, std::string>;

class ProgramTest : public testing::Test {
 protected:
  Variables With(const Variables& more) const {
    Variables all = home.Environment();
    for (const auto& [name, value] : more) all[name] = value;
    return all;
  }
  std::unique_ptr<Child> Run(const Variables& more,
                             const std::vector<std::string>& arguments = {}) {
    std::vector<std::string> command = {Program("kelvaro")};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return std::make_unique<Child>(command, ChildOptions{With(more)});
  }

  static void ExpectEndsInOrder(Child& program, int signal = SIGTERM) {
    // Until then the signal would end it as any program.
    EXPECT_TRUE(Eventually([&] { return Handles(program.Id(), signal); })) << program.Log();
    program.Signal(signal);
    EXPECT_EQ(program.WaitForEnd(), 0) << program.Log();
  }

  Home home;
};

const Variables kOffScreen = {{"QT_QPA_PLATFORM", "offscreen"}};

TEST_F(ProgramTest, AllProgramsTellTheSameVersionWithoutADisplay) {
  const std::map<std::string, std::string> kSaid = {{"kelvaro", "Kelvaro, Version 3.5\n"},
                                                    {"rendlink", "Rendlink, Version 3.5\n"},
                                                    {"kelvaroctl", "kelvaroctl 3.5\n"}};
  for (const auto& [name, line] : kSaid) {
    Child program({Program(name), "--version"}, {home.Environment()});
    EXPECT_EQ(program.WaitForEnd(), 0) << name;
    EXPECT_EQ(program.Log(), line);
  }
}

TEST_F(ProgramTest, TellsHowItIsCalledWithoutADisplay) {
  const auto help = Run({}, {"--help"});
  EXPECT_EQ(help->WaitForEnd(), 0);
  for (const char* word : {"profile=", "target=", "args=", "dir="})
    EXPECT_NE(help->Log().find(word), std::string::npos) << word;
}

TEST_F(ProgramTest, WithoutADisplayItSaysSoInOneSentenceAndNamesTheConsole) {
  for (const Variables& none : {Variables{}, Variables{{"DISPLAY", ":4711"}}}) {
    const auto program = Run(none);
    EXPECT_EQ(program->WaitForEnd(), 1);
    const std::string text = program->Log();
    EXPECT_NE(text.find("kelvaroctl run"), std::string::npos) << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
  }
}

TEST_F(ProgramTest, StartsOffScreenAndEndsInOrderWhenItIsAskedTo) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    const auto program = Run(kOffScreen);
    ASSERT_TRUE(Eventually([&] { return fs::exists(home.SettingsFile()); })) << program->Log();
    ASSERT_EQ(program->WaitForEnd(300ms), -1) << program->Log();
    ExpectEndsInOrder(*program, signal);
  }
}

TEST_F(ProgramTest, TheConsoleChangesSettingsThatTheNextStartTakesAndNoneUnderARunningWindow) {
  const auto kelvaroctl = [this](const std::vector<std::string>& words, int status) {
    std::vector<std::string> command = {Program("kelvaroctl"), "settings"};
    command.insert(command.end(), words.begin(), words.end());
    Child program(command, {home.Environment()});
    EXPECT_EQ(program.WaitForEnd(), status) << program.Log();
    return program.Log();
  };
  const std::vector<std::string> off = {"set", "Shift Reminder", "0"};
  EXPECT_EQ(kelvaroctl(off, 0), "Shift Reminder = 0, from the window's next start on\n");
  const auto program = Run(kOffScreen);
  const std::string folder = home.In("runtime/kelvaro");
  const auto id = static_cast<std::uint32_t>(program->Id());
  ASSERT_TRUE(Eventually([&] { return platform::IsListening(folder, id); })) << program->Log();
  EXPECT_EQ(kelvaroctl({"set", "Shift Reminder", "1"}, 1),
            "kelvaroctl: Kelvaro runs (process " + std::to_string(id) +
                ") and writes 'Shift Reminder' itself when it ends; end it first\n");
  ExpectEndsInOrder(*program);
  // Its end writes each value as it was read.
  EXPECT_NE(kelvaroctl({"list"}, 0).find("\nShift Reminder = 0\n"), std::string::npos);
  EXPECT_NE(kelvaroctl({"list"}, 0).find("\nSmart Check = 1\n"), std::string::npos);
}

TEST_F(ProgramTest, TwoInstancesRunSideBySide) {
  const auto first = Run(kOffScreen);
  const auto second = Run(kOffScreen);
  EXPECT_EQ(first->WaitForEnd(1s), -1) << first->Log();
  EXPECT_EQ(second->WaitForEnd(1s), -1) << second->Log();
  for (const auto* program : {&first, &second}) {
    ExpectEndsInOrder(**program);
  }
}

// A settings file that can't be read, and one that can't be written.
TEST_F(ProgramTest, StartsWithSettingsThatAreDamagedOrReadOnly) {
  fs::create_directories(fs::path(home.SettingsFile()).parent_path());
  std::ofstream(home.SettingsFile()) << "these are no settings";
  const auto damaged = Run(kOffScreen);
  ASSERT_TRUE(Eventually([&] { return fs::exists(home.SettingsFile() + ".damaged"); }));
  EXPECT_EQ(damaged->WaitForEnd(500ms), -1) << damaged->Log();
  ExpectEndsInOrder(*damaged);
  fs::permissions(home.SettingsFile(), fs::perms::owner_read);
  fs::permissions(fs::path(home.SettingsFile()).parent_path(),
                  fs::perms::owner_read | fs::perms::owner_exec);
  const auto readOnly = Run(kOffScreen);
  EXPECT_EQ(readOnly->WaitForEnd(1s), -1) << readOnly->Log();
  ExpectEndsInOrder(*readOnly);
  fs::permissions(fs::path(home.SettingsFile()).parent_path(), fs::perms::owner_all);
}

TEST_F(ProgramTest, TheConsoleTakesTheUsersProfilesWhereEachUserHasAFolder) {
  const std::string installed = home.In("installed");
  fs::create_directory(installed);
  for (const char* name : {"kelvaroctl", "Profiles"})
    fs::copy(Program(name), installed + "/" + name, fs::copy_options::recursive);
  std::ofstream(installed + "/PerUser").flush();
  const auto list = [&] {
    Child console({installed + "/kelvaroctl", "profiles"}, {home.Environment()});
    EXPECT_EQ(console.WaitForEnd(), 0);
    return console.Log();
  };
  const std::string own = home.In("data/kelvaro/Profiles");
  const std::string first = list();
  EXPECT_EQ(std::count(first.begin(), first.end(), '\n'), 9) << first;
  EXPECT_NE(first.find(own + "/Platformer.idprof"), std::string::npos) << first;
  for (const auto& entry : fs::directory_iterator(own))
    if (entry.path().stem() != "Platformer") fs::remove(entry.path());
  EXPECT_EQ(list(), "Platformer  " + own + "/Platformer.idprof\n");
}

class DisplayTest : public ProgramTest {
 protected:
  explicit DisplayTest(bool withNotificationArea = true, const char* windowManager = "icewm")
      : desktop(withNotificationArea, windowManager) {}
  void SetUp() override {
    SKIP_UNLESS(desktop.Works(), "xvfb", "Xvfb and the window manager can't be started");
  }
  void TearDown() override {
    if (HasFailure() && desktop.Works()) desktop.Photograph("/tmp/kelvaro-failed-test.png");
  }

  // Starts it and closes the welcome of the first start, and the box that says that the profile has
  // no device, as those that come with the program have none: then the window is there alone.
  std::unique_ptr<Child> Begin() {
    auto program = Run({{"DISPLAY", desktop.Name()}});
    EXPECT_TRUE(Eventually([&] { return Welcome().id != 0; })) << program->Log();
    EXPECT_EQ(Window().id, 0u) << "the window before the welcome is read";
    CloseWelcome();
    EXPECT_TRUE(Eventually([&] { return Window().id != 0; })) << program->Log();
    CloseBox();
    return program;
  }
  XWindow Welcome() { return desktop.Find("Welcome to Kelvaro", true); }
  XWindow Window() { return desktop.Find("Kelvaro", false); }
  XWindow Box() { return desktop.Find("Kelvaro", true); }
  void CloseBox() {
    ASSERT_TRUE(Eventually([&] { return Box().id != 0; })) << "no word of the missing device";
    Close(Box().id);
  }
  void CloseWelcome() { Close(Welcome().id); }
  void Close(unsigned long window) {
    // One that the window manager has just shown may not hear it yet.
    EXPECT_TRUE(Eventually([&] {
      desktop.CloseWindow(window);
      return Eventually([&] { return !desktop.Viewable(window); }, 500ms);
    }));
  }
  // By the window's close box.
  void ExpectCloses(Child& program) {
    Close(Window().id);
    EXPECT_EQ(program.WaitForEnd(), 0) << program.Log();
  }

  // Up and to the left; *moved is where it stands then.
  void MoveWindow(XWindow* moved) {
    const XWindow first = Window();
    desktop.Move(first.id, 40, 60);
    ASSERT_TRUE(Eventually([&] {
      *moved = Window();
      return moved->id != 0 && moved->x < first.x && moved->y < first.y;
    }));
  }

  // Hides the window behind its icon, which it gives.
  XWindow Hide() {
    EXPECT_TRUE(Eventually([&] { return desktop.Icons().size() == 1; }));
    const XWindow window = Window();
    desktop.Minimise(window.id);
    EXPECT_TRUE(Eventually([&] { return !desktop.Listed(window.id) && Window().id == 0; }))
        << "still on the list of windows: iconic " << desktop.Iconic(window.id) << ", in sight "
        << (Window().id != 0);
    return desktop.Icons().at(0);
  }
  // By a double click, which a busy display server may take for two clicks.
  void ShowAgain(const XWindow& icon) {
    EXPECT_TRUE(Eventually([&] {
      desktop.DoubleClick(icon.x + icon.width / 2, icon.y + icon.height / 2);
      return Eventually([&] { return Window().id != 0; }, 5s);
    })) << "the window stays away";
  }

  XDesktop desktop;
};

TEST_F(DisplayTest, TheFirstStartWelcomesAndTheSecondDoesNot) {
  const auto first = Begin();
  ExpectEndsInOrder(*first);
  const auto second = Run({{"DISPLAY", desktop.Name()}});
  ASSERT_TRUE(Eventually([&] { return Window().id != 0; })) << second->Log();
  EXPECT_EQ(Welcome().id, 0u);
}

TEST_F(DisplayTest, DesktopsFindTheMenuEntryOfEachWindow) {
  const auto named = [](const std::string& entry) {
    return platform::ReadEntry(
        Content(KELVARO_PACKAGING "/" + entry + ".desktop"))["StartupWMClass"];
  };
  const auto program = Begin();
  EXPECT_EQ(desktop.Class(Window().id), named(kDesktopId));
  Child rendlink({Program("rendlink")}, {With({{"DISPLAY", desktop.Name()}})});
  ASSERT_TRUE(Eventually([&] { return desktop.Find("Rendlink", false).id != 0; }));
  EXPECT_EQ(desktop.Class(desktop.Find("Rendlink", false).id), named(kRendlinkDesktopId));
}

TEST_F(DisplayTest, TheIconsMenuShowsTheWindowAndEndsTheProgram) {
  const auto program = Begin();
  const XWindow icon = Hide();
  // A click in the moment in which the window manager brings a window up is lost, and so are keys
  // in the moment in which the menu comes up.
  const auto choose = [&](const char* keys, const std::function<bool()>& done) {
    return Eventually([&] {
      desktop.Press(icon.x + icon.width / 2, icon.y + icon.height / 2, 3);
      if (!Eventually([&] { return !desktop.Popups().empty(); }, 3s)) return false;
      desktop.Type(keys);
      if (Eventually(done, 3s)) return true;
      desktop.Type("Escape");
      return false;
    });
  };
  // From the end: "Show Kelvaro".
  ASSERT_TRUE(choose("Up Return", [&] { return Window().id != 0; }));
  EXPECT_TRUE(choose("Down Return", [&] { return !program->Running(); }));  // "Exit"
  EXPECT_EQ(program->WaitForEnd(), 0) << program->Log();
  EXPECT_TRUE(Eventually([&] { return desktop.Icons().empty(); }));
}

TEST_F(DisplayTest, TheCloseBoxEndsTheProgramAndItsPlaceIsRemembered) {
  auto program = Begin();
  desktop.Resize(Window().id, 900, 600);
  ASSERT_TRUE(Eventually([&] { return Window().width == 900 && Window().height == 600; }));
  ExpectCloses(*program);
  program = Run({{"DISPLAY", desktop.Name()}});
  EXPECT_TRUE(Eventually([&] { return Window().width == 900 && Window().height == 600; }))
      << Window().width << " x " << Window().height;
}

// Numbers as the program left them; 0 for one that isn't there.
std::vector<std::uint32_t> Stored(const Home& home, const char* subkey,
                                  const std::vector<const char*>& names) {
  StoredSettings settings(home, subkey);
  std::vector<std::uint32_t> numbers;
  for (const char* name : names) numbers.push_back(settings.Number(name));
  return numbers;
}

std::vector<std::uint32_t> StoredColumns(const Home& home) {
  return Stored(home, kMainWindowSubkey, {"Col 0 Width", "Col 1 Width", "Col 2 Width"});
}

TEST_F(DisplayTest, ColumnsThatNobodyTouchesAreAsWideAfterEachStart) {
  auto program = Begin();
  ExpectCloses(*program);
  const std::vector<std::uint32_t> first = StoredColumns(home);
  ASSERT_GT(first.at(0), 8u);
  for (int start = 2; start <= 4; ++start) {
    program = Run({{"DISPLAY", desktop.Name()}});
    ASSERT_TRUE(Eventually([&] { return Window().id != 0; })) << program->Log();
    CloseBox();
    ExpectCloses(*program);
    EXPECT_EQ(StoredColumns(home), first) << "start " << start;
  }
}

TEST_F(DisplayTest, ADialogThatNobodyMovesIsInTheSamePlaceAtEachOpening) {
  const auto program = Begin();
  const auto dialog = [&] { return desktop.Find("Define Control", true); };
  const auto stored = [&] {
    return Stored(home, kControlWindowSubkey, {"left", "top", "right", "bottom"});
  };
  std::vector<std::uint32_t> first;
  for (int opening = 1; opening <= 3; ++opening) {
    ASSERT_TRUE(Eventually([&] {
      const XWindow window = Window();
      desktop.Press(window.x + 30, window.y + 59);  // the tab "Control"
      desktop.Type("Alt_L+w");                      // "New..."
      return Eventually([&] { return dialog().id != 0 && desktop.Active(dialog().id); }, 5s);
    }));
    ASSERT_TRUE(Eventually([&] {
      desktop.Type("Escape");
      return Eventually([&] { return dialog().id == 0; }, 5s);
    }));
    if (opening > 1) continue;
    ASSERT_TRUE(Eventually([&] {
      first = stored();
      return first.at(3) > 0;
    }));
  }
  ExpectCloses(*program);
  EXPECT_EQ(stored(), first);
}

TEST_F(DisplayTest, MinimisingHidesAndADoubleClickOnTheIconBringsTheWindowBackWhereItWasMoved) {
  const auto program = Begin();
  XWindow moved;
  ASSERT_NO_FATAL_FAILURE(MoveWindow(&moved));
  ShowAgain(Hide());
  EXPECT_FALSE(desktop.Iconic(Window().id));
  EXPECT_TRUE(Eventually([&] { return Window().x == moved.x && Window().y == moved.y; }))
      << Window().x << ',' << Window().y << " instead of " << moved.x << ',' << moved.y;
}

// Kilobytes of a file that are in the process's memory.
long InMemory(pid_t process, const std::string& file) {
  std::ifstream maps("/proc/" + std::to_string(process) + "/smaps");
  long sum = 0;
  bool of = false;
  for (std::string line; std::getline(maps, line);) {
    if (line.find('-') < line.find(':')) of = line.find(file) != std::string::npos;
    if (of && line.rfind("Rss:", 0) == 0) sum += std::stol(line.substr(4));
  }
  return sum;
}

TEST_F(DisplayTest, AWindowThatIsHiddenGivesBackTheCodeThatShowedIt) {
  const auto program = Begin();
  const auto code = [&] { return InMemory(program->Id(), "/libQt6Widgets"); };
  const long shown = code();
  ASSERT_GT(shown, 0);
  const XWindow icon = Hide();
  EXPECT_TRUE(Eventually([&] { return code() < shown / 2; })) << code() << " of " << shown;
  ShowAgain(icon);
  ExpectEndsInOrder(*program);
}

TEST_F(DisplayTest, ItsGripMakesItLargerAndNotSmallerThanItFirstWas) {
  const auto program = Begin();
  const XWindow first = Window();
  const auto drag = [&](int dx, int dy) {
    const XWindow now = Window();
    const int right = now.x + now.width - 4;
    const int bottom = now.y + now.height - 4;
    desktop.Drag(right, bottom, right + dx, bottom + dy);
  };
  // The window manager takes over behind the drag's first steps, or, where it is busy, not at all.
  EXPECT_TRUE(Eventually([&] {
    drag(100, 80);
    return Eventually(
        [&] {
          const XWindow now = Window();
          return now.width > first.width + 60 && now.height > first.height + 40;
        },
        3s);
  }));
  EXPECT_TRUE(Eventually([&] {
    drag(-400, -300);
    return Eventually(
        [&] { return Window().width == first.width && Window().height == first.height; }, 3s);
  }));
  drag(-400, -300);
  EXPECT_EQ(Window().width, first.width);
  EXPECT_EQ(Window().height, first.height);
}

// As somebody who may not write where the program lies.
class AnotherUserTest : public DisplayTest {
 protected:
  static constexpr unsigned kNobody = 65534;

  void SetUp() override {
    DisplayTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    if (geteuid() != 0) GTEST_SKIP() << "needs root, who can be anybody";
    fs::create_directory(installed);
    for (const char* name : {"kelvaro", "Help", "Profiles"})
      fs::copy(Program(name), installed + "/" + name, fs::copy_options::recursive);
    // All of the person's own folders, and the way to the programs.
    for (const auto& entry : fs::recursive_directory_iterator(home.folder)) {
      if (entry.path().string().starts_with(installed)) continue;
      ASSERT_EQ(chown(entry.path().c_str(), kNobody, kNobody), 0);
    }
    fs::permissions(home.folder,
                    fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
  }
  std::unique_ptr<Child> RunAsNobody() {
    // The server lets anybody who knows the way to it do what root may.
    return std::make_unique<Child>(std::vector<std::string>{installed + "/kelvaro"},
                                   ChildOptions{With({{"DISPLAY", desktop.Name()}}), true});
  }
  const std::string installed = home.In("installed");
};

TEST_F(AnotherUserTest, IsToldThatNothingIsKeptUnlessEachUserHasAFolder) {
  {
    const auto program = RunAsNobody();
    ASSERT_TRUE(Eventually([&] { return Welcome().id != 0; })) << program->Log();
    CloseWelcome();
    ASSERT_TRUE(Eventually([&] { return Box().id != 0; })) << program->Log();
    const unsigned long noDevice = Box().id;
    EXPECT_TRUE(Eventually([&] {
      desktop.CloseWindow(noDevice);
      return Eventually([&] { return Box().id != 0 && Box().id != noDevice; }, 500ms);
    })) << program->Log();
    EXPECT_FALSE(fs::exists(home.In("data/kelvaro")));
    ExpectEndsInOrder(*program);
  }
  std::ofstream(installed + "/PerUser").flush();
  const auto program = RunAsNobody();
  ASSERT_TRUE(Eventually([&] { return Window().id != 0; })) << program->Log();
  struct stat status {};
  ASSERT_EQ(stat(home.In("data/kelvaro/Profiles/Desktop.idprof").c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, kNobody);
  CloseBox();
  EXPECT_FALSE(Eventually([&] { return Box().id != 0; }, 1s));
  ExpectEndsInOrder(*program);
}

std::map<std::string, std::string> ProfilesIn(const std::string& folder) {
  std::map<std::string, std::string> bytes;
  for (const auto& entry : fs::directory_iterator(folder))
    bytes[entry.path().filename()] = Content(entry.path());
  return bytes;
}

TEST_F(AnotherUserTest, HasTheExamplesAsTheyAreAndOneThatIsDeletedIsNotThereAtTheNextStart) {
  std::ofstream(installed + "/PerUser").flush();
  const std::string own = home.In("data/kelvaro/Profiles");
  const auto shipped = ProfilesIn(installed + "/Profiles");
  ASSERT_TRUE(shipped.contains("Browser.idprof"));
  auto left = shipped;
  left.erase("Browser.idprof");
  {
    const auto program = RunAsNobody();
    ASSERT_TRUE(Eventually([&] { return Welcome().id != 0; })) << program->Log();
    CloseWelcome();
    CloseBox();
    EXPECT_EQ(ProfilesIn(own), shipped);
    ASSERT_TRUE(Eventually([&] {
      desktop.Press(Window().x + 30, Window().y + 59);  // the tab "Control"
      desktop.Type("Alt_L+d");                          // "Delete..." of the first in the list
      return Eventually([&] { return desktop.Find("Delete Profile", true).id != 0; }, 5s);
    }));
    EXPECT_TRUE(Eventually([&] {
      const XWindow question = desktop.Find("Delete Profile", true);
      if (question.id != 0 && desktop.Active(question.id)) desktop.Type("Alt_L+y");
      return Eventually([&] { return ProfilesIn(own) == left; }, 3s);
    }));
    CloseBox();  // of the next one
    ExpectEndsInOrder(*program);
  }
  const auto program = RunAsNobody();
  ASSERT_TRUE(Eventually([&] { return Window().id != 0; })) << program->Log();
  CloseBox();
  EXPECT_EQ(ProfilesIn(own), left);
  EXPECT_EQ(ProfilesIn(installed + "/Profiles"), shipped);
  ExpectEndsInOrder(*program);
}

// Its frames have other borders, and it shows no icons.
class OpenboxTest : public DisplayTest {
 protected:
  OpenboxTest() : DisplayTest(false, "openbox") {}
};

TEST_F(OpenboxTest, ThePlaceIsRememberedAndAMinimisedWindowStays) {
  auto program = Begin();
  XWindow moved;
  ASSERT_NO_FATAL_FAILURE(MoveWindow(&moved));
  ExpectCloses(*program);
  program = Run({{"DISPLAY", desktop.Name()}});
  EXPECT_TRUE(Eventually([&] { return Window().x == moved.x && Window().y == moved.y; }))
      << Window().x << ',' << Window().y << " instead of " << moved.x << ',' << moved.y;
  CloseBox();
  const unsigned long window = Window().id;
  desktop.Minimise(window);
  EXPECT_TRUE(Eventually([&] { return desktop.Iconic(window); }));
  EXPECT_TRUE(desktop.Listed(window)) << "nothing could bring it back";
}

// Without a notification area nothing could bring a hidden window back.
class NoNotificationAreaTest : public DisplayTest {
 protected:
  NoNotificationAreaTest() : DisplayTest(false) {}
};

TEST_F(NoNotificationAreaTest, AMinimisedWindowStaysUntilAnAreaTakesItAndIsBackWhenThatGoes) {
  const auto program = Begin();
  const XWindow window = Window();
  desktop.Minimise(window.id);
  ASSERT_TRUE(Eventually([&] { return desktop.Iconic(window.id); }));
  EXPECT_FALSE(Eventually([&] { return !desktop.Listed(window.id); }, 1s));
  EXPECT_TRUE(desktop.Iconic(window.id));
  desktop.BeginArea();
  EXPECT_TRUE(Eventually([&] { return !desktop.Listed(window.id); }));
  desktop.EndArea();
  EXPECT_TRUE(Eventually([&] { return desktop.Listed(window.id); }));
  EXPECT_TRUE(Eventually([&] { return desktop.Iconic(window.id); }));
}

TEST_F(ProgramTest, RunsOnAWaylandCompositor) {
  const std::string socket = "kelvaro-test";
  Child compositor({"weston", "--backend=headless-backend.so", "--socket=" + socket,
                    "--idle-time=0", "--no-config"},
                   {home.Environment()});
  SKIP_UNLESS(Eventually([&] { return fs::exists(home.In("runtime/" + socket)); }), "wayland",
              "weston can't be started: " << compositor.Log());
  // The display's client library keeps a few bytes until the process is gone, which a build that
  // looks for leaks would tell of.
  const auto program = Run({{"WAYLAND_DISPLAY", socket},
                            {"WAYLAND_DEBUG", "client"},
                            {"ASAN_OPTIONS", "detect_leaks=0"}});
  EXPECT_TRUE(Eventually([&] {
    return program->Log().find("set_title(\"Welcome to Kelvaro\")") != std::string::npos;
  })) << program->Log();
  // It is drawn: a buffer is attached and committed.
  EXPECT_TRUE(
      Eventually([&] { return program->Log().find(".attach(wl_buffer") != std::string::npos; }));
  EXPECT_EQ(program->WaitForEnd(500ms), -1);
  ExpectEndsInOrder(*program);
}

}  // namespace
}  // namespace kelvaro::tests
