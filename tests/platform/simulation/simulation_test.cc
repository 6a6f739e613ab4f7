#include "app/platform/simulation/simulation.h"

#include <gtest/gtest.h>

#include "app/platform/simulation/desktop_simulation.h"
#include "tests/platform/simulation/virtual_thread.h"

namespace platform::simulation {
namespace {

TEST(Simulation, KeepsEventsWithTheirTimes) {
  Simulation sim;
  sim.RunFor(120);
  keybd_event(0x41, 0x1E, 0, 0);
  sim.RunFor(5);
  keybd_event(0xA5, 0xB8, KEYEVENTF_EXTENDEDKEY | KEYEVENTF_KEYUP, 0);
  mouse_event(MOUSEEVENTF_MOVE | MOUSEEVENTF_WHEEL, 4, -1, -120, 0);
  ASSERT_EQ(sim.Events().size(), 3u);
  SentEvent key;
  key.t = 120;
  key.vk = 0x41;
  key.scan = 0x1E;
  EXPECT_EQ(sim.Events()[0], key);
  EXPECT_EQ(sim.EventText(),
            "120 key 41 1e 0\n"
            "125 key a5 b8 3\n"
            "125 mouse 2049 4 -1 -120\n");
  sim.ClearEvents();
  EXPECT_EQ(sim.EventText(), "");
}

TEST(Simulation, WritesAnEventAsOneLine) {
  SentEvent key;
  key.t = 18446744073709551615u;
  key.vk = 0xFF;
  key.scan = 0x07;
  key.flags = 4294967295u;
  EXPECT_EQ(EventText(key), "18446744073709551615 key ff 7 4294967295");
  SentEvent mouse;
  mouse.kind = SentEvent::Kind::Mouse;
  mouse.flags = 1;
  mouse.dx = INT32_MIN;
  mouse.dy = INT32_MAX;
  EXPECT_EQ(EventText(mouse), "0 mouse 1 -2147483648 2147483647 0");
}

TEST(Simulation, TellsAListenerOfEachEvent) {
  Simulation sim;
  std::string heard;
  sim.OnEvent([&](const SentEvent& event) { heard += EventText(event) + ";"; });
  sim.KeepEvents(false);
  sim.RunFor(3);
  keybd_event(1, 2, 0, 0);
  mouse_event(1, 2, 3, 4, 0);
  EXPECT_EQ(heard, "3 key 1 2 0;3 mouse 1 2 3 4;");
  EXPECT_TRUE(sim.Events().empty());
  sim.OnEvent(nullptr);
  sim.KeepEvents(true);
  keybd_event(1, 2, 2, 0);
  EXPECT_EQ(sim.EventText(), "3 key 1 2 2\n");
}

TEST(Simulation, LosesEventsAsPlanned) {
  Simulation sim;
  sim.FailNext("keybd_event");
  keybd_event(1, 2, 0, 0);
  keybd_event(3, 4, 0, 0);
  sim.FailNext("mouse_event", DIERR_INVALIDPARAM, 2);
  for (int event = 0; event < 3; ++event) mouse_event(1, event, 0, 0, 0);
  EXPECT_EQ(sim.EventText(), "0 key 3 4 0\n0 mouse 1 2 0 0\n");
}

TEST(DesktopSimulation, AnswersMessageBoxesInOrder) {
  DesktopSimulation sim;
  sim.AnswerMessageBox(IDYES);
  sim.AnswerMessageBox(IDNO);
  EXPECT_EQ(MessageBoxA(7, "Really?", "Kelvaro", MB_YESNO), IDYES);
  EXPECT_EQ(MessageBoxA(0, "Sure?", "Kelvaro", MB_YESNO), IDNO);
  EXPECT_EQ(MessageBoxA(0, "Told.", "Kelvaro", MB_OK), 0) << "not foreseen";
  ASSERT_EQ(sim.MessageBoxes().size(), 3u);
  EXPECT_EQ(sim.MessageBoxes()[0].owner, 7u);
  EXPECT_EQ(sim.MessageBoxes()[0].text, "Really?");
  EXPECT_EQ(sim.MessageBoxes()[0].caption, "Kelvaro");
  EXPECT_EQ(sim.MessageBoxes()[0].type, MB_YESNO);
  sim.AnswerMessageBox(IDOK);
  sim.FailNext("MessageBoxA");
  EXPECT_EQ(MessageBoxA(0, "Unseen", "Kelvaro", MB_OK), 0);
  EXPECT_EQ(sim.MessageBoxes().size(), 3u);
  EXPECT_EQ(MessageBoxA(0, "Seen", "Kelvaro", MB_OK), IDOK);
}

TEST(Simulation, HasMessagesForSomeCodes) {
  Simulation sim;
  EXPECT_EQ(FormatMessageA(2), "The system cannot find the file specified.\r\n");
  EXPECT_EQ(FormatMessageA(12345), "");
  sim.SetSystemMessage(12345, "Out of luck.\r\n");
  EXPECT_EQ(FormatMessageA(12345), "Out of luck.\r\n");
  sim.FailNext("FormatMessageA");
  EXPECT_EQ(FormatMessageA(12345), "");
}

TEST(Simulation, FaultsComeAsOftenAsPlanned) {
  Simulation sim;
  const Handle event = CreateEventA(true, false);
  sim.FailNext("SetEvent", DIERR_INVALIDPARAM, 2);
  EXPECT_FALSE(SetEvent(event));
  EXPECT_FALSE(SetEvent(event));
  EXPECT_TRUE(SetEvent(event));
  sim.FailNext("SetEvent", DIERR_INVALIDPARAM, 2);
  sim.FailNext("SetEvent", DIERR_INVALIDPARAM, 0);
  EXPECT_TRUE(SetEvent(event)) << "a plan takes the place of the one before";
  sim.FailAlways("SetEvent");
  for (int call = 0; call < 100; ++call) EXPECT_FALSE(SetEvent(event));
  sim.Mend("SetEvent");
  EXPECT_TRUE(SetEvent(event));
}

TEST(Simulation, OneGroupCanBeReplaced) {
  class CountedInput final : public Input {
   public:
    void keybd_event(std::uint8_t, std::uint8_t, std::uint32_t, std::uint32_t) override { ++keys; }
    void mouse_event(std::uint32_t, std::int32_t, std::int32_t, std::int32_t,
                     std::uint32_t) override {}
    int keys = 0;
  } input;
  Simulation sim;
  Platform groups = sim.Groups();
  groups.input = &input;
  {
    const InstalledPlatform installed(groups);
    keybd_event(1, 2, 0, 0);
    Sleep(4);
  }
  keybd_event(1, 2, 0, 0);
  EXPECT_EQ(input.keys, 1);
  EXPECT_EQ(sim.EventText(), "4 key 1 2 0\n");
}

TEST(Simulation, EachStartsAnew) {
  for (int round = 0; round < 2; ++round) {
    Simulation sim;
    EXPECT_EQ(sim.Now(), 0u);
    EXPECT_EQ(sim.EventText(), "");
    EXPECT_EQ(CreateEventA(false, false), 1);
    keybd_event(1, 2, 0, 0);
    sim.FailAlways("CreateEventA");
    EXPECT_EQ(CreateEventA(false, false), kInvalidHandle);
    sim.RunFor(10);
  }
}

}  // namespace
}  // namespace platform::simulation
