// What a pad holds down when the window has no device any more: nothing stays down, nothing goes
// on.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/resources/control_ids.h"
#include "tests/app/control_fixture.h"

namespace kelvaro {
namespace {

using namespace main_window;

using Strings = std::vector<std::string>;

constexpr char kNone[] = "-- None --";

// Button 1 repeats "a", button 2 holds "b", button 3 is the left mouse button.
class HeldWithoutDeviceTest : public ControlTest {
 protected:
  void BeginAndHoldAll() {
    StartWith({{.buttons = 1, .keys = {"a"}, .repeat = true, .delay = 100, .speed = 50},
               {.buttons = 2, .keys = {"b"}}});
    screen.ChooseTab(kTabControl, MainWindow::kDeviceTab);
    OpenProfile().leftMask = MouseButtonMask(2);
    Engine().mouseActive = true;
    Press({1, 2, 3});
    sim.RunFor(200);
    ASSERT_TRUE(Engine().repeatWorker.Repeating());
    ASSERT_TRUE(Engine().leftDown);
    sim.ClearEvents();
  }
  // The last of the repeat may come while the device is being stopped; nothing comes after it.
  void ExpectAllLetGo() {
    EXPECT_FALSE(Engine().repeatWorker.Repeating());
    EXPECT_FALSE(Engine().leftDown);
    Strings sent = Sent();
    ASSERT_GE(sent.size(), 2u);
    EXPECT_EQ(Strings(sent.end() - 2, sent.end()), (Strings{"key 42 30 2", "mouse 4 0 0 0"}));
    sim.ClearEvents();
    sim.RunFor(5000);
    EXPECT_EQ(Sent(), Strings{});
  }
};

TEST_F(HeldWithoutDeviceTest, ChoosingNoneLetsGo) {
  BeginAndHoldAll();
  screen.Choose(kDeviceList, kNone);
  ExpectAllLetGo();
}

TEST_F(HeldWithoutDeviceTest, WhatIsStillHeldPressesAnewOnceADeviceIsChosen) {
  BeginAndHoldAll();
  screen.Choose(kDeviceList, kNone);
  ExpectAllLetGo();
  screen.Choose(kDeviceList, kPad);
  Wait();
  EXPECT_EQ(Sent(), (Strings{"key 41 1e 0", "key 41 1e 2", "key 42 30 0"}));
  Press({});
  EXPECT_EQ(Sent().back(), "key 42 30 2");
}

TEST_F(HeldWithoutDeviceTest, ADeviceThatCannotBeSelectedLetsGoBeforeItsBox) {
  AddPad("Other");
  BeginAndHoldAll();
  sim.FailNext("CreateDevice");
  screen.Choose(kDeviceList, "Other");
  ASSERT_TRUE(screen.BoxUp());
  ExpectAllLetGo();
  EXPECT_TRUE(screen.BoxUp());
}

TEST_F(HeldWithoutDeviceTest, ARefreshThatFindsNoDeviceLetsGo) {
  BeginAndHoldAll();
  pad.Unplug();
  screen.Click(kRefreshDeviceList);
  EXPECT_FALSE(Device()->DeviceSelected());
  ExpectAllLetGo();
}

TEST_F(HeldWithoutDeviceTest, AnIntervalUnderWhichTheDeviceIsLostLetsGo) {
  BeginAndHoldAll();
  sim.FailNext("CreateDevice");
  screen.Type(kInterval, "20");
  screen.FocusOn(kDefaultRate);
  EXPECT_FALSE(Device()->DeviceSelected());
  ExpectAllLetGo();
}

// As it would with a device: until its next edge with the mouse controls on.
TEST_F(HeldWithoutDeviceTest, AMouseButtonStaysDownWhereTheMouseControlsWentOffMeanwhile) {
  BeginAndHoldAll();
  Engine().mouseActive = false;
  screen.Choose(kDeviceList, kNone);
  EXPECT_TRUE(Engine().leftDown);
  EXPECT_EQ(Sent().back(), "key 42 30 2");
}

TEST_F(HeldWithoutDeviceTest, ADeviceThatIsSelectedAgainGoesOnHolding) {
  BeginAndHoldAll();
  screen.Type(kInterval, "20");
  screen.FocusOn(kDefaultRate);
  ASSERT_TRUE(Device()->DeviceSelected());
  sim.RunFor(200);
  EXPECT_TRUE(Engine().repeatWorker.Repeating());
  EXPECT_TRUE(Engine().leftDown);
  const Strings sent = Sent();
  EXPECT_EQ(std::count(sent.begin(), sent.end(), "key 42 30 2"), 0);
}

}  // namespace
}  // namespace kelvaro
