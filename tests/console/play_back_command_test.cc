#include "tests/console/console_run.h"

namespace kelvaro::console {
namespace {

#ifdef _WIN32
TEST(MadePads, AreSaidToBeNoneOnThisSystem) {
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"play-back", "any"}, {"latency"}}) {
    const Outcome outcome = Kelvaroctl(command);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err.rfind("kelvaroctl: Windows lets no program make a pad", 0), 0u)
        << outcome.err;
  }
}
#else
TEST(PlayBackCommand, ARecordingThatNoPadCanPlayIsRefusedBeforeThereIsAPad) {
  const std::string pad =
      R"({"recording":1,"device":"P","guid":"000102030405060708090a0b0c0d0e0f",)"
      R"("buttons":2,"axes":1,"povs":0})"
      "\n";
  const TestFile velocity("velocity", pad + "{\"t\":20,\"axes\":{\"Axis_X0\":5,\"Axis_Y1\":7}}\n");
  const Outcome outcome = Kelvaroctl({"play-back", velocity.path});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "kelvaroctl: " + velocity.path + ": at 20 ms: a pad can't have Axis_Y1\n");

  const TestFile broken("broken", pad + "{\"t\":20,\"axes\":{\"Axis_Q0\":5}}\n");
  EXPECT_EQ(Kelvaroctl({"play-back", broken.path}).err,
            "kelvaroctl: " + broken.path + ":2:27: axes.Axis_Q0: no such axis\n");
}
#endif

}  // namespace
}  // namespace kelvaro::console
