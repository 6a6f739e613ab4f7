#include "console/device_choice.h"

#include <gtest/gtest.h>

#include <initializer_list>

#include "app/platform/simulation/simulation.h"
#include "console/json_text.h"

namespace kelvaro::console {
namespace {

using platform::DeviceDescription;
using platform::simulation::Simulation;

platform::GUID Guid(std::uint8_t last) { return {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, last}}; }

// A machine with these devices, whose guids end in 1, 2, 3 ...
struct DeviceChoiceTest : testing::Test {
  void Plug(std::initializer_list<const char*> names) {
    std::uint8_t last = 0;
    for (const char* name : names) {
      DeviceDescription description;
      description.name = name;
      description.guid = Guid(++last);
      sim.AddDevice(description);
    }
  }

  // The place of the device that was selected, or the error.
  std::string Choose(const DeviceChoice& choice) {
    DeviceManager manager(platform::kNoWindow);
    std::string error = "no error";
    const bool good = SelectChosenDevice(&manager, choice, &error);
    EXPECT_EQ(good, manager.DeviceSelected());
    if (!good) return error;
    EXPECT_EQ(error, "no error");
    const std::string chosen = std::to_string(manager.SelectedIndex());
    manager.StopDevice();
    return chosen;
  }

  static DeviceChoice Named(const std::string& name) {
    DeviceChoice choice;
    choice.name = name;
    return choice;
  }
  static DeviceChoice OfProfile(const platform::GUID& guid, const std::string& name) {
    DeviceChoice choice;
    choice.profileGuid = guid;
    choice.profileName = TextOf(name);
    return choice;
  }

  Simulation sim;
};

TEST_F(DeviceChoiceTest, ADeviceThatAnotherProgramKeepsForItselfIsSaid) {
  Plug({"Wheel"});
  sim.FailNext("Acquire", platform::DIERR_OTHERAPPHASPRIO);
  EXPECT_EQ(
      Choose(Named("Wheel")),
      "another program keeps the device 'Wheel' for itself; kelvaroctl doctor tells which ones "
      "use it");
}

TEST_F(DeviceChoiceTest, ANameTakesTheFirstDeviceThatHasIt) {
  Plug({"Wheel", "Pad", "Pad"});
  EXPECT_EQ(Choose(Named("Wheel")), "0");
  EXPECT_EQ(Choose(Named("Pad")), "1");
}

TEST_F(DeviceChoiceTest, AnUnknownNameListsTheDevicesThatAreThere) {
  Plug({"Wheel", "Pad"});
  EXPECT_EQ(Choose(Named("pad")),
            "there is no device 'pad' (did you mean 'Pad'?); there are: 'Wheel', 'Pad'");
  EXPECT_EQ(Choose(Named("")), "there is no device ''; there are: 'Wheel', 'Pad'");
}

TEST_F(DeviceChoiceTest, TheBeginningOfOneNameOnlyIsEnough) {
  Plug({"Wheel", "Pad two", "Pad", "Wheel"});
  EXPECT_EQ(Choose(Named("Pad ")), "1");
  EXPECT_EQ(Choose(Named("Pad")), "2") << "a whole name wins";
  EXPECT_EQ(Choose(Named("Wh")), "0") << "two of one name are one name";
  EXPECT_EQ(Choose(Named("P")), "'P' begins several names: 'Pad two', 'Pad'");
  // The name in a profile is a whole one.
  EXPECT_EQ(Choose(OfProfile({}, "Whee")),
            "there is no device 'Whee' (did you mean 'Wheel'?); there are: 'Wheel', 'Pad two', "
            "'Pad', 'Wheel'");
}

TEST_F(DeviceChoiceTest, OneDeviceIsListedAsOne) {
  Plug({"Wheel"});
  EXPECT_EQ(Choose(Named("Pad")), "there is no device 'Pad'; there is: 'Wheel'");
}

TEST_F(DeviceChoiceTest, ANameWinsOverTheProfilesGuid) {
  Plug({"Wheel", "Pad"});
  DeviceChoice choice = OfProfile(Guid(1), "Wheel");
  choice.name = "Pad";
  EXPECT_EQ(Choose(choice), "1");
  choice.name = "Stick";
  EXPECT_EQ(Choose(choice), "there is no device 'Stick'; there are: 'Wheel', 'Pad'");
}

TEST_F(DeviceChoiceTest, TheProfilesGuidWinsOverItsName) {
  Plug({"Pad", "Pad", "Wheel"});
  EXPECT_EQ(Choose(OfProfile(Guid(2), "Pad")), "1");
  EXPECT_EQ(Choose(OfProfile(Guid(3), "Pad")), "2");
}

TEST_F(DeviceChoiceTest, WithoutThatGuidTheProfilesNameCounts) {
  Plug({"Wheel", "Pad"});
  EXPECT_EQ(Choose(OfProfile(Guid(9), "Pad")), "1");
  EXPECT_EQ(Choose(OfProfile({}, "Pad")), "1");
  EXPECT_EQ(Choose(OfProfile(Guid(9), "Stick")),
            "there is no device 'Stick'; there are: 'Wheel', 'Pad'");
}

TEST_F(DeviceChoiceTest, AGuidAloneIsNamedWhenItIsNotThere) {
  Plug({"Wheel"});
  EXPECT_EQ(Choose(OfProfile(Guid(1), "")), "0");
  EXPECT_EQ(Choose(OfProfile(Guid(9), "")),
            "there is no device with the guid 00000001000200030405060708090a09; there is: 'Wheel'");
}

TEST_F(DeviceChoiceTest, TheOnlyDeviceNeedsNoName) {
  Plug({"Wheel"});
  EXPECT_EQ(Choose({}), "0");
}

TEST_F(DeviceChoiceTest, OfSeveralOneMustBeNamed) {
  Plug({"Wheel", "Pad", "Stick"});
  EXPECT_EQ(Choose({}), "which device? Name one; there are: 'Wheel', 'Pad', 'Stick'");
}

TEST_F(DeviceChoiceTest, NoDeviceAtAllIsSaid) {
  EXPECT_EQ(Choose({}), "no game pad is plugged in");
  EXPECT_EQ(Choose(Named("Pad")), "there is no device 'Pad'; no game pad is plugged in");
}

TEST_F(DeviceChoiceTest, ADeviceThatWontOpenIsNamed) {
  Plug({"Wheel"});
  sim.FailNext("CreateDevice");
  EXPECT_EQ(Choose({}), "the device 'Wheel' can't be opened; may this user read it?");
}

TEST_F(DeviceChoiceTest, AListThatCantBeReadIsTold) {
  Plug({"Wheel"});
  sim.FailNext("DirectInput8Create", platform::DIERR_OUTOFMEMORY);
  EXPECT_EQ(Choose({}).rfind("DirectInput8Create() failed with return code: ", 0), 0U);
}

}  // namespace
}  // namespace kelvaro::console
