// photographs FOLDER
//
// Takes the pictures of docs/screenshots/, which the README and the manual show: drives the real
// dialogs off the screen, with a recorded pad and the profile of stage.cc, and writes a PNG of each
// into the folder. scripts/pictures runs it and makes them small.
//
// The notification icon's menu is the one that Qt draws; a desktop may draw it in its own way.
#include <QApplication>
#include <QDir>
#include <QImage>
#include <QImageWriter>
#include <QPainter>
#include <QProcess>
#include <QTest>
#include <QTimer>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "app/resources/control_ids.h"
#include "app/window/main_window.h"
#include "engine/mouse_emulation.h"
#include "rendlink/desktop_entries.h"
#include "rendlink/rendlink_dialog.h"
#include "rendlink/resources.h"
#include "tests/engine/axes.h"
#include "tests/program/looks/hands.h"
#include "tests/program/looks/stage.h"

namespace {

using namespace kelvaro::main_window;

using namespace kelvaro::looks;

QDir folder;
int missing = 0;

void Save(const QImage& image, const char* name) {
  QImageWriter writer(folder.filePath(QString::fromLatin1(name) + QStringLiteral(".png")), "png");
  writer.setCompression(100);
  if (writer.write(image)) return;
  std::fprintf(stderr, "photographs: %s: %s\n", name, qPrintable(writer.errorString()));
  ++missing;
}

void Photograph(QWidget& window, const char* name) {
  Stage::Settle();
  Save(window.grab().toImage().convertToFormat(QImage::Format_RGB888), name);
}

void Tabs(const char* const (&names)[4]) {
  Stage stage;
  stage.Open(kelvaro::main_window::kDialog, [&](DialogWindow& window) {
    for (int tab = 0; tab < 4; ++tab) {
      if (!names[tab]) continue;
      ShowTab(window, tab);
      if (tab == 0) {
        FitColumns(window);
        SelectRow(window, 4);
      }
      Photograph(window, names[tab]);
    }
  });
}

void ManyControls() {
  Stage stage;
  Stage::AddControls(190);
  stage.Open(kelvaro::main_window::kDialog, [](DialogWindow& window) {
    window.resize(window.width() + 120, window.height() + 160);
    FitColumns(window);
    Photograph(window, "list-of-200");
  });
}

void DefineControl() {
  Stage stage;
  stage.Open(kelvaro::main_window::kDialog, [&](DialogWindow& window) {
    const auto edit = [&](int row, const std::function<void(QWidget&)>& act) {
      SelectRow(window, row);
      stage.WhenUp("Define Control", act);
      Click(window, kEditControl);
    };
    edit(6, [](QWidget& dialog) { Photograph(dialog, "define-control"); });
    edit(7, [](QWidget& dialog) {
      Click(dialog, kelvaro::define_control::kRepeatCheck);
      Photograph(dialog, "define-control-repeat");
    });
    edit(6, [](QWidget& dialog) {
      Click(dialog, kelvaro::define_control::kHoldAllKeys);
      Photograph(dialog, "define-control-hold-all");
    });
    edit(4, [&](QWidget& dialog) {
      Click(dialog, kelvaro::define_control::kDetectTrigger);
      stage.Pad().MoveAxis("Axis_Y0", -32000);
      stage.Pad().Press({1, 3});
      Stage::Settle(200);
      Photograph(dialog, "define-control-detect");
      stage.Pad().Press({});
      stage.Pad().MoveAxis("Axis_Y0", 0);
      Stage::Settle(200);
    });
    edit(8, [&](QWidget& dialog) {
      Type(dialog, kelvaro::define_control::kKeysText, "<F5><Paus:200>y");
      stage.WhenUp("Key Parsing Error", [](QWidget& box) { Photograph(box, "key-parsing-error"); });
      Click(dialog, 1);
      dialog.activateWindow();
      Photograph(dialog, "define-control-after-error");
    });
    edit(4, [&](QWidget& dialog) {
      Type(dialog, kelvaro::define_control::kKeysText, "Hello");
      stage.WhenUp("Shift Key Required",
                   [](QWidget& question) { Photograph(question, "shift-key-required"); });
      Click(dialog, 1);
    });
  });
}

void SmallDialogs() {
  Stage stage;
  stage.Open(kelvaro::welcome::kDialog,
             [](DialogWindow& window) { Photograph(window, "welcome"); });
  stage.Open(kelvaro::main_window::kDialog, [&](DialogWindow& window) {
    stage.WhenUp("New Profile", [](QWidget& dialog) {
      Type(dialog, kelvaro::profile_name::kName, "Space Trader");
      Photograph(dialog, "new-profile");
    });
    Click(window, kNewProfile);
    stage.WhenUp("Delete Profile", [](QWidget& dialog) { Photograph(dialog, "delete-profile"); });
    Click(window, kDeleteProfile);
    stage.WhenUp("Rename Profile", [](QWidget& dialog) { Photograph(dialog, "rename-profile"); });
    Click(window, kRenameProfile);
    ShowTab(window, 3);
    stage.WhenUp("Advanced Settings",
                 [](QWidget& dialog) { Photograph(dialog, "advanced-settings"); });
    Click(window, kAdvanced);
    ShowTab(window, 1);
    stage.WhenUp("Auto-Detect Mode",
                 [](QWidget& dialog) { Photograph(dialog, "auto-detect-mode"); });
    Click(window, kDetectMouseX);
  });
}

void NotificationMenu() {
  Stage stage;
  stage.Open(kelvaro::main_window::kDialog, [](DialogWindow& window) {
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [&look] {
      QWidget* const menu = QApplication::activePopupWidget();
      if (!menu) return;
      look.stop();
      Photograph(*menu, "notification-menu");
      menu->close();
    });
    look.start(10);
    platform::desktop().PostMessageA(window.Handle(), kelvaro::WM_TRAY_CALLBACK, 0,
                                     platform::WM_RBUTTONDOWN);
    Stage::Settle(1000);
  });
}

class RendlinkSession final : public kelvaro::rendlink::Session,
                              private kelvaro::rendlink::EntrySystem {
 public:
  std::string DesktopFolder() override { return "/home/player/Desktop"; }
  std::string MenuFolder() override { return "/home/player/applications"; }
  std::string FullPath(const std::string& typed) override { return typed; }
  kelvaro::rendlink::LauncherKind& Launchers() override { return entries; }
  std::vector<std::string> ApplicationsFolders() override { return {MenuFolder()}; }
  bool AllowStart(const std::string&) override { return true; }

 private:
  kelvaro::rendlink::DesktopEntries entries{*this};
};

void Rendlink() {
  Stage stage;
  stage.Disk().SetProgramPath("/game/rendlink");
  stage.Disk().PutFile("/game/kelvaro", "program");
  stage.Disk().PutFile("/games/hill/hill-racer", "game");
  RendlinkSession session;
  const auto run = [&] { kelvaro::rendlink::RendlinkDialog(session).DoModal(platform::kNoWindow); };
  stage.OpenWith(run, [](DialogWindow& window) {
    Type(window, kelvaro::rendlink::kTarget, "/games/hill/hill-racer");
    Type(window, kelvaro::rendlink::kArguments, "--fullscreen");
    Photograph(window, "rendlink");
  });
}

// How far the pointer goes at each look, drawn by the program's own formula.
class CurvePicture {
 public:
  CurvePicture() : image(660, 400, QImage::Format_RGB32) {
    image.fill(Qt::white);
    painter.begin(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int counts = 0; counts <= kMostCounts; counts += 2) {
      Grid(At(0, counts), At(100, counts));
      painter.drawText(QRectF(0, At(0, counts).y() - 10, kLeft - 8, 20),
                       Qt::AlignRight | Qt::AlignVCenter, QString::number(counts));
    }
    for (int percent = 0; percent <= 100; percent += 10) {
      Grid(At(percent, 0), At(percent, kMostCounts));
      painter.drawText(QRectF(At(percent, 0).x() - 30, At(0, 0).y() + 6, 60, 20), Qt::AlignHCenter,
                       QStringLiteral("%1 %").arg(percent));
    }
    painter.drawText(QRectF(kLeft, image.height() - 28, kWidth, 20), Qt::AlignHCenter,
                     QStringLiteral("How far the stick is pushed (Movement Axis Damper 5 %)"));
    painter.drawText(QPointF(10, 20), QStringLiteral("Counts of the pointer at each look"));
  }

  void Draw(int sensitivity, const QColor& colour) {
    const kelvaro::MouseCurve curve =
        kelvaro::MakeMouseCurve(kelvaro::kAxisMax, kelvaro::MouseDeadZone(5, kelvaro::kAxisMax),
                                sensitivity + kFactorAtZero);
    QPolygonF line;
    for (int permille = 0; permille <= 1000; ++permille) {
      platform::DIJOYSTATE2 state;
      state.lX = permille * (kelvaro::kAxisMax / 1000);
      const double counts = kelvaro::NextAccumulated(
          kelvaro::MouseInput(kelvaro::input_kind::kAxisX), state, curve, 0.0);
      line << At(permille / 10.0, counts);
    }
    painter.setPen(QPen(colour, 2.5));
    painter.drawPolyline(line);
    painter.drawText(QPointF(kLeft + kWidth + 8, line.last().y() + 5),
                     QStringLiteral("Sensitivity %1").arg(sensitivity));
    painter.setPen(Qt::black);
  }

  QImage Finished() {
    painter.end();
    return image.convertToFormat(QImage::Format_RGB888);
  }

 private:
  static constexpr int kLeft = 40, kTop = 34, kWidth = 500, kHeight = 310, kMostCounts = 12;
  static constexpr int kFactorAtZero = 2;  // as ControlEngine::ApplyMouseSlider has it

  static QPointF At(double percent, double counts) {
    return {kLeft + percent / 100 * kWidth, kTop + kHeight - counts / kMostCounts * kHeight};
  }
  void Grid(const QPointF& from, const QPointF& to) {
    painter.setPen(QColor(0xdd, 0xdd, 0xdd));
    painter.drawLine(from, to);
    painter.setPen(Qt::black);
  }

  QImage image;
  QPainter painter;
};

void MouseCurves() {
  CurvePicture picture;
  picture.Draw(3, QColor(0x1b, 0x7f, 0x3b));
  picture.Draw(15, QColor(0x1f, 0x5f, 0xbf));
  picture.Draw(30, QColor(0x8a, 0x3f, 0xa8));
  picture.Draw(50, QColor(0xc0, 0x39, 0x2b));
  Save(picture.Finished(), "mouse-curve");
}

// The scale is the display's, which is there before the application.
void Large(char* program) {
  QProcess large;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("2"));
  large.setProcessEnvironment(environment);
  large.setProcessChannelMode(QProcess::ForwardedChannels);
  large.start(QString::fromLocal8Bit(program), {folder.path(), QStringLiteral("--large")});
  if (!large.waitForFinished() || large.exitCode() != 0) ++missing;
}

}  // namespace

int main(int argc, char** argv) {
  const bool isLarge = argc == 3 && std::string(argv[2]) == "--large";
  if (argc != 2 && !isLarge) {
    std::fputs("usage: photographs FOLDER\n", stderr);
    return 2;
  }
  QApplication application(argc, argv);
  QApplication::setCursorFlashTime(0);
  QApplication::setPalette(LightPalette());
  folder.setPath(QString::fromLocal8Bit(argv[1]));
  if (!folder.mkpath(QStringLiteral("."))) {
    std::fprintf(stderr, "photographs: no folder %s\n", argv[1]);
    return 1;
  }
  if (isLarge) {
    Tabs({nullptr, "mouse-192dpi", nullptr, nullptr});
    return missing == 0 ? 0 : 1;
  }
  Tabs({"control", "mouse", "device", "settings"});
  ManyControls();
  DefineControl();
  SmallDialogs();
  NotificationMenu();
  Rendlink();
  MouseCurves();
  Large(argv[0]);
  QApplication::setPalette(DarkPalette());
  Tabs({nullptr, nullptr, nullptr, "settings-dark"});
  return missing == 0 ? 0 : 1;
}
