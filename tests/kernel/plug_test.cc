// Pads that come and go, and equal pads that must not be taken for one another.

#include <gtest/gtest.h>
#include <linux/input.h>

#include <memory>

#include "tests/kernel/pad.h"
#include "tests/kernel/profile_run.h"
#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

PadShape PlugPad(const std::string& port) { return OrdinaryPad("Plug Pad", port); }

// The identities of all devices called `name`, in the order of the list.
std::vector<std::string> Guids(const std::string& name) {
  std::vector<std::string> guids;
  for (const tests::Json& device : Devices()) {
    if (device["name"].Text() == name) guids.push_back(device["guid"].Text());
  }
  return guids;
}

// What a pad that has just been plugged in holds is sent when it is known again, however long that
// takes: a busy host makes the machine's clock leap.
::testing::AssertionResult SentOnceItIsBack(Reader& reader,
                                            const std::vector<std::string>& expected) {
  reader.WaitFor(expected.size(), 20000);
  return Sent(reader, expected);
}

TEST(Plug, PulledPadLetsGoAndWorksAgainEachTimeItIsBack) {
  auto pad = std::make_unique<UinputPad>(PlugPad("test/port0"));
  ProfileRun run(ProfileOf({ButtonControl(0, "a"), ButtonControl(1, "b")}), "Plug Pad",
                 pad->Node());
  ASSERT_TRUE(run.Started());
  std::vector<std::string> expected;
  for (int time = 0; time < 4; ++time) {
    SCOPED_TRACE(time);
    pad->Press(0);
    expected.push_back("KEY_A down");
    ASSERT_TRUE(Sent(run.Keyboard(), expected));
    pad.reset();
    expected.push_back("KEY_A up");
    ASSERT_TRUE(Sent(run.Keyboard(), expected)) << "the button was down when the pad went away";
    WaitMs(200);
    pad = std::make_unique<UinputPad>(PlugPad("test/port0"));
    pad->Press(1);
    expected.push_back("KEY_B down");
    ASSERT_TRUE(SentOnceItIsBack(run.Keyboard(), expected));
    pad->Release(1);
    expected.push_back("KEY_B up");
    ASSERT_TRUE(Sent(run.Keyboard(), expected));
  }
  EXPECT_TRUE(run.Process().Running());
}

TEST(Plug, PadOfAReportDescriptorIsKnownAgainByItsSerialNumber) {
  auto pad = std::make_unique<UhidPad>("Descriptor Pad", "serial-1");
  ProfileRun run(ProfileOf({ButtonControl(0, "a"), ItemControl(8, 0, 4, "<Right>")}),
                 "Descriptor Pad", pad->Node());
  ASSERT_TRUE(run.Started());
  std::vector<std::string> expected;
  for (int time = 0; time < 4; ++time) {
    SCOPED_TRACE(time);
    pad->Report(1);
    WaitMs(50);
    pad->Report(1, {128, 128, 128, 128}, 2);
    expected.insert(expected.end(), {"KEY_A down", "KEY_RIGHT down"});
    ASSERT_TRUE(Sent(run.Keyboard(), expected));
    pad.reset();
    expected.insert(expected.end(), {"KEY_A up", "KEY_RIGHT up"});
    ASSERT_TRUE(Sent(run.Keyboard(), expected)) << "both were held when the pad went away";
    pad = std::make_unique<UhidPad>("Descriptor Pad", "serial-1");
    ASSERT_TRUE(Sent(run.Keyboard(), expected));
    WaitMs(100);
  }
}

TEST(Plug, AnotherPadInItsPlaceIsNotTakenForIt) {
  auto pad = std::make_unique<UhidPad>("Descriptor Pad", "serial-1");
  ProfileRun run(ProfileOf({ButtonControl(0, "a")}), "Descriptor Pad", pad->Node());
  ASSERT_TRUE(run.Started());
  pad.reset();
  WaitMs(100);
  UhidPad other("Descriptor Pad", "serial-2");
  WaitMs(3000);  // as long as one on another port would take
  other.Report(1);
  EXPECT_TRUE(Sent(run.Keyboard(), {}));
  pad = std::make_unique<UhidPad>("Descriptor Pad", "serial-1");
  pad->Report(1);
  EXPECT_TRUE(SentOnceItIsBack(run.Keyboard(), {"KEY_A down"}));
}

// Nothing but the make and the name is the same, and then not even the port of the time before.
TEST(Plug, PadWithoutASerialNumberWorksAgainWhereverItIsPluggedIn) {
  PadShape there = PlugPad("test/port0");
  auto pad = std::make_unique<UinputPad>(there);
  ProfileRun run(ProfileOf({ButtonControl(0, "a"), ButtonControl(1, "b")}), "Plug Pad",
                 pad->Node());
  ASSERT_TRUE(run.Started());
  const struct {
    const char* port;
    std::uint16_t bus, version;
  } places[] = {{"test/port9", BUS_USB, 1},
                {"test/port9", BUS_USB, 0x0111},
                {"test/radio", BUS_BLUETOOTH, 1}};
  std::vector<std::string> expected;
  for (const auto& place : places) {
    SCOPED_TRACE(place.port);
    pad->Press(0);
    expected.push_back("KEY_A down");
    ASSERT_TRUE(Sent(run.Keyboard(), expected));
    pad.reset();
    expected.push_back("KEY_A up");
    ASSERT_TRUE(Sent(run.Keyboard(), expected));
    there.phys = place.port;
    there.bus = place.bus;
    there.version = place.version;
    pad = std::make_unique<UinputPad>(there);
    pad->Press(1);
    expected.push_back("KEY_B down");
    ASSERT_TRUE(SentOnceItIsBack(run.Keyboard(), expected));
    pad->Release(1);
    expected.push_back("KEY_B up");
    ASSERT_TRUE(Sent(run.Keyboard(), expected));
  }
}

TEST(Plug, OfTwoEqualPadsOnOtherPortsNeitherIsTaken) {
  auto pad = std::make_unique<UinputPad>(PlugPad("test/port0"));
  ProfileRun run(ProfileOf({ButtonControl(0, "a")}), "Plug Pad", pad->Node());
  ASSERT_TRUE(run.Started());
  pad.reset();
  WaitMs(100);
  UinputPad one(PlugPad("test/port8"));
  UinputPad other(PlugPad("test/port9"));
  WaitMs(3000);
  one.Press(0);
  other.Press(0);
  EXPECT_TRUE(Sent(run.Keyboard(), {}));
  pad = std::make_unique<UinputPad>(PlugPad("test/port0"));
  pad->Press(0);
  EXPECT_TRUE(SentOnceItIsBack(run.Keyboard(), {"KEY_A down"}));
}

TEST(Plug, ASerialNumberIsKnownAgainByCableAndByRadio) {
  auto pad = std::make_unique<UhidPad>("Descriptor Pad", "serial-1", BUS_BLUETOOTH);
  ProfileRun run(ProfileOf({ButtonControl(0, "a")}), "Descriptor Pad", pad->Node());
  ASSERT_TRUE(run.Started());
  std::vector<std::string> expected;
  for (const std::uint16_t bus : {BUS_USB, BUS_BLUETOOTH}) {
    SCOPED_TRACE(bus);
    pad.reset();
    WaitMs(100);
    pad = std::make_unique<UhidPad>("Descriptor Pad", "serial-1", bus);
    pad->Report(1);
    expected.push_back("KEY_A down");
    ASSERT_TRUE(SentOnceItIsBack(run.Keyboard(), expected));
    pad->Report(0);
    expected.push_back("KEY_A up");
    ASSERT_TRUE(Sent(run.Keyboard(), expected));
  }
}

// Plugs two equal pads in, and again the other way round: the list follows the kernel's numbers.
template <typename Plug>
void ExpectIdentitiesOfTheirOwn(const std::string& name, Plug plug) {
  auto first = plug(1);
  auto second = plug(2);
  const std::vector<std::string> before = Guids(name);
  ASSERT_EQ(before.size(), 2U);
  EXPECT_NE(before[0], before[1]);
  first.reset();
  second.reset();
  second = plug(2);
  first = plug(1);
  EXPECT_EQ(Guids(name), (std::vector<std::string>{before[1], before[0]}));
}

TEST(Plug, EqualPadsKeepTheirIdentitiesByTheirSerialNumbers) {
  ExpectIdentitiesOfTheirOwn("Descriptor Pad", [](int number) {
    return std::make_unique<UhidPad>("Descriptor Pad", "serial-" + std::to_string(number));
  });
}

TEST(Plug, EqualPadsWithoutSerialNumbersKeepTheirIdentitiesByTheirPorts) {
  ExpectIdentitiesOfTheirOwn("Plug Pad", [](int number) {
    return std::make_unique<UinputPad>(PlugPad("test/port" + std::to_string(number)));
  });
}

TEST(Plug, ProfileFindsItsOwnOfTwoEqualPadsAfterARestart) {
  for (const bool turned : {false, true}) {
    SCOPED_TRACE(turned);
    static std::string guid;  // of port 2, found out in the first round
    std::unique_ptr<UinputPad> first;
    std::unique_ptr<UinputPad> second;
    if (turned) {
      second = std::make_unique<UinputPad>(PlugPad("test/port2"));
      first = std::make_unique<UinputPad>(PlugPad("test/port1"));
    } else {
      first = std::make_unique<UinputPad>(PlugPad("test/port1"));
      second = std::make_unique<UinputPad>(PlugPad("test/port2"));
      const std::vector<std::string> guids = Guids("Plug Pad");
      ASSERT_EQ(guids.size(), 2U);
      guid = guids[1];
    }
    ProfileRun run(ProfileOf({ButtonControl(0, "a"), ButtonControl(1, "b")},
                             "\"deviceName\":\"Plug Pad\",\"deviceGuid\":\"" + guid + "\""),
                   "", second->Node());
    ASSERT_TRUE(run.Started());
    first->Press(0);
    second->Press(1);
    EXPECT_TRUE(Sent(run.Keyboard(), {"KEY_B down"}));
  }
}

}  // namespace
}  // namespace kelvaro::kernel
