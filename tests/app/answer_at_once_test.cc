// The stored value that has the device answered at once, which the window only reads.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/app/control_fixture.h"

namespace kelvaro {
namespace {

class AnswerAtOnceTest : public ControlTest {
 protected:
  // For a tap of 1 ms at each phase of the interval of 5: the milliseconds from the press to each
  // event.
  std::vector<std::string> EventsOfTaps() {
    std::vector<std::string> found;
    for (int phase = 0; phase < 5; ++phase) {
      sim.RunFor(100);  // at rest by then
      sim.ClearEvents();
      const std::uint64_t begin = sim.Now();
      pad.Press({1});
      sim.RunFor(1);
      pad.Press({});
      sim.RunFor(100);
      std::string times;
      for (const auto& event : sim.Events()) times += std::to_string(event.t - begin) + ' ';
      found.push_back(times);
    }
    std::sort(found.begin(), found.end());
    return found;
  }
};

TEST_F(AnswerAtOnceTest, WithoutItAKeyComesWithThePollThatMeetsItsButton) {
  StartWith({{.buttons = 1, .keys = {"a"}}});
  EXPECT_EQ(EventsOfTaps(), (std::vector<std::string>{"", "", "", "", "1 6 "}));
}

TEST_F(AnswerAtOnceTest, WithItEachKeyComesWithItsButtonFromTheStartOn) {
  Preset("Answer At Once", 1);
  StartWith({{.buttons = 1, .keys = {"a"}}});
  EXPECT_EQ(EventsOfTaps(), std::vector<std::string>(5, "0 5 "));
}

TEST_F(AnswerAtOnceTest, ItIsNeverWritten) {
  Begin();
  CloseAll();
  EXPECT_EQ(Number("Answer At Once"), std::nullopt);
  Preset("Answer At Once", 7);
  Begin();
  screen.ChooseTab(main_window::kTabControl, 3);
  screen.Click(main_window::kSmartCheck);
  CloseAll();
  EXPECT_EQ(Number("Smart Check"), 0u);
  EXPECT_EQ(Number("Answer At Once"), 7u);
}

}  // namespace
}  // namespace kelvaro
