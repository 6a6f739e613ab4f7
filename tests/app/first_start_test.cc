// The first start of one who has a pad: the example profiles that come with the program, which wait
// for a device and for nothing else.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>

#include "app/resources/control_ids.h"
#include "tests/app/profile_row_fixture.h"
#include "tests/host/files.h"

namespace kelvaro {
namespace {

using namespace main_window;

constexpr char kUsersFolder[] = "/home/player/.local/share/kelvaro/Profiles/";

class FirstStartTest : public ProfileRowTest {
 protected:
  FirstStartTest() {
    FirstStart();
    for (const auto& entry : std::filesystem::directory_iterator(KELVARO_STORED_EXAMPLES)) {
      const std::string name = entry.path().stem();
      names.push_back(name);
      shipped[name] = tests::Content(entry.path());
      PutProfileFile(entry.path().filename(), shipped[name]);
    }
    std::sort(names.begin(), names.end());
  }

  void BeginAndReadTheWelcome() {
    Begin();
    ASSERT_EQ(screen.Front(), welcome::kDialog);
    screen.Close();
  }
  void ExpectNoDeviceAndAnswer() { ExpectBoxAndAnswer(kNoDeviceText, "Kelvaro", platform::MB_OK); }
  void ExpectAsShipped(const std::string& folder) {
    for (const auto& [name, bytes] : shipped) {
      EXPECT_TRUE(Disk().FileBytes(folder + name + ".idprof") == bytes) << folder << name;
    }
  }

  Strings names;
  std::map<std::string, std::string> shipped;  // bytes by names
};

TEST_F(FirstStartTest, OffersTheExamplesAsTheyAreAndTakesNoDeviceForThem) {
  BeginAndReadTheWelcome();
  ExpectNoDeviceAndAnswer();
  EXPECT_EQ(names.size(), 9U);
  EXPECT_EQ(Profiles(), names);
  EXPECT_EQ(Chosen(), names.front());
  EXPECT_EQ(screen.Rows(kDeviceList), Strings({kNone, kPad}));
  EXPECT_EQ(screen.Chosen(kDeviceList), kNone);
  ExpectNoDevice();
  EXPECT_EQ(screen.Boxes().size(), 1U);
  ExpectAsShipped("/game/Profiles/");
}

// Nor does one take over what was set for the device with another.
TEST_F(FirstStartTest, ADeviceIsAllThatAnExampleWaitsFor) {
  BeginAndReadTheWelcome();
  ExpectNoDeviceAndAnswer();
  for (const std::string& name : names) {
    if (name != Chosen()) {
      screen.AnswerNext(platform::IDOK);
      Choose(name.c_str());
    }
    screen.Choose(kDeviceList, kPad);
    EXPECT_TRUE(Device()->DeviceSelected()) << name;

    ProfileFile wanted;
    Disk().PutFile("/other/shipped.idprof", shipped[name]);
    ASSERT_TRUE(wanted.Load("/other/shipped.idprof")) << name;
    EXPECT_TRUE(wanted.deviceName.IsEmpty()) << name;
    SetDevice(&wanted, kPad, kPadGuid, wanted.pollInterval);
    const auto stored = Stored(name);
    ASSERT_TRUE(stored) << name;
    ExpectSameProfile(*stored, wanted);
  }
  Choose("Platformer");
  EXPECT_FALSE(screen.BoxUp()) << "it has its device";
  sim.RunFor(50);
  pad.Press({1});
  sim.RunFor(50);
  EXPECT_EQ(KeysPressed(), " ");
}

TEST_F(FirstStartTest, AnExampleThatIsDeletedStaysAway) {
  Disk().PutFile("/game/PerUser", "");
  BeginAndReadTheWelcome();
  ExpectNoDeviceAndAnswer();
  ExpectAsShipped(kUsersFolder);
  ASSERT_EQ(Chosen(), names.front());
  ClickDelete();
  ExpectNoDeviceAndAnswer();  // of the next one
  CloseAll();

  names.erase(names.begin());
  Begin();
  ExpectNoDeviceAndAnswer();
  EXPECT_EQ(Profiles(), names);
  ExpectAsShipped("/game/Profiles/");
}

}  // namespace
}  // namespace kelvaro
