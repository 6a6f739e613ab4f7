// The programs in a folder of their own, with profiles beside them, for a person who has been asked
// all that a first start asks.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/program/machine.h"
#include "tests/program/stored_profile.h"
#include "tests/program/stored_settings.h"

namespace kelvaro::tests {

class OwnPrograms : public testing::Test {
 protected:
  // `members`: what each profile has beside its name, in JSON. The window opens the first.
  OwnPrograms(const std::vector<std::string>& profiles, const std::string& members) {
    std::filesystem::create_directories(folder);
    for (const char* name : {"kelvaro", "kelvaroctl"})
      std::filesystem::copy_file(Program(name), folder + "/" + name);
    EXPECT_TRUE(StoredSettings(home).SetQuiet());
    EXPECT_TRUE(StoredSettings(home).Set("Last Profile", profiles.front()));
    for (const std::string& name : profiles) StoreProfile(home, folder, name, members);
  }

  static void ExpectEndsByCtrlC(Child& program) {
    program.Signal(SIGINT);
    EXPECT_EQ(program.WaitForEnd(60s), 0) << program.Log();
  }

  const Home home;
  const std::string folder = home.folder + "/programs";
};

}  // namespace kelvaro::tests
