// What an X server without a window manager has: properties that the test writes.

#include <gtest/gtest.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "console/linux/front_source.h"
#include "console/this_system.h"
#include "tests/host/files.h"
#include "tests/host/patience.h"
#include "tests/host/processes.h"

namespace kelvaro::console {
namespace {

class X11FrontTest : public testing::Test {
 protected:
  void SetUp() override {
    SKIP_UNLESS(!server.Address().empty(), "xvfb", "no X server");
    Connect(":" + server.Address());
  }
  void TearDown() override { xcb_disconnect(client); }

  // As a client of that screen, with what follow sees there.
  void Connect(const std::string& display) {
    if (client) xcb_disconnect(client);
    int screen = 0;
    client = xcb_connect(display.c_str(), &screen);
    ASSERT_EQ(xcb_connection_has_error(client), 0);
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(client));
    while (screen-- > 0) xcb_screen_next(&screens);
    root = screens.data->root;
    source = OpenX11Front(display, &error);
    ASSERT_TRUE(source) << error;
  }

  xcb_window_t NewWindow() const {
    const xcb_window_t window = xcb_generate_id(client);
    xcb_create_window(client, XCB_COPY_FROM_PARENT, window, root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    return window;
  }
  xcb_atom_t Atom(const std::string& name) const {
    xcb_intern_atom_reply_t* const reply = xcb_intern_atom_reply(
        client, xcb_intern_atom(client, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr);
    const xcb_atom_t atom = reply->atom;
    std::free(reply);
    return atom;
  }
  void Set(xcb_window_t window, const std::string& name, const std::string& text) const {
    xcb_change_property(client, XCB_PROP_MODE_REPLACE, window, Atom(name), XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
  }
  void Set(xcb_window_t window, const std::string& name, std::uint32_t number) const {
    xcb_change_property(client, XCB_PROP_MODE_REPLACE, window, Atom(name), XCB_ATOM_CARDINAL, 32, 1,
                        &number);
  }

  // Puts that one in front, and what is seen then: program, class and title, "none" for no window.
  std::string InFront(xcb_window_t window) {
    Set(root, "_NET_ACTIVE_WINDOW", window);
    return Seen();
  }
  // What is seen after all that was asked for here; "-" for no news.
  std::string Seen() {
    std::free(xcb_get_input_focus_reply(client, xcb_get_input_focus(client), nullptr));
    std::optional<FrontWindow> front;
    if (source->Read(&front, &error) != FrontNews::Window) return "-";
    return front ? front->program + " " + front->kind + " '" + front->title + "'" : "none";
  }

  const tests::Server server{[](const std::string& pipe) {
    std::vector<std::string> command = tests::XServerCommand(pipe, "640x480");
    command.insert(command.end(), {"-screen", "1", "640x480x24"});
    return command;
  }};
  xcb_connection_t* client = nullptr;
  xcb_window_t root = XCB_WINDOW_NONE;
  std::unique_ptr<FrontSource> source;
  std::string error;
};

TEST_F(X11FrontTest, AWindowMayTellNothingOfItself) {
  EXPECT_EQ(Seen(), "none");
  EXPECT_EQ(InFront(NewWindow()), "  ''");
}

TEST_F(X11FrontTest, OlderTextsAreInLatin1) {
  const xcb_window_t window = NewWindow();
  Set(window, "WM_CLASS", std::string("instance\0Caf\xE9\0", 14));
  Set(window, "WM_NAME", "Caf\xE9");
  EXPECT_EQ(InFront(window), " Caf\xC3\xA9 'Caf\xC3\xA9'");
  Set(window, "_NET_WM_NAME", "Caf\xC3\xA9 2");
  EXPECT_EQ(Seen(), " Caf\xC3\xA9 'Caf\xC3\xA9 2'");
}

TEST_F(X11FrontTest, AProcessOfAnotherMachineIsNoneHere) {
  char host[256] = {};
  ASSERT_EQ(gethostname(host, sizeof host - 1), 0);
  const xcb_window_t window = NewWindow();
  Set(window, "_NET_WM_PID", static_cast<std::uint32_t>(getpid()));
  EXPECT_EQ(InFront(window), "test_console  ''");
  const xcb_window_t here = NewWindow();
  Set(here, "_NET_WM_PID", static_cast<std::uint32_t>(getpid()));
  Set(here, "WM_CLIENT_MACHINE", host);
  EXPECT_EQ(InFront(here), "test_console  ''");
  const xcb_window_t elsewhere = NewWindow();
  Set(elsewhere, "_NET_WM_PID", static_cast<std::uint32_t>(getpid()));
  Set(elsewhere, "WM_CLIENT_MACHINE", std::string(host) + "2");
  EXPECT_EQ(InFront(elsewhere), "  ''");
}

TEST_F(X11FrontTest, TheRootAndAWindowThatIsGoneAreNone) {
  const xcb_window_t window = NewWindow();
  Set(window, "WM_NAME", "A");
  EXPECT_EQ(InFront(window), "  'A'");
  EXPECT_EQ(InFront(root), "none");
  EXPECT_EQ(InFront(window), "  'A'");
  xcb_destroy_window(client, window);
  EXPECT_EQ(InFront(window), "none");
  EXPECT_EQ(InFront(NewWindow()), "  ''");
}

TEST_F(X11FrontTest, WhatElseChangesIsNoNews) {
  const xcb_window_t window = NewWindow();
  InFront(window);
  Set(window, "WM_ICON_NAME", "i");
  Set(root, "_NET_CLIENT_LIST", window);
  EXPECT_EQ(Seen(), "-");
}

TEST_F(X11FrontTest, ADisplayMayNameAnotherScreen) {
  const xcb_window_t window = NewWindow();
  Set(window, "WM_NAME", "on the first");
  EXPECT_EQ(InFront(window), "  'on the first'");
  Connect(":" + server.Address() + ".1");
  EXPECT_EQ(Seen(), "none");
  const xcb_window_t other = NewWindow();
  Set(other, "WM_NAME", "on the second");
  EXPECT_EQ(InFront(other), "  'on the second'");
}

TEST_F(X11FrontTest, ItsKeyboardTellsWhatAKeyTypes) {
  const tests::Variable display("DISPLAY", (":" + server.Address()).c_str());
  const Typing typing = DesktopTyping();
  ASSERT_TRUE(typing);
  EXPECT_EQ(typing(30, false), "a");  // KEY_A
  EXPECT_EQ(typing(30, true), "A");
}

}  // namespace
}  // namespace kelvaro::console
