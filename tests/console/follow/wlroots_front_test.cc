// A compositor that says, byte by byte, what no real one can be had to say.

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <thread>

#include "app/platform/linux/descriptor.h"
#include "console/linux/front_source.h"
#include "tests/host/files.h"

namespace kelvaro::console {
namespace {

using tests::Variable;

// The numbers that each side gives to its objects, in their order.
constexpr std::uint32_t kRegistry = 2;
constexpr std::uint32_t kFirstSync = 3;
constexpr std::uint32_t kManager = 4;
constexpr std::uint32_t kSecondSync = 5;
constexpr std::uint32_t kDoom = 0xFF000000;
constexpr std::uint32_t kTetris = 0xFF000001;

std::string Number(std::uint32_t number) {
  return {reinterpret_cast<const char*>(&number), sizeof number};
}

// With its length in front, and zeros behind it up to a multiple of four.
std::string Text(std::string text) {
  text += '\0';
  const std::string length = Number(static_cast<std::uint32_t>(text.size()));
  text.resize((text.size() + 3) / 4 * 4);
  return length + text;
}

std::string Event(std::uint32_t object, std::uint32_t event, const std::string& values = {}) {
  const auto size = static_cast<std::uint32_t>(8 + values.size());
  return Number(object) + Number(size << 16 | event) + values;
}

std::string NewWindow(std::uint32_t window) { return Event(kManager, 0, Number(window)); }
std::string Title(std::uint32_t window, const std::string& title) {
  return Event(window, 0, Text(title));
}
std::string Kind(std::uint32_t window, const std::string& kind) {
  return Event(window, 1, Text(kind));
}
std::string State(std::uint32_t window, const std::vector<std::uint32_t>& states) {
  std::string list;
  for (const std::uint32_t state : states) list += Number(state);
  return Event(window, 4, Number(static_cast<std::uint32_t>(list.size())) + list);
}
std::string Done(std::uint32_t window) { return Event(window, 5); }
std::string Closed(std::uint32_t window) { return Event(window, 6); }

constexpr std::uint32_t kMaximised = 0;
constexpr std::uint32_t kActivated = 2;

class WlrootsFrontTest : public testing::Test {
 protected:
  WlrootsFrontTest() {
    int ends[2];
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    compositor = platform::Descriptor(ends[0]);
    socket.Set(std::to_string(ends[1]).c_str());
  }

  // The compositor offers that interface; `there`: what it says of the windows that are there.
  void Open(const std::string& interface, const std::string& there) {
    std::thread answering([&] {
      Take(24);  // get_registry and sync
      Say(Event(kRegistry, 0, Number(1) + Text("wl_seat") + Number(7)) +
          Event(kRegistry, 0, Number(2) + Text(interface) + Number(3)) +
          Event(kFirstSync, 0, Number(0)));
      if (Take(72)) Say(there + Event(kSecondSync, 0, Number(0)));  // bind and sync
    });
    source = OpenWlrootsFront("", &error);
    answering.join();
  }
  void Open(const std::string& there = {}) { Open("zwlr_foreign_toplevel_manager_v1", there); }

  void Say(const std::string& bytes) {
    EXPECT_EQ(send(compositor.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(bytes.size()));
  }
  bool Take(std::size_t size) {
    std::string bytes(size, '\0');
    return recv(compositor.Get(), bytes.data(), size, MSG_WAITALL) == static_cast<ssize_t>(size);
  }

  // What comes to the front: class and title, "none" for no window, "-" for no news.
  std::string News() {
    std::optional<FrontWindow> window;
    const FrontNews news = source->Read(&window, &error);
    if (news == FrontNews::Ended) return "ended: " + error;
    if (news == FrontNews::None) return "-";
    return window ? window->program + window->kind + " '" + window->title + "'" : "none";
  }

  const Variable socket{"WAYLAND_SOCKET"};
  platform::Descriptor compositor;
  std::unique_ptr<FrontSource> source;
  std::string error;
};

TEST_F(WlrootsFrontTest, TheWindowInFrontIsToldAtFirst) {
  Open(NewWindow(kDoom) + NewWindow(kTetris) + Title(kDoom, "Level 1") + Kind(kDoom, "doom") +
       Title(kTetris, "Blocks") + State(kTetris, {kMaximised}) + Done(kTetris) +
       State(kDoom, {kMaximised, kActivated}) + Done(kDoom));
  ASSERT_TRUE(source) << error;
  EXPECT_EQ(News(), "doom 'Level 1'");
  EXPECT_EQ(News(), "-");
}

TEST_F(WlrootsFrontTest, NoWindowIsToldAtFirstToo) {
  Open();
  ASSERT_TRUE(source) << error;
  EXPECT_EQ(News(), "none");
  EXPECT_EQ(News(), "-");
}

TEST_F(WlrootsFrontTest, WhatChangesInFrontIsNewsOnceItIsWhole) {
  Open(NewWindow(kDoom) + NewWindow(kTetris) + Title(kDoom, "Level 1") +
       State(kDoom, {kActivated}) + Done(kDoom));
  ASSERT_TRUE(source) << error;
  EXPECT_EQ(News(), " 'Level 1'");
  Say(Title(kDoom, "Level 2"));
  EXPECT_EQ(News(), "-");
  Say(Done(kDoom));
  EXPECT_EQ(News(), " 'Level 2'");
  Say(Title(kTetris, "Blocks") + Done(kTetris));
  EXPECT_EQ(News(), "-") << "it is behind";
  Say(State(kDoom, {}) + Done(kDoom) + State(kTetris, {kActivated}) + Done(kTetris));
  EXPECT_EQ(News(), " 'Blocks'");
  Say(Closed(kTetris));
  EXPECT_EQ(News(), "none");
}

TEST_F(WlrootsFrontTest, ACompositorThatOffersNothingOfItIsNoFault) {
  error = "as before";
  Open("wl_output", "");
  EXPECT_FALSE(source);
  EXPECT_EQ(error, "as before");
}

TEST_F(WlrootsFrontTest, SaysThatItIsToldNoMore) {
  Open();
  ASSERT_TRUE(source) << error;
  Say(Event(kManager, 1));
  EXPECT_EQ(News(), "ended: the Wayland compositor tells of its windows no more");
}

TEST_F(WlrootsFrontTest, ThereIsNoneWhereTheCompositorEndsMeanwhile) {
  compositor = platform::Descriptor();
  EXPECT_FALSE(OpenWlrootsFront("", &error));
}

TEST_F(WlrootsFrontTest, ThereIsNoneWhereItEndsBeforeItHasToldItsWindows) {
  std::thread answering([&] {
    Take(24);  // get_registry and sync
    Say(Event(kRegistry, 0, Number(2) + Text("zwlr_foreign_toplevel_manager_v1") + Number(3)) +
        Event(kFirstSync, 0, Number(0)));
    Take(72);  // bind and sync
    compositor = platform::Descriptor();
  });
  EXPECT_FALSE(OpenWlrootsFront("", &error));
  answering.join();
}

TEST(WlrootsFrontPlace, WhereNobodyListensIsTold) {
  const Variable runtime("XDG_RUNTIME_DIR", "/nowhere");
  std::string error;
  EXPECT_FALSE(OpenWlrootsFront("wayland-7", &error));
  EXPECT_EQ(error, "the Wayland compositor wayland-7 can't be reached");
}

TEST_F(WlrootsFrontTest, SaysThatTheCompositorHasEnded) {
  Open(NewWindow(kDoom) + State(kDoom, {kActivated}) + Done(kDoom));
  ASSERT_TRUE(source) << error;
  compositor = platform::Descriptor();
  EXPECT_EQ(News(), "ended: the Wayland compositor has ended");
}

TEST_F(WlrootsFrontTest, SaysThatItIsNotUnderstood) {
  Open(NewWindow(kDoom));
  ASSERT_TRUE(source) << error;
  Say(Event(kDoom, 99));
  EXPECT_EQ(News(), "ended: what the Wayland compositor says can't be understood");
}

}  // namespace
}  // namespace kelvaro::console
