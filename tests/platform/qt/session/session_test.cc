// On an X server with a session bus, both of the test's own.
#include <QDBusConnection>
#include <QProcess>
#include <cstdlib>
#include <string_view>

#include <QtGui/qguiapplication_platform.h>
#include "notification_host.h"

#include "qt_fixture.h"
#include "window_manager.h"

namespace platform::qt {
namespace {

constexpr std::uint32_t kCallback = 0x8000;

// A notification area on the X server, which shows nothing of what is docked.
class XArea {
 public:
  XArea() : connection(xcb_connect(nullptr, nullptr)) {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    const xcb_atom_t selection = Atom("_NET_SYSTEM_TRAY_S0");
    xcb_set_selection_owner(connection, window, selection, XCB_CURRENT_TIME);
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = root;
    event.type = Atom("MANAGER");
    event.data.data32[1] = selection;
    event.data.data32[2] = window;
    xcb_send_event(connection, 0, root, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
    Atom("a round trip");
  }
  ~XArea() { xcb_disconnect(connection); }
  XArea(const XArea&) = delete;
  XArea& operator=(const XArea&) = delete;

 private:
  xcb_atom_t Atom(std::string_view name) const {
    auto* const reply = xcb_intern_atom_reply(
        connection,
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr);
    const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    std::free(reply);
    return atom;
  }

  xcb_connection_t* const connection;
};

class SessionTest : public QtTest {
 protected:
  NOTIFYICONDATA Icon() {
    NOTIFYICONDATA data;
    data.hWnd = Window();
    data.uFlags = NIF_MESSAGE | NIF_ICON | NIF_TIP;
    data.uCallbackMessage = kCallback;
    data.hIcon = desktop().LoadIconA(128);
    data.szTip[0] = 'K';
    return data;
  }
};

TEST_F(SessionTest, TheNotificationAreaComesAndGoes) {
  ASSERT_TRUE(QDBusConnection::sessionBus().isConnected());
  ASSERT_EQ(QGuiApplication::platformName(), QLatin1String("xcb"));
  Run([&] {
    const NOTIFYICONDATA icon = Icon();
    EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_ADD, icon));
    desktop().ShowWindow(Window(), SW_HIDE);
    Settle();
    EXPECT_TRUE(desktop().IsWindowVisible(Window())) << "nothing could bring it back";
    EXPECT_TRUE(desktop().IsIconic(Window()));

    constexpr MenuItem items[] = {{"Exit", 50}, {"", 0}, {"Show it", 51}};
    EXPECT_TRUE(desktop().SetNotifyIconMenu(Window(), icon.uID, items));
    EXPECT_FALSE(desktop().SetNotifyIconMenu(Window(), 9, items)) << "there is no such icon";

    // The watcher alone shows nothing.
    auto host = std::make_unique<NotificationHost>(false);
    QTest::qWait(100);
    EXPECT_TRUE(host->Item().isEmpty());
    host->Show();
    EXPECT_TRUE(WaitFor([&] { return !host->Item().isEmpty(); }));
    EXPECT_TRUE(WaitFor([&] { return !desktop().IsWindowVisible(Window()); }));

    recorder.lines.clear();
    host->Click();
    EXPECT_TRUE(WaitFor([&] { return !recorder.lines.empty(); }));
    EXPECT_EQ(recorder.TakeLines(), (std::vector<std::string>{"message 32768 0 515"}))
        << "the double click, of which such a host tells nothing";
    desktop().ShowWindow(Window(), SW_SHOW);
    desktop().ShowWindow(Window(), SW_RESTORE);
    Settle();
    EXPECT_TRUE(desktop().IsWindowVisible(Window()));
    EXPECT_FALSE(desktop().IsIconic(Window()));
    EXPECT_FALSE(Dialog()->isMinimized());

    recorder.lines.clear();
    host->RightClick();
    EXPECT_TRUE(WaitFor([&] { return !recorder.lines.empty(); }));
    EXPECT_EQ(recorder.TakeLines().back(), "message 32768 0 516");

    EXPECT_EQ(host->Menu(), (std::vector<std::string>{"Exit", "-", "Show it"}));
    recorder.lines.clear();
    host->Choose("Exit");
    EXPECT_TRUE(WaitFor([&] { return !recorder.lines.empty(); }));
    EXPECT_EQ(recorder.TakeLines(), std::vector<std::string>{"50 clicked"});

    desktop().ShowWindow(Window(), SW_HIDE);
    EXPECT_FALSE(desktop().IsWindowVisible(Window()));
    host.reset();
    EXPECT_TRUE(WaitFor([&] { return desktop().IsWindowVisible(Window()); }));
    EXPECT_TRUE(desktop().IsIconic(Window()));

    host = std::make_unique<NotificationHost>();
    EXPECT_TRUE(WaitFor([&] { return !desktop().IsWindowVisible(Window()); })) << "again";
    EXPECT_TRUE(WaitFor([&] { return !host->Item().isEmpty(); }));
    EXPECT_EQ(host->Menu(), (std::vector<std::string>{"Exit", "-", "Show it"}));
    EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_DELETE, icon));
  });
}

// The bus's answer is still under way when the X server tells of its area.
TEST_F(SessionTest, WhereAPanelShowsIconsByBothWaysItIsTheBusThatCounts) {
  Run([&] {
    EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_ADD, Icon()));
    Settle();
    NotificationHost host;
    const XArea area;
    EXPECT_TRUE(WaitFor([&] { return !host.Item().isEmpty(); }));
    recorder.lines.clear();
    host.Click();
    EXPECT_TRUE(WaitFor([&] { return !recorder.lines.empty(); }));
    EXPECT_EQ(recorder.TakeLines(), (std::vector<std::string>{"message 32768 0 515"}));
  });
}

// A window manager could take one that asks to be shown meanwhile for one that comes back.
TEST_F(SessionTest, AnIconicWindowThatHidesDoesNotAskToBeShown) {
  NotificationHost host;
  WindowManager manager;
  // The program's requests have come to the server, and the manager has seen them.
  const auto handle = [&] {
    auto* const x = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    std::free(
        xcb_get_input_focus_reply(x->connection(), xcb_get_input_focus(x->connection()), nullptr));
    manager.Handle();
  };
  QTimer managing;
  QObject::connect(&managing, &QTimer::timeout, handle);
  managing.start(1);
  Run([&] {
    EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_ADD, Icon()));
    EXPECT_TRUE(WaitFor([&] { return !host.Item().isEmpty() && manager.Shown() == 1; }));
    manager.MakeIconic(static_cast<xcb_window_t>(Dialog()->winId()));
    EXPECT_TRUE(WaitFor([&] { return desktop().IsIconic(Window()); }));
    desktop().ShowWindow(Window(), SW_HIDE);
    EXPECT_TRUE(WaitFor([&] { return manager.Withdrawn() == 1; }));
    Settle();
    handle();
    EXPECT_EQ(manager.Shown(), 1);

    desktop().ShowWindow(Window(), SW_SHOW);
    desktop().ShowWindow(Window(), SW_RESTORE);
    EXPECT_TRUE(WaitFor([&] { return manager.Shown() > 1; }));
    EXPECT_TRUE(desktop().IsWindowVisible(Window()));
    EXPECT_FALSE(desktop().IsIconic(Window()));
  });
}

TEST_F(SessionTest, AWatcherThatIsTooBusyToAnswerIsAskedAgain) {
  NotificationHost host;
  host.MissOneQuestion();
  Run([&] {
    EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_ADD, Icon()));
    EXPECT_TRUE(WaitFor([&] { return !host.Item().isEmpty(); }));
  });
}

// After half a minute no question to a program is still open, unless somebody asks again and again.
TEST_F(SessionTest, AWatcherThatHangsIsAskedOnceMoreAndThenAwaited) {
  NotificationHost host;
  host.HoldQuestions(true);
  Run([&] {
    EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_ADD, Icon()));
    EXPECT_TRUE(WaitFor([&] { return host.Questions() == 2; }));
    QTest::qWait(27000);
    EXPECT_EQ(host.Questions(), 2);
    EXPECT_TRUE(host.Item().isEmpty());
    host.HoldQuestions(false);
    EXPECT_TRUE(WaitFor([&] { return !host.Item().isEmpty(); }));
  });
}

TEST_F(SessionTest, AWatcherThatHungAndIsGoneIsNotAwaited) {
  auto host = std::make_unique<NotificationHost>();
  host->HoldQuestions(true);
  Run([&] {
    EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_ADD, Icon()));
    EXPECT_TRUE(WaitFor([&] { return host->Questions() == 2; }));
    host.reset();
    host = std::make_unique<NotificationHost>();
    EXPECT_TRUE(WaitFor([&] { return !host->Item().isEmpty(); }));
  });
}

TEST_F(SessionTest, WhenABoxHasBeenAnsweredItsOwnerHasTheFocusAgain) {
  QProcess manager;
  manager.start(QStringLiteral("icewm"), QStringList());
  ASSERT_TRUE(manager.waitForStarted()) << "icewm can't be started";
  Run([&] {
    ASSERT_TRUE(WaitFor([&] { return Dialog()->isActiveWindow(); }));
    for (int i = 0; i < 5; ++i) {
      QTimer look;
      QObject::connect(&look, &QTimer::timeout, &look, [&] {
        if (QWidget* const box = QApplication::activeWindow(); box && box != Dialog()) box->close();
      });
      look.start(10);
      desktop().MessageBoxA(Window(), "A word", "Caption", MB_OK);
      EXPECT_TRUE(Dialog()->isActiveWindow()) << "what is typed now gets lost";
    }
  });
  manager.terminate();
  manager.waitForFinished();
}

}  // namespace
}  // namespace platform::qt
