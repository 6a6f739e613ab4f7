#include "console/stoppable_replay.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "app/platform/platform.h"
#include "keys/key_action.h"
#include "tests/console/console_run.h"

namespace kelvaro::console {
namespace {

// Writes down what arrives, and asks for the end at one of the waits.
class Machine final : public platform::Clock, public platform::Input {
 public:
  void Sleep(std::uint32_t) override { ADD_FAILURE() << "a wait that no signal can end"; }
  std::uint32_t GetTickCount() override { return 7; }
  void keybd_event(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags,
                   std::uint32_t) override {
    sent += "key " + std::to_string(vk) + " " + std::to_string(scan) + " " + std::to_string(flags) +
            "\n";
  }
  void mouse_event(std::uint32_t flags, std::int32_t, std::int32_t, std::int32_t,
                   std::uint32_t) override {
    sent += "mouse " + std::to_string(flags) + "\n";
  }
  std::string Sent() { return std::exchange(sent, {}); }

 private:
  std::string sent;
};

class StoppableReplayTest : public ::testing::Test {
 protected:
  Machine machine;
  StopSignals signals;
  StoppableReplay replay{machine, machine, signals};
};

TEST_F(StoppableReplayTest, PassesEverythingOnUntilASignalComes) {
  replay.keybd_event('A', 30, 0, 0);
  replay.Sleep(1);
  replay.mouse_event(2, 0, 0, 0, 0);
  EXPECT_EQ(machine.Sent(), "key 65 30 0\nmouse 2\n");
  StopSignals::Ask();
  replay.keybd_event('A', 30, 2, 0);
  replay.mouse_event(4, 0, 0, 0, 0);
  EXPECT_EQ(machine.Sent(), "");
}

TEST_F(StoppableReplayTest, ASignalEndsTheWaitUnderWayAndAllThatFollow) {
  StopSignals::Ask();
  replay.Sleep(4000000000);  // 46 days
  replay.Sleep(4000000000);
}

TEST_F(StoppableReplayTest, LetsGoOfWhatIsDownInTheOrderOfThePresses) {
  replay.keybd_event(0xA3, 0x9D, 1, 0);
  replay.mouse_event(8, 0, 0, 0, 0);
  replay.keybd_event('A', 30, 0, 0);
  replay.keybd_event('B', 48, 0, 0);
  replay.keybd_event('A', 30, 0, 0);
  replay.keybd_event(3, 48, 2, 0);  // behind a long pause; nobody pressed it
  replay.keybd_event('A', 30, 2, 0);
  replay.mouse_event(2, 0, 0, 0, 0);
  replay.mouse_event(4, 0, 0, 0, 0);
  machine.Sent();
  StopSignals::Ask();
  replay.Sleep(4000000000);
  replay.LetGo();
  EXPECT_EQ(machine.Sent(), "key 163 157 3\nmouse 16\nkey 66 48 2\n");
  replay.LetGo();
  EXPECT_EQ(machine.Sent(), "");
}

TEST_F(StoppableReplayTest, AReplayWithLongPausesComesToItsEnd) {
  platform::Platform groups;
  groups.clock = &replay;
  groups.input = &replay;
  const platform::InstalledPlatform installed(groups);
  KeyAction action;
  ASSERT_EQ(action.ParseKeys("a<P:65535>b<P:65535>c"), -1);
  StopSignals::Ask();
  action.Replay(0, 4000000000, 4000000000);
  EXPECT_EQ(machine.Sent(), "");
}

}  // namespace
}  // namespace kelvaro::console
