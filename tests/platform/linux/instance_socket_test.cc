#include "app/platform/linux/instance_socket.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <mutex>

#include "tests/host/files.h"
#include "tests/host/processes.h"
#include "tests/host/refused_calls.h"
#include "tests/platform/linux/local_socket.h"

namespace platform {
namespace {

namespace fs = std::filesystem;
using namespace kelvaro::tests;

// Asks for the windows as AskWindows does; bytes of the answer, 0 for none.
ssize_t AskByHand(const std::string& path) {
  const std::uint32_t request[] = {0x4B56494E, 1, 0, 0, 0, 0};
  const int fd = ConnectByHand(path);
  char answer[4096];
  ssize_t size = send(fd, request, sizeof request, MSG_NOSIGNAL);
  if (size > 0) size = recv(fd, answer, sizeof answer, 0);
  close(fd);
  return size < 0 ? 0 : size;  // a connection that is closed in one's face is an answer, too
}

class InstanceSocketTest : public testing::Test, protected TemporaryFolder {
 protected:
  std::unique_ptr<InstanceSocket> Open() {
    return InstanceSocket::Open(
        folder,
        [] {
          return std::vector<OfferedWindow>{{1, true, false}, {2, false, true}, {3, false, false}};
        },
        [this](WindowHandle window, std::uint32_t message) {
          const std::lock_guard<std::mutex> guard(mutex);
          posted.emplace_back(window, message);
          return window != 9;
        });
  }

  std::string OwnSocket() const { return In(std::to_string(getpid()) + ".socket"); }

  int Connect() const { return ConnectByHand(OwnSocket()); }

  const std::uint32_t self = static_cast<std::uint32_t>(getpid());
  std::mutex mutex;
  std::vector<std::pair<WindowHandle, std::uint32_t>> posted;  // guarded by mutex
};

TEST_F(InstanceSocketTest, TellsItsWindowsAndTheirStates) {
  const auto socket = Open();
  ASSERT_TRUE(socket);
  std::vector<OfferedWindow> windows;
  ASSERT_TRUE(AskWindows(folder, self, &windows));
  ASSERT_EQ(windows.size(), 3u);
  EXPECT_EQ(windows[0].window, 1u);
  EXPECT_TRUE(windows[0].visible && !windows[0].iconic);
  EXPECT_TRUE(!windows[1].visible && windows[1].iconic);
  EXPECT_TRUE(!windows[2].visible && !windows[2].iconic);
}

TEST_F(InstanceSocketTest, HandsOnWhatIsPosted) {
  const auto socket = Open();
  ASSERT_TRUE(PostToInstance(folder, self, 2, 0x10));
  ASSERT_TRUE(PostToInstance(folder, self, 1, 0x8007));
  EXPECT_FALSE(PostToInstance(folder, self, 9, 0x8007));  // a window that isn't there
  const std::vector<std::pair<WindowHandle, std::uint32_t>> expected = {
      {2, 0x10}, {1, 0x8007}, {9, 0x8007}};
  const std::lock_guard<std::mutex> guard(mutex);
  EXPECT_EQ(posted, expected);
}

TEST_F(InstanceSocketTest, IsForItsOwnerAlone) {
  const auto socket = Open();
  struct stat status {};
  ASSERT_EQ(stat(OwnSocket().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(InstanceSocketTest, GoesWithItsObjectAndCanBeOpenedAgain) {
  Open().reset();
  EXPECT_FALSE(fs::exists(OwnSocket()));
  Put(OwnSocket(), "left behind by a crash");
  const auto socket = Open();
  ASSERT_TRUE(socket);
  std::vector<OfferedWindow> windows;
  EXPECT_TRUE(AskWindows(folder, self, &windows));
}

TEST_F(InstanceSocketTest, CannotBeOpenedWhereThereIsNoFolderOrItsNameIsTooLong) {
  for (const std::string& none : {std::string(), In("gone"), "/tmp/" + std::string(120, 'x')})
    EXPECT_FALSE(InstanceSocket::Open(
        none, [] { return std::vector<OfferedWindow>(); }, nullptr));
}

TEST_F(InstanceSocketTest, WhereTheSystemRefusesItCanNotBeOpenedAndNothingIsLeft) {
  for (const std::vector<Refusal>& refusals : NobodyAnswers())
    WhereRefused(refusals, [&] {
      EXPECT_FALSE(Open()) << refusals.front().call;
      EXPECT_FALSE(fs::exists(OwnSocket())) << refusals.front().call;
    });
  EXPECT_TRUE(Open());
}

TEST_F(InstanceSocketTest, WhoCanNotBeAskedHasNoWindows) {
  const auto socket = Open();
  std::vector<OfferedWindow> windows;
  for (const long call : {SYS_socket, SYS_getsockopt, SYS_sendto, SYS_poll, SYS_recvfrom})
    WhereRefused({{call, ENOMEM}}, [&] {
      EXPECT_FALSE(AskWindows(folder, self, &windows)) << call;
      EXPECT_TRUE(windows.empty());
    });
}

TEST_F(InstanceSocketTest, GarbageDoesNothing) {
  const auto socket = Open();
  const std::string packets[] = {std::string(1, 'x'), std::string(24, '\0'),
                                 std::string(24, '\xFF'), std::string(25, 'x'),
                                 std::string(60000, 'y')};
  for (int round = 0; round < 20; ++round) {
    for (const std::string& packet : packets) {
      const int fd = Connect();
      EXPECT_EQ(send(fd, packet.data(), packet.size(), MSG_NOSIGNAL),
                static_cast<ssize_t>(packet.size()));
      char answer;
      EXPECT_LE(recv(fd, &answer, 1, 0), 0);  // closed without an answer
      close(fd);
    }
    close(Connect());  // and one that says nothing
  }
  std::vector<OfferedWindow> windows;
  EXPECT_TRUE(AskWindows(folder, self, &windows));
  const std::lock_guard<std::mutex> guard(mutex);
  EXPECT_TRUE(posted.empty());
}

TEST_F(InstanceSocketTest, OneThatSaysNothingHoldsUpTheOthersForAMomentOnly) {
  const auto socket = Open();
  const int silent = Connect();
  std::vector<OfferedWindow> windows;
  EXPECT_TRUE(AskWindows(folder, self, &windows));
  close(silent);
}

// What another program sees: run by the test below from a copy of this one.
TEST(DISABLED_AnotherProgram, AsksAndIsToldNothing) {
  const char* const path = std::getenv("KELVARO_TEST_SOCKET");
  ASSERT_TRUE(path);
  EXPECT_EQ(AskByHand(path), 0);
}

// The same program, whose file is replaced while it runs, as an upgrade does.
TEST(DISABLED_AReplacedProgram, AsksAndIsTold) {
  const char* const path = std::getenv("KELVARO_TEST_SOCKET");
  ASSERT_TRUE(path);
  fs::remove(fs::read_symlink("/proc/self/exe"));
  EXPECT_EQ(AskByHand(path), 8 + 3 * 8);
}

// Runs a test of a copy of this program, which has that name; its exit status.
int RunCopy(const std::string& copy, const char* test, const std::string& socket) {
  fs::copy_file("/proc/self/exe", copy);
  Child child({copy, "--gtest_also_run_disabled_tests", std::string("--gtest_filter=") + test},
              {{{"KELVARO_TEST_SOCKET", socket}}});
  return child.WaitForEnd();
}

TEST_F(InstanceSocketTest, AnotherProgramIsNotListenedTo) {
  const auto socket = Open();
  EXPECT_EQ(AskByHand(OwnSocket()), 8 + 3 * 8);  // this one is
  EXPECT_EQ(RunCopy(folder + "/another-program", "DISABLED_AnotherProgram.*", OwnSocket()), 0);
}

TEST_F(InstanceSocketTest, AnInstanceWhoseFileWasReplacedIsListenedTo) {
  const auto socket = Open();
  const std::string name = fs::read_symlink("/proc/self/exe").filename();
  EXPECT_EQ(RunCopy(folder + "/" + name, "DISABLED_AReplacedProgram.*", OwnSocket()), 0);
}

TEST_F(InstanceSocketTest, AnInstanceThatIsGoneIsNotAskedAndItsSocketIsRemoved) {
  const pid_t child = Fork([] { return 0; });
  StatusOf(child);
  const std::string left = Put(In(std::to_string(child) + ".socket"), "");
  Put(In("other file"), "");
  const auto socket = Open();
  EXPECT_EQ(Instances(folder), std::vector<std::uint32_t>{self});
  EXPECT_FALSE(fs::exists(left));
  EXPECT_TRUE(fs::exists(In("other file")));
  std::vector<OfferedWindow> windows;
  EXPECT_FALSE(AskWindows(folder, static_cast<std::uint32_t>(child), &windows));
  EXPECT_FALSE(PostToInstance(folder, static_cast<std::uint32_t>(child), 1, 0x10));
}

TEST_F(InstanceSocketTest, AProgramCanSeeWhetherAnInstanceListens) {
  EXPECT_FALSE(IsListening(folder, self));
  auto socket = Open();
  EXPECT_TRUE(IsListening(folder, self));
  std::error_code failed;
  fs::create_hard_link(OwnSocket(), In("1.socket"), failed);  // left as a crash leaves it
  ASSERT_FALSE(failed);
  EXPECT_TRUE(IsListening(folder, 1));
  socket.reset();
  EXPECT_FALSE(IsListening(folder, self));
  EXPECT_FALSE(IsListening(folder, 1));
}

TEST(InstanceFolder, IsTheUsersOwnAndInTheRuntimeFolder) {
  const TemporaryFolder runtime;
  const Variable variable("XDG_RUNTIME_DIR", runtime.folder.c_str());
  EXPECT_EQ(InstanceFolder(), runtime.In("kelvaro"));
  struct stat status {};
  ASSERT_EQ(stat(runtime.In("kelvaro").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700u);
  chmod(runtime.In("kelvaro").c_str(), 0777);  // anybody could put a socket there
  EXPECT_EQ(InstanceFolder(), "");
}

}  // namespace
}  // namespace platform
