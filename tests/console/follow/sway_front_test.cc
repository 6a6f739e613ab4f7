// What sway says, by a socket under the test's hands: which window is in front, and what is no
// news.

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "app/platform/linux/descriptor.h"
#include "console/linux/front_source.h"
#include "tests/host/files.h"
#include "tests/host/refused_calls.h"

namespace kelvaro::console {
namespace {

constexpr char kMagic[] = "i3-ipc";
constexpr std::uint32_t kSubscribe = 2;
constexpr std::uint32_t kGetTree = 4;
constexpr std::uint32_t kWorkspaceEvent = 0x80000000;
constexpr std::uint32_t kWindowEvent = 0x80000003;
constexpr std::uint32_t kShutdownEvent = 0x80000006;
constexpr char kNotUnderstood[] = "what sway says can't be understood";

std::string Message(std::uint32_t kind, const std::string& payload) {
  const auto size = static_cast<std::uint32_t>(payload.size());
  std::string message = kMagic;
  message.append(reinterpret_cast<const char*>(&size), sizeof size);
  message.append(reinterpret_cast<const char*>(&kind), sizeof kind);
  return message + payload;
}

std::string Tree(const std::string& nodes) { return R"({"nodes":[{"nodes":[)" + nodes + "]}]}"; }

class SwayFrontTest : public testing::Test {
 protected:
  void SetUp() override {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strcpy(address.sun_path, path.c_str());
    ASSERT_EQ(bind(listener.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(listener.Get(), 1), 0);
    front = OpenSwayFront(path, &error);
    ASSERT_TRUE(front) << error;
    sway = platform::Descriptor(accept(listener.Get(), nullptr, nullptr));
    ASSERT_TRUE(sway);
    EXPECT_EQ(Asked(),
              Message(kSubscribe, R"(["window","workspace","shutdown"])") + Message(kGetTree, ""));
  }

  // All that sway was asked since the last time.
  std::string Asked() const {
    char bytes[1000];
    const ssize_t size = recv(sway.Get(), bytes, sizeof bytes, MSG_DONTWAIT);
    return {bytes, size > 0 ? static_cast<std::size_t>(size) : 0};
  }

  void Say(const std::string& bytes) const {
    ASSERT_EQ(send(sway.Get(), bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
  }

  FrontNews Read() { return front->Read(&window, &error); }

  // What is in front by that tree.
  std::optional<FrontWindow> FrontOf(const std::string& tree) {
    Say(Message(kGetTree, tree));
    EXPECT_EQ(Read(), FrontNews::Window) << tree;
    return window;
  }

  void ExpectNotUnderstood(const std::string& bytes) {
    Say(bytes);
    EXPECT_EQ(Read(), FrontNews::Ended);
    EXPECT_EQ(error, kNotUnderstood);
  }

  const tests::TemporaryFolder folder;
  const std::string path = folder.In("sway");
  const platform::Descriptor listener{socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
  std::unique_ptr<FrontSource> front;
  platform::Descriptor sway;
  std::optional<FrontWindow> window;
  std::string error;
};

TEST_F(SwayFrontTest, TheFocusedWindowIsInFrontWhereverItLies) {
  const std::string other = R"({"pid":0,"app_id":"other","name":"Other","focused":false})";
  const std::string game = R"({"pid":0,"app_id":"game","name":"Level 1","focused":true})";
  const FrontWindow expected{"", "game", "Level 1"};
  EXPECT_EQ(FrontOf(Tree(other + "," + game)), expected);
  EXPECT_EQ(FrontOf(Tree(game + "," + other)), expected);
  EXPECT_EQ(FrontOf(Tree(R"({"floating_nodes":[)" + other + "," + game + "]}")), expected);
}

TEST_F(SwayFrontTest, AWindowOfX11IsKnownByItsClass) {
  EXPECT_EQ(FrontOf(Tree(R"({"pid":0,"app_id":null,"name":"Old","focused":true,)"
                         R"("window_properties":{"class":"Game"}})")),
            (FrontWindow{"", "Game", "Old"}));
  EXPECT_EQ(FrontOf(Tree(R"({"pid":0,"name":"New","focused":true,"window_properties":null})")),
            (FrontWindow{"", "", "New"}));
}

TEST_F(SwayFrontTest, WithoutAFocusedWindowNoneIsInFront) {
  EXPECT_EQ(FrontOf(Tree(R"({"pid":0,"focused":false})")), std::nullopt);
  EXPECT_EQ(FrontOf(Tree(R"({"type":"workspace","focused":true})")), std::nullopt);
}

TEST_F(SwayFrontTest, EachNewsAsksForTheTreeButATitleBehindTheFront) {
  const auto title = [](const char* focused) {
    return Message(kWindowEvent,
                   std::string(R"({"change":"title","container":{"focused":)") + focused + "}}");
  };
  Say(Message(kSubscribe, R"({"success":true})") + title("false"));
  EXPECT_EQ(Read(), FrontNews::None);
  EXPECT_EQ(Asked(), "");
  for (const std::string& news :
       {title("true"), Message(kWindowEvent, R"({"change":"focus","container":{}})"),
        Message(kWindowEvent, R"({"change":"title"})"),
        Message(kWorkspaceEvent, R"({"change":"focus"})")}) {
    Say(news);
    EXPECT_EQ(Read(), FrontNews::None);
    EXPECT_EQ(Asked(), Message(kGetTree, ""));
  }
}

TEST_F(SwayFrontTest, AMessageMayComeInPieces) {
  const std::string whole = Message(kGetTree, Tree(R"({"pid":0,"name":"n","focused":true})"));
  for (std::size_t at = 0; at + 1 < whole.size(); ++at) {
    Say(whole.substr(at, 1));
    ASSERT_EQ(Read(), FrontNews::None) << at;
  }
  Say(whole.substr(whole.size() - 1));
  EXPECT_EQ(Read(), FrontNews::Window);
  EXPECT_EQ(window->title, "n");
}

TEST_F(SwayFrontTest, OtherLettersAreNotUnderstood) { ExpectNotUnderstood("http/1.1 200 OK"); }

TEST_F(SwayFrontTest, AMessageOfMoreThan16MegabytesIsNotUnderstood) {
  std::string message = Message(kGetTree, "");
  const std::uint32_t size = (16 << 20) + 1;
  std::memcpy(message.data() + std::strlen(kMagic), &size, sizeof size);
  ExpectNotUnderstood(message);
}

TEST_F(SwayFrontTest, ATextThatIsNoJsonIsNotUnderstood) {
  ExpectNotUnderstood(Message(kGetTree, "{"));
}

TEST_F(SwayFrontTest, ATreeOfOtherKindsIsNotUnderstood) {
  ExpectNotUnderstood(Message(kGetTree, R"({"nodes":7})"));
}

TEST_F(SwayFrontTest, ItsEndIsTold) {
  Say(Message(kShutdownEvent, R"({"change":"exit"})"));
  EXPECT_EQ(Read(), FrontNews::Ended);
  EXPECT_EQ(error, "sway has ended");
}

TEST_F(SwayFrontTest, AClosedConnectionIsItsEndToo) {
  EXPECT_TRUE(sway.Close());
  EXPECT_EQ(Read(), FrontNews::Ended);
  EXPECT_EQ(error, "sway has ended");
}

TEST_F(SwayFrontTest, WhoCanNotBeAskedAnyMoreHasEnded) {
  EXPECT_EQ(shutdown(sway.Get(), SHUT_RD), 0);
  Say(Message(kWorkspaceEvent, R"({"change":"focus"})"));
  EXPECT_EQ(Read(), FrontNews::Ended);
  EXPECT_EQ(error, "sway has ended");
}

TEST_F(SwayFrontTest, WhereItCanNotBeAskedAtAllThereIsNone) {
  for (const tests::Refusal& refusal :
       {tests::Refusal{SYS_socket, EMFILE}, tests::Refusal{SYS_sendto, EPIPE}}) {
    tests::WhereRefused({refusal}, [&] { EXPECT_FALSE(OpenSwayFront(path, &error)); });
    EXPECT_EQ(error, "sway can't be reached at " + path);
  }
}

TEST(SwayFrontPath, WhereNobodyListensIsTold) {
  for (const std::string& path : {std::string("/nowhere/sway"), std::string(200, 'x')}) {
    std::string error;
    EXPECT_FALSE(OpenSwayFront(path, &error));
    EXPECT_EQ(error, "sway can't be reached at " + path);
  }
}

}  // namespace
}  // namespace kelvaro::console
