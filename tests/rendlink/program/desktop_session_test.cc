#include "rendlink/program/desktop_session.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

namespace kelvaro::rendlink {
namespace {

namespace fs = std::filesystem;

class DesktopSessionTest : public testing::Test {
 protected:
  DesktopSessionTest() {
    std::string pattern = "/tmp/rendlink-test-XXXXXX";
    folder = mkdtemp(pattern.data());
    Put("game", 0755);
    Put("data", 0644);
    const char* const path = getenv("PATH");
    before = path ? path : "";
    setenv("PATH", folder.c_str(), 1);
  }
  ~DesktopSessionTest() override {
    setenv("PATH", before.c_str(), 1);
    fs::remove_all(folder);
  }
  void Put(const std::string& name, mode_t mode) {
    std::ofstream(folder + "/" + name) << "#!/bin/sh\n";
    chmod((folder + "/" + name).c_str(), mode);
  }

  std::string folder;
  std::string before;
  DesktopSession session;
};

TEST_F(DesktopSessionTest, AFileThatWasTypedIsTakenFromTheCurrentFolderOrFromPath) {
  EXPECT_EQ(session.FullPath(""), "");
  EXPECT_EQ(session.FullPath("/a/b"), "/a/b");
  EXPECT_EQ(session.FullPath("game"), folder + "/game");
  EXPECT_EQ(session.FullPath("no-such-thing"), fs::current_path().string() + "/no-such-thing");
}

TEST_F(DesktopSessionTest, ALauncherIsMadeOneThatItsOwnerMayStart) {
  EXPECT_TRUE(session.AllowStart(folder + "/data"));
  EXPECT_EQ(fs::status(folder + "/data").permissions(), fs::perms(0744));
  EXPECT_FALSE(session.AllowStart(folder + "/none"));
}

TEST_F(DesktopSessionTest, FoldersFollowThePersonsSettings) {
  const char* const home = getenv("XDG_DATA_HOME");
  const std::string kept = home ? home : "";
  setenv("XDG_DATA_HOME", (folder + "/data-home").c_str(), 1);
  EXPECT_EQ(session.MenuFolder(), folder + "/data-home/applications");
  EXPECT_EQ(session.ApplicationsFolders().at(0), folder + "/data-home/applications");
  if (home) {
    setenv("XDG_DATA_HOME", kept.c_str(), 1);
  } else {
    unsetenv("XDG_DATA_HOME");
  }
}

}  // namespace
}  // namespace kelvaro::rendlink
