#include "app/platform/qt/qt_desktop.h"

#include <QAbstractButton>
#include <QAction>
#include <QLabel>
#include <QMessageBox>
#include <QProxyStyle>
#include <QPushButton>
#include <QScreen>
#include <atomic>
#include <chrono>
#include <thread>

#include "app/platform/qt/stop_requests.h"
#include "qt_fixture.h"

namespace platform::qt {
namespace {

using Lines = std::vector<std::string>;

int hookCalls = 0;
std::intptr_t CountingHook(std::int32_t, std::uintptr_t, std::intptr_t) {
  ++hookCalls;
  return 0;
}

class QtDesktopTest : public QtTest {
 protected:
  // Once the box that comes up has been looked at.
  void WithBox(std::function<void(QMessageBox&)> look) {
    QTimer::singleShot(0, &context, [=] {
      auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      ASSERT_NE(box, nullptr);
      look(*box);
    });
  }
  static QMessageBox* BoxThatIsUp() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      auto* const box = qobject_cast<QMessageBox*>(widget);
      if (box && box->isVisible()) return box;
    }
    return nullptr;
  }

  static bool ABoxComesUp() {
    return Soon([] { return BoxThatIsUp() != nullptr; });
  }
  // Another thread asks, and waits for the answer.
  std::thread Ask(std::uint32_t type) {
    return std::thread(
        [this, type] { answer = desktop().MessageBoxA(Window(), "Launched?", "", type); });
  }

  QObject context;
  std::atomic<std::int32_t> answer{-1};
};

// --- Boxes

WINDOW_TEST(QtDesktopTest, ABoxGivesTheButtonThatWasPressed) {
  WithBox([](QMessageBox& box) {
    EXPECT_EQ(box.text(), QStringLiteral("Delete <it>?"));
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.windowTitle(), QStringLiteral("Question"));
    EXPECT_EQ(box.icon(), QMessageBox::Question);
    box.button(QMessageBox::Yes)->click();
  });
  EXPECT_EQ(desktop().MessageBoxA(Window(), "Delete <it>?", "Question", MB_YESNO | MB_ICONQUESTION),
            IDYES);
  WithBox([](QMessageBox& box) { box.button(QMessageBox::No)->click(); });
  EXPECT_EQ(desktop().MessageBoxA(Window(), "?", "Question", MB_YESNO), IDNO);
  WithBox([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); });
  EXPECT_EQ(desktop().MessageBoxA(Window(), "?", "Question", MB_YESNO), IDNO);
  WithBox([](QMessageBox& box) {
    EXPECT_EQ(box.icon(), QMessageBox::Critical);
    QTest::keyClick(&box, Qt::Key_Return);
  });
  EXPECT_EQ(desktop().MessageBoxA(Window(), "!", "Failure", MB_OK | MB_ICONSTOP), IDOK);
}

// As desktops of long ago want them.
class PicturesOnButtons : public QProxyStyle {
 public:
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* data) const override {
    return hint == SH_DialogButtonBox_ButtonsHaveIcons
               ? 1
               : QProxyStyle::styleHint(hint, option, widget, data);
  }
};

TEST_F(QtDesktopTest, ABoxHasNoPicturesOnItsButtonsAndShowsALongNameWhole) {
  const std::string name(240, 'w');
  const QString style = QApplication::style()->objectName();
  QApplication::setStyle(new PicturesOnButtons);
  Run([&] {
    WithBox([](QMessageBox& box) {
      for (const QAbstractButton* button : box.buttons()) EXPECT_TRUE(button->icon().isNull());
      EXPECT_EQ(box.buttons().size(), 2);
      const auto* const text = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
      EXPECT_NE(text, nullptr);
      EXPECT_LE(text->minimumSizeHint().width(), text->width());
      EXPECT_LE(text->heightForWidth(text->width()), text->height());
      box.reject();
    });
    EXPECT_EQ(desktop().MessageBoxA(Window(), "Error Deleting Profile " + name, "", MB_YESNO),
              IDNO);
  });
  QApplication::setStyle(style);
}

// Qt shows a sheet without a frame, and so without its title, where windows draw their own frames.
WINDOW_TEST(QtDesktopTest, ABoxBeforeAWindowIsADialogWithATitle) {
  WithBox([](QMessageBox& box) {
    EXPECT_EQ(box.windowType(), Qt::Dialog);
    EXPECT_EQ(box.windowModality(), Qt::WindowModal);
    EXPECT_EQ(box.windowTitle(), QStringLiteral("Caption"));
    box.accept();
  });
  EXPECT_EQ(desktop().MessageBoxA(Window(), "!", "Caption", MB_OK), IDOK);
}

TEST_F(QtDesktopTest, ABoxOfAnotherThreadGoesWithItsWindow) {
  std::thread other;
  Run([&] {
    other = Ask(MB_OK);
    ASSERT_TRUE(ABoxComesUp());
  });
  other.join();
  EXPECT_EQ(answer, 0);
}

WINDOW_TEST(QtDesktopTest, ABoxOfAnotherThreadThatIsNotUpYetIsDismissedToo) {
  std::thread other = Ask(MB_OK);
  // Its call is on its way, but the loop doesn't get to show anything.
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  desktop().DismissBoxesOfOtherThreads();
  other.join();
  Settle();
  EXPECT_EQ(answer, 0);
  EXPECT_EQ(BoxThatIsUp(), nullptr);
}

// --- Dialogs in front of one another

WINDOW_TEST(QtDesktopTest, ADialogInFrontOfAnotherTakesItsInput) {
  const WindowHandle behind = Window();
  DialogWindow* const owner = Dialog();
  Recorder inner;
  QTimer::singleShot(0, &context, [&] {
    EXPECT_EQ(QApplication::activeModalWidget(), qt.Desktop().Windows().Find(inner.window));
    // To the windowing system's side, which knows what is blocked.
    QTest::mouseClick(owner->windowHandle(), Qt::LeftButton, {},
                      owner->Find(kButton)->Widget()->geometry().center());
    EXPECT_TRUE(recorder.LinesOf(kButton).empty());
    EXPECT_TRUE(desktop().PostMessageA(behind, 0x8001, 0, 0));
    Settle();
    EXPECT_EQ(recorder.lines.back(), "message 32769 0 0");
    desktop().EndDialog(inner.window, 7);
  });
  EXPECT_EQ(desktop().RunDialog(kOneButton, behind, inner), 7);
  EXPECT_TRUE(inner.destroyed);
  EXPECT_TRUE(desktop().IsWindowVisible(behind));
  QTest::mouseClick(owner->windowHandle(), Qt::LeftButton, {},
                    owner->Find(kButton)->Widget()->geometry().center());
  EXPECT_EQ(recorder.LinesOf(kButton), (Lines{"105 clicked"}));
}

TEST_F(QtDesktopTest, AllIsClosedFromTheFrontWhenTheSessionEnds) {
  Lines order;
  recorder.onClose = [&] {
    order.push_back("outer");
    desktop().EndDialog(recorder.window, IDCANCEL);
  };
  recorder.onInit = [&](WindowHandle window) { desktop().PostMessageA(window, 0x8001, 0, 0); };
  recorder.onMessage = [&](std::uint32_t message) {
    if (message != 0x8001) return;
    Recorder inner;
    inner.onClose = [&] {
      order.push_back("inner");
      desktop().EndDialog(inner.window, IDCANCEL);
    };
    QTimer::singleShot(0, &context, [&] { qt.Desktop().CloseAll(); });
    EXPECT_EQ(desktop().RunDialog(kOneButton, recorder.window, inner), IDCANCEL);
  };
  EXPECT_EQ(desktop().RunDialog(kAllKinds, kNoWindow, recorder), IDCANCEL);
  EXPECT_EQ(order, (Lines{"inner", "outer"}));
}

TEST_F(QtDesktopTest, ASignalEndsTheProgramAsItsCloseBoxDoes) {
  const StopRequests stop(qt.Desktop());
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    recorder.onInit = [&](WindowHandle) { raise(signal); };
    recorder.lines.clear();
    EXPECT_EQ(desktop().RunDialog(kAllKinds, kNoWindow, recorder), IDCANCEL);
    EXPECT_EQ(recorder.lines.back(), "close");
  }
}

TEST_F(QtDesktopTest, AStopDuringTheSetUpComesBeforeTheMessagesThatItPosted) {
  const StopRequests stop(qt.Desktop());
  Recorder inner;
  for (const bool inFront : {false, true}) {
    SCOPED_TRACE(inFront);
    recorder.lines.clear();
    recorder.onInit = [&](WindowHandle window) {
      desktop().PostMessageA(window, 0x8001, 0, 0);
      if (inFront) {
        inner.onInit = [](WindowHandle) { raise(SIGTERM); };
        EXPECT_EQ(desktop().RunDialog(kOneButton, window, inner), IDCANCEL);
      } else {
        raise(SIGTERM);
      }
    };
    EXPECT_EQ(desktop().RunDialog(kAllKinds, kNoWindow, recorder), IDCANCEL);
    EXPECT_EQ(recorder.lines, (Lines{"close"}));
  }
}

TEST_F(QtDesktopTest, TheSessionsWishToQuitDoesThatToo) {
  const StopRequests stop(qt.Desktop());
  QTimer::singleShot(0, &context, [] {
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &quit);
  });
  EXPECT_EQ(desktop().RunDialog(kAllKinds, kNoWindow, recorder), IDCANCEL);
  EXPECT_EQ(recorder.lines.back(), "close");
}

// --- Messages, timers, other threads

// --- The rest of the desktop

TEST_F(QtDesktopTest, AChosenEntryOfAMenuComesAsAClick) {
  constexpr MenuItem items[] = {{"Exit", 32772}, {"", 0}, {"Show Kelvaro", 32771}};
  Run([&] {
    controls().SetControlFocus(Window(), kCheck);
    QTimer::singleShot(0, &context, [] {
      auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      ASSERT_NE(menu, nullptr);
      ASSERT_EQ(menu->actions().size(), 3);
      EXPECT_TRUE(menu->actions().at(1)->isSeparator());
      QTest::keyClick(menu, Qt::Key_Up);
      QTest::keyClick(menu, Qt::Key_Return);
    });
    EXPECT_TRUE(desktop().TrackPopupMenu(Window(), items, TPM_RIGHTBUTTON, {10, 10}));
    Settle();
    EXPECT_EQ(recorder.lines, (Lines{"32771 clicked"}));

    QTimer::singleShot(0, &context, [] { QApplication::activePopupWidget()->close(); });
    EXPECT_TRUE(desktop().TrackPopupMenu(Window(), items, TPM_RIGHTBUTTON, {10, 10}));
    Settle();
    EXPECT_EQ(recorder.lines.size(), 1u);
    EXPECT_FALSE(desktop().TrackPopupMenu(99, items, 0, {}));
  });
}

// --- The notification area, of which there is none here

WINDOW_TEST(QtDesktopTest, WithoutAnAreaAnIconCountsAsAdded) {
  NOTIFYICONDATA data;
  data.hWnd = Window();
  EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_ADD, data));
  EXPECT_FALSE(desktop().Shell_NotifyIconA(NIM_ADD, data)) << "it is there";
  EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_DELETE, data));
  EXPECT_FALSE(desktop().Shell_NotifyIconA(NIM_DELETE, data));
  data.hWnd = 99;
  EXPECT_FALSE(desktop().Shell_NotifyIconA(NIM_ADD, data));
  EXPECT_FALSE(desktop().Shell_NotifyIconA(77, data));
}

TEST_F(QtDesktopTest, WithoutAnAreaAWindowWithAnIconIsMinimisedInsteadOfHidden) {
  hookCalls = 0;
  Run([&] {
    const HookHandle hook = desktop().SetWindowsHookExA(WH_CBT, &CountingHook);
    NOTIFYICONDATA data;
    data.hWnd = Window();
    desktop().Shell_NotifyIconA(NIM_ADD, data);
    desktop().ShowWindow(Window(), SW_HIDE);
    Settle();
    EXPECT_TRUE(desktop().IsIconic(Window()));
    EXPECT_TRUE(desktop().IsWindowVisible(Window()));
    EXPECT_EQ(hookCalls, 0) << "nobody minimised it";
    desktop().ShowWindow(Window(), SW_RESTORE);
    Settle();
    EXPECT_FALSE(desktop().IsIconic(Window()));
    desktop().Shell_NotifyIconA(NIM_DELETE, data);
    desktop().ShowWindow(Window(), SW_HIDE);
    EXPECT_FALSE(desktop().IsWindowVisible(Window()));
    desktop().UnhookWindowsHookEx(hook);
  });
}

}  // namespace
}  // namespace platform::qt
