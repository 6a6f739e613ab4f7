#include "rendlink/program/desktop_session.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/host/files.h"

namespace kelvaro::rendlink {
namespace {

namespace fs = std::filesystem;

class DesktopSessionTest : public testing::Test, protected tests::TemporaryFolder {
 protected:
  DesktopSessionTest() {
    tests::PutScript(In("game"), "");
    tests::Put(In("data"), "");
  }

  const tests::Variable path{"PATH", folder.c_str()};
  DesktopSession session;
};

TEST_F(DesktopSessionTest, AFileThatWasTypedIsTakenFromTheCurrentFolderOrFromPath) {
  EXPECT_EQ(session.FullPath(""), "");
  EXPECT_EQ(session.FullPath("/a/b"), "/a/b");
  EXPECT_EQ(session.FullPath("game"), In("game"));
  EXPECT_EQ(session.FullPath("no-such-thing"), fs::current_path().string() + "/no-such-thing");
}

TEST_F(DesktopSessionTest, ALauncherIsMadeOneThatItsOwnerMayStart) {
  EXPECT_TRUE(session.AllowStart(In("data")));
  EXPECT_EQ(fs::status(In("data")).permissions(), fs::perms(0744));
  EXPECT_FALSE(session.AllowStart(In("none")));
}

TEST_F(DesktopSessionTest, FoldersFollowThePersonsSettings) {
  const tests::Variable data("XDG_DATA_HOME", In("data-home").c_str());
  EXPECT_EQ(session.MenuFolder(), In("data-home/applications"));
  EXPECT_EQ(session.ApplicationsFolders().at(0), In("data-home/applications"));
}

}  // namespace
}  // namespace kelvaro::rendlink
