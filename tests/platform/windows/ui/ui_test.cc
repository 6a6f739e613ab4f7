// What the desktop of Windows has beside what every desktop does.
#include <memory>

#include "app/platform/windows/ui/dialog_memory.h"
#include "app/platform/windows/ui/pictures.h"
#include "app/platform/windows/ui/text.h"
#include "desktop_fixture.h"

// Last.
#include "app/platform/windows/ui/system.h"

namespace platform {
namespace {

using ui::SystemWindow;

class WindowsUiTest : public DesktopTest {
 protected:
  HWND Handle(std::uint32_t id) const {
    return GetDlgItem(SystemWindow(Window()), static_cast<int>(id));
  }
  // As the headers of a list tell it.
  void TellOfHeader(UINT code, int column) {
    const HWND list = Handle(kList);
    NMHEADERW notice = {};
    notice.hdr.hwndFrom = reinterpret_cast<HWND>(ui::Ask(list, LVM_GETHEADER));
    notice.hdr.code = code;
    notice.iItem = column;
    ui::Ask(list, WM_NOTIFY, 0, &notice);
  }
  // What the tool tip of a control shows.
  std::string TipOf(std::uint32_t id) {
    HWND tips = nullptr;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM found) -> BOOL {
          wchar_t name[32] = {};
          GetClassNameW(window, name, 32);
          if (std::wstring_view(name) != TOOLTIPS_CLASSW) return TRUE;
          TTTOOLINFOW none = {};
          none.cbSize = sizeof none;
          // Lists have one of their own.
          if (ui::Ask(window, TTM_GETTOOLCOUNT) < 2) return TRUE;
          *reinterpret_cast<HWND*>(found) = window;
          return FALSE;
        },
        reinterpret_cast<LPARAM>(&tips));
    wchar_t text[512] = {};
    TTTOOLINFOW tool = {};
    tool.cbSize = sizeof tool;
    tool.hwnd = SystemWindow(Window());
    tool.uId = reinterpret_cast<UINT_PTR>(Handle(id));
    tool.lpszText = text;
    ui::Ask(tips, TTM_GETTEXTW, 512, &tool);
    return ui::Bytes(text);
  }
};

TEST(WindowsText, GoesBothWays) {
  EXPECT_EQ(ui::Wide("\xC3\xBC"), L"\u00FC");
  EXPECT_EQ(ui::Wide("\xFC"), L"\u00FC") << "bytes that aren't UTF-8 show as Latin-1";
  EXPECT_EQ(ui::Bytes(L"\u00FC\U0001F3AE"), "\xC3\xBC\xF0\x9F\x8E\xAE");
  EXPECT_EQ(ui::Wide(""), L"");
  EXPECT_EQ(ui::Bytes(L""), "");
  std::string bytes = "before";
  EXPECT_FALSE(ui::Latin1Bytes(L"\u0100", &bytes));
  EXPECT_EQ(bytes, "before");
  EXPECT_TRUE(ui::Latin1Bytes(L"\u00FC", &bytes));
  EXPECT_EQ(bytes, "\xFC");
  EXPECT_EQ(ui::Marked(L"a & b && c"), L"a && b &&&& c");
  EXPECT_EQ(ui::WithoutMnemonic(L"&Keys && more"), L"Keys & more");
  EXPECT_EQ(ui::WithLineEnds(L"\na\r\nb\n"), L"\r\na\r\nb\r\n");
}

TEST(WindowsPictures, ADrawingComesInEachSizeAndInAnyInk) {
  const BitmapHandle arrow = ui::LoadBitmapOf(145);
  ASSERT_NE(arrow, 0u);
  EXPECT_EQ(ui::SizeOf(arrow).cx, 16);
  EXPECT_TRUE(ui::IsMask(arrow));
  EXPECT_FALSE(ui::IsMask(ui::LoadBitmapOf(148)));
  const COLORREF red = RGB(255, 0, 0);
  for (const LONG side : {16L, 20L, 40L}) {
    const HICON icon = ui::IconOf(arrow, {side, side}, &red);
    ASSERT_NE(icon, nullptr) << side;
    ICONINFO parts = {};
    ASSERT_TRUE(GetIconInfo(icon, &parts));
    BITMAP bitmap = {};
    GetObjectW(parts.hbmColor, sizeof bitmap, &bitmap);
    EXPECT_EQ(bitmap.bmWidth, side);
    DeleteObject(parts.hbmColor);
    DeleteObject(parts.hbmMask);
    const HDC screen = GetDC(nullptr);
    const HDC canvas = CreateCompatibleDC(screen);
    const HBITMAP paper = CreateCompatibleBitmap(screen, side, side);
    const HGDIOBJ before = SelectObject(canvas, paper);
    const RECT all = {0, 0, side, side};
    FillRect(canvas, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    DrawIconEx(canvas, 0, 0, icon, static_cast<int>(side), static_cast<int>(side), 0, nullptr,
               DI_NORMAL);
    EXPECT_EQ(GetPixel(canvas, static_cast<int>(side / 2), static_cast<int>(side / 2)), red);
    EXPECT_EQ(GetPixel(canvas, 0, 0), RGB(255, 255, 255)) << "nothing is there";
    SelectObject(canvas, before);
    DeleteObject(paper);
    DeleteDC(canvas);
    ReleaseDC(nullptr, screen);
    DestroyIcon(icon);
  }
}

TEST(WindowsTemplate, BeginsAsTheSystemWantsIt) {
  const std::vector<WORD> words = ui::InMemory(kOneButton, false);
  EXPECT_EQ(words[0], 1);
  EXPECT_EQ(words[1], 0xFFFF);
  EXPECT_EQ(words[8], 2) << "controls";
  EXPECT_EQ(words[11], 100) << "as wide as the table says";
  EXPECT_EQ(words[12], 40);
}

TEST_F(WindowsUiTest, ADroppedHeaderIsToldAndItsOrderReadByMessage) {
  Run([&] {
    controls().ListInsertColumn(Window(), kList, "Trigger", 100);
    controls().ListInsertColumn(Window(), kList, "Action", 50);
    recorder.lines.clear();
    TellOfHeader(HDN_ENDDRAG, 0);
    EXPECT_EQ(recorder.LinesOf(kList), (Lines{"116 header drag ended"}));
  });
}

TEST_F(WindowsUiTest, AListTellsThatItHasDrawnItself) {
  int painted = 0;
  recorder.onNotice = [&](std::uint32_t id, Notice notice, std::int32_t) {
    if (id == kList && notice == Notice::Painted) ++painted;
  };
  Run([&] {
    painted = 0;
    controls().InvalidateControl(Window(), kList);
    EXPECT_TRUE(WaitFor([&] { return painted > 0; }));
  });
}

TEST_F(WindowsUiTest, AToolShowsTheTextThatTheProgramGives) {
  recorder.tip = [](std::uint32_t id) { return "tip of " + std::to_string(id) + " <>\n&"; };
  Run([&] {
    EXPECT_TRUE(controls().CreateToolTip(Window()));
    EXPECT_TRUE(controls().SetToolTipWidth(Window(), 300));
    EXPECT_TRUE(controls().SetToolTipTime(Window(), 10000));
    EXPECT_TRUE(controls().ActivateToolTip(Window(), true));
    EXPECT_TRUE(controls().AddTool(Window(), kButton));
    EXPECT_FALSE(controls().AddTool(Window(), 999));
    controls().TabInsertItem(Window(), kTabs, "One");
    EXPECT_TRUE(controls().AddTabTool(Window(), kTabs, 0, "the first"));
    EXPECT_FALSE(controls().AddTabTool(Window(), kTabs, 1, "none"));
    EXPECT_EQ(TipOf(kButton), "tip of 105 <>\n&");
    EXPECT_TRUE(controls().EnableToolTips(Window()));
    EXPECT_EQ(TipOf(kCheck), "tip of 108 <>\n&");
  });
}

IN_WINDOW(WindowsUiTest, ADropListThatIsUnfoldedTellsOnlyWhatIsChosen) {
  controls().ComboSetCurSel(Window(), kDropList, 0);
  controls().SetControlFocus(Window(), kDropList);
  ui::Ask(Handle(kDropList), CB_SHOWDROPDOWN, TRUE);
  Key(key::kDown);
  EXPECT_TRUE(recorder.LinesOf(kDropList).empty()) << "it is only looked at";
  Key(key::kReturn);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"114 selection changed 1"}));
  ui::Ask(Handle(kDropList), CB_SHOWDROPDOWN, TRUE);
  Key(key::kReturn);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"114 selection changed 1"})) << "chosen again";
}

IN_WINDOW(WindowsUiTest, ASliderTellsEachOfThePersonsMovesOnce) {
  controls().SliderSetRange(Window(), kSlider, 0, 50);
  controls().SliderSetPos(Window(), kSlider, 25);
  controls().SetControlFocus(Window(), kSlider);
  Key(key::kRight);
  Key(key::kLeft);
  EXPECT_EQ(recorder.LinesOf(kSlider), (Lines{"119 scrolled 26", "119 scrolled 25"}));
}

IN_WINDOW(WindowsUiTest, TheWheelTurnsADropListOnlyWhereItHasTheFocus) {
  const auto turn = [&] {
    ui::Ask(Handle(kDropList), WM_MOUSEWHEEL, MAKEWPARAM(0, -WHEEL_DELTA), 0);
    Settle();
    return controls().ComboGetCurSel(Window(), kDropList);
  };
  controls().ComboSetCurSel(Window(), kDropList, 0);
  controls().SetControlFocus(Window(), kNameEdit);
  EXPECT_EQ(turn(), 0);
  EXPECT_TRUE(recorder.lines.empty());
  controls().SetControlFocus(Window(), kDropList);
  EXPECT_EQ(turn(), 1);
  EXPECT_EQ(recorder.LinesOf(kDropList), (Lines{"114 selection changed 1"}));
}

IN_WINDOW(WindowsUiTest, ATextToReadIsntSelectedByTheFocus) {
  Key(key::kTab);
  controls().SetControlFocus(Window(), kArea);
  DWORD start = 9;
  DWORD end = 9;
  ui::Ask(Handle(kArea), EM_GETSEL, &start, &end);
  EXPECT_EQ(start, end);
}

IN_WINDOW(WindowsUiTest, ALabelShowsADoubledMarkAndKeepsTheText) {
  controls().SetDlgItemTextA(Window(), kNameLabel, "Tom & Jerry");
  wchar_t shown[64] = {};
  GetWindowTextW(Handle(kNameLabel), shown, 64);
  EXPECT_EQ(std::wstring(shown), L"Tom && Jerry");
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kNameLabel), "Tom & Jerry");
}

IN_WINDOW(WindowsUiTest, TheTaskBarThatComesBackGetsTheIconAnew) {
  NOTIFYICONDATA data;
  data.hWnd = Window();
  data.hIcon = desktop().LoadIconA(128);
  data.uFlags = NIF_ICON;
  EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_ADD, data));
  ui::Ask(SystemWindow(Window()), RegisterWindowMessageW(L"TaskbarCreated"));
  EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_DELETE, data));
}

TEST_F(WindowsUiTest, TheEndOfTheSessionClosesTheFirstWindowAndWhatIsInFrontOfIt) {
  Lines order;
  recorder.onClose = [&] {
    order.push_back("close");
    desktop().EndDialog(recorder.window, IDCANCEL);
  };
  Recorder inner;
  Run([&] {
    Later([&] {
      ui::Ask(SystemWindow(Window()), WM_ENDSESSION, TRUE);
      order.push_back(recorder.destroyed ? "done" : "not yet");
    });
    EXPECT_EQ(desktop().RunDialog(kOneButton, Window(), inner), IDCANCEL);
  });
  EXPECT_EQ(order, (Lines{"close", "done"}));
}

}  // namespace
}  // namespace platform
