#include "app/platform/linux/realtime_kit.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "app/platform/linux/monotonic_time.h"
#include "tests/host/files.h"
#include "tests/platform/linux/fake_realtime_kit.h"

namespace platform {
namespace {

class RealtimeKitTest : public ::testing::Test {
 protected:
  void SetUp() override {
    SKIP_UNLESS(!bus.Address().empty(), "dbus", "dbus-daemon can't be started");
  }
  Bus bus;
};

TEST_F(RealtimeKitTest, AsksForWhatIsWanted) {
  FakeService service(bus.Address(), true);
  RealtimeKit kit(bus.Address());
  EXPECT_EQ(kit.LongestRunUs(), 123456);
  EXPECT_EQ(kit.LongestRunUs(), 123456);  // asked once
  EXPECT_TRUE(kit.MakeRealtime(4321, 5));
  EXPECT_TRUE(kit.MakeHighPriority(4321, -15));
  service.Finish();
  EXPECT_EQ(service.Calls(),
            (std::vector<std::string>{"Get RTTimeUSecMax", "MakeThreadRealtime 4321 5",
                                      "MakeThreadHighPriority 4321 -15"}));
}

// It grants only so many in a while.
TEST_F(RealtimeKitTest, ARefusalIsNotTheLastQuestion) {
  FakeService service(bus.Address(), false);
  RealtimeKit kit(bus.Address());
  EXPECT_EQ(kit.LongestRunUs(), 0);
  EXPECT_FALSE(kit.MakeRealtime(4321, 5));
  service.Grant();
  EXPECT_TRUE(kit.MakeRealtime(4321, 5));
  EXPECT_EQ(kit.LongestRunUs(), 123456);
  service.Finish();
  EXPECT_EQ(service.Calls(),
            (std::vector<std::string>{"Get RTTimeUSecMax", "MakeThreadRealtime 4321 5",
                                      "MakeThreadRealtime 4321 5", "Get RTTimeUSecMax"}));
}

TEST_F(RealtimeKitTest, ABusWithoutTheServiceIsARefusalAndAskedOnce) {
  RealtimeKit kit(bus.Address());
  EXPECT_EQ(kit.LongestRunUs(), 0);
  EXPECT_FALSE(kit.MakeRealtime(4321, 5));
  FakeService late(bus.Address(), true);
  EXPECT_FALSE(kit.MakeRealtime(4321, 5));
  late.Finish();
  EXPECT_TRUE(late.Calls().empty());
}

TEST(RealtimeKit, NoBusIsARefusal) {
  RealtimeKit kit("unix:path=/nonexistent/bus");
  EXPECT_EQ(kit.LongestRunUs(), 0);
  EXPECT_FALSE(kit.MakeRealtime(4321, 5));
  EXPECT_FALSE(kit.MakeHighPriority(4321, -15));
}

TEST(RealtimeKit, ABusThatNeverAnswersCostsASecondOnce) {
  const kelvaro::tests::TemporaryFolder folder;
  const std::string path = folder.In("bus");
  const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
  ASSERT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(listener, 5), 0);
  RealtimeKit kit("unix:path=" + path);
  const std::int64_t start = MonotonicNow();
  for (int i = 0; i < 20; ++i) EXPECT_FALSE(kit.MakeRealtime(4321, 5));
  EXPECT_EQ(kit.LongestRunUs(), 0);
  EXPECT_LT(MonotonicNow() - start, 10 * kNanosecondsPerSecond);
  close(listener);
}

}  // namespace
}  // namespace platform
