// The Mouse tab as the person sees and works it: what the fields and captions say, what a slider,
// the box and the Test button change in the engine, in memory and on disk, and how the button is
// drawn.
#include <cstdint>
#include <cstdio>
#include <string>

#include "app/platform/desktop.h"
#include "app/resources/control_ids.h"
#include "engine/device_snapshot.h"
#include "tests/app/calls.h"
#include "tests/app/held_lock.h"
#include "tests/app/main_window_fixture.h"
#include "tests/person/recorded_desktop.h"

namespace kelvaro {
namespace {

using namespace main_window;

class MouseTabTest : public MainWindowTest {
 protected:
  void BeginHere() {
    Begin();
    screen.ChooseTab(kTabControl, MainWindow::kMouseTab);
  }

  // Brings both tabs up to date.
  void ShowAgain() {
    screen.ChooseTab(kTabControl, MainWindow::kDeviceTab);
    screen.Click(kRefreshDeviceList);
    screen.ChooseTab(kTabControl, MainWindow::kMouseTab);
  }
};

// The fields

TEST_F(MouseTabTest, AnAxisFieldNamesItsInputAndShowsAHatsOffsetAsDirections) {
  const struct {
    TriggerItem item;
    const char* text;
  } cases[] = {
      {{input_kind::kNone, 0, 0}, "<none>"},
      {MouseInput(3, 1), "Axis_RX1"},
      {MouseInput(input_kind::kPov, 3), "POV3down+right"},
      {MouseInput(input_kind::kPovVertical, 1), "POV1"},
  };
  BeginHere();
  for (const auto& row : cases) {
    const struct {
      std::uint32_t field;
      Relaxed<TriggerItem>* input;
    } inputs[] = {{kMouseX, &OpenProfile().mouseX},
                  {kMouseY, &OpenProfile().mouseY},
                  {kMouseWheel, &OpenProfile().mouseWheel}};
    for (const auto& one : inputs) *one.input = row.item;
    ShowAgain();
    for (const auto& one : inputs) EXPECT_EQ(screen.Text(one.field), row.text) << one.field;
  }
}

TEST_F(MouseTabTest, EachFieldShowsItsOwnInput) {
  StoreProfile(kProfile, [this](ProfileFile& made) {
    UsePad(made);
    made.mouseX = MouseInput(2, 0);
    made.mouseY = MouseInput(5, 0);
    made.mouseWheel = MouseInput(input_kind::kPovVertical, 0);
    made.leftButton = 0;
    made.leftMask = MouseButtonMask(0);
    made.middleButton = 4;
    made.middleMask = MouseButtonMask(4);
    made.rightButton = 9;
    made.rightMask = MouseButtonMask(9);
  });
  BeginHere();
  EXPECT_EQ(screen.Text(kMouseX), "Axis_Z0");
  EXPECT_EQ(screen.Text(kMouseY), "Axis_RZ0");
  EXPECT_EQ(screen.Text(kMouseWheel), "POV0");
  EXPECT_EQ(screen.Text(kLeftButton), "B1");
  EXPECT_EQ(screen.Text(kMiddleButton), "B5");
  EXPECT_EQ(screen.Text(kRightButton), "B10");
}

TEST_F(MouseTabTest, AButtonFieldShowsTheMaskNotTheIndex) {
  BeginHere();
  EXPECT_EQ(screen.Text(kLeftButton), "<none>");
  EXPECT_EQ(screen.Text(kMiddleButton), "<none>");
  EXPECT_EQ(screen.Text(kRightButton), "<none>");

  OpenProfile().leftMask = MouseButtonMask(2);
  OpenProfile().middleMask = MouseButtonMask(32);  // wraps to that of index 0
  OpenProfile().rightMask = MouseButtonMask(31);   // fills the upper half
  ShowAgain();
  EXPECT_EQ(screen.Text(kLeftButton), "B3");
  EXPECT_EQ(screen.Text(kMiddleButton), "B1");
  std::string upper;
  for (int button = 32; button <= 64; ++button) {
    upper += (upper.empty() ? "B" : "+B") + std::to_string(button);
  }
  EXPECT_EQ(screen.Text(kRightButton), upper);
}

// The sliders

TEST_F(MouseTabTest, SlidersGoFrom0To50WithATickEach5AndStandAsTheProfileSays) {
  StoreProfile(kProfile, [this](ProfileFile& made) {
    UsePad(made);
    made.movementDamper = 10;
    made.movementSensitivity = 20;
    made.wheelDamper = 30;
    made.wheelSensitivity = 40;
  });
  BeginHere();
  for (const std::uint32_t slider :
       {kMovementDamper, kMovementSensitivity, kWheelDamper, kWheelSensitivity}) {
    EXPECT_EQ(screen.SliderScale(slider), "0 to 50, a tick each 5") << slider;
  }
  EXPECT_EQ(screen.Slider(kMovementDamper), 10);
  EXPECT_EQ(screen.Slider(kMovementSensitivity), 20);
  EXPECT_EQ(screen.Slider(kWheelDamper), 30);
  EXPECT_EQ(screen.Slider(kWheelSensitivity), 40);
  EXPECT_EQ(screen.Text(kMovementDamperFrame), "Movement Axis Damper (10%)");
  EXPECT_EQ(screen.Text(kMovementSensitivityFrame), "Movement Sensitivity (20)");
  EXPECT_EQ(screen.Text(kWheelDamperFrame), "Mouse Wheel Axis Damper (30%)");
  EXPECT_EQ(screen.Text(kWheelSensitivityFrame), "Mouse Wheel Sensitivity (40)");
  EXPECT_EQ(Engine().movementDeadZone, 3199);  // 10 of the single-precision 0.01 of 32000
  EXPECT_EQ(Engine().movementFactor, 22);
  EXPECT_EQ(Engine().wheelDeadZone, 9599);
  EXPECT_EQ(Engine().wheelFactor, 42);
}

TEST_F(MouseTabTest, AStoredPositionBeyondAnEndBecomesTheEnd) {
  StoreProfile(kProfile, [this](ProfileFile& made) {
    UsePad(made);
    made.movementDamper = 51;
    made.movementSensitivity = -1;
    made.wheelDamper = 1000;
    made.wheelSensitivity = -1000;
  });
  BeginHere();
  EXPECT_EQ(screen.Slider(kMovementDamper), 50);
  EXPECT_EQ(screen.Slider(kMovementSensitivity), 0);
  EXPECT_EQ(screen.Slider(kWheelDamper), 50);
  EXPECT_EQ(screen.Slider(kWheelSensitivity), 0);
  EXPECT_EQ(OpenProfile().movementDamper, 50);
  EXPECT_EQ(OpenProfile().movementSensitivity, 0);
  EXPECT_EQ(OpenProfile().wheelDamper, 50);
  EXPECT_EQ(OpenProfile().wheelSensitivity, 0);
  EXPECT_EQ(screen.Text(kMovementDamperFrame), "Movement Axis Damper (50%)");
  EXPECT_EQ(screen.Text(kWheelSensitivityFrame), "Mouse Wheel Sensitivity (0)");
}

TEST_F(MouseTabTest, AMovedSliderChangesItsCaptionItsDerivedValueAndTheFile) {
  BeginHere();
  sim.LogCalls(true);

  screen.MoveSlider(kMovementSensitivity, 0);
  EXPECT_EQ(screen.Text(kMovementSensitivityFrame), "Movement Sensitivity (0)");
  EXPECT_EQ(Engine().movementFactor, 2);
  EXPECT_EQ(Stored(kProfile)->movementSensitivity, 0);

  screen.MoveSlider(kMovementDamper, 50);
  EXPECT_EQ(screen.Text(kMovementDamperFrame), "Movement Axis Damper (50%)");
  EXPECT_EQ(Engine().movementDeadZone, 15999);
  EXPECT_EQ(Stored(kProfile)->movementDamper, 50);

  screen.MoveSlider(kWheelDamper, 10);
  EXPECT_EQ(screen.Text(kWheelDamperFrame), "Mouse Wheel Axis Damper (10%)");
  EXPECT_EQ(Engine().wheelDeadZone, 3199);
  EXPECT_EQ(Stored(kProfile)->wheelDamper, 10);

  screen.MoveSlider(kWheelSensitivity, 33);
  EXPECT_EQ(screen.Text(kWheelSensitivityFrame), "Mouse Wheel Sensitivity (33)");
  EXPECT_EQ(Engine().wheelFactor, 35);
  EXPECT_EQ(Stored(kProfile)->wheelSensitivity, 33);

  // Those before stay, and what is kept for the device isn't written yet.
  EXPECT_EQ(Stored(kProfile)->movementSensitivity, 0);
  EXPECT_EQ(Stored(kProfile)->movementDamper, 50);
  EXPECT_EQ(Stored(kProfile)->wheelDamper, 10);
  EXPECT_EQ(CountCalls(sim, "RegSetValueExA"), 0u);
}

TEST_F(MouseTabTest, AMovedSliderWaitsForTheProfilesLock) {
  BeginHere();
  const HeldLock held(sim, OpenProfile().profileLock, 50);
  const std::uint64_t before = sim.Now();
  screen.MoveSlider(kMovementDamper, 7);
  EXPECT_EQ(sim.Now() - before, 50u);
  EXPECT_EQ(Stored(kProfile)->movementDamper, 7);
}

TEST_F(MouseTabTest, ASliderDoesNotCountWhileAFieldIsRefused) {
  BeginHere();
  screen.ChooseTab(kTabControl, MainWindow::kDeviceTab);
  screen.Type(kInterval, "0");
  screen.FocusOn(kRate);
  ASSERT_TRUE(screen.BoxUp());
  platform::controls().SliderSetPos(Handle(), kMovementDamper, 44);
  Notify(kMovementDamper, platform::Notice::Scrolled);
  EXPECT_EQ(OpenProfile().movementDamper, 5);
  EXPECT_EQ(screen.Text(kMovementDamperFrame), "Movement Axis Damper (5%)");
  screen.Answer(platform::IDOK);
  Notify(kMovementDamper, platform::Notice::Scrolled);
  EXPECT_EQ(OpenProfile().movementDamper, 44);
}

TEST_F(MouseTabTest, ASliderThatCannotBeSavedCountsAllTheSameAndSaysNothing) {
  BeginHere();
  sim.Disk().FailOperation(2);  // the look at the first folder
  screen.MoveSlider(kMovementDamper, 44);
  EXPECT_TRUE(screen.Boxes().empty());
  EXPECT_EQ(OpenProfile().movementDamper, 44);
  EXPECT_EQ(Stored(kProfile)->movementDamper, 5);
}

// Mouse Controls Always Active

TEST_F(MouseTabTest, AlwaysActiveFlipsInMemoryAndInTheFile) {
  BeginHere();
  EXPECT_FALSE(screen.Checked(kMouseAlwaysActive));
  screen.Click(kMouseAlwaysActive);
  EXPECT_TRUE(screen.Checked(kMouseAlwaysActive));
  EXPECT_TRUE(OpenProfile().mouseAlwaysActive);
  EXPECT_TRUE(Stored(kProfile)->mouseAlwaysActive);
  screen.Click(kMouseAlwaysActive);
  EXPECT_FALSE(screen.Checked(kMouseAlwaysActive));
  EXPECT_FALSE(OpenProfile().mouseAlwaysActive);
  EXPECT_FALSE(Stored(kProfile)->mouseAlwaysActive);
}

TEST_F(MouseTabTest, AlwaysActiveShowsTheProfilesValue) {
  StoreProfile("Active", [this](ProfileFile& made) {
    UsePad(made);
    made.mouseAlwaysActive = true;
  });
  PresetText("Last Profile", "Active");
  BeginHere();
  EXPECT_TRUE(screen.Checked(kMouseAlwaysActive));
  screen.Choose(kProfileList, kProfile);
  EXPECT_FALSE(screen.Checked(kMouseAlwaysActive));
}

TEST_F(MouseTabTest, AlwaysActiveWaitsForTheProfilesLock) {
  BeginHere();
  const HeldLock held(sim, OpenProfile().profileLock, 50);
  const std::uint64_t before = sim.Now();
  screen.Click(kMouseAlwaysActive);
  EXPECT_EQ(sim.Now() - before, 50u);
}

TEST_F(MouseTabTest, AlwaysActiveIsOffInANewProfile) {
  BeginHere();
  screen.Click(kMouseAlwaysActive);
  screen.Click(kNewProfile);
  screen.Type(new_profile::kName, "Fresh");
  screen.Click(platform::IDOK);
  EXPECT_FALSE(OpenProfile().mouseAlwaysActive);
  EXPECT_FALSE(screen.Checked(kMouseAlwaysActive));
  screen.Click(kMouseAlwaysActive);
  EXPECT_TRUE(Stored("Fresh")->mouseAlwaysActive);
}

// Test mode

TEST_F(MouseTabTest, TheTestButtonFlipsTheModeAndIsDrawnAnew) {
  BeginHere();
  EXPECT_FALSE(Engine().TestMode());
  screen.FocusOn(kTestMode);  // which draws it, too
  screen.Redraws(kTestMode);
  screen.Click(kTestMode);
  EXPECT_TRUE(Engine().TestMode());
  EXPECT_GE(screen.Redraws(kTestMode), 1u);
  screen.Click(kTestMode);
  EXPECT_FALSE(Engine().TestMode());
  EXPECT_GE(screen.Redraws(kTestMode), 1u);
}

TEST_F(MouseTabTest, TheTestButtonWaitsForTheMousesLock) {
  BeginHere();
  const HeldLock held(sim, Engine().mouseLock, 50);
  const std::uint64_t before = sim.Now();
  screen.Click(kTestMode);
  EXPECT_EQ(sim.Now() - before, 50u);
  EXPECT_TRUE(Engine().TestMode());
}

TEST_F(MouseTabTest, AnotherTabEndsTestModeForGood) {
  for (const std::int32_t tab :
       {MainWindow::kControlTab, MainWindow::kDeviceTab, MainWindow::kSettingsTab}) {
    BeginHere();
    screen.Click(kTestMode);
    EXPECT_TRUE(Engine().TestMode());
    screen.ChooseTab(kTabControl, tab);
    EXPECT_FALSE(Engine().TestMode()) << tab;
    screen.ChooseTab(kTabControl, MainWindow::kMouseTab);
    EXPECT_FALSE(Engine().TestMode()) << tab;
    CloseAll();
  }
}

TEST_F(MouseTabTest, AnotherProfileEndsTestModeAndTheButtonShowsIt) {
  StoreProfile("Other", [this](ProfileFile& made) { UsePad(made); });
  BeginHere();
  screen.Click(kTestMode);
  screen.Redraws(kTestMode);
  screen.Choose(kProfileList, "Other");
  EXPECT_FALSE(Engine().TestMode());
  EXPECT_GE(screen.Redraws(kTestMode), 1u);
}

TEST_F(MouseTabTest, OnAnotherTabTheTestButtonIsNotDrawn) {
  StoreProfile("Other", [this](ProfileFile& made) { UsePad(made); });
  BeginHere();
  screen.ChooseTab(kTabControl, MainWindow::kSettingsTab);
  screen.Redraws(kTestMode);
  screen.Choose(kProfileList, "Other");
  EXPECT_EQ(screen.Redraws(kTestMode), 0u);
}

// How the Test button is drawn

class TestButtonDrawing : public MouseTabTest {
 protected:
  void BeginHere() {
    MouseTabTest::BeginHere();
    const platform::Rect place = screen.ControlPlace(kTestMode);
    width = place.Width();
    height = place.Height();
    screen.FocusOn(kMouseAlwaysActive);
  }

  // The rectangle `inside` pixels from each edge.
  std::string At(std::int32_t inside) const {
    return Rectangle(inside, inside, width - inside, height - inside);
  }
  // The lamp and the text, both moved to the right and down.
  std::string Lamp(std::int32_t moved) const {
    const std::int32_t top = (height - 4) / 2 + moved;
    return Rectangle(6 + moved, top, 12 + moved, top + 4);
  }
  std::string Words(std::int32_t moved) const {
    return "text " + Rectangle(moved, moved, width - 12 + moved, height - 6 + moved) + ' ' +
           Colour(platform::COLOR_BTNTEXT) + " right bottom \"Test\"";
  }
  static std::string Colour(std::int32_t index) {
    char text[8];
    std::snprintf(text, sizeof text, "%06x", platform::desktop().GetSysColor(index));
    return text;
  }
  static std::string Rectangle(std::int32_t left, std::int32_t top, std::int32_t right,
                               std::int32_t bottom) {
    return std::to_string(left) + ',' + std::to_string(top) + ',' + std::to_string(right) + ',' +
           std::to_string(bottom);
  }

  std::string Face() const { return "fill " + At(0) + ' ' + Colour(platform::COLOR_3DFACE); }
  std::string Raised() const {
    return "3d " + At(0) + ' ' + Colour(platform::COLOR_3DHILIGHT) + ' ' +
           Colour(platform::COLOR_3DDKSHADOW);
  }
  std::string RaisedInner() const {
    return "3d " + At(1) + ' ' + Colour(platform::COLOR_3DFACE) + ' ' +
           Colour(platform::COLOR_3DSHADOW);
  }
  std::string Sunken() const {
    return "3d " + At(0) + ' ' + Colour(platform::COLOR_3DDKSHADOW) + ' ' +
           Colour(platform::COLOR_3DHILIGHT);
  }
  std::string SunkenInner() const {
    return "3d " + At(1) + ' ' + Colour(platform::COLOR_3DSHADOW) + ' ' +
           Colour(platform::COLOR_3DFACE);
  }

  std::int32_t width = 0;
  std::int32_t height = 0;
};

TEST_F(TestButtonDrawing, OffItIsRaisedWithADarkGreenLamp) {
  BeginHere();
  EXPECT_EQ(screen.PaintButton(kTestMode),
            (Strings{Face(), Raised(), RaisedInner(), "fill " + Lamp(0) + " 007700", Words(0)}));
}

TEST_F(TestButtonDrawing, OnItIsSunkenByOnePixelWithABrightGreenLampAndItsOutline) {
  BeginHere();
  screen.Click(kTestMode);
  screen.FocusOn(kMouseAlwaysActive);
  EXPECT_EQ(screen.PaintButton(kTestMode), (Strings{Face(), Sunken(), "fill " + Lamp(1) + " 00ff00",
                                                    "frame " + Lamp(1) + " 00aa00", Words(1)}));
}

TEST_F(TestButtonDrawing, PressedItIsSunkenByTwoPixelsWithAnInnerLine) {
  BeginHere();
  EXPECT_EQ(screen.PaintButton(kTestMode, true),
            (Strings{Face(), Sunken(), SunkenInner(), "fill " + Lamp(2) + " 007700", Words(2)}));
  screen.Click(kTestMode);
  screen.FocusOn(kMouseAlwaysActive);
  EXPECT_EQ(screen.PaintButton(kTestMode, true),
            (Strings{Face(), Sunken(), SunkenInner(), "fill " + Lamp(2) + " 00ff00",
                     "frame " + Lamp(2) + " 00aa00", Words(2)}));
}

TEST_F(TestButtonDrawing, OffTheLampHasAnEdgeWhereTheTextIsBrighterThanTheFace) {
  BeginHere();
  auto& colours = dynamic_cast<platform::simulation::RecordedDesktop&>(platform::desktop()).colours;
  constexpr platform::Colour kRed = platform::Rgb(200, 0, 0), kDarkRed = platform::Rgb(100, 0, 0),
                             kGreen = platform::Rgb(0, 200, 0),
                             kDarkGreen = platform::Rgb(0, 100, 0),
                             kBlue = platform::Rgb(0, 0, 200), kDarkBlue = platform::Rgb(0, 0, 100);
  const struct {
    platform::Colour ink, face;
    bool edge;
  } kRows[] = {{kRed, kDarkRed, true}, {kGreen, kDarkGreen, true}, {kBlue, kDarkBlue, true},
               {kRed, kGreen, false},  {kGreen, kRed, false},      {kGreen, kBlue, false},
               {kBlue, kGreen, false}, {kDarkRed, kRed, false}};
  for (const auto& row : kRows) {
    colours = {{platform::COLOR_BTNTEXT, row.ink}, {platform::COLOR_3DFACE, row.face}};
    const std::int32_t top = (height - 4) / 2;
    const std::string edge =
        "frame " + Rectangle(5, top - 1, 13, top + 5) + ' ' + Colour(platform::COLOR_BTNTEXT);
    const Strings lines = screen.PaintButton(kTestMode);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), edge), row.edge) << std::hex << row.ink;
  }
}

TEST_F(TestButtonDrawing, WithTheFocusADottedRectangleIsThreePixelsInside) {
  BeginHere();
  screen.FocusOn(kTestMode);
  const Strings lines = screen.PaintButton(kTestMode);
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines.back(), "focus " + At(3));
}

TEST_F(TestButtonDrawing, EnterPressesItWhileItHasTheFocus) {
  BeginHere();
  screen.FocusOn(kTestMode);
  screen.Press(screen.kEnter);
  EXPECT_TRUE(Engine().TestMode());
}

TEST_F(TestButtonDrawing, WithoutTheFocusItIsNoLongerTheDefaultButton) {
  BeginHere();
  screen.FocusOn(kTestMode);
  // From a control that is no button Enter presses the default one.
  screen.FocusOn(kMovementDamper);
  screen.Press(screen.kEnter);
  EXPECT_FALSE(Engine().TestMode());
}

TEST_F(TestButtonDrawing, OnlyADrawingForTheFocusChangesTheDefaultButton) {
  BeginHere();
  screen.FocusOn(kTestMode);
  EXPECT_EQ(screen.DefaultButton(), kTestMode);
  screen.FocusOn(kMovementDamper);
  EXPECT_EQ(screen.DefaultButton(), kEditControl);
  screen.FocusOn(kTestMode);
  platform::controls().SetDefaultButton(Handle(), kEditControl);
  screen.PaintButton(kTestMode);
  EXPECT_EQ(screen.DefaultButton(), kEditControl);
}

TEST_F(TestButtonDrawing, NorOnceAnotherTabIsShown) {
  BeginHere();
  screen.FocusOn(kTestMode);
  screen.ChooseTab(kTabControl, MainWindow::kControlTab);
  screen.SelectRows(kControlList, {});
  screen.Press(screen.kEnter);
  EXPECT_FALSE(Engine().TestMode());
  // By itself, as when a profile has no device, the focus stays behind on the hidden button.
  screen.ChooseTab(kTabControl, MainWindow::kMouseTab);
  screen.FocusOn(kTestMode);
  pad.Unplug();
  Device()->StopDevice();
  Post(WM_DEVICE_WARNING);
  screen.Answer(platform::IDOK);
  ASSERT_EQ(CurrentTab(), MainWindow::kDeviceTab);
  screen.Press(screen.kEnter);
  EXPECT_FALSE(Engine().TestMode());
}

// The pad isn't polled while the mouse controls are off, and its stick is held over all this time.

class HeldStickTest : public MouseTabTest {
 protected:
  void BeginWithStick(bool alwaysActive) {
    Preset("Show Auto-Detect Usage", 0);
    for (const char* name : {kProfile, "Mouse"}) {
      StoreProfile(name, [&](ProfileFile& made) {
        UsePad(made);
        made.mouseX = MouseInput(input_kind::kAxisX, 0);
        made.mouseAlwaysActive = alwaysActive || std::string(name) == "Mouse";
        made.controls.AddTail({});
      });
    }
    BeginHere();
    pad.MoveAxis("Axis_X0", 32000);
    sim.RunFor(5000);
    sim.ClearEvents();
  }
  void ExpectTheStickMovesThePointer(const char* after) {
    sim.RunFor(10);
    EXPECT_GE(sim.Events().size(), 1u) << after;
  }
  void ExpectItDoesNot(const char* after) {
    sim.RunFor(5000);
    sim.ClearEvents();
    sim.RunFor(5000);
    EXPECT_EQ(sim.Events().size(), 0u) << after;
  }
};

TEST_F(HeldStickTest, MovesThePointerAsSoonAsAnyPartOfTheTabLetsIt) {
  BeginWithStick(false);
  screen.Click(kTestMode);
  ExpectTheStickMovesThePointer("the test button");
  screen.Click(kTestMode);
  ExpectItDoesNot("the test button");
  screen.Click(kMouseAlwaysActive);
  ExpectTheStickMovesThePointer("the box");
  screen.Click(kDetectLeftButton);
  ExpectItDoesNot("the beginning of a detection");
  screen.Click(kDetectLeftButton);
  ExpectTheStickMovesThePointer("the end of a detection");
  pad.MoveAxis("Axis_X0", 10000);
  screen.MoveSlider(ControlEngine::kMovementDamperSlider, 50);
  ExpectItDoesNot("the damper");
  screen.MoveSlider(ControlEngine::kMovementDamperSlider, 0);
  ExpectTheStickMovesThePointer("the damper");
}

TEST_F(HeldStickTest, MovesThePointerAsSoonAsDefineControlIsClosed) {
  BeginWithStick(true);
  screen.ChooseTab(kTabControl, MainWindow::kControlTab);
  screen.SelectRows(kControlList, {0});
  screen.Click(kEditControl);
  ExpectItDoesNot("the opening");
  screen.Click(platform::IDCANCEL);
  ExpectTheStickMovesThePointer("the end");
}

TEST_F(HeldStickTest, MovesThePointerAsSoonAsItsProfileIsChosen) {
  BeginWithStick(false);
  ExpectItDoesNot("a profile without");
  screen.Choose(kProfileList, "Mouse");
  ExpectTheStickMovesThePointer("the choice");
}

}  // namespace
}  // namespace kelvaro
