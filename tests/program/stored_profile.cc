#include "tests/program/stored_profile.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace kelvaro::tests {

void StoreProfile(const Home& home, const std::string& folder, const std::string& name,
                  const std::string& members) {
  const std::string json =
      Put(folder + "/profile.json", R"({"profileName":")" + name + "\"," + members + "}");
  std::filesystem::create_directories(folder + "/Profiles");
  Child pack({Program("kelvaroctl"), "pack", json, folder + "/Profiles/" + name + ".idprof"},
             {home.Environment()});
  EXPECT_EQ(pack.WaitForEnd(60s), 0) << pack.Log();
}

}  // namespace kelvaro::tests
