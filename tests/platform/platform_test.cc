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

}  // namespace
}  // namespace platform
