// What a person does in the window while the pad holds keys down: whatever becomes of the Controls,
// their keys go up.
#include <gtest/gtest.h>

#include "app/platform/clock.h"
#include "app/platform/threads.h"
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

// Which then doesn't wait for what is held to be let go.
TEST_F(HeldKeysTest, TheProgramEndsWhereAThreadThatWasEndedByForceHasALock) {
  for (const int which : {0, 1, 2}) {
    Begin();
    OpenProfile().mouseAlwaysActive = true;
    RecursiveLock* const locks[] = {&OpenProfile().profileLock, &Engine().repeatWorker.repeatLock,
                                    &Engine().mouseLock};
    const platform::Handle thread = platform::threads().CreateThread(
        [](void* lock) -> std::uint32_t {
          static_cast<RecursiveLock*>(lock)->Acquire(1);
          platform::clock().Sleep(1000);
          return 0;
        },
        locks[which], "holder", nullptr);
    sim.RunFor(1);
    platform::threads().TerminateThread(thread, 1000);
    platform::threads().CloseHandle(thread);
    ASSERT_TRUE(locks[which]->IsTaken());
    CloseAll();
    EXPECT_FALSE(screen.Running()) << which;
    ExpectNothingLeft();
  }
}

}  // namespace
}  // namespace kelvaro
