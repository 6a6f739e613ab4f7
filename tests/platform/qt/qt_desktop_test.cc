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
#include <memory>
#include <thread>

#include "app/platform/linux/cut_off.h"
#include "app/platform/qt/stop_requests.h"
#include "qt_test.h"

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
    return QTest::qWaitFor([] { return BoxThatIsUp() != nullptr; });
  }
  // Another thread asks, and waits for the answer.
  std::thread Ask(std::uint32_t type) {
    return std::thread([this, type] { answer = MessageBoxA(Window(), "Launched?", "", type); });
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
  EXPECT_EQ(MessageBoxA(Window(), "Delete <it>?", "Question", MB_YESNO | MB_ICONQUESTION), IDYES);
  WithBox([](QMessageBox& box) { box.button(QMessageBox::No)->click(); });
  EXPECT_EQ(MessageBoxA(Window(), "?", "Question", MB_YESNO), IDNO);
  WithBox([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); });
  EXPECT_EQ(MessageBoxA(Window(), "?", "Question", MB_YESNO), IDNO);
  WithBox([](QMessageBox& box) {
    EXPECT_EQ(box.icon(), QMessageBox::Critical);
    QTest::keyClick(&box, Qt::Key_Return);
  });
  EXPECT_EQ(MessageBoxA(Window(), "!", "Failure", MB_OK | MB_ICONSTOP), IDOK);
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
    EXPECT_EQ(MessageBoxA(Window(), "Error Deleting Profile " + name, "", MB_YESNO), IDNO);
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
  EXPECT_EQ(MessageBoxA(Window(), "!", "Caption", MB_OK), IDOK);
}

TEST_F(QtDesktopTest, TimersAndMessagesGoOnBehindABox) {
  int ticks = 0;
  recorder.onTimer = [&](std::uint32_t) {
    if (++ticks == 3) BoxThatIsUp()->reject();
  };
  Run([&] {
    SetControlFocus(Window(), kCheck);
    EXPECT_EQ(SetTimer(Window(), 1, 10), 1u);
    PostMessageA(Window(), 0x8001, 1, 2);
    EXPECT_EQ(MessageBoxA(Window(), "!", "", MB_OK), IDOK);
    EXPECT_EQ(ticks, 3);
    EXPECT_EQ(recorder.lines, (Lines{"message 32769 1 2"}));
  });
}

TEST_F(QtDesktopTest, ABoxWorksWithoutAWindow) {
  WithBox([](QMessageBox& box) { box.accept(); });
  EXPECT_EQ(MessageBoxA(kNoWindow, "!", "", MB_OK), IDOK);
}

TEST_F(QtDesktopTest, ABoxOfAnotherThreadBlocksThatThreadAlone) {
  int ticks = 0;
  recorder.onTimer = [&](std::uint32_t) { ++ticks; };
  std::thread other;
  Run([&] {
    SetTimer(Window(), 1, 5);
    other = Ask(MB_YESNO);
    ASSERT_TRUE(ABoxComesUp());
    EXPECT_EQ(answer, -1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return ticks > 2; })) << "the window goes on";
    BoxThatIsUp()->button(QMessageBox::Yes)->click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return answer == IDYES; }));
  });
  other.join();
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

// Nothing but the dismissal answers: the loop stands still until the thread has ended.
WINDOW_TEST(QtDesktopTest, ABoxOfAnotherThreadIsDismissedBeforeThatThreadIsWaitedFor) {
  std::thread other = Ask(MB_YESNO);
  EXPECT_TRUE(ABoxComesUp());
  DismissBoxesOfOtherThreads();
  other.join();
  EXPECT_EQ(answer, IDNO) << "as if it had been closed";
  EXPECT_EQ(BoxThatIsUp(), nullptr);
}

WINDOW_TEST(QtDesktopTest, ABoxOfAnotherThreadThatIsNotUpYetIsDismissedToo) {
  std::thread other = Ask(MB_OK);
  // Its call is on its way, but the loop doesn't get to show anything.
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  DismissBoxesOfOtherThreads();
  other.join();
  Settle();
  EXPECT_EQ(answer, 0);
  EXPECT_EQ(BoxThatIsUp(), nullptr);
}

WINDOW_TEST(QtDesktopTest, AfterADismissalOnlyOtherThreadsGetNoBox) {
  DismissBoxesOfOtherThreads();
  std::thread other = Ask(MB_OK);
  other.join();
  EXPECT_EQ(answer, 0);
  WithBox([](QMessageBox& box) { box.button(QMessageBox::Yes)->click(); });
  EXPECT_EQ(MessageBoxA(Window(), "?", "", MB_YESNO), IDYES);
}

TEST_F(QtDesktopTest, WhatThePersonShouldKnowIsToldOnceAWindowIsUp) {
  qt.Desktop().Tell("The settings were damaged.");
  Run([&] {
    ASSERT_TRUE(ABoxComesUp());
    EXPECT_EQ(BoxThatIsUp()->text(), QStringLiteral("The settings were damaged."));
    BoxThatIsUp()->accept();
  });
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
    EXPECT_TRUE(PostMessageA(behind, 0x8001, 0, 0));
    Settle();
    EXPECT_EQ(recorder.lines.back(), "message 32769 0 0");
    EndDialog(inner.window, 7);
  });
  EXPECT_EQ(RunDialog(kOneButton, behind, inner), 7);
  EXPECT_TRUE(inner.destroyed);
  EXPECT_TRUE(IsWindowVisible(behind));
  QTest::mouseClick(owner->windowHandle(), Qt::LeftButton, {},
                    owner->Find(kButton)->Widget()->geometry().center());
  EXPECT_EQ(recorder.LinesOf(kButton), (Lines{"105 clicked"}));
}

TEST_F(QtDesktopTest, EndingADialogEndsWhatIsInFrontOfIt) {
  std::int32_t innerResult = -5;
  const std::int32_t result = Run([&] {
    Recorder inner;
    const WindowHandle behind = Window();
    QTimer::singleShot(0, &context, [&] {
      WithBox([&](QMessageBox&) { EndDialog(behind, 9); });
      MessageBoxA(inner.window, "?", "", MB_OK);
    });
    innerResult = RunDialog(kOneButton, behind, inner);
    EXPECT_TRUE(inner.destroyed);
  });
  EXPECT_EQ(innerResult, IDCANCEL);
  EXPECT_EQ(result, IDOK) << "the script's own end came last";
}

TEST_F(QtDesktopTest, AllIsClosedFromTheFrontWhenTheSessionEnds) {
  Lines order;
  recorder.onClose = [&] {
    order.push_back("outer");
    EndDialog(recorder.window, IDCANCEL);
  };
  recorder.onInit = [&](WindowHandle window) { PostMessageA(window, 0x8001, 0, 0); };
  recorder.onMessage = [&](std::uint32_t message) {
    if (message != 0x8001) return;
    Recorder inner;
    inner.onClose = [&] {
      order.push_back("inner");
      EndDialog(inner.window, IDCANCEL);
    };
    QTimer::singleShot(0, &context, [&] { qt.Desktop().CloseAll(); });
    EXPECT_EQ(RunDialog(kOneButton, recorder.window, inner), IDCANCEL);
  };
  EXPECT_EQ(RunDialog(kAllKinds, kNoWindow, recorder), IDCANCEL);
  EXPECT_EQ(order, (Lines{"inner", "outer"}));
}

TEST_F(QtDesktopTest, ASignalEndsTheProgramAsItsCloseBoxDoes) {
  const StopRequests stop(qt.Desktop());
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    recorder.onInit = [&](WindowHandle) { raise(signal); };
    recorder.lines.clear();
    EXPECT_EQ(RunDialog(kAllKinds, kNoWindow, recorder), IDCANCEL);
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
      PostMessageA(window, 0x8001, 0, 0);
      if (inFront) {
        inner.onInit = [](WindowHandle) { raise(SIGTERM); };
        EXPECT_EQ(RunDialog(kOneButton, window, inner), IDCANCEL);
      } else {
        raise(SIGTERM);
      }
    };
    EXPECT_EQ(RunDialog(kAllKinds, kNoWindow, recorder), IDCANCEL);
    EXPECT_EQ(recorder.lines, (Lines{"close"}));
  }
}

TEST_F(QtDesktopTest, TheSessionsWishToQuitDoesThatToo) {
  const StopRequests stop(qt.Desktop());
  QTimer::singleShot(0, &context, [] {
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &quit);
  });
  EXPECT_EQ(RunDialog(kAllKinds, kNoWindow, recorder), IDCANCEL);
  EXPECT_EQ(recorder.lines.back(), "close");
}

// --- Messages, timers, other threads

TEST_F(QtDesktopTest, MessagesKeepTheirOrder) {
  Run([&] {
    for (unsigned i = 0; i < 5; ++i) PostMessageA(Window(), 0x8000 + i, i, -1);
    EXPECT_TRUE(recorder.lines.empty());
    Settle();
    EXPECT_EQ(recorder.lines,
              (Lines{"message 32768 0 -1", "message 32769 1 -1", "message 32770 2 -1",
                     "message 32771 3 -1", "message 32772 4 -1"}));
  });
  EXPECT_FALSE(PostMessageA(recorder.window, 0x8000, 0, 0));
}

TEST_F(QtDesktopTest, ATimerTicksUntilItIsKilled) {
  std::vector<std::uint32_t> ticks;
  recorder.onTimer = [&](std::uint32_t id) { ticks.push_back(id); };
  Run([&] {
    EXPECT_EQ(SetTimer(Window(), 3, 5), 3u);
    EXPECT_TRUE(QTest::qWaitFor([&] { return ticks.size() >= 3; }));
    EXPECT_TRUE(KillTimer(Window(), 3));
    EXPECT_FALSE(KillTimer(Window(), 3));
    ticks.clear();
    QTest::qWait(30);
    EXPECT_TRUE(ticks.empty());
    EXPECT_EQ(SetTimer(99, 1, 5), 0u);
  });
}

TEST_F(QtDesktopTest, PeriodsThatPassDuringAHandlerFoldIntoOne) {
  int ticks = 0;
  recorder.onTimer = [&](std::uint32_t) {
    if (++ticks == 1) std::this_thread::sleep_for(std::chrono::milliseconds(60));
    if (ticks == 2) KillTimer(recorder.window, 1);
  };
  Run([&] {
    SetTimer(Window(), 1, 10);
    EXPECT_TRUE(QTest::qWaitFor([&] { return ticks == 2; }));
    QTest::qWait(30);
    EXPECT_EQ(ticks, 2);
  });
}

WINDOW_TEST(QtDesktopTest, TextOfAnotherThreadIsShownWithoutItsWaiting) {
  // The user interface's thread is busy here until the other one has ended.
  std::thread other([&] {
    EXPECT_TRUE(SetDlgItemTextA(Window(), kNameEdit, "first"));
    EXPECT_TRUE(SetDlgItemTextA(Window(), kNameEdit, "second"));
    EXPECT_TRUE(CheckDlgButton(Window(), kCheck, true));
    EXPECT_TRUE(InvalidateControl(Window(), kNameEdit));
    EXPECT_FALSE(SetDlgItemTextA(Window(), 999, "x"));
    EXPECT_FALSE(SetDlgItemTextA(99, kNameEdit, "x"));
    EXPECT_TRUE(PostMessageA(Window(), 0x8001, 0, 0));
  });
  other.join();
  EXPECT_EQ(GetDlgItemTextA(Window(), kNameEdit), "");
  Settle();
  EXPECT_EQ(GetDlgItemTextA(Window(), kNameEdit), "second");
  EXPECT_TRUE(IsDlgButtonChecked(Window(), kCheck));
  EXPECT_EQ(recorder.lines, (Lines{"message 32769 0 0"}));
}

WINDOW_TEST(QtDesktopTest, WhatWasSetLastIsWhatIsShown) {
  std::thread other([&] {
    SetDlgItemTextA(Window(), kNameEdit, "older");
    CheckDlgButton(Window(), kCheck, true);
    SetDlgItemTextA(Window(), kDigitsEdit, "1");
  });
  other.join();
  SetDlgItemTextA(Window(), kNameEdit, "newer");
  CheckDlgButton(Window(), kCheck, false);
  Settle();
  EXPECT_EQ(GetDlgItemTextA(Window(), kNameEdit), "newer");
  EXPECT_FALSE(IsDlgButtonChecked(Window(), kCheck));
  EXPECT_EQ(GetDlgItemTextA(Window(), kDigitsEdit), "1");
}

TEST_F(QtDesktopTest, AWindowThatGoesMeanwhileIsNoMatterToAnotherThread) {
  std::atomic<bool> go{true};
  std::atomic<WindowHandle> window{kNoWindow};
  std::thread other([&] {
    while (go) {
      SetDlgItemTextA(window, kNameEdit, "text");
      PostMessageA(window, 0x8001, 0, 0);
    }
  });
  for (int i = 0; i < 5; ++i) {
    Run([&] {
      window = Window();
      Settle();
    });
  }
  go = false;
  other.join();
  EXPECT_FALSE(SetDlgItemTextA(window, kNameEdit, "text"));
}

TEST_F(QtDesktopTest, AThreadThatWasCutOffGetsNoFurther) {
  // Such a thread sleeps for good, so it is a child that shows it.
  static std::atomic<bool> cut{true};
  static std::atomic<bool> came{false};
  Run([&] {
    std::thread other([this] {
      cutOffFlag = &cut;
      SetDlgItemTextA(Window(), kNameEdit, "x");
      came = true;
    });
    other.detach();
    QTest::qWait(50);
    EXPECT_FALSE(came);
    EXPECT_EQ(GetDlgItemTextA(Window(), kNameEdit), "");
  });
}

// --- The rest of the desktop

TEST_F(QtDesktopTest, KnowsItsSizesAndColours) {
  Rect desktop;
  EXPECT_TRUE(GetDesktopRect(&desktop));
  EXPECT_EQ(desktop.left, 0);
  EXPECT_GT(desktop.Width(), 100);
  EXPECT_EQ(GetSystemMetrics(SM_CXICON), 32);
  EXPECT_EQ(GetSystemMetrics(SM_CYICON), 32);
  EXPECT_GT(GetSystemMetrics(SM_CXVSCROLL), 0);
  EXPECT_EQ(GetSystemMetrics(SM_CYHSCROLL), GetSystemMetrics(SM_CXVSCROLL));
  EXPECT_EQ(GetSystemMetrics(12345), 0);
  EXPECT_NE(GetSysColor(COLOR_3DFACE), GetSysColor(COLOR_BTNTEXT));
  EXPECT_NE(GetSysColor(COLOR_3DHILIGHT), GetSysColor(COLOR_3DDKSHADOW));
  Point point;
  EXPECT_TRUE(GetCursorPos(&point));
}

TEST_F(QtDesktopTest, AChosenEntryOfAMenuComesAsAClick) {
  constexpr MenuItem items[] = {{"Exit", 32772}, {"", 0}, {"Show Kelvaro", 32771}};
  Run([&] {
    SetControlFocus(Window(), kCheck);
    QTimer::singleShot(0, &context, [] {
      auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      ASSERT_NE(menu, nullptr);
      ASSERT_EQ(menu->actions().size(), 3);
      EXPECT_TRUE(menu->actions().at(1)->isSeparator());
      QTest::keyClick(menu, Qt::Key_Up);
      QTest::keyClick(menu, Qt::Key_Return);
    });
    EXPECT_TRUE(TrackPopupMenu(Window(), items, TPM_RIGHTBUTTON, {10, 10}));
    Settle();
    EXPECT_EQ(recorder.lines, (Lines{"32771 clicked"}));

    QTimer::singleShot(0, &context, [] { QApplication::activePopupWidget()->close(); });
    EXPECT_TRUE(TrackPopupMenu(Window(), items, TPM_RIGHTBUTTON, {10, 10}));
    Settle();
    EXPECT_EQ(recorder.lines.size(), 1u);
    EXPECT_FALSE(TrackPopupMenu(99, items, 0, {}));
  });
}

// --- The notification area, of which there is none here

WINDOW_TEST(QtDesktopTest, WithoutAnAreaAnIconCountsAsAdded) {
  NOTIFYICONDATA data;
  data.hWnd = Window();
  EXPECT_TRUE(Shell_NotifyIconA(NIM_ADD, data));
  EXPECT_FALSE(Shell_NotifyIconA(NIM_ADD, data)) << "it is there";
  EXPECT_TRUE(Shell_NotifyIconA(NIM_DELETE, data));
  EXPECT_FALSE(Shell_NotifyIconA(NIM_DELETE, data));
  data.hWnd = 99;
  EXPECT_FALSE(Shell_NotifyIconA(NIM_ADD, data));
  EXPECT_FALSE(Shell_NotifyIconA(77, data));
}

TEST_F(QtDesktopTest, WithoutAnAreaAWindowWithAnIconIsMinimisedInsteadOfHidden) {
  hookCalls = 0;
  Run([&] {
    const HookHandle hook = SetWindowsHookExA(WH_CBT, &CountingHook);
    NOTIFYICONDATA data;
    data.hWnd = Window();
    Shell_NotifyIconA(NIM_ADD, data);
    ShowWindow(Window(), SW_HIDE);
    Settle();
    EXPECT_TRUE(IsIconic(Window()));
    EXPECT_TRUE(IsWindowVisible(Window()));
    EXPECT_EQ(hookCalls, 0) << "nobody minimised it";
    ShowWindow(Window(), SW_RESTORE);
    Settle();
    EXPECT_FALSE(IsIconic(Window()));
    Shell_NotifyIconA(NIM_DELETE, data);
    ShowWindow(Window(), SW_HIDE);
    EXPECT_FALSE(IsWindowVisible(Window()));
    UnhookWindowsHookEx(hook);
  });
}

}  // namespace
}  // namespace platform::qt
