#include "app/platform/linux/linux_calls.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <mutex>
#include <string>
#include <vector>

#include "tests/host/files.h"
#include "tests/host/processes.h"
#include "tests/platform/linux/local_socket.h"

namespace platform {
namespace {

namespace fs = std::filesystem;
using namespace kelvaro::tests;
using Heard = Conversation::Heard;

constexpr std::uint32_t kPatience = 30'000;  // ms

// Answers with what it got and "!"; "fill" until there is no room, "bye" by hanging up.
class Echo final : public CallReceiver {
 public:
  explicit Echo(Calls& calls) : calls(calls) {}

  void OnMessage(CallId call, const std::string& message) override {
    {
      const std::lock_guard<std::mutex> guard(mutex);
      got.push_back(message);
    }
    if (message == "bye") return calls.HangUp(call);
    if (message == "fill") {
      while (calls.Send(call, std::string(1000, 'x'))) Note(&sent);
      Note(&filled);
      return;
    }
    calls.Send(call, message + "!");
  }
  void OnRoom(CallId) override { Note(&rooms); }
  void OnHungUp(CallId) override { Note(&hungUp); }
  void OnWake() override { Note(&wakes); }

  // Waits until the count is there.
  bool Await(int Echo::*count, int wanted) {
    std::unique_lock<std::mutex> lock(mutex);
    return changed.wait_for(lock, std::chrono::milliseconds(kPatience),
                            [&] { return this->*count >= wanted; });
  }
  int Count(int Echo::*count) {
    const std::lock_guard<std::mutex> guard(mutex);
    return this->*count;
  }
  std::vector<std::string> Got() {
    const std::lock_guard<std::mutex> guard(mutex);
    return got;
  }

  int rooms = 0;  // guarded by mutex, as are the others
  int hungUp = 0;
  int wakes = 0;
  int filled = 0;
  int sent = 0;

 private:
  void Note(int* count) {
    const std::lock_guard<std::mutex> guard(mutex);
    ++*count;
    changed.notify_all();
  }

  Calls& calls;
  std::mutex mutex;
  std::condition_variable changed;
  std::vector<std::string> got;
};

class LinuxCallsTest : public testing::Test, protected TemporaryFolder {
 protected:
  ~LinuxCallsTest() override { calls.StopAnswering(); }

  std::string OwnSocket() const { return In(std::to_string(self) + ".steering"); }

  int Connect() const { return ConnectByHand(OwnSocket()); }
  // What is answered to a request; empty for none.
  std::string Ask(const std::string& request) {
    const auto conversation = calls.Call(self);
    std::string answer;
    if (!conversation || !conversation->Send(request)) return "";
    return conversation->Receive(&answer, kPatience) == Heard::Message ? answer : "";
  }

  const std::uint32_t self = static_cast<std::uint32_t>(getpid());
  LinuxCalls calls{folder};
  Echo echo{calls};
};

TEST_F(LinuxCallsTest, WhatIsSaidIsHandedOnAndAnswered) {
  EXPECT_FALSE(calls.Call(self));
  EXPECT_TRUE(calls.Answering().empty());
  ASSERT_TRUE(calls.Answer(&echo));
  EXPECT_FALSE(calls.Answer(&echo)) << "it answers already";
  EXPECT_EQ(calls.Answering(), std::vector<std::uint32_t>{self});
  const auto conversation = calls.Call(self);
  ASSERT_TRUE(conversation);
  std::string answer;
  EXPECT_EQ(conversation->Receive(&answer, 0), Heard::Nothing);
  for (const std::string& text : {std::string("a"), std::string(kLongestMessage - 1, 'b')}) {
    ASSERT_TRUE(conversation->Send(text));
    ASSERT_EQ(conversation->Receive(&answer, kPatience), Heard::Message);
    EXPECT_EQ(answer, text + "!");
  }
  calls.StopAnswering();
  EXPECT_EQ(conversation->Receive(&answer, kPatience), Heard::End);
  EXPECT_FALSE(fs::exists(OwnSocket()));
  ASSERT_TRUE(calls.Answer(&echo)) << "once more";
  EXPECT_EQ(Ask("again"), "again!");
}

TEST_F(LinuxCallsTest, CallersComeAndGoBesideOneAnother) {
  ASSERT_TRUE(calls.Answer(&echo));
  const auto silent = calls.Call(self);
  const auto first = calls.Call(self);
  ASSERT_TRUE(silent && first);
  EXPECT_EQ(Ask("second"), "second!");
  EXPECT_TRUE(echo.Await(&Echo::hungUp, 1));
  ASSERT_TRUE(first->Send("first"));
  std::string answer;
  EXPECT_EQ(first->Receive(&answer, kPatience), Heard::Message);
  EXPECT_EQ(answer, "first!");
}

TEST_F(LinuxCallsTest, IsForItsOwnerAlone) {
  ASSERT_TRUE(calls.Answer(&echo));
  struct stat status {};
  ASSERT_EQ(stat(OwnSocket().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(LinuxCallsTest, NobodyCanCallWhereThereIsNoFolderOrItsNameIsTooLong) {
  for (const std::string& none : {std::string(), In("gone"), "/tmp/" + std::string(120, 'x')}) {
    LinuxCalls nowhere(none);
    EXPECT_FALSE(nowhere.Answer(&echo));
    EXPECT_FALSE(nowhere.Call(self));
    EXPECT_TRUE(nowhere.Answering().empty());
    EXPECT_EQ(nowhere.WatchArrivals() == nullptr, none.empty());
  }
}

TEST_F(LinuxCallsTest, ACallerThatDoesNotReadIsNotWaitedForAndIsToldOfLater) {
  ASSERT_TRUE(calls.Answer(&echo));
  const auto slow = calls.Call(self);
  ASSERT_TRUE(slow && slow->Send("fill"));
  ASSERT_TRUE(echo.Await(&Echo::filled, 1));
  EXPECT_EQ(Ask("beside it"), "beside it!");
  EXPECT_EQ(echo.Count(&Echo::rooms), 0);
  std::string answer;
  const int sent = echo.Count(&Echo::sent);
  for (int i = 0; i < sent; ++i) {
    ASSERT_EQ(slow->Receive(&answer, kPatience), Heard::Message);
    EXPECT_EQ(answer.size(), 1000u);
  }
  EXPECT_TRUE(echo.Await(&Echo::rooms, 1));
}

TEST_F(LinuxCallsTest, ACallerCanBeHungUpOn) {
  ASSERT_TRUE(calls.Answer(&echo));
  const auto conversation = calls.Call(self);
  ASSERT_TRUE(conversation && conversation->Send("bye"));
  std::string answer;
  EXPECT_EQ(conversation->Receive(&answer, kPatience), Heard::End);
  EXPECT_EQ(Ask("next"), "next!");
}

TEST_F(LinuxCallsTest, WakeBringsTheReceiverRound) {
  ASSERT_TRUE(calls.Answer(&echo));
  calls.Wake();
  EXPECT_TRUE(echo.Await(&Echo::wakes, 1));
  calls.StopAnswering();
  calls.Wake();
}

TEST_F(LinuxCallsTest, ACallerCanEndItsCallWhileItWaits) {
  ASSERT_TRUE(calls.Answer(&echo));
  const auto conversation = calls.Call(self);
  ASSERT_TRUE(conversation);
  std::string answer;
  auto heard =
      std::async(std::launch::async, [&] { return conversation->Receive(&answer, std::nullopt); });
  conversation->End();
  EXPECT_EQ(heard.get(), Heard::End);
  EXPECT_TRUE(echo.Await(&Echo::hungUp, 1));
  EXPECT_FALSE(conversation->Send("a"));
}

TEST_F(LinuxCallsTest, WhatWasSentBeforeTheEndIsNotHeardAfterIt) {
  ASSERT_TRUE(calls.Answer(&echo));
  const auto conversation = calls.Call(self);
  ASSERT_TRUE(conversation && conversation->Send("a"));
  EXPECT_EQ(Ask("b"), "b!") << "so the first was answered, too";
  conversation->End();
  std::string answer;
  EXPECT_EQ(conversation->Receive(&answer, std::nullopt), Heard::End);
}

// The processes that answer once the watch tells of one; none when it doesn't within patience.
std::vector<std::uint32_t> Arrived(Calls& calls, Arrivals& arrivals) {
  auto arrived = std::async(std::launch::async, [&] {
    std::vector<std::uint32_t> answering;
    while (answering.empty() && arrivals.Wait()) answering = calls.Answering();
    return answering;
  });
  if (arrived.wait_for(std::chrono::milliseconds(kPatience)) != std::future_status::ready)
    arrivals.End();
  return arrived.get();
}

// Not too early, either: nothing tells of it a second time.
TEST_F(LinuxCallsTest, OneThatArrivesIsToldOfOnceItCanBeCalled) {
  for (int i = 0; i < 20; ++i) {
    const auto arrivals = calls.WatchArrivals();
    ASSERT_TRUE(arrivals);
    auto answers = std::async(std::launch::async, [&] { return calls.Answer(&echo); });
    LinuxCalls others{folder};
    EXPECT_EQ(Arrived(others, *arrivals), std::vector<std::uint32_t>{self}) << i;
    EXPECT_TRUE(answers.get());
    calls.StopAnswering();
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
    Echo receiver{answering};
    ASSERT_TRUE(answering.Answer(&receiver));
    EXPECT_EQ(Arrived(later, *arrivals), std::vector<std::uint32_t>{self}) << wasThere;
    answering.StopAnswering();
    fs::remove_all(again);
  }
}

TEST_F(LinuxCallsTest, WhereTheSystemTellsNothingArrivalsAreLookedFor) {
  // There is room for one descriptor more, which the watch needs for its end.
  const int next = dup(0);
  close(next);
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  rlimit scarce = before;
  scarce.rlim_cur = static_cast<rlim_t>(next) + 1;
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &scarce), 0);
  const auto arrivals = calls.WatchArrivals();
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
  ASSERT_TRUE(arrivals);
  ASSERT_TRUE(calls.Answer(&echo));
  EXPECT_EQ(Arrived(calls, *arrivals), std::vector<std::uint32_t>{self});
}

TEST_F(LinuxCallsTest, WhatIsTooLongOrEmptyEndsTheCallAlone) {
  ASSERT_TRUE(calls.Answer(&echo));
  const int fd = Connect();
  const std::string tooLong(kLongestMessage + 1, 'x');
  EXPECT_EQ(send(fd, tooLong.data(), tooLong.size(), MSG_NOSIGNAL),
            static_cast<ssize_t>(tooLong.size()));
  char answer;
  EXPECT_LE(recv(fd, &answer, 1, 0), 0);
  close(fd);
  close(Connect());
  EXPECT_EQ(Ask("still there"), "still there!");
  EXPECT_EQ(echo.Got(), std::vector<std::string>{"still there"});
}

TEST_F(LinuxCallsTest, MoreThanTheMostCallersAreTurnedAwayUntilOneGoes) {
  ASSERT_TRUE(calls.Answer(&echo));
  std::vector<std::unique_ptr<Conversation>> held;
  std::string answer;
  for (std::size_t i = 0; i < LinuxCalls::kMostCallers; ++i) {
    held.push_back(calls.Call(self));
    ASSERT_TRUE(held.back() && held.back()->Send("a"));
    ASSERT_EQ(held.back()->Receive(&answer, kPatience), Heard::Message);
  }
  EXPECT_EQ(Ask("one more"), "");
  held.pop_back();
  EXPECT_TRUE(echo.Await(&Echo::hungUp, 1));
  EXPECT_TRUE(Eventually([&] { return Ask("now") == "now!"; }));
}

// What another program sees: run by the test below from a copy of this one.
TEST(DISABLED_CallByAnotherProgram, IsAnsweredAsOneOfItsNameIs) {
  const char* const path = std::getenv("KELVARO_TEST_SOCKET");
  const char* const answered = std::getenv("KELVARO_TEST_ANSWERED");
  ASSERT_TRUE(path && answered);
  const int fd = ConnectByHand(path);
  const bool sent = send(fd, "a", 1, MSG_NOSIGNAL) == 1;
  char answer[4] = {};
  const ssize_t size = recv(fd, answer, sizeof answer, 0);
  if (std::string(answered) == "yes") {
    EXPECT_TRUE(sent);
    EXPECT_EQ(size, 2);
  } else {
    EXPECT_LE(size, 0);
  }
  close(fd);
}

TEST_F(LinuxCallsTest, ProgramsOfOtherNamesAreNotListenedTo) {
  ASSERT_TRUE(calls.Answer(&echo));
  const TemporaryFolder programs;
  for (const char* name : {"kelvaro", "kelvaroctl", "kelvaro2", "another-program"}) {
    const std::string copy = programs.In(name);
    fs::copy_file("/proc/self/exe", copy);
    const bool ours = std::string(name) == "kelvaro" || std::string(name) == "kelvaroctl";
    Child child(
        {copy, "--gtest_also_run_disabled_tests", "--gtest_filter=DISABLED_CallByAnotherProgram.*"},
        {{{"KELVARO_TEST_SOCKET", OwnSocket()}, {"KELVARO_TEST_ANSWERED", ours ? "yes" : "no"}}});
    EXPECT_EQ(child.WaitForEnd(), 0) << name << child.Log();
    fs::remove(copy);
  }
}

TEST_F(LinuxCallsTest, OneThatWasKilledIsNotThereAndItsSocketIsRemoved) {
  const pid_t child = Fork([&] {
    LinuxCalls own(folder);
    Echo receiver(own);
    if (!own.Answer(&receiver)) return 1;
    for (;;) pause();
    return 0;
  });
  ASSERT_TRUE(Eventually([&] { return !calls.Answering().empty(); }));
  const auto conversation = calls.Call(static_cast<std::uint32_t>(child));
  ASSERT_TRUE(conversation);
  kill(child, SIGKILL);
  StatusOf(child);
  std::string answer;
  EXPECT_EQ(conversation->Receive(&answer, kPatience), Heard::End);
  EXPECT_FALSE(conversation->Send("a"));
  EXPECT_TRUE(calls.Answering().empty());
  EXPECT_FALSE(fs::exists(In(std::to_string(child) + ".steering")));
}

// SIGKILL of a caller, while it is told things.
TEST_F(LinuxCallsTest, ACallerThatIsKilledIsSeenToBeGone) {
  ASSERT_TRUE(calls.Answer(&echo));
  const pid_t child = Fork([&] {
    LinuxCalls own(folder);
    const auto conversation = own.Call(self);
    if (!conversation || !conversation->Send("fill")) return 1;
    for (;;) pause();
    return 0;
  });
  ASSERT_TRUE(echo.Await(&Echo::filled, 1));
  kill(child, SIGKILL);
  StatusOf(child);
  EXPECT_TRUE(echo.Await(&Echo::hungUp, 1));
  EXPECT_EQ(Ask("next"), "next!");
}

TEST_F(LinuxCallsTest, AnotherUserCanNotConnect) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  ASSERT_TRUE(calls.Answer(&echo));
  fs::permissions(folder, fs::perms::all);
  fs::permissions(OwnSocket(), fs::perms::all);  // even where the file would let them
  const pid_t child = Fork([&] {
    if (setgid(65534) != 0 || setuid(65534) != 0) return 1;
    const int fd = Connect();
    if (HasFailure()) return 2;
    send(fd, "a", 1, MSG_NOSIGNAL);
    char answer;
    return recv(fd, &answer, 1, 0) > 0 ? 3 : 0;
  });
  EXPECT_EQ(StatusOf(child), 0);
  EXPECT_TRUE(echo.Got().empty());
}

}  // namespace
}  // namespace platform
