#include "console/follow/toplevels.h"

#include <gtest/gtest.h>

namespace kelvaro::console {
namespace {

class ToplevelsTest : public testing::Test {
 protected:
  void Show(const int& window, const std::string& title, bool active) {
    windows.SetTitle(&window, title);
    SetActive(window, active);
  }
  void SetActive(const int& window, bool active) {
    windows.SetActive(&window, active);
    windows.Settle(&window);
  }
  std::string Front() const {
    const auto front = windows.Front();
    return front ? front->title : "none";
  }

  const int editor = 0;
  const int game = 0;
  Toplevels windows;
};

TEST_F(ToplevelsTest, OnlyAnActiveOneIsInFront) {
  EXPECT_EQ(Front(), "none");
  Show(editor, "Editor", false);
  EXPECT_EQ(Front(), "none");
  SetActive(editor, true);
  EXPECT_EQ(Front(), "Editor");
  SetActive(editor, false);
  EXPECT_EQ(Front(), "none");
}

TEST_F(ToplevelsTest, TellsClassAndTitleButNoProgram) {
  windows.SetKind(&game, "net.doom");
  Show(game, "Level 1", true);
  EXPECT_EQ(windows.Front(), (FrontWindow{"", "net.doom", "Level 1"}));
}

TEST_F(ToplevelsTest, WhatIsToldCountsOnceItIsSettled) {
  Show(game, "Level 1", true);
  windows.SetTitle(&game, "Level 2");
  windows.SetKind(&game, "doom");
  windows.SetActive(&game, false);
  EXPECT_EQ(windows.Front(), (FrontWindow{"", "", "Level 1"}));
  windows.SetActive(&game, true);
  windows.Settle(&game);
  EXPECT_EQ(windows.Front(), (FrontWindow{"", "doom", "Level 2"}));
}

// The one that loses the front may be told before the one that gets it, or after.
TEST_F(ToplevelsTest, OfTwoThatAreActiveTheLaterOneIsInFront) {
  Show(game, "Level 1", true);
  Show(editor, "Editor", true);
  EXPECT_EQ(Front(), "Editor");
  windows.SetTitle(&game, "Level 2");
  windows.Settle(&game);
  EXPECT_EQ(Front(), "Editor");
  SetActive(editor, false);
  EXPECT_EQ(Front(), "Level 2");
}

TEST_F(ToplevelsTest, AClosedOneIsNotInFront) {
  Show(editor, "Editor", true);
  Show(game, "Level 1", true);
  windows.Remove(&game);
  EXPECT_EQ(Front(), "Editor");
  windows.Remove(&editor);
  EXPECT_EQ(Front(), "none");
  windows.Remove(&editor);
  EXPECT_EQ(Front(), "none");
}

}  // namespace
}  // namespace kelvaro::console
