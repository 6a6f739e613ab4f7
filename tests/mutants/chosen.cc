// What a test program of `mutate` has beside: the environment chooses the change that is made, and
// how long the program may compute. Where a file is named, each test tells there by which changes
// it has come; what ran before the first test is told of a test "*".

#include "chosen.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

namespace mutants {

int chosen;
bool reached[kMost];

namespace {

rlim_t Number(const char* name) {
  const char* value = std::getenv(name);
  return value ? std::strtoul(value, nullptr, 10) : 0;
}

void Limit(__rlimit_resource resource, const char* name) {
  const rlimit limit{Number(name), Number(name)};
  if (std::getenv(name) && setrlimit(resource, &limit)) std::abort();
}

// Before all that is made before main.
[[gnu::constructor(101)]] void Choose() {
  chosen = static_cast<int>(Number("KELVARO_MUTANT"));
  Limit(RLIMIT_CPU, "KELVARO_MUTANT_SECONDS");
  Limit(RLIMIT_DATA, "KELVARO_MUTANT_BYTES");
}

class Teller : public testing::EmptyTestEventListener {
 public:
  explicit Teller(const char* path) : file_(std::fopen(path, "w")) {
    if (!file_) std::abort();
  }
  void OnTestProgramStart(const testing::UnitTest&) override { Tell("*"); }
  void OnTestEnd(const testing::TestInfo& test) override {
    const std::string name = std::string(test.test_suite_name()) + "." + test.name();
    Tell(name.c_str());
  }

 private:
  // With the time that it has computed, in ms, however busy the machine is.
  void Tell(const char* name) {
    const std::clock_t now = std::clock();
    std::fprintf(file_, "%s %lld", name, (now - before_) * 1000LL / CLOCKS_PER_SEC);
    before_ = now;
    for (int number = 1; number < kMost; ++number) {
      if (reached[number]) std::fprintf(file_, " %d", number);
    }
    std::fprintf(file_, "\n");
    std::fflush(file_);
    std::memset(reached, 0, sizeof reached);
  }

  std::FILE* file_;
  std::clock_t before_ = std::clock();
};

[[maybe_unused]] const bool kTold = [] {
  const char* path = std::getenv("KELVARO_MUTANT_REACH");
  if (path) testing::UnitTest::GetInstance()->listeners().Append(new Teller(path));
  return path != nullptr;
}();

}  // namespace
}  // namespace mutants
