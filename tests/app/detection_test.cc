// Detection of a mouse input, from the person's side: a box is checked, the pad is moved, and one
// of three ways out ends it. Looks at the texts of the fields at each millisecond, at what the
// profile holds then, in memory and on disk, and at what is kept for the device.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/platform/desktop.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"
#include "engine/device_snapshot.h"
#include "keys/key_action.h"
#include "tests/app/held_lock.h"
#include "tests/app/main_window_fixture.h"
#include "tests/platform/watched_files.h"

namespace kelvaro {
namespace {

using namespace main_window;

using Strings = std::vector<std::string>;

constexpr std::uint8_t kSpaceBar = 0x20;
constexpr std::uint32_t kPeriod = 5;  // ms from poll to poll

constexpr char kPadSettings[] = "HKCU\\Software\\Marnstone\\Kelvaro\\Devices\\Pad";

const std::uint32_t kBoxes[] = {kDetectMouseX,     kDetectMouseY,       kDetectMouseWheel,
                                kDetectLeftButton, kDetectMiddleButton, kDetectRightButton};

// "kind index offset".
std::string Words(const TriggerItem& item) {
  return std::to_string(item.kind) + ' ' + std::to_string(item.index) + ' ' +
         std::to_string(item.value);
}

// A Control that a press of `buttons` fires.
class DetectionTest : public MainWindowTest {
 protected:
  DetectionTest() { Preset("Show Auto-Detect Usage", 0); }

  // A profile with an input on everything: X on Axis_Z0, Y on Axis_RZ0, the wheel on hat 0, and
  // the buttons 5, 6 and 7.
  void StoreFullProfile() {
    StoreProfile(kProfile, [this](ProfileFile& made) {
      UsePad(made);
      made.mouseX = MouseInput(2, 0);
      made.mouseY = MouseInput(5, 0);
      made.mouseWheel = MouseInput(input_kind::kPovVertical, 0);
      made.leftButton = 4;
      made.leftMask = MouseButtonMask(4);
      made.middleButton = 5;
      made.middleMask = MouseButtonMask(5);
      made.rightButton = 6;
      made.rightMask = MouseButtonMask(6);
    });
  }

  // On the Mouse tab, at the millisecond of a poll. What is changed now is seen one period later.
  void BeginHere() {
    Begin();
    screen.ChooseTab(kTabControl, MainWindow::kMouseTab);
    sim.RunFor(100);  // the pad at rest is seen, too
    sim.LogCalls(true);
    Engine().MouseChanged();  // brings a poll, though the pad lies still
    for (int i = 0; i < 100 && sim.Calls().empty(); ++i) sim.RunFor(1);
    ASSERT_FALSE(sim.Calls().empty());
    ASSERT_EQ(sim.Calls().front(), "Poll");
    sim.LogCalls(false);
    sim.ClearCalls();
  }
  void Poll() { sim.RunFor(kPeriod); }
  // Starts a detection, and holds these until they are seen.
  void Detect(std::uint32_t box, std::initializer_list<std::uint32_t> buttons) {
    screen.Click(box);
    pad.Press(buttons);
    Poll();
  }
  void ExpectEndedWithLeftAsB3() {
    EXPECT_FALSE(Engine().IsDetecting());
    EXPECT_TRUE(CheckedBoxes().empty());
    EXPECT_EQ(screen.Text(kLeftButton), "B3");
    EXPECT_EQ(OpenProfile().leftButton, 2);
    EXPECT_EQ(OpenProfile().leftMask, 0x4u);
    ExpectAllSaved();
  }

  // Each change of the field's text within the next milliseconds, as "5 B3", counted from now.
  Strings TextsOf(std::uint32_t field, std::uint32_t ms) {
    Strings changes;
    std::string last = screen.Text(field);
    for (std::uint32_t t = 1; t <= ms; ++t) {
      sim.RunFor(1);
      const std::string text = screen.Text(field);
      if (text != last) changes.push_back(std::to_string(t) + ' ' + text);
      last = text;
    }
    return changes;
  }

  std::vector<std::uint32_t> CheckedBoxes() const {
    std::vector<std::uint32_t> checked;
    for (const std::uint32_t box : kBoxes) {
      if (screen.Checked(box)) checked.push_back(box);
    }
    return checked;
  }

  std::optional<std::uint32_t> Kept(const std::string& name) {
    return sim.Registry().Number(kPadSettings, name);
  }

  // Whether the profile in memory, the one on disk and what is kept for the pad say the same of
  // all six inputs.
  void ExpectAllSaved() {
    const auto stored = Stored(kProfile);
    ASSERT_TRUE(stored);
    const ProfileFile& open = OpenProfile();
    const char* const names[] = {"MouseX",         "MouseY",           "Mouse Wheel",
                                 "Left Mouse Btn", "Middle Mouse Btn", "Right Mouse Btn"};
    for (std::size_t i = 0; i < std::size(names); ++i) {
      const auto& [role, axis, button, mask] = kMouseRoles[i];
      const std::string name = names[i];
      if (axis) {
        const TriggerItem item = open.*axis;
        EXPECT_EQ(Words((*stored).*axis), Words(item));
        EXPECT_EQ(Kept(name + " Type"), item.kind);
        EXPECT_EQ(Kept(name + " Bank"), item.index);
      } else {
        EXPECT_EQ((*stored).*button, open.*button);
        EXPECT_EQ((*stored).*mask, open.*mask);
        EXPECT_EQ(Kept(name), std::uint16_t{open.*button});
      }
    }
  }
};

// Starting one

TEST_F(DetectionTest, EachBoxStartsADetectionForItsField) {
  const struct {
    std::uint32_t box;
    std::uint32_t field;
  } cases[] = {{kDetectMouseX, kMouseX},
               {kDetectMouseY, kMouseY},
               {kDetectMouseWheel, kMouseWheel},
               {kDetectLeftButton, kLeftButton},
               {kDetectMiddleButton, kMiddleButton},
               {kDetectRightButton, kRightButton}};
  StoreFullProfile();
  BeginHere();
  for (const auto& row : cases) {
    screen.Click(row.box);
    EXPECT_EQ(Engine().DetectedRole(), MouseRole{row.field}) << row.box;
    EXPECT_EQ(CheckedBoxes(), std::vector{row.box});
    screen.Click(row.box);
    EXPECT_FALSE(Engine().IsDetecting()) << row.box;
    EXPECT_TRUE(CheckedBoxes().empty()) << row.box;
  }
}

// What is shown

TEST_F(DetectionTest, TheFieldFollowsTheButtonsFromPollToPoll) {
  BeginHere();
  screen.Click(kDetectLeftButton);
  pad.Press({3});
  EXPECT_EQ(TextsOf(kLeftButton, 12), Strings{"5 B3"});
  pad.Press({});
  EXPECT_EQ(TextsOf(kLeftButton, 8), Strings{"3 <none>"});
  pad.Press({8});
  EXPECT_EQ(TextsOf(kLeftButton, 5), Strings{"5 B8"});
  EXPECT_EQ(screen.Text(kMiddleButton), "<none>");
  EXPECT_EQ(screen.Text(kRightButton), "<none>");
}

TEST_F(DetectionTest, ButtonsDoNotCountForAnAxisNorAxesForAButton) {
  BeginHere();
  Detect(kDetectMouseX, {3});
  EXPECT_EQ(screen.Text(kMouseX), "<none>");
  pad.Press({});
  Poll();
  screen.Click(kDetectMouseX);
  screen.Click(kDetectRightButton);
  pad.MoveAxis("Axis_X0", 32000);
  Poll();
  EXPECT_EQ(screen.Text(kRightButton), "<none>");
}

// The three ways out

TEST_F(DetectionTest, TheSpaceBarEndsItWithWhatIsHeld) {
  BeginHere();
  Detect(kDetectLeftButton, {3});
  screen.Press(kSpaceBar);
  ExpectEndedWithLeftAsB3();
}

TEST_F(DetectionTest, TwoButtonsEndItWithTheFirstOfThem) {
  BeginHere();
  Detect(kDetectLeftButton, {3});
  EXPECT_EQ(screen.Text(kLeftButton), "B3");
  EXPECT_TRUE(Engine().IsDetecting());
  pad.Press({3, 5});
  sim.RunFor(4);
  EXPECT_TRUE(Engine().IsDetecting());
  EXPECT_EQ(CheckedBoxes(), std::vector{kDetectLeftButton});
  sim.RunFor(1);
  ExpectEndedWithLeftAsB3();
}

TEST_F(DetectionTest, AnotherBoxStoresTheOneAndStartsTheOther) {
  BeginHere();
  screen.Click(kDetectMouseX);
  pad.MoveAxis("Axis_Z0", 18000);
  Poll();
  screen.Click(kDetectMouseY);
  EXPECT_EQ(CheckedBoxes(), std::vector{kDetectMouseY});
  EXPECT_EQ(Words(OpenProfile().mouseX), "2 0 8");
  EXPECT_TRUE(Engine().IsDetecting());
  EXPECT_EQ(Engine().DetectedRole(), MouseRole::Y);
  EXPECT_EQ(screen.Text(kMouseX), "Axis_Z0");
  EXPECT_EQ(screen.Text(kMouseY), "<none>");
  ExpectAllSaved();

  pad.MoveAxis("Axis_RX0", 19000);
  Poll();
  EXPECT_EQ(screen.Text(kMouseX), "Axis_Z0");
  EXPECT_EQ(screen.Text(kMouseY), "Axis_RX0");
  screen.Click(kDetectLeftButton);
  EXPECT_EQ(CheckedBoxes(), std::vector{kDetectLeftButton});
  EXPECT_EQ(Words(OpenProfile().mouseY), "3 0 12");
  ExpectAllSaved();
}

TEST_F(DetectionTest, AnotherTabEndsAndSavesIt) {
  for (const std::int32_t tab :
       {MainWindow::kControlTab, MainWindow::kDeviceTab, MainWindow::kSettingsTab}) {
    pad.Press({});
    StoreProfile(kProfile, [this](ProfileFile& made) { UsePad(made); });
    BeginHere();
    Detect(kDetectMiddleButton, {4});
    screen.ChooseTab(kTabControl, tab);
    EXPECT_FALSE(Engine().IsDetecting()) << tab;
    EXPECT_EQ(OpenProfile().middleButton, 3) << tab;
    EXPECT_TRUE(CheckedBoxes().empty()) << tab;
    ExpectAllSaved();
    CloseAll();
  }
}

TEST_F(DetectionTest, AnotherProfileEndsItAndTheFileBeforeStaysAsItWas) {
  StoreProfile("Other", [this](ProfileFile& made) {
    UsePad(made);
    made.leftButton = 8;
    made.leftMask = MouseButtonMask(8);
  });
  BeginHere();
  Detect(kDetectLeftButton, {4});
  screen.Choose(kProfileList, "Other");
  EXPECT_FALSE(Engine().IsDetecting());
  EXPECT_TRUE(CheckedBoxes().empty());
  EXPECT_EQ(screen.Text(kLeftButton), "B9");
  EXPECT_EQ(Stored(kProfile)->leftMask, 0u);
  EXPECT_EQ(Stored("Other")->leftMask, 0x100u);
}

// The engine meanwhile

TEST_F(DetectionTest, TheEndWaitsForTheProfilesLock) {
  BeginHere();
  Detect(kDetectLeftButton, {3});
  const HeldLock held(sim, OpenProfile().profileLock, 50);
  const std::uint64_t before = sim.Now();
  screen.Click(kDetectLeftButton);
  EXPECT_EQ(sim.Now() - before, 50u);
  EXPECT_EQ(OpenProfile().leftButton, 2);
}

TEST_F(DetectionTest, TheProfileIsLockedWhileItIsWrittenWhicheverWayItEnds) {
  BeginHere();
  Strings writes;
  const WatchedFiles watched(sim.Groups(), [&](const std::string& operation, const std::string&) {
    if (operation == "write" || operation == "copy")
      writes.push_back(operation + (OpenProfile().profileLock.IsTaken() ? " locked" : " free"));
  });
  for (const bool byButtons : {false, true}) {
    Detect(kDetectLeftButton, {3});
    writes.clear();
    if (!byButtons) screen.Click(kDetectLeftButton);
    pad.Press({3, 5});
    Poll();
    EXPECT_EQ(writes, (Strings{"write locked", "copy locked"})) << byButtons;
    pad.Press({});
    Poll();
  }
}

// The end comes on another thread, which must not wait for the person.
TEST_F(DetectionTest, TwoButtonsEndItBehindADialogThatIsOpen) {
  BeginHere();
  screen.Click(kDetectLeftButton);
  screen.Click(kNewProfile);
  pad.Press({3});
  Poll();
  pad.Press({3, 5});
  Poll();
  EXPECT_FALSE(Engine().IsDetecting());
  ExpectAllSaved();
  screen.Click(platform::IDCANCEL);
  EXPECT_TRUE(CheckedBoxes().empty());
  EXPECT_EQ(screen.Text(kLeftButton), "B3");
}

TEST_F(DetectionTest, NobodyIsToldThatItCantBeSaved) {
  BeginHere();
  for (const bool byButtons : {false, true}) {
    Detect(kDetectLeftButton, {3});
    sim.FailAlways("RegCreateKeyA");
    sim.Disk().FailOperation(2);  // the look at the first folder
    if (byButtons) {
      pad.Press({3, 5});
      Poll();
    } else {
      screen.Click(kDetectLeftButton);
    }
    sim.Mend("RegCreateKeyA");
    EXPECT_FALSE(Engine().IsDetecting());
    EXPECT_EQ(OpenProfile().leftButton, 2);
    EXPECT_EQ(Stored(kProfile)->leftMask, 0u);
    pad.Press({});
    Poll();
  }
  EXPECT_TRUE(screen.Boxes().empty());
}

TEST_F(DetectionTest, WithoutADeviceTheProfileAloneIsSaved) {
  WithoutPad();
  Preset("No Device Error Msg", 1);
  StoreFullProfile();
  Begin();
  screen.ChooseTab(kTabControl, MainWindow::kMouseTab);
  screen.Click(kDetectLeftButton);
  EXPECT_TRUE(Engine().IsDetecting());
  screen.Click(kDetectLeftButton);
  EXPECT_FALSE(Engine().IsDetecting());
  EXPECT_EQ(Stored(kProfile)->leftMask, 0u);
  EXPECT_FALSE(sim.Registry().HasKey(kPadSettings));
}

// The dialog "Auto-Detect Mode"

class DetectionUsageTest : public DetectionTest {
 protected:
  DetectionUsageTest() { Preset("Show Auto-Detect Usage", 1); }
};

TEST_F(DetectionUsageTest, TheUsageIsShownFirstAndTheDetectionStartsWhenItIsClosed) {
  BeginHere();
  for (const std::int32_t button : {platform::IDOK, 0}) {
    screen.Click(kDetectLeftButton);
    EXPECT_EQ(screen.Front(), auto_detect_mode::kDialog);
    EXPECT_FALSE(Engine().IsDetecting());
    if (button == platform::IDOK) {
      screen.Click(platform::IDOK);
    } else {
      screen.Close();
    }
    EXPECT_EQ(screen.Front(), main_window::kDialog);
    EXPECT_TRUE(Engine().IsDetecting());
    EXPECT_EQ(CheckedBoxes(), std::vector{kDetectLeftButton});
    screen.Click(kDetectLeftButton);
    EXPECT_EQ(screen.Front(), main_window::kDialog);  // not when one is ended
    EXPECT_FALSE(Engine().IsDetecting());
  }
  EXPECT_TRUE(Settings().showAutoDetectUsage);
}

TEST_F(DetectionUsageTest, TheUsageIsNotShownWhileAnotherDetectionRuns) {
  BeginHere();
  screen.Click(kDetectMouseX);
  screen.Click(platform::IDOK);
  screen.Click(kDetectMouseY);
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  EXPECT_EQ(Engine().DetectedRole(), MouseRole::Y);
}

TEST_F(DetectionUsageTest, DontShowThisAgainCountsFromThenOnAndIsRemembered) {
  BeginHere();
  screen.Click(kDetectMouseX);
  screen.Click(auto_detect_mode::kDontShowAgain);
  screen.Click(platform::IDOK);
  EXPECT_FALSE(Settings().showAutoDetectUsage);
  EXPECT_TRUE(Engine().IsDetecting());
  screen.Click(kDetectMouseX);
  screen.Click(kDetectMouseX);
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  CloseAll();
  EXPECT_EQ(Number("Show Auto-Detect Usage"), 0u);
}

TEST_F(DetectionUsageTest, TheProgramMayBeToldToEndWhileTheUsageIsShown) {
  BeginHere();
  screen.Click(kDetectMouseX);
  EXPECT_EQ(screen.Front(), auto_detect_mode::kDialog);
  Post(WM_CLOSE_PROGRAM);
  CloseAll();
  EXPECT_FALSE(screen.Running());
}

}  // namespace
}  // namespace kelvaro
