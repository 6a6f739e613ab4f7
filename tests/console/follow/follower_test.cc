#include "console/follow/follower.h"

#include <gtest/gtest.h>

namespace kelvaro::console {
namespace {

const FrontWindow kGame{"game", "Game", "The Game"};
const FrontWindow kOther{"editor", "Editor", "notes"};

class FollowerTest : public testing::Test {
 protected:
  FollowerTest() {
    JsonFault fault;
    const auto fine = [](const std::string&) { return std::string(); };
    EXPECT_TRUE(rules.Read(R"({"default":"Desk","rules":[{"program":"game","profile":"Game"},
                               {"program":"game2","profile":"Game"}]})",
                           fine, &fault));
  }

  // What happened since the last call, a word each.
  std::string Happened() {
    std::string happened;
    happened.swap(log);
    return happened;
  }

  FollowRules rules;
  std::vector<std::uint32_t> running{7};
  std::string answer = "done";  // "done", "" for nobody there, or an error
  std::string log;
  const FollowReach reach{
      [this] { return running; },
      [this](std::uint32_t process, const std::string& profile, std::string* error) {
        log += std::to_string(process) + ":" + profile + " ";
        if (answer != "done") *error = answer;
        return answer == "done";
      }};
  const FollowNews news{[this](const std::optional<FrontWindow>& window, std::size_t rule) {
                          log += "selected(" + (window ? window->program : "none") + "," +
                                 std::to_string(rule) + ") ";
                        },
                        [this] { log += "nobody "; },
                        [this](const std::string& error) { log += "failed(" + error + ") "; }};
  Follower follower{rules, reach, news};
};

TEST_F(FollowerTest, TheWindowsProfileAndThenTheDefault) {
  follower.SeeWindow(kGame);
  EXPECT_EQ(Happened(), "7:Game selected(game,1) ");
  follower.SeeWindow(kOther);
  EXPECT_EQ(Happened(), "7:Desk selected(editor,0) ");
  follower.SeeWindow(kGame);
  follower.SeeWindow(std::nullopt);
  EXPECT_EQ(Happened(), "7:Game selected(game,1) 7:Desk selected(none,0) ");
}

TEST_F(FollowerTest, TheFirstWindowSelectsTheDefaultAsWell) {
  follower.SeeWindow(std::nullopt);
  EXPECT_EQ(Happened(), "7:Desk selected(none,0) ");
}

TEST_F(FollowerTest, NothingIsSelectedTwice) {
  follower.SeeWindow(kGame);
  Happened();
  follower.SeeWindow(FrontWindow{"game", "Game", "Another title"});
  follower.SeeWindow(FrontWindow{"game2", "Game", ""});
  follower.SeeInstances();
  EXPECT_EQ(Happened(), "");
}

TEST_F(FollowerTest, ItsOwnWindowChangesNothing) {
  follower.SeeWindow(kGame);
  Happened();
  follower.SeeWindow(FrontWindow{"kelvaro", "Kelvaro", "Kelvaro"});
  EXPECT_EQ(Happened(), "");
  // Where no program is told, by the id on Wayland.
  follower.SeeWindow(FrontWindow{"", "com.marnstone.Kelvaro", "Kelvaro"});
  EXPECT_EQ(Happened(), "");
  follower.SeeWindow(kGame);
  EXPECT_EQ(Happened(), "");
}

TEST_F(FollowerTest, SaysOnceThatNobodyRunsAndGoesOnWhenOneComes) {
  running.clear();
  follower.SeeWindow(kGame);
  EXPECT_EQ(Happened(), "nobody ");
  follower.SeeWindow(kOther);
  follower.SeeWindow(kGame);
  follower.SeeInstances();
  EXPECT_EQ(Happened(), "");
  running = {8};
  follower.SeeInstances();
  EXPECT_EQ(Happened(), "8:Game selected(game,1) ");
  running.clear();
  follower.SeeInstances();
  EXPECT_EQ(Happened(), "nobody ");
}

TEST_F(FollowerTest, OneThatDoesNotAnswerYetIsAskedOnceMore) {
  answer.clear();
  follower.SeeWindow(kGame);
  EXPECT_EQ(Happened(), "7:Game nobody ");
  follower.SeeInstances();
  EXPECT_EQ(Happened(), "7:Game ");
  answer = "done";
  follower.SeeInstances();
  EXPECT_EQ(Happened(), "7:Game selected(game,1) ");
}

TEST_F(FollowerTest, ANewOneIsAskedAndTheOthersAreNot) {
  follower.SeeWindow(kGame);
  Happened();
  running = {7, 9};
  follower.SeeInstances();
  EXPECT_EQ(Happened(), "9:Game selected(game,1) ");
  running = {9};
  follower.SeeInstances();
  running = {7, 9};  // another process of the same number
  follower.SeeInstances();
  EXPECT_EQ(Happened(), "7:Game selected(game,1) ");
}

TEST_F(FollowerTest, ARefusalIsToldOnceAndAskedForAnewAtEachNews) {
  answer = "it can't";
  follower.SeeWindow(kGame);
  EXPECT_EQ(Happened(), "7:Game failed(it can't) ");
  follower.SeeInstances();
  follower.SeeWindow(FrontWindow{"game", "Game", "Another title"});
  EXPECT_EQ(Happened(), "7:Game 7:Game ");
  follower.SeeWindow(kOther);
  EXPECT_EQ(Happened(), "7:Desk failed(it can't) ");
  answer = "done";
  follower.SeeWindow(FrontWindow{"editor", "Editor", "Another title"});
  EXPECT_EQ(Happened(), "7:Desk selected(editor,0) ");
  follower.SeeWindow(kOther);
  EXPECT_EQ(Happened(), "");
}

TEST_F(FollowerTest, NothingIsSelectedBeforeAWindowIsKnown) {
  follower.SeeInstances();
  EXPECT_EQ(Happened(), "");
}

}  // namespace
}  // namespace kelvaro::console
