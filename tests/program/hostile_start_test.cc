// The programs, started by somebody who means no good or doesn't care: closed streams, variables
// full of nonsense, folders and links of others where their own should be.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/program/machine.h"

namespace kelvaro::tests {
namespace {

namespace fs = std::filesystem;
using Variables = std::map<std::string, std::string>;
using Words = std::vector<std::string>;

class HostileStart : public testing::Test {
 protected:
  // Relative folders, which Qt makes where a variable names one, stay in the temporary one.
  HostileStart() {
    const std::string deep = home.In("to/start/far/below");
    fs::create_directories(deep);
    fs::current_path(deep);
  }
  ~HostileStart() override { fs::current_path(before); }

  // Of the kind that has no display and needs none.
  Variables OffScreen(const Variables& more = {}) const {
    Variables all = home.Environment();
    all["QT_QPA_PLATFORM"] = "offscreen";
    for (const auto& [name, value] : more) all[name] = value;
    return all;
  }

  // Whether it comes as far as to keep its settings, which it doesn't have yet.
  bool Works(Child& program) {
    return Eventually([&] { return fs::exists(home.SettingsFile()) || !program.Running(); }) &&
           program.Running();
  }
  void ForgetSettings() { fs::remove_all(fs::path(home.SettingsFile()).parent_path()); }

  static void ExpectEndsInOrder(Child& program) {
    program.Signal(SIGTERM);
    EXPECT_EQ(program.WaitForEnd(), 0) << program.Log();
  }

  const fs::path before = fs::current_path();
  Home home{"/var/tmp"};  // a test has a /tmp of its own
};

bool HasStreams(pid_t process) {
  std::map<int, std::string> files = OpenFiles(process);
  return files[0] == "/dev/null" && files[1] == "/dev/null" && files[2] == "/dev/null";
}

TEST_F(HostileStart, ClosedStreamsAreNothingBeforeAFileCanTakeTheirPlace) {
  const std::string pipe = home.In("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  // The last one waits for its file as long as nobody writes.
  for (const Words& command :
       {Words{"kelvaro"}, Words{"rendlink"}, Words{"kelvaroctl", "check", pipe}}) {
    Words words{"sh", "-c", "exec \"$@\" 0<&- 1>&- 2>&-", "sh", Program(command[0])};
    words.insert(words.end(), command.begin() + 1, command.end());
    Child program(words, {OffScreen()});
    EXPECT_TRUE(Eventually([&] { return HasStreams(program.Id()) || !program.Running(); }));
    EXPECT_TRUE(program.Running()) << command[0];
  }
}

// What a variable may hold.
std::map<std::string, std::string> Nonsense() {
  return {{"long", std::string(50'000, 'A')},
          {"a folder that is none", "/proc/self/mem/none"},
          {"relative", "../../../../etc"},
          {"a format", "%s%s%n%n%$p"},
          {"no text", "\xff\xfe\x01\n\r\t\x1b[31m;$(reboot)`reboot`"},
          {"a number", "-99999999999999999999"}};
}

TEST_F(HostileStart, VariablesOfNonsenseHarmNoProgram) {
  const Words kNames = {"LANG",
                        "LC_ALL",
                        "LANGUAGE",
                        "TZ",
                        "TERM",
                        "COLUMNS",
                        "PATH",
                        "TMPDIR",
                        "XDG_RUNTIME_DIR",
                        "XDG_CACHE_HOME",
                        "XDG_CONFIG_DIRS",
                        "XDG_CURRENT_DESKTOP",
                        "DISPLAY",
                        "WAYLAND_DISPLAY",
                        "DBUS_SESSION_BUS_ADDRESS",
                        "XDG_SESSION_ID",
                        "QT_STYLE_OVERRIDE"};
  for (const auto& [kind, text] : Nonsense()) {
    Variables all;
    for (const std::string& name : kNames) all[name] = text;
    SCOPED_TRACE(kind);
    ForgetSettings();
    Child window({Program("kelvaro")}, {OffScreen(all)});
    EXPECT_TRUE(Works(window)) << window.Log();
    ExpectEndsInOrder(window);
    for (const Words& command : {Words{"kelvaroctl", "profiles"}, Words{"rendlink", "--help"}}) {
      Child program({Program(command[0]), command[1]}, {OffScreen(all)});
      EXPECT_EQ(program.WaitForEnd(), 0) << command[0] << program.Log();
    }
  }
}

// Where profiles and settings can't be kept a program says so, and does what it can.
TEST_F(HostileStart, FoldersOfNonsenseHarmNoProgram) {
  for (const auto& [kind, text] : Nonsense()) {
    SCOPED_TRACE(kind);
    // The fonts' library forgets a folder's name that is too long.
    const Variables all = {
        {"XDG_CONFIG_HOME", text}, {"XDG_DATA_HOME", text}, {"ASAN_OPTIONS", "detect_leaks=0"}};
    Child window({Program("kelvaro")}, {OffScreen(all)});
    EXPECT_TRUE(
        Eventually([&] { return ThreadOf(window.Id(), "instances") != 0 || !window.Running(); }));
    ExpectEndsInOrder(window);
    Child list({Program("kelvaroctl"), "profiles"}, {OffScreen(all)});
    EXPECT_GE(list.WaitForEnd(), 0) << list.Log();
    EXPECT_LE(list.WaitForEnd(), 1) << list.Log();
  }
}

TEST_F(HostileStart, AFolderOfOthersInTheRuntimeFolderIsLeftAlone) {
  const std::string own = home.In("runtime/kelvaro");
  const std::string other = home.In("other");
  const std::map<std::string, std::function<void()>> kinds = {
      {"a link", [&] { fs::create_directory_symlink(other, own); }},
      {"a folder for all", [&] { fs::create_directory(own), chmod(own.c_str(), 0777); }},
      {"somebody else's folder",
       [&] {
         fs::create_directory(own);
         if (chown(own.c_str(), 12'345, 12'345) != 0) chmod(own.c_str(), 0777);
       }},
      {"a file", [&] { Put(own, "mine"); }}};
  fs::create_directory(other);
  for (const auto& [kind, make] : kinds) {
    SCOPED_TRACE(kind);
    fs::remove_all(own);
    ForgetSettings();
    make();
    Child program({Program("kelvaro")}, {OffScreen()});
    EXPECT_TRUE(Works(program)) << program.Log();
    EXPECT_TRUE(fs::is_empty(other));
    EXPECT_TRUE(!fs::is_directory(own) || fs::is_empty(own));
    EXPECT_TRUE(!fs::is_regular_file(own) || Content(own) == "mine");
    ExpectEndsInOrder(program);
  }
}

// Without a runtime folder there is only /tmp, where others may be first.
TEST_F(HostileStart, ALinkInTheCommonFolderIsNotFollowed) {
  const bool bare =
      Program("").rfind("/tmp/", 0) != 0 &&
      Child({"unshare", "-m", "mount", "-t", "tmpfs", "tmpfs", "/tmp"}).WaitForEnd() == 0;
  SKIP_UNLESS(bare, "namespaces", "there is no /tmp of one's own");
  Variables all = OffScreen();
  all["XDG_RUNTIME_DIR"] = "";
  Child program({"unshare", "-m", "sh", "-c",
                 "mount -t tmpfs tmpfs /tmp && mkdir /tmp/other && "
                 "ln -s other /tmp/kelvaro-$(id -u) && exec \"$0\"",
                 Program("kelvaro")},
                {all});
  EXPECT_TRUE(Works(program)) << program.Log();
  const std::string tmp = "/proc/" + std::to_string(program.Id()) + "/root/tmp/";
  EXPECT_TRUE(fs::exists(tmp + "other"));
  EXPECT_TRUE(fs::is_empty(tmp + "other"));
  ExpectEndsInOrder(program);
}

}  // namespace
}  // namespace kelvaro::tests
