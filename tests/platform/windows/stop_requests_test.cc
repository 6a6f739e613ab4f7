#include "app/platform/windows/stop_requests.h"

#include <gtest/gtest.h>

#include <optional>
#include <thread>

namespace platform {
namespace {

TEST(StopRequests, AWaitEndsWithItsTimeOrWithTheRequest) {
  StopRequests requests;
  EXPECT_FALSE(requests.Wait(0));
  EXPECT_FALSE(requests.Wait(20));
  std::thread other([] { StopRequests::Ask(); });
  EXPECT_TRUE(requests.Wait(std::nullopt));
  other.join();
  EXPECT_TRUE(requests.Wait(0)) << "it stays";
}

TEST(StopRequests, ANewObjectBeginsWithNone) {
  {
    StopRequests requests;
    StopRequests::Ask();
    EXPECT_TRUE(requests.Wait(0));
  }
  StopRequests requests;
  EXPECT_FALSE(requests.Wait(0));
  requests.EndAsAsked();  // comes back
}

}  // namespace
}  // namespace platform
