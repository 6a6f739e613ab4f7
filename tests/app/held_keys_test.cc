// What a person does in the window while the pad holds keys down: whatever becomes of the Controls,
// their keys go up.
#include <gtest/gtest.h>

#include "app/resources/control_ids.h"
#include "tests/app/control_fixture.h"
#include "tests/console/held_inputs.h"

namespace kelvaro {
namespace {

using namespace main_window;

class HeldKeysTest : public ControlTest {
 protected:
  HeldKeysTest() {
    sim.OnEvent([this](const auto& event) { held.See(event); });
    StoreProfile("Other", [this](ProfileFile& made) { UsePad(made); });
  }
  void BeginAndHold() {
    StartWith({{.buttons = 1, .keys = {"ab"}, .holdAllFrom = 0}, {.buttons = 2, .keys = {"c"}}});
    screen.Choose(kProfileList, kProfile);
    Press({1, 2});
    ASSERT_EQ(held.Down().size(), 3u);
  }
  void ExpectLetGo() {
    EXPECT_EQ(held.Text(), "");
    Press({});
    EXPECT_EQ(held.Text(), "");
  }

  HeldInputs held;
};

TEST_F(HeldKeysTest, AreLetGoWhenAnotherProfileIsChosen) {
  BeginAndHold();
  screen.Choose(kProfileList, "Other");
  ExpectLetGo();
}

TEST_F(HeldKeysTest, AreLetGoWhenTheProgramEnds) {
  BeginAndHold();
  CloseAll();
  EXPECT_EQ(held.Text(), "");
}

TEST_F(HeldKeysTest, AreLetGoWhenTheProfileIsDeleted) {
  BeginAndHold();
  screen.Click(kDeleteProfile);
  screen.Click(platform::IDOK);
  ExpectLetGo();
}

TEST_F(HeldKeysTest, AreLetGoWhenANewProfileIsMade) {
  BeginAndHold();
  screen.Click(kNewProfile);
  screen.Type(new_profile::kName, "New");
  screen.Click(platform::IDOK);
  ExpectLetGo();
}

TEST_F(HeldKeysTest, AreLetGoWhenTheirControlIsDeleted) {
  BeginAndHold();
  screen.SelectRows(kControlList, {0});
  screen.Click(kDeleteControls);
  screen.Answer(platform::IDYES);
  ExpectLetGo();
}

TEST_F(HeldKeysTest, AreLetGoWhenTheirControlGetsOtherKeys) {
  BeginAndHold();
  Edit(0);
  TypeControl("x");
  screen.Click(platform::IDOK);
  ExpectLetGo();
}

}  // namespace
}  // namespace kelvaro
