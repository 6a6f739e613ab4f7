// photograph DIALOG_NUMBER FILE.png [--size WxH] [--font POINTS] [--dark] [--page N]
//
// Shows a dialog of the program's with no behaviour behind it, and saves what is seen: for looking
// at a table without running the program. A page is one of the tabs, by its number.
#include <QApplication>
#include <QColor>
#include <QPalette>
#include <QTimer>
#include <QWidget>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "app/platform/platform.h"
#include "app/platform/qt/qt_platform.h"
#include "app/platform/qt/text.h"
#include "app/resources/resources.h"

namespace {

using platform::ControlKind;
using platform::ControlTemplate;
using platform::DialogTemplate;
using platform::WindowHandle;

struct Options {
  std::uint32_t dialog = 0;
  std::string file;
  int width = 0;
  int height = 0;
  double font = 0;
  bool dark = false;
  int page = 0;
};

bool Inside(const ControlTemplate& control, const ControlTemplate& frame) {
  return control.x >= frame.x && control.y >= frame.y &&
         control.x + control.width <= frame.x + frame.width &&
         control.y + control.height <= frame.y + frame.height;
}

// Fills what would be empty, shows the page, takes the picture and ends.
class Photographer : public platform::WindowListener {
 public:
  Photographer(platform::qt::QtPlatform& qt, const DialogTemplate& dialog, const Options& options)
      : qt(qt), dialog(dialog), options(options) {}

  bool saved = false;

  void OnInitDialog(WindowHandle handle) override {
    window = handle;
    for (const ControlTemplate& control : dialog.controls) Fill(control);
    ShowPage();
    if (options.width > 0) {
      platform::MoveWindow(window, {0, 0, options.width, options.height});
    }
    QTimer::singleShot(300, &context, [this] {
      QWidget* const widget = qt.Desktop().Windows().Find(window);
      saved = widget->grab().save(QString::fromStdString(options.file));
      platform::EndDialog(window, platform::IDOK);
    });
  }
  void OnNotice(std::uint32_t, platform::Notice, std::int32_t) override {}
  void OnClose() override { platform::EndDialog(window, platform::IDCANCEL); }
  void OnMessage(std::uint32_t, std::uintptr_t, std::intptr_t) override {}
  void OnTimer(std::uint32_t) override {}
  void OnSize(std::uint32_t, std::int32_t, std::int32_t) override {}
  void OnMove(std::int32_t, std::int32_t) override {}
  void OnGetMinMaxInfo(platform::MinMaxInfo*) override {}
  void OnPaint(platform::Canvas&) override {}
  std::int32_t OnNcHitTest(platform::Point) override { return platform::HTCLIENT; }
  void OnDrawItem(const platform::DrawItem& item, platform::Canvas& canvas) override {
    canvas.FillRect(item.rect, platform::GetSysColor(platform::COLOR_3DFACE));
    canvas.FrameRect(item.rect, platform::GetSysColor(platform::COLOR_3DSHADOW));
    const QString text = platform::qt::WithoutMnemonic(
        platform::qt::Shown(platform::GetDlgItemTextA(window, item.id)));
    canvas.TextInRect(item.rect, platform::qt::Bytes(text),
                      platform::GetSysColor(platform::COLOR_BTNTEXT),
                      platform::DT_CENTER | platform::DT_VCENTER);
  }
  std::string OnToolTip(std::uint32_t) override { return {}; }
  void OnDestroy() override {}

 private:
  void Fill(const ControlTemplate& control) {
    using namespace kelvaro::resources;
    switch (control.kind) {
      case ControlKind::DropList:
        if (control.rows.empty()) platform::ComboAddString(window, control.id, "A row of the list");
        platform::ComboSetCurSel(window, control.id, 0);
        break;
      case ControlKind::ListView:
        platform::ListInsertColumn(window, control.id, "Trigger", 100);
        platform::ListInsertColumn(window, control.id, "Action", 50);
        platform::ListInsertColumn(window, control.id, "Description", 150);
        for (int row = 0; row < 3; ++row) {
          platform::ListInsertItem(window, control.id, 0);
          platform::ListSetItemText(window, control.id, row, 0, "B" + std::to_string(row + 1));
          platform::ListSetItemText(window, control.id, row, 1, "a");
          platform::ListSetItemText(window, control.id, row, 2, "A Control of the list");
        }
        platform::ListSelectItem(window, control.id, 1, true);
        break;
      case ControlKind::TabControl:
        for (const char* tab : {"Control", "Mouse", "Device", "Settings"}) {
          platform::TabInsertItem(window, control.id, tab);
        }
        platform::TabSetCurSel(window, control.id, options.page);
        break;
      case ControlKind::Slider:
        platform::SliderSetRange(window, control.id, 0, 50);
        platform::SliderSetTicFreq(window, control.id, 5);
        platform::SliderSetPos(window, control.id, 25);
        break;
      case ControlKind::Picture:
        platform::SetPicture(window, control.id, platform::LoadBitmapA(kBannerBitmap));
        break;
      case ControlKind::PictureButton:
        platform::SetPicture(
            window, control.id,
            platform::LoadBitmapA(++pictureButtons == 1 ? kUpBitmap : kDownBitmap));
        break;
      default:
        break;
    }
  }

  // The boxes that nobody sees stand for the pages, in their order; a page is what stands in the
  // table from its box to the next one, inside of it.
  void ShowPage() {
    const ControlTemplate* box = nullptr;
    int page = -1;
    for (const ControlTemplate& control : dialog.controls) {
      if (control.kind == ControlKind::Box) {
        box = &control;
        ++page;
      }
      if (!box || (control.style & platform::kStyleHidden) || !Inside(control, *box)) continue;
      platform::ShowControl(window, control.id,
                            page == options.page ? platform::SW_SHOW : platform::SW_HIDE);
    }
  }

  platform::qt::QtPlatform& qt;
  const DialogTemplate& dialog;
  const Options& options;
  WindowHandle window = platform::kNoWindow;
  int pictureButtons = 0;
  QObject context;
};

QPalette DarkPalette() {
  QPalette palette(QColor(0x2d, 0x2d, 0x30), QColor(0x2d, 0x2d, 0x30));
  palette.setColor(QPalette::Base, QColor(0x1e, 0x1e, 0x1e));
  palette.setColor(QPalette::AlternateBase, QColor(0x25, 0x25, 0x26));
  palette.setColor(QPalette::Highlight, QColor(0x26, 0x6f, 0xb5));
  return palette;
}

bool Read(const std::vector<std::string>& words, Options* options) {
  if (words.size() < 2) return false;
  options->dialog = static_cast<std::uint32_t>(std::atoi(words[0].c_str()));
  options->file = words[1];
  for (std::size_t i = 2; i < words.size(); ++i) {
    const std::string& name = words[i];
    const char* const value = i + 1 < words.size() ? words[i + 1].c_str() : nullptr;
    if (name == "--dark") {
      options->dark = true;
      continue;
    }
    if (!value) return false;
    ++i;
    if (name == "--font") {
      options->font = std::atof(value);
    } else if (name == "--page") {
      options->page = std::atoi(value);
    } else if (name != "--size" ||
               std::sscanf(value, "%dx%d", &options->width, &options->height) != 2) {
      return false;
    }
  }
  return true;
}

const DialogTemplate* FindDialog(std::uint32_t id) {
  for (const DialogTemplate* dialog : kelvaro::resources::Dialogs()) {
    if (dialog->id == id) return dialog;
  }
  return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  const DialogTemplate* dialog = nullptr;
  if (Read(std::vector<std::string>(argv + 1, argv + argc), &options)) {
    dialog = FindDialog(options.dialog);
  }
  if (!dialog) {
    std::fputs(
        "usage: photograph DIALOG_NUMBER FILE.png [--size WxH] [--font POINTS] [--dark] "
        "[--page N]\n",
        stderr);
    return 2;
  }
  QApplication application(argc, argv);
  if (options.dark) QApplication::setPalette(DarkPalette());
  if (options.font > 0) {
    QFont font = QApplication::font();
    font.setPointSizeF(options.font);
    QApplication::setFont(font);
  }
  platform::qt::QtPlatform qt;
  platform::Platform groups;
  groups.desktop = &qt.Desktop();
  groups.controls = &qt.Controls();
  groups.shell = &qt.Shell();
  const platform::InstalledPlatform installed(groups);
  Photographer photographer(qt, *dialog, options);
  qt.Desktop().RunDialog(*dialog, platform::kNoWindow, photographer);
  return photographer.saved ? 0 : 1;
}
