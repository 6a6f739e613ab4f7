#include "app/start/process_finder.h"

#include <gtest/gtest.h>

#include "app/platform/simulation/simulation.h"

namespace kelvaro {
namespace {

using platform::WM_CLOSE;
using platform::simulation::PostedMessage;
using platform::simulation::ProcessDescription;
using platform::simulation::Simulation;
using platform::simulation::VirtualProcesses;

constexpr std::uint32_t kAny = 0x8007;  // a message other than WM_CLOSE

class ProcessFinder : public testing::Test {
 protected:
  Simulation sim;
  VirtualProcesses& processes = sim.Processes();
};

TEST_F(ProcessFinder, ListsEachProcessWithTheFolderAndTheNameOfItsFile) {
  ProcessDescription game;
  game.path = "/games/my game/play";
  const std::uint32_t id = processes.Add(game);
  processes.Add({});  // one that the system tells nothing of
  ProcessList list;
  list.AddTail(ProcessRecord{});  // what was there goes
  ASSERT_TRUE(EnumerateProcesses(&list));
  ASSERT_EQ(list.count, 3);
  EXPECT_EQ(list.At(0)->value->processId, VirtualProcesses::kOwnId);
  const ProcessRecord& record = *list.At(1)->value;
  EXPECT_EQ(record.processId, id);
  EXPECT_EQ(record.recordKind, 0u);
  EXPECT_EQ(record.taskId, 0u);
  EXPECT_STREQ(record.folder.Text(), "/games/my game");
  EXPECT_STREQ(record.fileName.Text(), "play");
  EXPECT_TRUE(list.At(2)->value->folder.IsEmpty());
  EXPECT_TRUE(list.At(2)->value->fileName.IsEmpty());
}

TEST_F(ProcessFinder, AListingThatFailsIsEmpty) {
  ProcessList list;
  list.AddTail(ProcessRecord{});
  sim.FailNext("ListProcesses");
  EXPECT_FALSE(EnumerateProcesses(&list));
  EXPECT_EQ(list.count, 0);
}

TEST_F(ProcessFinder, AProcessRunsAsLongAsItIsListed) {
  const std::uint32_t id = processes.Add({});
  EXPECT_TRUE(IsProcessRunning(id));
  EXPECT_TRUE(IsProcessRunning(VirtualProcesses::kOwnId));
  EXPECT_FALSE(IsProcessRunning(id + 1));
  sim.FailNext("ListProcesses");
  EXPECT_FALSE(IsProcessRunning(id));
  processes.End(id);
  EXPECT_FALSE(IsProcessRunning(id));
}

TEST_F(ProcessFinder, ClosingAProcessWithOnlyHiddenWindowsPostsNothing) {
  ProcessDescription hidden;
  hidden.visible = false;
  const std::uint32_t id = processes.Add(hidden);
  EXPECT_FALSE(CloseProcessWindows(id, 500, WM_CLOSE));
  EXPECT_TRUE(processes.Posted().empty());
  EXPECT_EQ(sim.Now(), 0u);  // at once
}

TEST_F(ProcessFinder, AnIconicWindowIsAskedToCloseAsAVisibleOneIs) {
  ProcessDescription iconic;
  iconic.visible = false;
  iconic.iconic = true;
  const std::uint32_t id = processes.Add(iconic);
  EXPECT_TRUE(CloseProcessWindows(id, 500, WM_CLOSE));
  EXPECT_EQ(processes.Posted(), (std::vector<PostedMessage>{{0, id, WM_CLOSE}}));
}

TEST_F(ProcessFinder, AnyOtherMessageGoesToHiddenWindowsToo) {
  ProcessDescription hidden;
  hidden.visible = false;
  const std::uint32_t id = processes.Add(hidden);
  EXPECT_TRUE(CloseProcessWindows(id, 500, kAny));
  EXPECT_EQ(processes.Posted(), (std::vector<PostedMessage>{{0, id, kAny}}));
}

TEST_F(ProcessFinder, AProcessWithoutAWindowIsLeftAloneAtOnce) {
  ProcessDescription windowless;
  windowless.hasWindow = false;
  const std::uint32_t id = processes.Add(windowless);
  EXPECT_FALSE(CloseProcessWindows(id, 500, WM_CLOSE));
  EXPECT_FALSE(CloseProcessWindows(id, 500, kAny));
  EXPECT_EQ(sim.Now(), 0u);
}

TEST_F(ProcessFinder, OnlyTheWindowsOfThatProcessAreAsked) {
  const std::uint32_t id = processes.Add({});
  const std::uint32_t other = processes.Add({});
  EXPECT_TRUE(CloseProcessWindows(id, 500, WM_CLOSE));
  EXPECT_TRUE(processes.Runs(other));
}

TEST_F(ProcessFinder, LooksEachTenMillisecondsWhetherTheProcessIsGone) {
  ProcessDescription slow;
  slow.endsAfterClose = 35;
  const std::uint32_t id = processes.Add(slow);
  sim.LogCalls(true);
  EXPECT_TRUE(CloseProcessWindows(id, 500, WM_CLOSE));
  EXPECT_EQ(sim.Now(), 40u);
  EXPECT_EQ(std::count(sim.Calls().begin(), sim.Calls().end(), "ListProcesses"), 4);
}

TEST_F(ProcessFinder, GivesUpAfterTheWaitWithOneMoreLook) {
  ProcessDescription stubborn;
  stubborn.endsAfterClose = ProcessDescription::kNever;
  const std::uint32_t id = processes.Add(stubborn);
  sim.LogCalls(true);
  EXPECT_FALSE(CloseProcessWindows(id, 500, WM_CLOSE));
  EXPECT_EQ(sim.Now(), 500u);
  EXPECT_EQ(std::count(sim.Calls().begin(), sim.Calls().end(), "ListProcesses"), 51);
}

TEST_F(ProcessFinder, WithoutAWaitThereIsASingleLook) {
  const std::uint32_t id = processes.Add({});  // ends in a moment, which is too late
  sim.LogCalls(true);
  EXPECT_FALSE(CloseProcessWindows(id, 0, kAny));
  EXPECT_EQ(std::count(sim.Calls().begin(), sim.Calls().end(), "ListProcesses"), 1);
  EXPECT_EQ(sim.Now(), 0u);
}

TEST_F(ProcessFinder, AListingThatFailsCountsAsAnEndedProcess) {
  const std::uint32_t id = processes.Add({});
  sim.FailAlways("ListProcesses");
  EXPECT_TRUE(CloseProcessWindows(id, 500, WM_CLOSE));
  EXPECT_EQ(sim.Now(), 10u);
  EXPECT_TRUE(CloseProcessWindows(processes.Add({}), 0, kAny));
  EXPECT_EQ(sim.Now(), 10u);
}

TEST_F(ProcessFinder, AWaitOverTheWrapOfTheClockIsAsLong) {
  ProcessDescription stubborn;
  stubborn.endsAfterClose = ProcessDescription::kNever;
  const std::uint32_t id = processes.Add(stubborn);
  sim.SetTickOffset(0xFFFFFF00u);
  EXPECT_FALSE(CloseProcessWindows(id, 500, WM_CLOSE));
  EXPECT_EQ(sim.Now(), 500u);
}

}  // namespace
}  // namespace kelvaro
