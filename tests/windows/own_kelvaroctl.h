// kelvaroctl.exe in a folder of a test's own, with profiles beside it.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/host/child.h"
#include "tests/host/files.h"

namespace kelvaro::tests {

class OwnKelvaroctl {
 public:
  // What it did to the end.
  struct Said {
    int status;
    std::string out;
    std::string err;
  };

  OwnKelvaroctl() {
    std::filesystem::copy_file(KELVAROCTL, In("kelvaroctl.exe"));
    std::filesystem::create_directory(In("Profiles"));
  }

  std::string In(const std::string& name) const { return folder.In(name); }
  // `members`: what the profile has beside its name, in JSON.
  void Store(const std::string& name, const std::string& members) const {
    const std::string json =
        Put(In("profile.json"), R"({"profileName":")" + name + "\"," + members + "}");
    const Said packed = Do({"pack", json, In("Profiles\\" + name + ".idprof")});
    EXPECT_EQ(packed.status, 0) << packed.err;
  }

  std::unique_ptr<Child> Start(std::vector<std::string> words) const {
    words.insert(words.begin(), In("kelvaroctl.exe"));
    return std::make_unique<Child>(words);
  }
  Said Do(const std::vector<std::string>& words) const {
    const auto child = Start(words);
    const int status = child->WaitForEnd();
    return {status, child->Out(), child->Err()};
  }
  // Whether it comes to say that of the programs that run.
  testing::AssertionResult Tells(const std::string& status) const {
    Said last;
    if (Eventually([&] {
          last = Do({"status"});
          return last.out.find(status) != std::string::npos;
        }))
      return testing::AssertionSuccess();
    return testing::AssertionFailure() << last.out << last.err;
  }

 private:
  const TemporaryFolder folder;
};

// As the JSON of a profile's Control.
inline std::string ButtonTypes(unsigned button, const std::string& text) {
  return R"("controls":[{"buttonMask":)" + std::to_string(1u << button) +
         R"(,"actions":[{"text":")" + text + R"("}]}])";
}

// Whether that comes to be in what a child has said.
inline testing::AssertionResult Says(const Child& child, const std::string& text) {
  if (Eventually([&] { return child.Log().find(text) != std::string::npos; }))
    return testing::AssertionSuccess();
  return testing::AssertionFailure() << child.Log();
}

}  // namespace kelvaro::tests
