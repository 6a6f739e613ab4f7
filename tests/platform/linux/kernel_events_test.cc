#include "app/platform/linux/kernel_events.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <vector>

namespace platform {
namespace {

// Sockets that keep the bounds of a write, so that one write is one message.
class KernelEventsTest : public ::testing::Test {
 protected:
  struct Sockets {
    Sockets() { EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK, 0, ends), 0); }
    ~Sockets() { close(ends[0]), close(ends[1]); }
    int ends[2];
  };

  // The next write as "type code value" triples parted by ", "; "" when there is none.
  static std::string NextWrite(int fd) {
    input_event events[32];
    memset(events, 0xAA, sizeof events);
    const ssize_t size = read(fd, events, sizeof events);
    if (size <= 0) return {};
    if (size % static_cast<ssize_t>(sizeof(input_event)) != 0) return "part of an event";
    std::string text;
    for (std::size_t i = 0; i < static_cast<std::size_t>(size) / sizeof(input_event); ++i) {
      const input_event& event = events[i];
      if (event.input_event_sec != 0 || event.input_event_usec != 0) return "a time of its own";
      text += (i ? ", " : "") + std::to_string(event.type) + " " + std::to_string(event.code) +
              " " + std::to_string(event.value);
    }
    return text;
  }
  std::string Keyboard() { return NextWrite(keyboard.ends[1]); }
  std::string Mouse() { return NextWrite(mouse.ends[1]); }

  Sockets keyboard;
  Sockets mouse;
  KernelEvents events{keyboard.ends[0], mouse.ends[0]};
};

// EV_SYN 0, EV_KEY 1, EV_REL 2; REL_X 0, REL_Y 1, REL_WHEEL 8, REL_WHEEL_HI_RES 11;
// KEY_A 30, KEY_RIGHTCTRL 97; BTN_LEFT 272, BTN_RIGHT 273, BTN_MIDDLE 274, BTN_SIDE 275, BTN_EXTRA
// 276.

TEST_F(KernelEventsTest, AKeyEventIsOneWriteWithItsReport) {
  events.keybd_event('A', 0x1E, 0, 0);
  events.keybd_event('A', 0x1E, KEYEVENTF_KEYUP, 0);
  EXPECT_EQ(Keyboard(), "1 30 1, 0 0 0");
  EXPECT_EQ(Keyboard(), "1 30 0, 0 0 0");
  EXPECT_EQ(Keyboard(), "");
  EXPECT_EQ(Mouse(), "");
}

TEST_F(KernelEventsTest, AnExtendedKeyGoesByItsScanCode) {
  events.keybd_event(0xA3, 0x9D, KEYEVENTF_EXTENDEDKEY, 0);
  events.keybd_event(0xA3, 0x9D, KEYEVENTF_EXTENDEDKEY | KEYEVENTF_KEYUP, 0);
  EXPECT_EQ(Keyboard(), "1 97 1, 0 0 0");
  EXPECT_EQ(Keyboard(), "1 97 0, 0 0 0");
}

TEST_F(KernelEventsTest, RepeatedDownsAreSentAsTheyCome) {
  events.keybd_event('A', 0x1E, 0, 0);
  events.keybd_event('A', 0x1E, 0, 0);
  EXPECT_EQ(Keyboard(), "1 30 1, 0 0 0");
  EXPECT_EQ(Keyboard(), "1 30 1, 0 0 0");
}

// The strays are those behind <P:800>, <P:273> and <P:3000>.
TEST_F(KernelEventsTest, AReleaseIsSentOnlyWhereItsOwnVirtualKeyPressedThatKey) {
  const struct {
    std::uint8_t vk, scan, strayVk;
    const char* down;
    const char* up;
  } rows[] = {{'D', 0x20, 0x03, "1 32 1, 0 0 0", "1 32 0, 0 0 0"},
              {'W', 0x11, 0x01, "1 17 1, 0 0 0", "1 17 0, 0 0 0"},
              {0xA5, 0xB8, 0x0B, "1 100 1, 0 0 0", "1 100 0, 0 0 0"}};  // KEY_RIGHTALT
  for (const auto& row : rows) {
    events.keybd_event(row.vk, row.scan, KEYEVENTF_KEYUP, 0);
    EXPECT_EQ(Keyboard(), "") << row.down;
    events.keybd_event(row.vk, row.scan, 0, 0);
    EXPECT_EQ(Keyboard(), row.down);
    events.keybd_event(row.strayVk, row.scan, KEYEVENTF_KEYUP, 0);
    EXPECT_EQ(Keyboard(), "") << row.down;
    events.keybd_event(row.vk, row.scan, KEYEVENTF_KEYUP, 0);
    EXPECT_EQ(Keyboard(), row.up);
    events.keybd_event(row.vk, row.scan, KEYEVENTF_KEYUP, 0);
    EXPECT_EQ(Keyboard(), "") << row.down;
  }
}

TEST_F(KernelEventsTest, EachVirtualKeyThatPressedAKeyMayReleaseIt) {
  events.keybd_event(0x10, 0x2A, 0, 0);  // <Shift>
  events.keybd_event(0xA0, 0x2A, 0, 0);  // <LShift>
  events.keybd_event(0x10, 0x2A, KEYEVENTF_KEYUP, 0);
  events.keybd_event(0xA0, 0x2A, KEYEVENTF_KEYUP, 0);
  for (const char* written : {"1 42 1, 0 0 0", "1 42 1, 0 0 0", "1 42 0, 0 0 0", "1 42 0, 0 0 0"})
    EXPECT_EQ(Keyboard(), written);
}

TEST_F(KernelEventsTest, AKeyThatTheKernelDoesNotKnowSendsNothing) {
  events.keybd_event(0xF6, 0, 0, 0);
  events.keybd_event(0x01, 0xF4, KEYEVENTF_KEYUP, 0);
  EXPECT_EQ(Keyboard(), "");
  EXPECT_EQ(Mouse(), "");
  EXPECT_EQ(events.FailedEvents(), 0u);
}

TEST_F(KernelEventsTest, TheSideButtonsAreTheMouses) {
  events.keybd_event(5, 0, 0, 0);
  events.keybd_event(6, 0, 0, 0);
  events.keybd_event(6, 0, KEYEVENTF_KEYUP, 0);
  EXPECT_EQ(Mouse(), "1 275 1, 0 0 0");
  EXPECT_EQ(Mouse(), "1 276 1, 0 0 0");
  EXPECT_EQ(Mouse(), "1 276 0, 0 0 0");
  EXPECT_EQ(Keyboard(), "");
}

TEST_F(KernelEventsTest, KeysBehindTheButtonsAreTheKeyboards) {
  events.keybd_event(0xFE, 0, 0, 0);  // KEY_CLEAR, 0x163
  EXPECT_EQ(Keyboard(), "1 355 1, 0 0 0");
  EXPECT_EQ(Mouse(), "");
}

TEST_F(KernelEventsTest, MotionNamesTheAxesThatMove) {
  events.mouse_event(MOUSEEVENTF_MOVE, 4, -1, 0, 0);
  events.mouse_event(MOUSEEVENTF_MOVE, 0, 7, 0, 0);
  events.mouse_event(MOUSEEVENTF_MOVE, 0, 0, 0, 0);
  EXPECT_EQ(Mouse(), "2 0 4, 2 1 -1, 0 0 0");
  EXPECT_EQ(Mouse(), "2 1 7, 0 0 0");
  EXPECT_EQ(Mouse(), "");
}

TEST_F(KernelEventsTest, MotionWithoutItsFlagIsNone) {
  events.mouse_event(MOUSEEVENTF_LEFTDOWN, 4, 4, 0, 0);
  EXPECT_EQ(Mouse(), "1 272 1, 0 0 0");
}

TEST_F(KernelEventsTest, EachButtonHasItsEdges) {
  const struct {
    std::uint32_t flags;
    const char* written;
  } rows[] = {{2, "1 272 1, 0 0 0"},  {4, "1 272 0, 0 0 0"},  {8, "1 273 1, 0 0 0"},
              {16, "1 273 0, 0 0 0"}, {32, "1 274 1, 0 0 0"}, {64, "1 274 0, 0 0 0"}};
  for (const auto& row : rows) {
    events.mouse_event(row.flags, 0, 0, 0, 0);
    EXPECT_EQ(Mouse(), row.written) << row.flags;
  }
}

TEST_F(KernelEventsTest, SeveralEdgesOfOneCallAreOneWrite) {
  events.mouse_event(MOUSEEVENTF_LEFTUP | MOUSEEVENTF_RIGHTDOWN | MOUSEEVENTF_MIDDLEUP, 0, 0, 0, 0);
  EXPECT_EQ(Mouse(), "1 273 1, 1 272 0, 1 274 0, 0 0 0");
  EXPECT_EQ(Mouse(), "");
}

TEST_F(KernelEventsTest, AClickInOneCallKeepsItsTwoEdgesApart) {
  events.mouse_event(MOUSEEVENTF_LEFTDOWN | MOUSEEVENTF_LEFTUP, 0, 0, 0, 0);
  EXPECT_EQ(Mouse(), "1 272 1, 0 0 0, 1 272 0, 0 0 0");
  EXPECT_EQ(Mouse(), "");
}

TEST_F(KernelEventsTest, EverythingAtOnceIsOneWrite) {
  events.mouse_event(MOUSEEVENTF_MOVE | 2 | 4 | 8 | 16 | 32 | 64 | MOUSEEVENTF_WHEEL, 1, 2, 120, 0);
  EXPECT_EQ(Mouse(),
            "2 0 1, 2 1 2, 1 272 1, 1 273 1, 1 274 1, 0 0 0, 1 272 0, 1 273 0, 1 274 0, 2 8 1, "
            "2 11 120, 0 0 0");
  EXPECT_EQ(Mouse(), "");
}

TEST_F(KernelEventsTest, WheelCountsGoOutAlwaysAndNotchesWhenFull) {
  events.mouse_event(MOUSEEVENTF_WHEEL, 0, 0, 100, 0);
  events.mouse_event(MOUSEEVENTF_WHEEL, 0, 0, 30, 0);
  events.mouse_event(MOUSEEVENTF_WHEEL, 0, 0, -250, 0);
  events.mouse_event(MOUSEEVENTF_WHEEL, 0, 0, 0, 0);
  EXPECT_EQ(Mouse(), "2 11 100, 0 0 0");
  EXPECT_EQ(Mouse(), "2 8 1, 2 11 30, 0 0 0");
  EXPECT_EQ(Mouse(), "2 8 -2, 2 11 -250, 0 0 0");  // 10 - 250 = -240
  EXPECT_EQ(Mouse(), "");
}

TEST_F(KernelEventsTest, AFailingWriteIsCountedAndReportedOnce) {
  const int readOnly = open("/dev/null", O_RDONLY | O_CLOEXEC);
  ASSERT_GE(readOnly, 0);
  KernelEvents failing(readOnly, mouse.ends[0]);
  std::vector<std::string> reports;
  failing.OnFailure([&](const std::string& text) { reports.push_back(text); });
  failing.keybd_event('A', 0x1E, 0, 0);
  failing.keybd_event('A', 0x1E, KEYEVENTF_KEYUP, 0);
  failing.mouse_event(MOUSEEVENTF_MOVE, 1, 0, 0, 0);
  EXPECT_EQ(failing.FailedEvents(), 2u);
  EXPECT_EQ(reports, std::vector<std::string>{strerror(EBADF)});
  EXPECT_EQ(Mouse(), "2 0 1, 0 0 0");
  close(readOnly);
}

}  // namespace
}  // namespace platform
