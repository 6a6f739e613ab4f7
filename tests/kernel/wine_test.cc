// kelvaroctl.exe on Wine's own DirectInput, with a pad of the kernel's.

#include <gtest/gtest.h>
#include <linux/input.h>

#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include "tests/kernel/pad.h"
#include "tests/kernel/profile_run.h"
#include "tests/kernel/wine.h"
#include "tests/kernel/x_client.h"

namespace kelvaro::kernel {
namespace {

constexpr char kPad[] = "Wine Pad";

bool InTime(const std::function<bool()>& done) { return tests::Eventually(done, kWinePatience); }

class WinePad : public ::testing::Test {
 protected:
  // Wine takes long to come up.
  static void SetUpTestSuite() { wine = std::make_unique<Wine>(); }
  static void TearDownTestSuite() { wine.reset(); }

  // Wine takes a moment to see that a pad is gone.
  void SetUp() override {
    ASSERT_TRUE(InTime([] { return Listed().empty(); }));
  }

  void TearDown() override {
    if (!run) return;
    run->Signal(SIGINT);
    EXPECT_EQ(run->WaitForEnd(kWinePatience), 0) << run->Log();
  }

  void PlugIn() { pad = std::make_unique<UinputPad>(OrdinaryPad(kPad)); }

  static std::string Listed() {
    const Finished devices = wine->RunKelvaroctl({"devices", "--json"});
    EXPECT_EQ(devices.status, 0) << devices.err;
    return devices.out;
  }

  // Comes back once it polls. False, and a failure, if it doesn't.
  bool Run(const std::string& profile) {
    EXPECT_TRUE(InTime([] { return !Listed().empty(); }));
    run = wine->StartKelvaroctl({"run", "--json", WriteFile(profile)});
    const bool runs =
        InTime([&] { return run->Err().find("Running") != std::string::npos || !run->Running(); });
    EXPECT_TRUE(runs && run->Running()) << run->Log();
    return runs && run->Running();
  }

  static inline std::unique_ptr<Wine> wine;
  std::unique_ptr<UinputPad> pad;
  std::unique_ptr<Child> run;
};

void ExpectTyped(TypedKeys& keys, const std::vector<std::string>& expected) {
  std::vector<std::string> texts;
  InTime([&] {
    for (const TypedKeys::Line& line : keys.Take()) texts.push_back(line.text);
    return texts.size() >= expected.size();
  });
  EXPECT_EQ(texts, expected);
}

// Wine takes the pad for one of the kind that it knows best: its triggers share an axis, and the
// button in the middle is the system's.
TEST_F(WinePad, IsListedAsDirectInputHasIt) {
  PlugIn();
  ASSERT_TRUE(InTime([] { return !Listed().empty(); }));
  const std::vector<tests::Json> devices = tests::ParsedLines(Listed());
  ASSERT_EQ(devices.size(), 1U);
  EXPECT_EQ(devices[0]["name"].Text(), kPad);
  EXPECT_EQ(devices[0]["buttons"].Signed(), 10);
  EXPECT_EQ(devices[0]["axes"].Signed(), 5);
  EXPECT_EQ(devices[0]["povs"].Signed(), 1);
}

TEST_F(WinePad, APressArrivesAsItsKeyInAnotherProgram) {
  TypedKeys keys(*wine);
  PlugIn();
  ASSERT_TRUE(
      Run(ProfileOf({ButtonControl(0, "a"), ButtonControl(5, "b"), ItemControl(8, 0, 4, "c")})));
  pad->Press(0);
  ExpectTyped(keys, {"down 65 scan 30"});
  pad->Release(0);
  ExpectTyped(keys, {"up 65 scan 30"});
  pad->Press(5);
  ExpectTyped(keys, {"down 66 scan 48"});
  pad->TurnHat(0, 9000);
  ExpectTyped(keys, {"down 67 scan 46"});
  pad->Release(5);
  ExpectTyped(keys, {"up 66 scan 48"});
  pad->TurnHat(0, -1);
  ExpectTyped(keys, {"up 67 scan 46"});
}

TEST_F(WinePad, AStickMovesThePointerForTheSystemsOwnPrograms) {
  PlugIn();
  ASSERT_TRUE(Run(
      ProfileOf({}, "\"mouse\":{\"mouseX\":{\"kind\":0,\"index\":0},\"mouseAlwaysActive\":true}")));
  const int x = PointerOn(wine->Display()).first;
  pad->Move(ABS_X, 9000);
  EXPECT_TRUE(InTime([&] { return PointerOn(wine->Display()).first > x; }));
  pad->Move(ABS_X, -9000);
  EXPECT_TRUE(InTime([&] { return PointerOn(wine->Display()).first < x; }));
  pad->Move(ABS_X, 0);
}

// What is held stays so meanwhile, as DirectInput has it.
TEST_F(WinePad, APulledPadIsListedNoMoreAndWorksAgainWhenItIsBack) {
  TypedKeys keys(*wine);
  PlugIn();
  ASSERT_TRUE(Run(ProfileOf({ButtonControl(0, "a")})));
  pad->Press(0);
  ExpectTyped(keys, {"down 65 scan 30"});
  pad.reset();
  EXPECT_TRUE(InTime([] { return Listed().empty(); }));
  const Finished told = wine->RunKelvaroctl({"devices"});
  EXPECT_NE((told.out + told.err).find("No game pad is plugged in."), std::string::npos);
  EXPECT_TRUE(run->Running());
  PlugIn();
  ASSERT_TRUE(InTime([] { return !Listed().empty(); }));
  pad->Press(1);
  ExpectTyped(keys, {"up 65 scan 30"});
  pad->Press(0);
  ExpectTyped(keys, {"down 65 scan 30"});
}

}  // namespace
}  // namespace kelvaro::kernel
