#include "app/platform/simulation/simulation.h"

#include <gtest/gtest.h>

#include "app/platform/simulation/simulation.h"
#include "tests/platform/simulation/virtual_thread.h"

namespace platform::simulation {
namespace {

TEST(Simulation, KeepsEventsWithTheirTimes) {
  Simulation sim;
  sim.RunFor(120);
  input().keybd_event(0x41, 0x1E, 0, 0);
  sim.RunFor(5);
  input().keybd_event(0xA5, 0xB8, KEYEVENTF_EXTENDEDKEY | KEYEVENTF_KEYUP, 0);
  input().mouse_event(MOUSEEVENTF_MOVE | MOUSEEVENTF_WHEEL, 4, -1, -120, 0);
  ASSERT_EQ(sim.Events().size(), 3u);
  EXPECT_EQ(sim.Events()[0], SentKey(120, 0x41, 0x1E, 0));
  EXPECT_EQ(sim.EventText(),
            "120 key 41 1e 0\n"
            "125 key a5 b8 3\n"
            "125 mouse 2049 4 -1 -120\n");
  sim.ClearEvents();
  EXPECT_EQ(sim.EventText(), "");
}

TEST(Simulation, WritesAnEventAsOneLine) {
  EXPECT_EQ(EventText(SentKey(UINT64_MAX, 0xFF, 0x07, UINT32_MAX)),
            "18446744073709551615 key ff 7 4294967295");
  EXPECT_EQ(EventText(SentMouse(0, 1, INT32_MIN, INT32_MAX, 0)),
            "0 mouse 1 -2147483648 2147483647 0");
}

TEST(Simulation, TellsAListenerOfEachEvent) {
  Simulation sim;
  std::string heard;
  sim.OnEvent([&](const SentEvent& event) { heard += EventText(event) + ";"; });
  sim.KeepEvents(false);
  sim.RunFor(3);
  input().keybd_event(1, 2, 0, 0);
  input().mouse_event(1, 2, 3, 4, 0);
  EXPECT_EQ(heard, "3 key 1 2 0;3 mouse 1 2 3 4;");
  EXPECT_TRUE(sim.Events().empty());
  sim.OnEvent(nullptr);
  sim.KeepEvents(true);
  input().keybd_event(1, 2, 2, 0);
  EXPECT_EQ(sim.EventText(), "3 key 1 2 2\n");
}

TEST(Simulation, LosesEventsAsPlanned) {
  Simulation sim;
  sim.FailNext("keybd_event");
  input().keybd_event(1, 2, 0, 0);
  input().keybd_event(3, 4, 0, 0);
  sim.FailNext("mouse_event", DIERR_INVALIDPARAM, 2);
  for (int event = 0; event < 3; ++event) input().mouse_event(1, event, 0, 0, 0);
  EXPECT_EQ(sim.EventText(), "0 key 3 4 0\n0 mouse 1 2 0 0\n");
}

TEST(Simulation, HasMessagesForSomeCodes) {
  Simulation sim;
  EXPECT_EQ(system().FormatMessageA(2), "The system cannot find the file specified.\r\n");
  EXPECT_EQ(system().FormatMessageA(12345), "");
  sim.SetSystemMessage(12345, "Out of luck.\r\n");
  EXPECT_EQ(system().FormatMessageA(12345), "Out of luck.\r\n");
  sim.FailNext("FormatMessageA");
  EXPECT_EQ(system().FormatMessageA(12345), "");
}

TEST(Simulation, FaultsComeAsOftenAsPlanned) {
  Simulation sim;
  const Handle event = threads().CreateEventA(true, false);
  sim.FailNext("SetEvent", DIERR_INVALIDPARAM, 2);
  EXPECT_FALSE(threads().SetEvent(event));
  EXPECT_FALSE(threads().SetEvent(event));
  EXPECT_TRUE(threads().SetEvent(event));
  sim.FailNext("SetEvent", DIERR_INVALIDPARAM, 2);
  sim.FailNext("SetEvent");
  EXPECT_FALSE(threads().SetEvent(event));
  EXPECT_TRUE(threads().SetEvent(event)) << "a plan takes the place of the one before";
  sim.FailAlways("SetEvent");
  for (int call = 0; call < 100; ++call) EXPECT_FALSE(threads().SetEvent(event));
  sim.Mend("SetEvent");
  EXPECT_TRUE(threads().SetEvent(event));
}

TEST(SimulationDeathTest, AFaultThatNeverComesEndsTheTest) {
  EXPECT_DEATH(Simulation().FailNext("Aquire"), "the fault of Aquire never came");
}

using SimulationTest = ThreadedTest;

TEST_F(SimulationTest, OperationsFailAsPlannedAndDoNothing) {
  const Handle event = threads().CreateEventA(true, true);
  const Handle thread = bodies.Start("worker", [] { clock().Sleep(1); });
  const std::uint32_t timer = bodies.Tick(5, [] {});
  timers().timeBeginPeriod(5);
  sim.Registry().PutDword("HKCU", "n", 1);
  sim.Registry().PutKey("HKCU\\sub");
  TIMECAPS caps;
  HKEY key = 0;
  std::uint32_t number = 0;
  std::uint32_t size = 8;
  char name[8];
  DirectInput* directory = nullptr;
  const struct {
    const char* name;
    std::function<bool()> works;
  } kOperations[] = {
      {"CreateThread", [&] { return bodies.Start("worker", [] {}) != kInvalidHandle; }},
      {"GetExitCodeThread", [&] { return threads().GetExitCodeThread(thread, &number); }},
      {"TerminateThread", [&] { return threads().TerminateThread(thread, 8); }},
      {"SetCurrentThreadPriority", [] { return threads().SetCurrentThreadPriority(1); }},
      {"GetCurrentThreadPriority", [] { return threads().GetCurrentThreadPriority() == 1; }},
      {"SetPriorityClass", [] { return threads().SetPriorityClass(HIGH_PRIORITY_CLASS); }},
      {"CreateEventA manual", [] { return threads().CreateEventA(true, true) != kInvalidHandle; }},
      {"CreateEventA auto", [] { return threads().CreateEventA(false, true) != kInvalidHandle; }},
      {"SetEvent", [&] { return threads().SetEvent(event); }},
      {"ResetEvent", [&] { return threads().ResetEvent(event); }},
      {"WaitForSingleObject",
       [&] { return threads().WaitForSingleObject(event, 0) != WAIT_FAILED; }},
      {"WaitForMultipleObjects",
       [&] { return threads().WaitForMultipleObjects(1, &event, 0) != WAIT_FAILED; }},
      {"CloseHandle", [&] { return threads().CloseHandle(event); }},
      {"timeGetDevCaps", [&] { return timers().timeGetDevCaps(&caps) == TIMERR_NOERROR; }},
      {"timeBeginPeriod", [] { return timers().timeBeginPeriod(6) == TIMERR_NOERROR; }},
      {"timeEndPeriod", [] { return timers().timeEndPeriod(5) == TIMERR_NOERROR; }},
      {"timeSetEvent", [&] { return bodies.Tick(5, [] {}) != 0; }},
      {"timeKillEvent", [&] { return timers().timeKillEvent(timer) == TIMERR_NOERROR; }},
      {"RegOpenKeyA", [&] { return registry().RegOpenKeyA(HKEY_CURRENT_USER, "sub", &key) == 0; }},
      {"RegCreateKeyA",
       [&] { return registry().RegCreateKeyA(HKEY_CURRENT_USER, "new", &key) == 0; }},
      {"RegSetValueExA", [&] { return registry().RegSetValueExA(key, "m", REG_NONE, "", 0) == 0; }},
      {"RegQueryValueExA",
       [&] { return registry().RegQueryValueExA(key, "m", nullptr, nullptr, nullptr) == 0; }},
      {"RegEnumValueA",
       [&] {
         return registry().RegEnumValueA(key, 0, name, &size, nullptr, nullptr, nullptr) == 0;
       }},
      {"RegEnumKeyA", [&] { return registry().RegEnumKeyA(HKEY_CURRENT_USER, 0, name, 8) == 0; }},
      {"RegDeleteValueA", [&] { return registry().RegDeleteValueA(key, "m") == 0; }},
      {"RegCloseKey", [&] { return registry().RegCloseKey(key) == 0; }},
      {"DirectInput8Create",
       [&] { return devices().DirectInput8Create(0x0800, &directory) == DI_OK; }},
  };
  for (const auto& operation : kOperations) {
    sim.FailNext(operation.name);
    EXPECT_FALSE(operation.works()) << operation.name;
    EXPECT_TRUE(operation.works()) << operation.name << ": not carried out before";
  }
}

TEST_F(SimulationTest, CallsAreKeptInOrderWithWhatTellsThemApart) {
  threads().CreateEventA(true, false);
  EXPECT_TRUE(sim.Calls().empty());
  sim.LogCalls(true);
  const Handle event = threads().CreateEventA(false, false);
  const Handle thread = bodies.Start(
      "notification", [] { threads().SetCurrentThreadPriority(THREAD_PRIORITY_TIME_CRITICAL); });
  threads().WaitForSingleObject(thread, 5);
  clock().Sleep(3);
  threads().SetEvent(event);
  threads().CloseHandle(thread);
  timers().timeKillEvent(bodies.Tick(5, [] {}));
  input().keybd_event(1, 2, 0, 0);
  HKEY key = 0;
  registry().RegCreateKeyA(HKEY_CURRENT_USER, "a", &key);
  registry().RegSetValueExA(key, "the name", REG_SZ, "", 1);
  registry().RegCloseKey(key);
  registry().RegDeleteValueA(key, "the name");
  DirectInput* directory = nullptr;
  devices().DirectInput8Create(DIRECTINPUT_VERSION_8, &directory);
  directory->Release();
  EXPECT_EQ(sim.Calls(),
            (std::vector<std::string>{
                "CreateEventA auto", "CreateThread notification", "SetCurrentThreadPriority 15",
                "ThreadEnded notification 0", "Sleep 3", "SetEvent 2", "CloseHandle 3",
                "timeSetEvent 5 1", "timeKillEvent 1", "RegCreateKeyA HKCU\\a",
                "RegSetValueExA HKCU\\a the name", "RegCloseKey HKCU\\a",
                "RegDeleteValueA ? the name", "DirectInput8Create", "Release DirectInput"}));
  sim.ClearCalls();
  sim.LogCalls(false);
  threads().SetEvent(event);
  EXPECT_TRUE(sim.Calls().empty());
}

TEST(Simulation, OneGroupCanBeReplaced) {
  class CountedInput final : public Input {
   public:
    void keybd_event(std::uint8_t, std::uint8_t, std::uint32_t, std::uint32_t) override { ++keys; }
    void mouse_event(std::uint32_t, std::int32_t, std::int32_t, std::int32_t,
                     std::uint32_t) override {}
    int keys = 0;
  } counted;
  Simulation sim;
  Platform groups = sim.Groups();
  groups.input = &counted;
  {
    const InstalledPlatform installed(groups);
    input().keybd_event(1, 2, 0, 0);
    clock().Sleep(4);
  }
  input().keybd_event(1, 2, 0, 0);
  EXPECT_EQ(counted.keys, 1);
  EXPECT_EQ(sim.EventText(), "4 key 1 2 0\n");
}

TEST(Simulation, EachStartsAnew) {
  for (int round = 0; round < 2; ++round) {
    Simulation sim;
    EXPECT_EQ(sim.Now(), 0u);
    EXPECT_EQ(sim.EventText(), "");
    EXPECT_EQ(threads().CreateEventA(false, false), 1);
    input().keybd_event(1, 2, 0, 0);
    sim.FailAlways("CreateEventA auto");
    EXPECT_EQ(threads().CreateEventA(false, false), kInvalidHandle);
    sim.RunFor(10);
  }
}

}  // namespace
}  // namespace platform::simulation
