#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "console/linux/front_source.h"
#include "tests/host/child.h"
#include "tests/host/files.h"
#include "tests/host/processes.h"

namespace kelvaro::console {
namespace {

TEST(ProgramName, IsThatOfItsFile) {
  EXPECT_EQ(ProgramNameOf(static_cast<std::uint32_t>(getpid())), "test_console");
}

TEST(ProgramName, IsEmptyWithoutAProcess) {
  EXPECT_EQ(ProgramNameOf(0), "");
  EXPECT_EQ(ProgramNameOf(UINT32_MAX), "");
}

TEST(ProgramName, InWineIsTheGamesAsItWasCalled) {
  const tests::TemporaryFolder folder;
  const std::string wine = folder.In("wine64");
  std::filesystem::copy_file("/bin/sleep", wine);
  for (const auto& [called, name] :
       {std::pair("C:\\Games\\doom.exe", "doom.exe"), std::pair("/games/tetris.exe", "tetris.exe"),
        std::pair("", "wine64")}) {
    const tests::Child game({"bash", "-c", "exec -a \"$0\" \"$1\" 600", called, wine});
    ASSERT_TRUE(tests::Eventually([&] { return tests::NameOf(game.Id()) == "wine64"; }));
    EXPECT_EQ(ProgramNameOf(static_cast<std::uint32_t>(game.Id())), name);
  }
}

}  // namespace
}  // namespace kelvaro::console
