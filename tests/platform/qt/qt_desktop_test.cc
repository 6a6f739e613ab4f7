#include "app/platform/qt/qt_desktop.h"

#include <QAbstractButton>
#include <QAction>
#include <QLabel>
#include <QMessageBox>
#include <QProxyStyle>
#include <QPushButton>
#include <QScreen>
#include <chrono>
#include <thread>

#include "app/platform/qt/stop_requests.h"
#include "qt_fixture.h"

namespace platform::qt {
namespace {

int hookCalls = 0;
std::intptr_t CountingHook(std::int32_t, std::uintptr_t, std::intptr_t) {
  ++hookCalls;
  return 0;
}

class QtDesktopTest : public QtTest {
 protected:
  // Once the box that comes up has been looked at.
  void WithBox(std::function<void(QMessageBox&)> look) {
    Later([=] {
      auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      ASSERT_NE(box, nullptr);
      look(*box);
    });
  }
};

// --- Windows

TEST_F(QtDesktopTest, OfAWindowThatIsNotThereNothingIsKnownOrDone) {
  const WindowHandle none = 77;
  Rect rect{1, 2, 3, 4};
  EXPECT_FALSE(desktop().ShowWindow(none, SW_SHOW));
  EXPECT_FALSE(desktop().IsWindowVisible(none));
  EXPECT_FALSE(desktop().IsIconic(none));
  EXPECT_FALSE(desktop().IsZoomed(none));
  EXPECT_FALSE(desktop().SetForegroundWindow(none));
  EXPECT_FALSE(desktop().SetWindowTextA(none, "title"));
  EXPECT_FALSE(desktop().SetWindowIcon(none, 1, true));
  EXPECT_FALSE(desktop().GetWindowRect(none, &rect));
  EXPECT_FALSE(desktop().GetClientRect(none, &rect));
  EXPECT_EQ(rect, (Rect{1, 2, 3, 4}));
  EXPECT_FALSE(desktop().MoveWindow(none, rect));
  EXPECT_FALSE(desktop().InvalidateRect(none, rect));
  EXPECT_FALSE(desktop().UpdateWindow(none));
  EXPECT_EQ(desktop().SetTimer(none, 1, 10), 0u);
  EXPECT_FALSE(desktop().KillTimer(none, 1));
  EXPECT_FALSE(desktop().SleepTimer(none, 1));
  EXPECT_FALSE(desktop().WakeTimer(none, 1));
}

IN_WINDOW(QtDesktopTest, ACommandThatIsNoneChangesNothing) {
  EXPECT_TRUE(desktop().ShowWindow(Window(), 99));
  EXPECT_TRUE(desktop().IsWindowVisible(Window()));
  EXPECT_FALSE(desktop().IsIconic(Window()) || desktop().IsZoomed(Window()));
}

IN_WINDOW(QtDesktopTest, AModifierIsDownWhileItIsHeld) {
  const struct {
    std::uint8_t vk;
    Qt::Key key;
    Qt::KeyboardModifier modifier;
  } kRows[] = {{0x10, Qt::Key_Shift, Qt::ShiftModifier},
               {0x11, Qt::Key_Control, Qt::ControlModifier},
               {0x12, Qt::Key_Alt, Qt::AltModifier},
               {0x41, Qt::Key_A, Qt::NoModifier}};
  for (const auto& held : kRows) {
    QTest::keyPress(Dialog()->windowHandle(), held.key, held.modifier);
    for (const auto& row : kRows) {
      const bool isDown = row.vk == held.vk && held.modifier != Qt::NoModifier;
      EXPECT_EQ(desktop().GetKeyState(row.vk), isDown ? 0x8000 : 0) << held.key << row.key;
    }
    QTest::keyRelease(Dialog()->windowHandle(), held.key, Qt::NoModifier);
    EXPECT_EQ(desktop().GetKeyState(held.vk), 0);
  }
}

// --- Boxes

IN_WINDOW(QtDesktopTest, ABoxShowsPlainTextBesideItsIconAndTakesKeys) {
  WithBox([](QMessageBox& box) {
    EXPECT_EQ(box.text(), QStringLiteral("Delete <it>?"));
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.icon(), QMessageBox::Question);
    QTest::keyClick(&box, Qt::Key_Escape);
  });
  EXPECT_EQ(desktop().MessageBoxA(Window(), "Delete <it>?", "Question", MB_YESNO | MB_ICONQUESTION),
            IDNO);
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
IN_WINDOW(QtDesktopTest, ABoxBeforeAWindowIsADialogWithATitle) {
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

IN_WINDOW(QtDesktopTest, ABoxOfAnotherThreadThatIsNotUpYetIsDismissedToo) {
  std::thread other = Ask(MB_OK);
  // Its call is on its way, but the loop doesn't get to show anything.
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  desktop().DismissBoxesOfOtherThreads();
  other.join();
  Settle();
  EXPECT_EQ(answer, 0);
  EXPECT_EQ(BoxThatIsUp(), nullptr);
}

TEST_F(QtDesktopTest, WhatIsToldWhileABoxGoesComesUpAfterIt) {
  desktop().Tell("The settings were damaged.");
  Run([&] {
    ASSERT_TRUE(ABoxComesUp());
    BoxThatIsUp()->accept();
    desktop().Tell("The disk is full.");
    ASSERT_TRUE(ABoxComesUp());
    EXPECT_EQ(BoxThatIsUp()->text(), QStringLiteral("The disk is full."));
    BoxThatIsUp()->accept();
  });
}

// --- Dialogs in front of one another

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
    Later([&] { qt.Desktop().CloseAll(); });
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
  Later([] {
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &quit);
  });
  EXPECT_EQ(desktop().RunDialog(kAllKinds, kNoWindow, recorder), IDCANCEL);
  EXPECT_EQ(recorder.lines.back(), "close");
}

// --- The rest of the desktop

TEST_F(QtDesktopTest, AMenuHasItsLinesAndChoosesNothingWhenItIsClosed) {
  constexpr MenuItem items[] = {{"Exit", 32772}, {"", 0}, {"Show Kelvaro", 32771}};
  Run([&] {
    controls().SetControlFocus(Window(), kCheck);
    Later([] {
      auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      ASSERT_NE(menu, nullptr);
      EXPECT_EQ(menu->actions().size(), 3);
      EXPECT_TRUE(menu->actions().at(1)->isSeparator());
      menu->close();
    });
    EXPECT_TRUE(desktop().TrackPopupMenu(Window(), items, TPM_RIGHTBUTTON, {10, 10}));
    Settle();
    EXPECT_TRUE(recorder.lines.empty());
  });
}

// --- The notification area, of which there is none here

TEST_F(QtDesktopTest, WithoutAnAreaAWindowWithAnIconIsMinimisedInsteadOfHidden) {
  hookCalls = 0;
  Run([&] {
    const HookHandle hook = desktop().SetWindowsHookExA(WH_CBT, &CountingHook);
    NOTIFYICONDATA data;
    data.hWnd = Window();
    EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_ADD, data)) << "it counts as added";
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
