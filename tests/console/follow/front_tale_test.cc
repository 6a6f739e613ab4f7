#include "console/follow/front_tale.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kelvaro::console {
namespace {

class FrontTaleTest : public testing::Test {
 protected:
  static FrontWindow Window(const std::string& title) { return {"game", "Game", title}; }

  std::vector<std::string> told;  // titles; "none" for no window
  FrontTale tale{[this](const std::optional<FrontWindow>& window) {
    told.push_back(window ? window->title : "none");
  }};
};

TEST_F(FrontTaleTest, EachWindowIsToldOnce) {
  for (const char* title : {"a", "a", "b", "a"}) tale.See(Window(title));
  EXPECT_EQ(told, (std::vector<std::string>{"a", "b", "a"}));
  EXPECT_EQ(tale.Wait(), std::nullopt);
}

TEST_F(FrontTaleTest, AMomentWithoutAWindowIsNotTold) {
  tale.See(Window("a"));
  tale.See(std::nullopt);
  EXPECT_EQ(tale.Wait(), 100u);
  tale.See(Window("a"));
  EXPECT_EQ(tale.Wait(), std::nullopt);
  tale.Passed();
  EXPECT_EQ(told, std::vector<std::string>{"a"});
}

TEST_F(FrontTaleTest, ThatThereIsNoWindowIsToldOnceItHasLasted) {
  for (int i = 0; i < 2; ++i) {
    tale.See(std::nullopt);
    EXPECT_EQ(tale.Wait(), 100u);
    tale.Passed();
    EXPECT_EQ(tale.Wait(), std::nullopt);
  }
  EXPECT_EQ(told, std::vector<std::string>{"none"});
  tale.See(Window("a"));
  EXPECT_EQ(told, (std::vector<std::string>{"none", "a"}));
}

}  // namespace
}  // namespace kelvaro::console
