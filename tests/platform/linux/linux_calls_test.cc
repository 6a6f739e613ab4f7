// What is Linux's own of calls; tests/platform/machine/calls_test.cc has the rest.
#include "app/platform/linux/linux_calls.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include "tests/host/files.h"
#include "tests/host/processes.h"
#include "tests/host/refused_calls.h"
#include "tests/platform/machine/arrived.h"
#include "tests/platform/machine/calls_by_hand.h"

namespace platform {
namespace {

namespace fs = std::filesystem;
using namespace kelvaro::tests;

// Says nothing, and counts what is said.
class Listener final : public CallReceiver {
 public:
  void OnMessage(CallId, const std::string&) override { ++messages; }
  void OnRoom(CallId) override {}
  void OnHungUp(CallId) override {}
  void OnWake() override {}

  int messages = 0;  // to be read once nobody answers any more
};

class LinuxCallsTest : public testing::Test, protected TemporaryFolder {
 protected:
  ~LinuxCallsTest() override { calls.StopAnswering(); }

  std::string OwnSocket() const { return In(std::to_string(OwnProcess()) + ".steering"); }

  LinuxCalls calls{folder};
  Listener listener;
};

TEST_F(LinuxCallsTest, IsForItsOwnerAloneAndGoesWithTheAnswering) {
  ASSERT_TRUE(calls.Answer(&listener));
  struct stat status {};
  ASSERT_EQ(stat(OwnSocket().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
  calls.StopAnswering();
  EXPECT_FALSE(fs::exists(OwnSocket()));
}

TEST_F(LinuxCallsTest, NobodyCanCallWhereThereIsNoFolderOrItsNameIsTooLong) {
  for (const std::string& none : {std::string(), In("gone"), "/tmp/" + std::string(120, 'x')}) {
    LinuxCalls nowhere(none);
    EXPECT_FALSE(nowhere.Answer(&listener));
    EXPECT_FALSE(nowhere.Call(OwnProcess()));
    EXPECT_TRUE(nowhere.Answering().empty());
    EXPECT_EQ(nowhere.WatchArrivals() == nullptr, none.empty());
  }
}

TEST_F(LinuxCallsTest, TheWatchOfArrivalsSleepsUntilItsEnd) {
  const auto arrivals = calls.WatchArrivals();
  ASSERT_TRUE(arrivals);
  std::atomic<pid_t> waiter{0};
  auto waited = std::async(std::launch::async, [&] {
    waiter = gettid();
    return arrivals->Wait();
  });
  ASSERT_TRUE(Eventually([&] { return waiter != 0 && IsAsleep(waiter); }));
  arrivals->End();
  EXPECT_FALSE(waited.get());
  EXPECT_FALSE(arrivals->Wait()) << "for good";
}

TEST_F(LinuxCallsTest, AFolderThatIsMadeAnewIsWatchedToo) {
  const std::string again = In("again");
  for (const bool wasThere : {true, false}) {
    if (wasThere) fs::create_directory(again);
    LinuxCalls later{again};
    const auto arrivals = later.WatchArrivals();
    ASSERT_TRUE(arrivals);
    fs::remove_all(again);
    fs::create_directory(again);
    LinuxCalls answering{again};
    Listener receiver;
    ASSERT_TRUE(answering.Answer(&receiver));
    EXPECT_EQ(Arrived(later, *arrivals), std::vector<std::uint32_t>{OwnProcess()}) << wasThere;
    answering.StopAnswering();
    fs::remove_all(again);
  }
}

// There is room for one descriptor more, which the watch needs for its end. A sanitizer that looks
// at what an object is would want one, too.
__attribute__((no_sanitize("vptr"))) std::unique_ptr<Arrivals> WatchWithLittleRoom(
    LinuxCalls& calls) {
  const int next = dup(0);
  close(next);
  rlimit before{};
  EXPECT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  rlimit scarce = before;
  scarce.rlim_cur = static_cast<rlim_t>(next) + 1;
  EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &scarce), 0);
  std::unique_ptr<Arrivals> arrivals = calls.WatchArrivals();
  EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
  return arrivals;
}

TEST_F(LinuxCallsTest, WhereTheSystemTellsNothingArrivalsAreLookedFor) {
  const auto arrivals = WatchWithLittleRoom(calls);
  ASSERT_TRUE(arrivals);
  ASSERT_TRUE(calls.Answer(&listener));
  EXPECT_EQ(Arrived(calls, *arrivals), std::vector<std::uint32_t>{OwnProcess()});
}

TEST_F(LinuxCallsTest, WhereTheSystemRefusesNobodyAnswersAndNothingIsLeft) {
  for (const std::vector<Refusal>& refusals : NobodyAnswers())
    WhereRefused(refusals, [&] {
      LinuxCalls refused(folder);
      EXPECT_FALSE(refused.Answer(&listener)) << refusals.front().call;
      EXPECT_FALSE(fs::exists(OwnSocket())) << refusals.front().call;
    });
  EXPECT_TRUE(calls.Answer(&listener));
}

TEST_F(LinuxCallsTest, WhoCanNotBeKnownIsNotCalled) {
  ASSERT_TRUE(calls.Answer(&listener));
  for (const long call : {SYS_socket, SYS_connect, SYS_getsockopt, SYS_readlink})
    WhereRefused({{call, EACCES}}, [&] { EXPECT_FALSE(calls.Call(OwnProcess())) << call; });
  EXPECT_TRUE(calls.Call(OwnProcess()));
}

TEST_F(LinuxCallsTest, ACallThatCanNotBeHeardHasEnded) {
  ASSERT_TRUE(calls.Answer(&listener));
  const auto call = calls.Call(OwnProcess());
  ASSERT_TRUE(call);
  std::string message;
  WhereRefused({{SYS_sendmsg, ENOMEM}, {SYS_sendto, ENOMEM}},
               [&] { EXPECT_FALSE(call->Send("text")); });
  const auto arrivals = calls.WatchArrivals();
  WhereRefused({{SYS_poll, ENOMEM}}, [&] { EXPECT_FALSE(arrivals->Wait()); });
}

TEST_F(LinuxCallsTest, AnotherUserCanNotConnect) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  ASSERT_TRUE(calls.Answer(&listener));
  fs::permissions(folder, fs::perms::all);
  fs::permissions(OwnSocket(), fs::perms::all);  // even where the file would let them
  const std::uint32_t self = OwnProcess();
  const pid_t child = Fork([&] {
    if (setgid(65534) != 0 || setuid(65534) != 0) return 1;
    const std::string answer = AnswerByHand(folder, self, "a");
    if (HasFailure()) return 2;
    return answer.empty() ? 0 : 3;
  });
  EXPECT_EQ(StatusOf(child), 0);
  calls.StopAnswering();
  EXPECT_EQ(listener.messages, 0);
}

}  // namespace
}  // namespace platform
