#include "console/stop_signals.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>

namespace kelvaro::console {
namespace {

bool IsBlocked(int signal) {
  sigset_t blocked;
  pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
  return sigismember(&blocked, signal) == 1;
}

TEST(StopSignals, EachOfThemEndsTheWait) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    StopSignals signals;
    ASSERT_EQ(raise(signal), 0);  // before the wait, as during the start of a run
    EXPECT_TRUE(signals.Wait(std::nullopt)) << signal;
  }
}

TEST(StopSignals, AnAskFromWithinCounts) {
  StopSignals signals;
  StopSignals::Ask();
  EXPECT_TRUE(signals.Wait(std::nullopt));
}

TEST(StopSignals, WithoutOneTheTimePasses) {
  StopSignals signals;
  EXPECT_FALSE(signals.Wait(0));
  EXPECT_FALSE(signals.Wait(1));
}

TEST(StopSignals, AWaitOfNoTimeLooks) {
  StopSignals signals;
  StopSignals::Ask();
  EXPECT_TRUE(signals.Wait(0));
}

TEST(StopSignals, OneThatCameIsToldAgain) {
  StopSignals signals;
  StopSignals::Ask();
  EXPECT_TRUE(signals.Wait(std::nullopt));
  EXPECT_TRUE(signals.Wait(0));
  EXPECT_TRUE(signals.Wait(std::nullopt));
}

TEST(StopSignals, TheProgramEndsByTheSignalThatCame) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    EXPECT_EXIT(
        {
          StopSignals signals;
          raise(signal);
          signals.Wait(std::nullopt);
          signals.EndAsAsked();
          _exit(0);
        },
        testing::KilledBySignal(signal), "");
  }
  StopSignals signals;
  signals.EndAsAsked();  // comes back
}

TEST(StopSignals, AWaitOfAllTimeIsNoneAtAll) {
  StopSignals signals;
  StopSignals::Ask();
  EXPECT_TRUE(signals.Wait(UINT64_MAX));
}

TEST(StopSignals, TheNextOneIsNotHeldBack) {
  StopSignals signals;
  EXPECT_TRUE(IsBlocked(SIGINT));
  StopSignals::Ask();
  ASSERT_TRUE(signals.Wait(std::nullopt));
  EXPECT_FALSE(IsBlocked(SIGINT));
}

TEST(StopSignals, LeavesTheMaskAsItWas) {
  const bool before = IsBlocked(SIGTERM);
  { StopSignals signals; }
  EXPECT_EQ(IsBlocked(SIGTERM), before);
}

TEST(StopSignals, APipeThatNobodyReadsFailsTheWrite) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  close(ends[0]);
  {
    StopSignals signals;
    EXPECT_EQ(write(ends[1], "x", 1), -1);
    EXPECT_EQ(errno, EPIPE);
  }
  close(ends[1]);
  struct sigaction after;
  ASSERT_EQ(sigaction(SIGPIPE, nullptr, &after), 0);
  EXPECT_EQ(after.sa_handler, SIG_DFL);
}

}  // namespace
}  // namespace kelvaro::console
