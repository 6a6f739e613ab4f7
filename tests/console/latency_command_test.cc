#include <unistd.h>

#include "tests/console/console_run.h"
#include "tests/host/files.h"

namespace kelvaro::console {
namespace {

TEST(LatencyCommand, AProfileThatIsNotThereIsSaidBeforeThereIsAPad) {
  const Outcome outcome = Kelvaroctl({"latency", "/no/such.idprof"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_NE(outcome.err.find("/no/such.idprof"), std::string::npos) << outcome.err;
}

TEST(LatencyCommand, WithoutAWayToMakeAPadNothingIsMeasured) {
  if (access("/dev/uinput", W_OK) == 0) GTEST_SKIP() << "this user can make pads";
  const tests::TemporaryFolder folder;
  const Outcome outcome = Kelvaroctl({"latency", "--svg", folder.In("picture.svg")});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err.rfind("kelvaroctl: can't make a pad: ", 0), 0u) << outcome.err;
  EXPECT_NE(access(folder.In("picture.svg").c_str(), F_OK), 0);
}

}  // namespace
}  // namespace kelvaro::console
