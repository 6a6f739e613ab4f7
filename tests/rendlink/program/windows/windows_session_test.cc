#include "rendlink/program/windows/windows_session.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "app/platform/platform.h"
#include "tests/host/files.h"

// Last.
#include "app/platform/windows/windows_platform.h"

namespace kelvaro::rendlink {
namespace {

class WindowsSessionTest : public testing::Test, protected tests::TemporaryFolder {
 protected:
  WindowsSessionTest() {
    tests::Put(In("game.exe"), "game");
    tests::Put(In("other.bat"), "");
  }

  platform::WindowsPlatform system;
  const platform::InstalledPlatform installed{system.Groups()};
  const tests::Variable path{"PATH", folder.c_str()};
  WindowsSession session;
};

TEST_F(WindowsSessionTest, AFileThatWasTypedIsTakenFromTheCurrentFolderOrFromPath) {
  EXPECT_EQ(session.FullPath(""), "");
  EXPECT_EQ(session.FullPath("C:\\a\\b.exe"), "C:\\a\\b.exe");
  EXPECT_EQ(session.FullPath("C:/a/b.exe"), "C:\\a\\b.exe");
  EXPECT_EQ(session.FullPath("game.exe"), In("game.exe"));
  EXPECT_EQ(session.FullPath("game"), In("game.exe"));
  EXPECT_EQ(session.FullPath("other.bat"), In("other.bat"));
  EXPECT_EQ(session.FullPath("no-such-thing"),
            std::filesystem::current_path().string() + "\\no-such-thing");
  EXPECT_EQ(FindProgram("no-such-thing"), "");
}

TEST_F(WindowsSessionTest, APathMayHaveAnyLength) {
  const std::string path = "C:\\" + std::string(200, 'x') + "\\" + std::string(200, 'y');
  EXPECT_EQ(session.FullPath(path), path);
}

TEST_F(WindowsSessionTest, TheShellTellsWhereLaunchersAreOffered) {
  EXPECT_TRUE(session.DesktopFolder().ends_with("\\Desktop")) << session.DesktopFolder();
  EXPECT_TRUE(session.MenuFolder().ends_with("\\Start Menu\\Programs")) << session.MenuFolder();
}

}  // namespace
}  // namespace kelvaro::rendlink
