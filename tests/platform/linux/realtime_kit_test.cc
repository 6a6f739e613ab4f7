#include "app/platform/linux/realtime_kit.h"

#include <dbus/dbus.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdio.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "app/platform/linux/monotonic_time.h"

namespace platform {
namespace {

// A message bus of the test's own.
class Bus {
 public:
  bool Start() {
    int lines[2];
    if (pipe2(lines, O_CLOEXEC) != 0) return false;
    const std::string print = "--print-address=" + std::to_string(lines[1]);
    process = fork();
    if (process == 0) {
      fcntl(lines[1], F_SETFD, 0);
      dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);  // it grumbles about limits
      execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--nopidfile", print.c_str(),
             nullptr);
      _exit(127);
    }
    close(lines[1]);
    char letter;
    while (read(lines[0], &letter, 1) == 1 && letter != '\n') address += letter;
    close(lines[0]);
    return !address.empty();
  }
  ~Bus() {
    if (process <= 0) return;
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
  }
  const std::string& Address() const { return address; }

 private:
  pid_t process = -1;
  std::string address;
};

// The service, played by the test: grants everything, or refuses everything, and notes it.
class FakeService {
 public:
  FakeService(const std::string& address, bool grant) : grants(grant) {
    dbus_threads_init_default();
    connection = dbus_connection_open_private(address.c_str(), nullptr);
    dbus_bus_register(connection, nullptr);
    dbus_connection_set_exit_on_disconnect(connection, FALSE);
    dbus_bus_request_name(connection, "org.freedesktop.RealtimeKit1", 0, nullptr);
    server = std::thread([this] { Serve(); });
  }
  ~FakeService() {
    stop = true;
    server.join();
    dbus_connection_close(connection);
    dbus_connection_unref(connection);
  }
  void Grant() { grants = true; }  // from now on
  // After the service has ended or before it is asked.
  const std::vector<std::string>& Calls() const { return calls; }
  void Finish() {
    stop = true;
    server.join();
    server = std::thread([] {});
  }

 private:
  void Serve() {
    while (!stop) {
      dbus_connection_read_write(connection, 10);
      while (DBusMessage* message = dbus_connection_pop_message(connection)) {
        if (dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_METHOD_CALL) Answer(message);
        dbus_message_unref(message);
      }
    }
  }
  void Answer(DBusMessage* message) {
    const std::string member = dbus_message_get_member(message);
    DBusMessage* reply = grants ? dbus_message_new_method_return(message)
                                : dbus_message_new_error(message, DBUS_ERROR_ACCESS_DENIED, "no");
    const char* interface = nullptr;
    const char* property = nullptr;
    dbus_uint64_t thread = 0;
    dbus_uint32_t rank = 0;
    dbus_int32_t nice = 0;
    if (dbus_message_get_args(message, nullptr, DBUS_TYPE_STRING, &interface, DBUS_TYPE_STRING,
                              &property, DBUS_TYPE_INVALID)) {
      calls.push_back(member + " " + property);
      if (grants) {
        const dbus_int64_t microseconds = 123456;
        DBusMessageIter outer;
        DBusMessageIter inner;
        dbus_message_iter_init_append(reply, &outer);
        dbus_message_iter_open_container(&outer, DBUS_TYPE_VARIANT, "x", &inner);
        dbus_message_iter_append_basic(&inner, DBUS_TYPE_INT64, &microseconds);
        dbus_message_iter_close_container(&outer, &inner);
      }
    } else if (dbus_message_get_args(message, nullptr, DBUS_TYPE_UINT64, &thread, DBUS_TYPE_UINT32,
                                     &rank, DBUS_TYPE_INVALID)) {
      calls.push_back(member + " " + std::to_string(thread) + " " + std::to_string(rank));
    } else if (dbus_message_get_args(message, nullptr, DBUS_TYPE_UINT64, &thread, DBUS_TYPE_INT32,
                                     &nice, DBUS_TYPE_INVALID)) {
      calls.push_back(member + " " + std::to_string(thread) + " " + std::to_string(nice));
    } else {
      calls.push_back(member);
    }
    dbus_connection_send(connection, reply, nullptr);
    dbus_connection_flush(connection);
    dbus_message_unref(reply);
  }

  std::atomic<bool> grants;
  DBusConnection* connection = nullptr;
  std::vector<std::string> calls;  // the server's, until it has ended
  std::atomic<bool> stop{false};
  std::thread server;
};

bool Required() {
  const char* required = std::getenv("KELVARO_REQUIRE");
  return required && std::strstr(required, "dbus");
}

class RealtimeKitTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (bus.Start()) return;
    if (Required()) FAIL() << "dbus-daemon can't be started";
    GTEST_SKIP() << "dbus-daemon can't be started";
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

TEST_F(RealtimeKitTest, ABusWithoutTheServiceIsAskedOnce) {
  RealtimeKit kit(bus.Address());
  EXPECT_FALSE(kit.MakeRealtime(4321, 5));
  FakeService late(bus.Address(), true);
  EXPECT_FALSE(kit.MakeRealtime(4321, 5));
  late.Finish();
  EXPECT_TRUE(late.Calls().empty());
}

TEST_F(RealtimeKitTest, ABusWithoutTheServiceIsARefusal) {
  RealtimeKit kit(bus.Address());
  EXPECT_EQ(kit.LongestRunUs(), 0);
  EXPECT_FALSE(kit.MakeRealtime(4321, 5));
}

TEST(RealtimeKit, NoBusIsARefusal) {
  RealtimeKit kit("unix:path=/nonexistent/bus");
  EXPECT_EQ(kit.LongestRunUs(), 0);
  EXPECT_FALSE(kit.MakeRealtime(4321, 5));
  EXPECT_FALSE(kit.MakeHighPriority(4321, -15));
}

TEST(RealtimeKit, ABusThatNeverAnswersCostsASecondOnce) {
  char folder[] = "/tmp/kelvaro-bus-XXXXXX";
  ASSERT_NE(mkdtemp(folder), nullptr);
  const std::string path = std::string(folder) + "/bus";
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
  unlink(path.c_str());
  rmdir(folder);
}

}  // namespace
}  // namespace platform
