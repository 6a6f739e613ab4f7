// The folder of stored profiles of the test program itself, empty for each test and gone after it.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "app/platform/machine/this_machine.h"
#include "tests/console/console_run.h"

namespace kelvaro::console {

// Standard input comes from a file of this test.
class StandardInput {
 public:
  explicit StandardInput(const std::string& content) : file("stdin", content), before(dup(0)) {
    Take(file.path.c_str());
  }
  ~StandardInput() {
    std::fflush(stdin);
    std::clearerr(stdin);
    dup2(before, 0);
    close(before);
  }
  StandardInput(const StandardInput&) = delete;
  StandardInput& operator=(const StandardInput&) = delete;

 private:
  static void Take(const char* path) {
    std::FILE* opened = std::fopen(path, "rb");
    ASSERT_NE(opened, nullptr);
    std::fflush(stdin);  // what was read ahead
    std::clearerr(stdin);
    dup2(fileno(opened), 0);
    std::fclose(opened);
  }

  const TestFile file;
  const int before;
};

class StoredProfiles : public testing::Test {
 protected:
  StoredProfiles()
      : folder(std::filesystem::path(platform::ThisFiles().GetModuleFileNameA()).parent_path() /
               "Profiles") {
    std::filesystem::remove_all(folder);
  }
  ~StoredProfiles() override { std::filesystem::remove_all(folder); }

  // Full path of the file.
  std::string Put(const std::string& fileName, const std::string& bytes) {
    return tests::Put((folder / fileName).string(), bytes);
  }
  // Packs a profile in JSON.
  std::string Store(const std::string& fileName, const std::string& json) {
    const TestFile in("in_" + fileName, json);
    std::filesystem::create_directory(folder);
    const Outcome outcome = Kelvaroctl({"pack", in.path, (folder / fileName).string()});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return (folder / fileName).string();
  }

  const std::filesystem::path folder;
};

}  // namespace kelvaro::console
