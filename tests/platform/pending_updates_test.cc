#include "app/platform/pending_updates.h"

#include <gtest/gtest.h>

namespace platform {
namespace {

TEST(PendingUpdates, OnlyTheFirstIsToBeTold) {
  PendingUpdates pending;
  EXPECT_TRUE(pending.Add(1, {.redraw = true}));
  EXPECT_FALSE(pending.Add(2, {.redraw = true}));
  EXPECT_EQ(pending.Take().size(), 2u);
  EXPECT_TRUE(pending.Add(1, {.redraw = true}));
}

TEST(PendingUpdates, WhatWasSetLastCountsAndComesLast) {
  PendingUpdates pending;
  pending.Add(1, {.text = "old"});
  pending.Add(2, {.text = "other"});
  pending.Add(1, {.checked = true});
  pending.Add(1, {.text = "new"});
  const PendingUpdates::All all = pending.Take();
  ASSERT_EQ(all.size(), 2u);
  EXPECT_EQ(all[0].first, 2u);
  EXPECT_EQ(all[1].first, 1u);
  EXPECT_EQ(all[1].second.text, "new");
  EXPECT_EQ(all[1].second.checked, true);
  EXPECT_FALSE(all[1].second.redraw);
}

TEST(PendingUpdates, WhatIsToBeDrawnAnewStaysSo) {
  PendingUpdates pending;
  pending.Add(1, {.redraw = true});
  pending.Add(1, {.text = "text"});
  EXPECT_TRUE(pending.Take()[0].second.redraw);
}

TEST(PendingUpdates, WhatTheProgramSetsMeanwhileGoesOverThem) {
  PendingUpdates pending;
  pending.Add(1, {.text = "older", .checked = true});
  pending.DropText(1);
  pending.DropText(2);
  PendingUpdates::All all = pending.Take();
  ASSERT_EQ(all.size(), 1u);
  EXPECT_FALSE(all[0].second.text.has_value());
  EXPECT_EQ(all[0].second.checked, true);
  pending.Add(1, {.text = "older", .checked = true});
  pending.DropCheck(1);
  all = pending.Take();
  EXPECT_EQ(all[0].second.text, "older");
  EXPECT_FALSE(all[0].second.checked.has_value());
}

}  // namespace
}  // namespace platform
