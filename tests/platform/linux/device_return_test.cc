// By what a lost device is known again, and what a search costs. The thread that searches has its
// tests with the device that uses it, in linux_devices_test.cc.
#include "app/platform/linux/device_return.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "tests/platform/linux/evdev_description.h"
#include "tests/platform/linux/fake_nodes.h"

namespace platform {
namespace {

struct Make {
  const char* name = "Pad";
  const char* serial = "";
  const char* port = "port1";
  int bus = BUS_USB;
  int version = 1;
  int product = 0x5678;
  int vendor = 0x1234;
};

DeviceFacts FactsOf(const Make& make) {
  EvdevDescription described(make.name);
  described.Bus(make.bus).Ids(make.vendor, make.product, make.version);
  described.Unique(make.serial).Physical(make.port).Keys({BTN_A}).Axes({ABS_X, ABS_Y});
  return described.Facts();
}

class ReturnSearchTest : public ::testing::Test {
 protected:
  using Plugged = std::shared_ptr<FakeMachine::Plugged>;

  ReturnSearchTest() {
    source->nodes = std::make_unique<FakeNodes>(machine);
    source->nowMs = [this] { return machine.nowMs.load(); };
  }

  Plugged Plug(const Make& make) { return machine.Plug(++lastNumber, FactsOf(make)); }
  // The device is in use from here on. Whatever is there has been listed.
  void Use(const Plugged& device) {
    GUID identity;
    for (const Plugged& other : machine.plugged) {
      const GUID its = source->identities.Assign(other->place.place, other->place.ids);
      if (other == device) identity = its;
    }
    search = std::make_unique<ReturnSearch>(source, device->place, identity);
  }
  Plugged PlugForUse(const Make& make) {
    const Plugged pad = Plug(make);
    Use(pad);
    return pad;
  }
  void Lose(const Plugged& device) {
    machine.Pull(device);
    EXPECT_EQ(search->Look(true), nullptr);
  }
  Plugged PlugAndLose(const Make& make) {
    const Plugged pad = PlugForUse(make);
    Lose(pad);
    return pad;
  }
  bool IsBack() { return search->Look(false) != nullptr; }
  // Whatever the news is.
  void LookNow() { machine.Tell(NodeWatch::Report::Overrun); }
  // Within so many milliseconds, with a look at each.
  bool ComesBackIn(int ms) {
    for (int i = 0; i < ms; ++i, ++machine.nowMs) {
      if (IsBack()) return true;
    }
    return false;
  }

  FakeMachine machine;
  std::shared_ptr<DeviceSource> source = std::make_shared<DeviceSource>();
  std::unique_ptr<ReturnSearch> search;
  int lastNumber = 0;
};

// What it is known by

TEST_F(ReturnSearchTest, ItsOwnIdentityIsBackAtOnce) {
  for (const char* serial : {"", "serial"}) {
    PlugAndLose({.serial = serial});
    EXPECT_FALSE(IsBack());
    const Plugged back = Plug({.serial = serial});
    EXPECT_TRUE(IsBack());
    machine.Pull(back);
  }
}

TEST_F(ReturnSearchTest, AReturnBeforeTheLossWasToldIsFoundAtOnce) {
  const Plugged pad = PlugForUse({});
  machine.Pull(pad);
  Plug({});
  EXPECT_NE(search->Look(true), nullptr);
}

TEST_F(ReturnSearchTest, AnEqualSerialCountsOnAnyBusAndVersionAndUnderAnyName) {
  const Make places[] = {
      {.serial = "serial", .port = "port1", .bus = BUS_USB, .version = 1},
      {.serial = "serial", .port = "port2", .bus = BUS_USB, .version = 2},
      {.name = "Wireless Pad", .serial = "serial", .port = "radio", .bus = BUS_BLUETOOTH},
      {.serial = "serial", .port = "", .bus = BUS_USB, .version = 0x8111},
      {.serial = "serial", .port = "port1", .bus = BUS_USB, .version = 1},
  };
  Plugged pad = PlugForUse(places[0]);
  for (const Make& place : places) {
    Lose(pad);
    pad = Plug(place);
    EXPECT_TRUE(IsBack()) << place.port << place.version;
  }
}

TEST_F(ReturnSearchTest, TheCableMayBeInBeforeTheRadioIsOff) {
  const Plugged radio = PlugForUse({.serial = "serial", .bus = BUS_BLUETOOTH});
  Plug({.serial = "serial", .bus = BUS_USB});
  EXPECT_FALSE(IsBack());
  machine.Pull(radio);
  EXPECT_NE(search->Look(true), nullptr);
}

TEST_F(ReturnSearchTest, AnEqualSerialOfAnotherMakeIsNotIt) {
  PlugAndLose({.serial = "serial"});
  for (const Make& other : {Make{.serial = "serial", .bus = BUS_BLUETOOTH, .product = 0x5679},
                            Make{.serial = "serial", .bus = BUS_BLUETOOTH, .vendor = 0x1235}}) {
    const Plugged there = Plug(other);
    LookNow();
    EXPECT_FALSE(ComesBackIn(5000));
    machine.Pull(there);
  }
}

TEST_F(ReturnSearchTest, NoSerialEqualsNone) {
  PlugAndLose({});
  Plug({.name = "Wireless Pad", .bus = BUS_BLUETOOTH});
  EXPECT_FALSE(ComesBackIn(5000));
}

TEST_F(ReturnSearchTest, TwoOfItsSerialMeanNone) {
  const Plugged pad = PlugForUse({.serial = "0001"});
  machine.Pull(pad);
  Plug({.serial = "0001", .version = 2});
  Plug({.serial = "0001", .version = 3});
  Plug({.port = "port4"});  // of its name alone
  EXPECT_EQ(search->Look(true), nullptr);
  EXPECT_FALSE(ComesBackIn(5000));
}

TEST_F(ReturnSearchTest, ATwinOfTheSameSerialThatStayedIsNotTakenForIt) {
  const Plugged pad = Plug({.serial = "0001"});
  Plug({.serial = "0001", .port = "port2"});
  Use(pad);
  Lose(pad);
  EXPECT_FALSE(ComesBackIn(5000));
  Plug({.serial = "0001", .port = "port3"});
  EXPECT_TRUE(IsBack());
}

TEST_F(ReturnSearchTest, WithoutASerialTheOnlyNewcomerOfItsMakeAndNameIsIt) {
  const Make places[] = {
      {.port = "port2"},
      {.port = "port2", .version = 2},
      {.port = "", .bus = BUS_BLUETOOTH},
      {.serial = "told here", .port = "port2"},
  };
  for (const Make& place : places) {
    PlugAndLose({});
    const Plugged back = Plug(place);
    EXPECT_FALSE(ComesBackIn(1000)) << "another like it may follow";
    EXPECT_TRUE(IsBack());
    machine.Pull(back);
  }
}

TEST_F(ReturnSearchTest, ANewcomerOfAnotherMakeNameOrSerialIsNotIt) {
  PlugAndLose({.serial = "serial-1"});
  for (const Make& other :
       {Make{.name = "Other Pad", .port = "port2"}, Make{.port = "port3", .product = 0x5679},
        Make{.port = "port4", .vendor = 0x1235}, Make{.serial = "serial-2", .port = "port5"}}) {
    const Plugged there = Plug(other);
    LookNow();
    EXPECT_FALSE(ComesBackIn(5000));
    machine.Pull(there);
  }
}

TEST_F(ReturnSearchTest, OneThatWasThereBeforeTheLossIsNotIt) {
  const Plugged pad = Plug({});
  Plug({.port = "port2"});
  Use(pad);
  Plug({.port = "port3"});  // while the device is in use
  EXPECT_FALSE(IsBack());
  Lose(pad);
  EXPECT_FALSE(ComesBackIn(5000));
  Plug({.port = "port4"});
  EXPECT_TRUE(ComesBackIn(1001));
}

TEST_F(ReturnSearchTest, ADeviceOfTheSameHubThatIsBackInItsOwnPlaceIsNotIt) {
  const Plugged pad = Plug({.port = "port1"});
  const Plugged other = Plug({.port = "port2"});
  Use(pad);
  machine.Pull(other);
  Lose(pad);
  Plug({.port = "port2"});
  EXPECT_FALSE(ComesBackIn(5000));
  Plug({.port = "port1"});
  EXPECT_TRUE(IsBack());
}

TEST_F(ReturnSearchTest, TwoNewcomersMeanNone) {
  PlugAndLose({});
  const Plugged one = Plug({.port = "port2"});
  EXPECT_FALSE(ComesBackIn(999));
  Plug({.port = "port3"});
  EXPECT_FALSE(ComesBackIn(5000));
  machine.Pull(one);
  LookNow();
  EXPECT_TRUE(ComesBackIn(1001)) << "the other one is left";
}

TEST_F(ReturnSearchTest, ItsOwnIdentityComesBeforeTheOnlyNewcomer) {
  PlugAndLose({});
  Plug({.port = "port2"});
  EXPECT_FALSE(ComesBackIn(500));
  const Plugged back = Plug({});
  ASSERT_TRUE(IsBack());
  EXPECT_FALSE(ComesBackIn(5000)) << "nothing is looked for any more";
  machine.Pull(back);
  EXPECT_EQ(search->Look(true), nullptr) << "what came in that time was there before this loss";
  EXPECT_FALSE(ComesBackIn(5000));
}

TEST_F(ReturnSearchTest, WhereItCameBackItIsKnownAgainAtOnce) {
  Plugged pad = PlugAndLose({});
  pad = Plug({.port = "port2"});
  ASSERT_TRUE(ComesBackIn(1001));
  LookNow();
  EXPECT_FALSE(IsBack()) << "it is there";
  Lose(pad);
  Plug({.port = "port2"});
  EXPECT_TRUE(IsBack());
}

TEST_F(ReturnSearchTest, OfTwinsThatNothingTellsApartEachKeepsItsOrdinal) {
  const Plugged first = Plug({.port = ""});
  Plug({.port = ""});
  Use(first);
  Lose(first);
  EXPECT_FALSE(ComesBackIn(5000));
  Plug({.port = ""});
  EXPECT_TRUE(IsBack());
}

TEST_F(ReturnSearchTest, TheOneThatIsLeftOfTwinsIsItUnderTheOrdinalOfTheOtherToo) {
  const Plugged first = Plug({});
  const Plugged second = Plug({});
  Plug({.name = "Pad Motion Sensors"});
  Use(first);
  machine.Pull(first);
  Use(second);
  Lose(second);
  Plug({});  // now the first
  EXPECT_TRUE(ComesBackIn(1001));
}

TEST_F(ReturnSearchTest, TheMotionSensorOfTheSamePadIsNotIt) {
  PlugAndLose({.serial = "serial"});
  for (const int bus : {BUS_USB, BUS_BLUETOOTH}) {
    EvdevDescription sensor("Pad");
    sensor.Bus(bus).Ids(0x1234, 0x5678, 1).Unique("serial").Axes({ABS_X, ABS_Y, ABS_Z});
    sensor.Property(INPUT_PROP_ACCELEROMETER);
    machine.Plug(++lastNumber, sensor.Facts());
  }
  EXPECT_FALSE(ComesBackIn(5000));
  Plug({.serial = "serial", .bus = BUS_BLUETOOTH});
  EXPECT_TRUE(IsBack());
}

// A reader may fail on a device that is still there.
TEST_F(ReturnSearchTest, ALostDeviceThatIsStillListedIsOpenedAgain) {
  PlugForUse({});
  EXPECT_NE(search->Look(true), nullptr);
}

// What it costs

TEST_F(ReturnSearchTest, WithoutNewsNothingIsListedOrOpened) {
  const Plugged pad = PlugForUse({});
  const int lists = machine.lists;
  EXPECT_FALSE(ComesBackIn(5000));
  EXPECT_EQ(search->WaitMs(), -1);
  EXPECT_EQ(machine.lists, lists);
  Lose(pad);
  EXPECT_FALSE(ComesBackIn(5000));
  EXPECT_EQ(search->WaitMs(), -1);
  EXPECT_EQ(machine.lists, lists + 1);
  EXPECT_EQ(machine.opens, 0);
}

TEST_F(ReturnSearchTest, NewsOfOtherMakesIsNoReasonToLook) {
  PlugAndLose({});
  const int lists = machine.lists;
  Plug({.product = 0x5679});
  machine.Tell(NodeWatch::Report::Other);
  EXPECT_FALSE(IsBack());
  EXPECT_TRUE(machine.reports.empty());
  EXPECT_EQ(machine.lists, lists);
}

TEST_F(ReturnSearchTest, LostNewsIsAReasonToLook) {
  PlugAndLose({});
  Plug({});
  machine.reports.clear();
  LookNow();
  EXPECT_TRUE(IsBack());
}

TEST_F(ReturnSearchTest, APermissionThatComesLaterIsWaitedForEverLessOften) {
  Plugged pad = PlugAndLose({});
  machine.nowMs = 1000;
  pad = Plug({});
  pad->openError = EACCES;
  std::vector<std::int64_t> attempts;
  for (int opens = machine.opens; machine.nowMs < 5000; ++machine.nowMs) {
    EXPECT_FALSE(IsBack());
    if (machine.opens != opens) attempts.push_back(machine.nowMs);
    opens = machine.opens;
  }
  // 20 ms later, 40, 80 and so on, and no less often than once a second.
  EXPECT_EQ(attempts,
            (std::vector<std::int64_t>{1000, 1020, 1060, 1140, 1300, 1620, 2260, 3260, 4260}));
  EXPECT_EQ(search->WaitMs(), 260);
  pad->openError = 0;
  machine.nowMs = 5260;
  EXPECT_TRUE(IsBack());
  EXPECT_EQ(search->WaitMs(), -1);
}

TEST_F(ReturnSearchTest, AChangeOfPermissionThatIsReportedCountsAtOnce) {
  Plugged pad = PlugAndLose({});
  pad = Plug({});
  pad->openError = EACCES;
  EXPECT_FALSE(IsBack());
  pad->openError = 0;
  machine.TellOf(*pad);
  EXPECT_TRUE(IsBack());
}

TEST_F(ReturnSearchTest, WithoutReportsTheLookIsOnceASecond) {
  machine.canWatch = false;
  const Plugged pad = PlugForUse({});
  EXPECT_EQ(search->NewsDescriptor(), -1);
  Lose(pad);
  const int lists = machine.lists;
  for (machine.nowMs = 1; machine.nowMs <= 3500; ++machine.nowMs) EXPECT_FALSE(IsBack());
  EXPECT_EQ(machine.lists, lists + 3);
  EXPECT_EQ(search->WaitMs(), 499);
  Plug({});
  machine.nowMs = 4000;
  EXPECT_TRUE(IsBack());
}

}  // namespace
}  // namespace platform
