#include "app/platform/platform.h"

#include <gtest/gtest.h>

#include "tests/platform/cut_off_thread.h"

namespace platform {
namespace {

TEST(Platform, NoGroupIsHandedToAThreadThatWasCutOff) {
  EXPECT_EQ(ComeBackThoughCutOff({{"clock", [] { clock(); }},
                                  {"threads", [] { threads(); }},
                                  {"timers", [] { timers(); }},
                                  {"devices", [] { devices(); }},
                                  {"input", [] { input(); }},
                                  {"files", [] { files(); }},
                                  {"system", [] { system(); }},
                                  {"registry", [] { registry(); }},
                                  {"desktop", [] { desktop(); }},
                                  {"controls", [] { controls(); }},
                                  {"shell", [] { shell(); }},
                                  {"processes", [] { processes(); }}}),
            std::vector<std::string>());
}

struct NoClock final : Clock {
  void Sleep(std::uint32_t) override {}
  std::uint32_t GetTickCount() override { return 0; }
};

TEST(Platform, TheLastInstalledOneCountsAndAfterItTheOneBefore) {
  NoClock first;
  NoClock second;
  const InstalledPlatform outer({.clock = &first});
  EXPECT_EQ(&clock(), &first);
  {
    const InstalledPlatform inner({.clock = &second});
    EXPECT_EQ(&clock(), &second);
  }
  EXPECT_EQ(&clock(), &first);
}

TEST(Platform, WhereNobodyCanBeCalledNobodyAnswers) {
  EXPECT_FALSE(calls().Answer(nullptr));
  EXPECT_TRUE(calls().Send(1, "text")) << "nothing is left to be sent";
  EXPECT_TRUE(calls().Answering().empty());
  EXPECT_FALSE(calls().Call(1));
  EXPECT_FALSE(calls().WatchArrivals());
  calls().HangUp(1);
  calls().Wake();
  calls().StopAnswering();
}

}  // namespace
}  // namespace platform
