// On an X server with a session bus, both of the test's own.
#include <QDBusConnection>
#include <QProcess>

#include <QtGui/qguiapplication_platform.h>
#include "notification_host.h"

#include "qt_fixture.h"
#include "window_manager.h"

namespace platform::qt {
namespace {

constexpr std::uint32_t kCallback = 0x8000;

constexpr int kSoon = 20000;  // ms

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
    EXPECT_TRUE(QTest::qWaitFor([&] { return !host->Item().isEmpty(); }, kSoon));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !desktop().IsWindowVisible(Window()); }, kSoon));

    recorder.lines.clear();
    host->Click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !recorder.lines.empty(); }, kSoon));
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
    EXPECT_TRUE(QTest::qWaitFor([&] { return !recorder.lines.empty(); }, kSoon));
    EXPECT_EQ(recorder.TakeLines().back(), "message 32768 0 516");

    EXPECT_EQ(host->Menu(), (std::vector<std::string>{"Exit", "-", "Show it"}));
    recorder.lines.clear();
    host->Choose("Exit");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !recorder.lines.empty(); }, kSoon));
    EXPECT_EQ(recorder.TakeLines(), std::vector<std::string>{"50 clicked"});

    desktop().ShowWindow(Window(), SW_HIDE);
    EXPECT_FALSE(desktop().IsWindowVisible(Window()));
    host.reset();
    EXPECT_TRUE(QTest::qWaitFor([&] { return desktop().IsWindowVisible(Window()); }, kSoon));
    EXPECT_TRUE(desktop().IsIconic(Window()));

    host = std::make_unique<NotificationHost>();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !desktop().IsWindowVisible(Window()); }, kSoon))
        << "again";
    EXPECT_TRUE(QTest::qWaitFor([&] { return !host->Item().isEmpty(); }, kSoon));
    EXPECT_EQ(host->Menu(), (std::vector<std::string>{"Exit", "-", "Show it"}));
    EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_DELETE, icon));
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
  const auto until = [](auto holds) { return QTest::qWaitFor(holds, kSoon); };
  QTimer managing;
  QObject::connect(&managing, &QTimer::timeout, handle);
  managing.start(1);
  Run([&] {
    EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_ADD, Icon()));
    EXPECT_TRUE(until([&] { return !host.Item().isEmpty() && manager.Shown() == 1; }));
    manager.MakeIconic(static_cast<xcb_window_t>(Dialog()->winId()));
    EXPECT_TRUE(until([&] { return desktop().IsIconic(Window()); }));
    desktop().ShowWindow(Window(), SW_HIDE);
    EXPECT_TRUE(until([&] { return manager.Withdrawn() == 1; }));
    Settle();
    handle();
    EXPECT_EQ(manager.Shown(), 1);

    desktop().ShowWindow(Window(), SW_SHOW);
    desktop().ShowWindow(Window(), SW_RESTORE);
    EXPECT_TRUE(until([&] { return manager.Shown() > 1; }));
    EXPECT_TRUE(desktop().IsWindowVisible(Window()));
    EXPECT_FALSE(desktop().IsIconic(Window()));
  });
}

TEST_F(SessionTest, AWatcherThatIsTooBusyToAnswerIsAskedAgain) {
  NotificationHost host;
  host.MissOneQuestion();
  Run([&] {
    EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_ADD, Icon()));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !host.Item().isEmpty(); }, kSoon));
  });
}

// After half a minute no question to a program is still open, unless somebody asks again and again.
TEST_F(SessionTest, AWatcherThatHangsIsAskedOnceMoreAndThenAwaited) {
  NotificationHost host;
  host.HoldQuestions(true);
  Run([&] {
    EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_ADD, Icon()));
    EXPECT_TRUE(QTest::qWaitFor([&] { return host.Questions() == 2; }, kSoon));
    QTest::qWait(27000);
    EXPECT_EQ(host.Questions(), 2);
    EXPECT_TRUE(host.Item().isEmpty());
    host.HoldQuestions(false);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !host.Item().isEmpty(); }, kSoon));
  });
}

TEST_F(SessionTest, AWatcherThatHungAndIsGoneIsNotAwaited) {
  auto host = std::make_unique<NotificationHost>();
  host->HoldQuestions(true);
  Run([&] {
    EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_ADD, Icon()));
    EXPECT_TRUE(QTest::qWaitFor([&] { return host->Questions() == 2; }, kSoon));
    host.reset();
    host = std::make_unique<NotificationHost>();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !host->Item().isEmpty(); }, kSoon));
  });
}

TEST_F(SessionTest, WhenABoxHasBeenAnsweredItsOwnerHasTheFocusAgain) {
  QProcess manager;
  manager.start(QStringLiteral("icewm"), QStringList());
  ASSERT_TRUE(manager.waitForStarted()) << "icewm can't be started";
  Run([&] {
    ASSERT_TRUE(QTest::qWaitFor([&] { return Dialog()->isActiveWindow(); }, kSoon));
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
