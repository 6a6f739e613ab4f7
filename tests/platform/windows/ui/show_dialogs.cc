// Shows a dialog of the program by its number, so that it can be photographed, with a row or two in
// its lists: show_dialogs NUMBER [TAB]. Ends with its window.
#include <cstdio>
#include <cstdlib>

#include "app/layout/dialog.h"
#include "app/platform/windows/ui/windows_ui.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"

namespace kelvaro {
namespace {

class Shown final : public Dialog {
 public:
  Shown(const platform::DialogTemplate& table, int tab) : Dialog(table), table(table), tab(tab) {}

 protected:
  void OnInit() override {
    using platform::ControlKind;
    std::uint32_t page = 0;
    int pages = -1;
    for (const platform::ControlTemplate& row : table.controls) {
      if (row.kind == ControlKind::TabControl) FillTabs(row.id);
      if (row.kind == ControlKind::ListView) FillList(row.id);
      if (row.kind == ControlKind::DropList) FillDropList(row.id);
      if (row.kind == ControlKind::Picture)
        platform::controls().SetPicture(window, row.id,
                                        platform::desktop().LoadBitmapA(resources::kBannerBitmap));
      if (row.kind == ControlKind::Slider) {
        platform::controls().SliderSetRange(window, row.id, 0, 50);
        platform::controls().SliderSetTicFreq(window, row.id, 5);
        platform::controls().SliderSetPos(window, row.id, 25);
      }
      if (row.kind == ControlKind::Box) {
        page = row.id;
        ++pages;
      }
      if (page != 0 && pages != tab) platform::controls().ShowControl(window, row.id, SW_HIDE);
    }
    const platform::IconHandle icon = platform::desktop().LoadIconA(resources::kIcon);
    platform::desktop().SetWindowIcon(window, icon, true);
    platform::desktop().SetWindowIcon(window, icon, false);
    platform::controls().SetPicture(window, main_window::kMoveUp,
                                    platform::desktop().LoadBitmapA(resources::kUpBitmap));
    platform::controls().SetPicture(window, main_window::kMoveDown,
                                    platform::desktop().LoadBitmapA(resources::kDownBitmap));
    platform::desktop().SetTimer(window, 1, 300);
  }
  void OnTimer(std::uint32_t id) override {
    platform::desktop().KillTimer(window, id);
    std::puts("READY");
    std::fflush(stdout);
  }
  void OnPaint(platform::Canvas& canvas) override {
    platform::Rect inside;
    platform::desktop().GetClientRect(window, &inside);
    if (table.style & platform::kWindowResizable)
      canvas.DrawSizeGrip({inside.right - 17, inside.bottom - 17, inside.right, inside.bottom});
  }
  void OnDrawItem(const platform::DrawItem& item, platform::Canvas& canvas) override {
    canvas.FillRect(item.rect, platform::desktop().GetSysColor(COLOR_3DFACE));
    canvas.Draw3dRect(item.rect, platform::Rgb(255, 255, 255), platform::Rgb(0, 0, 0));
    canvas.TextInRect(item.rect, "Test", 0, DT_CENTER | DT_VCENTER);
    if (item.focused) canvas.DrawFocusRect(item.rect);
  }

 private:
  void FillTabs(std::uint32_t id) {
    for (const char* name : {"Control", "Mouse", "Device", "Settings"})
      platform::controls().TabInsertItem(window, id, name);
    platform::controls().TabSetCurSel(window, id, tab);
  }
  void FillList(std::uint32_t id) {
    platform::controls().ListInsertColumn(window, id, "Trigger", 120);
    platform::controls().ListInsertColumn(window, id, "Action", 120);
    platform::controls().ListInsertColumn(window, id, "Description", 200);
    for (int row = 0; row < 3; ++row) {
      platform::controls().ListInsertItem(window, id, 0);
      platform::controls().ListSetItemText(window, id, row, 0, "B" + std::to_string(row));
      platform::controls().ListSetItemText(window, id, row, 1, "<Ctrl>\xC3\xBC");
      platform::controls().ListSetItemText(window, id, row, 2, "jump & run");
    }
    platform::controls().ListSelectItem(window, id, 1, true);
  }
  void FillDropList(std::uint32_t id) {
    if (platform::controls().ComboGetCount(window, id) == 0)
      platform::controls().ComboAddString(window, id, "A profile");
    platform::controls().ComboSetCurSel(window, id, 0);
  }

  const platform::DialogTemplate& table;
  const int tab;
};

int Show(std::uint32_t number, int tab) {
  platform::ui::WindowsUi ui;
  platform::Platform groups;
  ui.AddTo(&groups);
  const platform::InstalledPlatform installed(groups);
  for (const platform::DialogTemplate* table : resources::Dialogs())
    if (table->id == number) return Shown(*table, tab).DoModal(platform::kNoWindow);
  return 1;
}

}  // namespace
}  // namespace kelvaro

int main(int argc, char** argv) {
  return kelvaro::Show(argc > 1 ? static_cast<std::uint32_t>(std::atoi(argv[1])) : 102,
                       argc > 2 ? std::atoi(argv[2]) : 0);
}
