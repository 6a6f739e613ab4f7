#include "app/platform/calls.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <iostream>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "tests/host/child.h"
#include "tests/host/files.h"

// Last.
#include "tests/platform/machine/arrived.h"
#include "tests/platform/machine/calls_by_hand.h"

namespace platform {
namespace {

namespace fs = std::filesystem;
using namespace kelvaro::tests;
using Heard = Conversation::Heard;

constexpr std::uint32_t kPatience = 30'000;  // ms
constexpr char kReady[] = "it answers";

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

// The words by which a program that is a copy of this one runs a disabled test of it, and what that
// test needs to know.
std::vector<std::string> Words(const std::string& program, const char* test) {
  return {program, "--gtest_also_run_disabled_tests", std::string("--gtest_filter=") + test + ".*"};
}
ChildOptions Told(const std::string& place, std::uint32_t process) {
  return {{{"KELVARO_TEST_PLACE", place}, {"KELVARO_TEST_PROCESS", std::to_string(process)}}};
}
std::string ToldPlace() {
  const char* const place = std::getenv("KELVARO_TEST_PLACE");
  return place ? place : "";
}
std::uint32_t ToldProcess() {
  const char* const process = std::getenv("KELVARO_TEST_PROCESS");
  return process ? static_cast<std::uint32_t>(std::atol(process)) : 0;
}
[[noreturn]] void WaitToBeKilled() {
  for (;;) ThisClock().Sleep(1000);
}

class CallsTest : public testing::Test, protected TemporaryFolder {
 protected:
  ~CallsTest() override { calls.StopAnswering(); }

  // What is answered to a request; empty for none.
  std::string Ask(const std::string& request) {
    const auto conversation = calls.Call(self);
    std::string answer;
    if (!conversation || !conversation->Send(request)) return "";
    return conversation->Receive(&answer, kPatience) == Heard::Message ? answer : "";
  }

  const std::uint32_t self = OwnProcess();
  const std::string place = PlaceFor(folder);
  ThisCalls calls{place};
  Echo echo{calls};
};

TEST_F(CallsTest, WhatIsSaidIsHandedOnAndAnswered) {
  EXPECT_FALSE(calls.Call(self));
  EXPECT_TRUE(calls.Answering().empty());
  ASSERT_TRUE(calls.Answer(&echo));
  EXPECT_FALSE(calls.Answer(&echo)) << "it answers already";
  EXPECT_EQ(calls.Answering(), std::vector<std::uint32_t>{self});
  auto conversation = calls.Call(self);
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
  EXPECT_TRUE(calls.Answering().empty());
  EXPECT_FALSE(calls.Call(self));
  conversation.reset();
  ASSERT_TRUE(calls.Answer(&echo)) << "once more";
  EXPECT_EQ(Ask("again"), "again!");
}

TEST_F(CallsTest, CallersComeAndGoBesideOneAnother) {
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

TEST_F(CallsTest, ACallerThatDoesNotReadIsNotWaitedForAndIsToldOfLater) {
  ASSERT_TRUE(calls.Answer(&echo));
  const auto slow = calls.Call(self);
  ASSERT_TRUE(slow && slow->Send("fill"));
  ASSERT_TRUE(echo.Await(&Echo::filled, 1));
  EXPECT_EQ(Ask("beside it"), "beside it!");
  EXPECT_EQ(echo.Count(&Echo::rooms), 0);
  std::string answer;
  const int sent = echo.Count(&Echo::sent);
  EXPECT_GT(sent, 1);
  for (int i = 0; i < sent; ++i) {
    ASSERT_EQ(slow->Receive(&answer, kPatience), Heard::Message);
    EXPECT_EQ(answer.size(), 1000u);
  }
  EXPECT_TRUE(echo.Await(&Echo::rooms, 1));
}

TEST_F(CallsTest, ACallerCanBeHungUpOn) {
  ASSERT_TRUE(calls.Answer(&echo));
  const auto conversation = calls.Call(self);
  ASSERT_TRUE(conversation && conversation->Send("bye"));
  std::string answer;
  EXPECT_EQ(conversation->Receive(&answer, kPatience), Heard::End);
  EXPECT_EQ(Ask("next"), "next!");
}

TEST_F(CallsTest, WakeBringsTheReceiverRound) {
  ASSERT_TRUE(calls.Answer(&echo));
  calls.Wake();
  EXPECT_TRUE(echo.Await(&Echo::wakes, 1));
  calls.Wake();
  EXPECT_TRUE(echo.Await(&Echo::wakes, 2));
  calls.StopAnswering();
  calls.Wake();
}

TEST_F(CallsTest, ACallerCanEndItsCallWhileItWaits) {
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

TEST_F(CallsTest, WhatWasSentBeforeTheEndIsNotHeardAfterIt) {
  ASSERT_TRUE(calls.Answer(&echo));
  const auto conversation = calls.Call(self);
  ASSERT_TRUE(conversation && conversation->Send("a"));
  EXPECT_EQ(Ask("b"), "b!") << "so the first was answered, too";
  conversation->End();
  std::string answer;
  EXPECT_EQ(conversation->Receive(&answer, std::nullopt), Heard::End);
}

// Not too early, either: nothing tells of it a second time.
TEST_F(CallsTest, OneThatArrivesIsToldOfOnceItCanBeCalled) {
  for (int i = 0; i < 20; ++i) {
    const auto arrivals = calls.WatchArrivals();
    ASSERT_TRUE(arrivals);
    auto answers = std::async(std::launch::async, [&] { return calls.Answer(&echo); });
    ThisCalls others{place};
    EXPECT_EQ(Arrived(others, *arrivals), std::vector<std::uint32_t>{self}) << i;
    EXPECT_TRUE(answers.get());
    calls.StopAnswering();
  }
}

TEST_F(CallsTest, TheWatchOfArrivalsEndsForGood) {
  const auto arrivals = calls.WatchArrivals();
  ASSERT_TRUE(arrivals);
  auto waited = std::async(std::launch::async, [&] {
    while (arrivals->Wait()) {
    }
    return arrivals->Wait();
  });
  arrivals->End();
  EXPECT_FALSE(waited.get());
}

TEST_F(CallsTest, WhatIsTooLongOrEmptyEndsTheCallAlone) {
  ASSERT_TRUE(calls.Answer(&echo));
  const auto bystander = calls.Call(self);
  const auto wordy = calls.Call(self);
  ASSERT_TRUE(bystander && wordy);
  EXPECT_TRUE(wordy->Send(std::string(kLongestMessage + 1, 'x')));
  std::string answer;
  EXPECT_EQ(wordy->Receive(&answer, kPatience), Heard::End);
  EXPECT_TRUE(calls.Call(self)) << "and says nothing";
  ASSERT_TRUE(bystander->Send("still there"));
  EXPECT_EQ(bystander->Receive(&answer, kPatience), Heard::Message);
  EXPECT_EQ(answer, "still there!");
  EXPECT_EQ(echo.Got(), std::vector<std::string>{"still there"});
}

TEST_F(CallsTest, MoreThan64CallersAreTurnedAwayUntilOneGoes) {
  ASSERT_TRUE(calls.Answer(&echo));
  std::vector<std::unique_ptr<Conversation>> held;
  std::string answer;
  for (int i = 0; i < 64; ++i) {
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
  const char* const answer = std::getenv("KELVARO_TEST_ANSWER");
  EXPECT_EQ(AnswerByHand(ToldPlace(), ToldProcess(), "a"), answer ? answer : "");
}

TEST_F(CallsTest, ProgramsOfOtherNamesAreNotListenedTo) {
  ASSERT_TRUE(calls.Answer(&echo));
  const fs::path own = ThisFiles().GetModuleFileNameA();
  const TemporaryFolder programs;
  for (const std::string name : {"kelvaro", "kelvaroctl", "kelvaro2", "another-program"}) {
    const std::string copy = programs.In(name + own.extension().string());
    fs::copy_file(own, copy);
    ChildOptions told = Told(place, self);
    told.environment["KELVARO_TEST_ANSWER"] =
        name.starts_with("kelvaro") && name != "kelvaro2" ? "a!" : "";
    Child child(Words(copy, "DISABLED_CallByAnotherProgram"), told);
    EXPECT_EQ(child.WaitForEnd(), 0) << name << child.Log();
    fs::remove(copy);
  }
}

TEST_F(CallsTest, AProgramOfAnotherNameIsNotCalled) {
  const fs::path own = ThisFiles().GetModuleFileNameA();
  const TemporaryFolder programs;
  const std::string copy = programs.In("another-program" + own.extension().string());
  fs::copy_file(own, copy);
  Child other(Words(copy, "DISABLED_OneThatAnswers"), Told(place, self));
  ASSERT_TRUE(Eventually([&] { return other.Out().find(kReady) != std::string::npos; }))
      << other.Log();
  EXPECT_FALSE(calls.Call(static_cast<std::uint32_t>(other.Id())));
}

// Both are killed by tests.
TEST(DISABLED_OneThatAnswers, GoesOn) {
  ThisCalls own(ToldPlace());
  Echo receiver(own);
  ASSERT_TRUE(own.Answer(&receiver));
  std::cout << kReady << std::endl;
  WaitToBeKilled();
}
TEST(DISABLED_OneThatCalls, GoesOn) {
  ThisCalls own(ToldPlace());
  const auto conversation = own.Call(ToldProcess());
  ASSERT_TRUE(conversation && conversation->Send("fill"));
  WaitToBeKilled();
}

TEST_F(CallsTest, OneThatIsKilledIsNotThereAndNothingIsLeftOfIt) {
  Child other(Words(ThisFiles().GetModuleFileNameA(), "DISABLED_OneThatAnswers"),
              Told(place, self));
  const auto process = static_cast<std::uint32_t>(other.Id());
  ASSERT_TRUE(Eventually([&] { return !calls.Answering().empty(); })) << other.Log();
  EXPECT_EQ(calls.Answering(), std::vector<std::uint32_t>{process});
  const auto conversation = calls.Call(process);
  ASSERT_TRUE(conversation);
  other.Kill();
  std::string answer;
  EXPECT_EQ(conversation->Receive(&answer, kPatience), Heard::End);
  EXPECT_FALSE(conversation->Send("a"));
  EXPECT_TRUE(calls.Answering().empty());
  EXPECT_FALSE(calls.Call(process));
  EXPECT_TRUE(fs::is_empty(folder));
}

TEST_F(CallsTest, ACallerThatIsKilledWhileItIsToldThingsIsSeenToBeGone) {
  ASSERT_TRUE(calls.Answer(&echo));
  Child other(Words(ThisFiles().GetModuleFileNameA(), "DISABLED_OneThatCalls"), Told(place, self));
  ASSERT_TRUE(echo.Await(&Echo::filled, 1)) << other.Log();
  other.Kill();
  EXPECT_TRUE(echo.Await(&Echo::hungUp, 1));
  EXPECT_EQ(Ask("next"), "next!");
}

}  // namespace
}  // namespace platform
