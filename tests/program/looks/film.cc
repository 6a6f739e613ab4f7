// film FOLDER
//
// Takes the moving picture of the README, docs/screenshots/first-control.gif: a Control is made in
// the real window, off the screen, and used. Writes the frames as PNG into the folder, and how long
// each is shown, in hundredths of a second, into "durations", one a line: name and number.
// scripts/pictures runs it and puts them together.
//
// The pad below the window shows what the recorded pad is doing, and the line beside it the keys
// that have really gone out.
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTest>
#include <QTextStream>
#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <mutex>
#include <string>
#include <vector>

#include "app/resources/control_ids.h"
#include "console/event_line.h"
#include "tests/program/looks/hands.h"
#include "tests/program/looks/stage.h"

namespace {

using namespace kelvaro::looks;
using kelvaro::main_window::kNewControl;

// The keys that have gone out, newest last.
class Sent final : public platform::Input {
 public:
  void keybd_event(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags,
                   std::uint32_t) override {
    const std::scoped_lock lock(mutex);
    lines.push_back(
        kelvaro::console::EventWords(platform::simulation::SentKey(0, vk, scan, flags)));
  }
  void mouse_event(std::uint32_t, std::int32_t, std::int32_t, std::int32_t,
                   std::uint32_t) override {}

  std::vector<std::string> Lines() {
    const std::scoped_lock lock(mutex);
    return lines;
  }

 private:
  std::mutex mutex;
  std::vector<std::string> lines;
};

class Film {
 public:
  explicit Film(const QString& path) : folder(path), list(folder.filePath("durations")) {
    folder.mkpath(".");
    works = list.open(QIODevice::WriteOnly | QIODevice::Text);
  }

  void Say(const char* words) { caption = QString::fromUtf8(words); }
  void Hold(std::initializer_list<std::uint32_t> buttons) {
    held = buttons;
    stage.Pad().Press(buttons);
    Stage::Settle(200);
  }

  // What is seen now, for so long.
  void Take(int hundredths) {
    Stage::Settle();
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    image.fill(QColor(0x3b, 0x47, 0x54));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    PaintCaption(painter);
    PaintWindow(painter, *main, QPoint(kMargin, kTop));
    if (dialog) PaintWindow(painter, *dialog, QPoint(kMargin + 60, kTop + 30));
    PaintPad(painter);
    PaintKeys(painter);
    painter.end();
    const QString name = QStringLiteral("frame%1.png").arg(++count, 3, 10, QLatin1Char('0'));
    works = works && image.save(folder.filePath(name));
    QTextStream(&list) << name << ' ' << hundredths << '\n';
  }

  bool Make();

 private:
  static constexpr int kWidth = 740, kHeight = 712, kMargin = 20, kTop = 56, kBar = 24,
                       kStrip = 596;

  void PaintCaption(QPainter& painter) {
    QFont font = painter.font();
    font.setPixelSize(20);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(QRect(kMargin, 0, kWidth - 2 * kMargin, kTop - 6), Qt::AlignVCenter, caption);
  }

  static void PaintWindow(QPainter& painter, QWidget& window, QPoint at) {
    const QRect bar(at, QSize(window.width(), kBar));
    painter.fillRect(bar.adjusted(-1, -1, 1, window.height() + 1), QColor(0x20, 0x28, 0x30));
    painter.fillRect(bar, QColor(0x1f, 0x7a, 0x74));
    QFont font = painter.font();
    font.setPixelSize(14);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(bar, Qt::AlignCenter, window.windowTitle());
    painter.drawPixmap(at + QPoint(0, kBar), window.grab());
  }

  void PaintPad(QPainter& painter) const {
    QFont font = painter.font();
    font.setPixelSize(15);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(QPoint(kMargin, kStrip + 20), QStringLiteral("The pad"));
    for (int button = 1; button <= 10; ++button) {
      const bool down = std::ranges::find(held, static_cast<std::uint32_t>(button)) != held.end();
      const QRect place(kMargin + (button - 1) % 5 * 42, kStrip + 32 + (button - 1) / 5 * 38, 32,
                        32);
      painter.setBrush(down ? QColor(0xff, 0xc1, 0x45) : QColor(0x55, 0x63, 0x72));
      painter.setPen(Qt::NoPen);
      painter.drawEllipse(place);
      painter.setPen(down ? Qt::black : Qt::white);
      painter.drawText(place, Qt::AlignCenter, QString::number(button));
    }
  }

  void PaintKeys(QPainter& painter) {
    painter.setPen(Qt::white);
    const int left = kMargin + 250;
    painter.drawText(QPoint(left, kStrip + 20), QStringLiteral("The game gets"));
    const QRect box(left, kStrip + 32, kWidth - left - kMargin, 70);
    painter.fillRect(box, QColor(0x20, 0x28, 0x30));
    painter.setPen(QColor(0xff, 0xe0, 0xa3));
    QString text;
    const std::vector<std::string> lines = sent.Lines();
    const std::size_t first = lines.size() > 6 ? lines.size() - 6 : 0;
    for (std::size_t i = first; i < lines.size(); ++i)
      text += QString::fromStdString(lines[i]) +
              (i % 2 ? QStringLiteral("\n") : QStringLiteral("    "));
    painter.drawText(box.adjusted(10, 6, -10, -6), Qt::AlignLeft | Qt::AlignTop, text);
  }

  void TypeSlowly(std::uint32_t field, const std::string& text) {
    Type(*dialog, field, "");
    for (const char key : text) {
      QTest::keyClick(Widget(*dialog, field), key);
      Take(9);
    }
  }
  void Define(QWidget& window);
  void Play();

  Sent sent;
  Stage stage{&sent};
  QDir folder;
  QFile list;
  bool works = false;
  int count = 0;
  QString caption;
  std::vector<std::uint32_t> held;
  DialogWindow* main = nullptr;
  QWidget* dialog = nullptr;
};

void Film::Define(QWidget& window) {
  using namespace kelvaro::define_control;
  dialog = &window;
  Say("New... makes a Control. Give it a name,");
  Take(80);
  TypeSlowly(kDescriptionText, "Open the map");
  Take(60);
  Say("check \"Detect\", hold the button that you want,");
  Click(window, kDetectTrigger);
  Take(70);
  Hold({5});
  Take(120);
  Say("press the space bar, and let go.");
  QTest::keyClick(Widget(window, kDetectTrigger), Qt::Key_Space);
  Take(70);
  Hold({});
  Take(60);
  Say("Type the keys, and press OK.");
  TypeSlowly(kKeysText, "<Ctrl>m");
  Take(90);
  Click(window, platform::IDOK);
  dialog = nullptr;
}

void Film::Play() {
  Say("It works at once: press the button");
  Take(100);
  using Buttons = std::initializer_list<std::uint32_t>;
  for (const Buttons& buttons : {Buttons{5}, Buttons{1}, Buttons{1, 2}}) {
    Hold(buttons);
    Take(90);
    Hold({});
    Take(60);
    Say("and play.");
  }
}

bool Film::Make() {
  const bool cameUp = stage.Open(kelvaro::main_window::kDialog, [&](DialogWindow& window) {
    main = &window;
    FitColumns(window);
    Say("A profile says what the buttons of your pad do.");
    Take(200);
    stage.WhenUp("Define Control", [&](QWidget& define) { Define(define); });
    Click(window, kNewControl);
    Play();
    Take(150);
  });
  return cameUp && works && list.flush();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: film FOLDER\n", stderr);
    return 2;
  }
  QApplication application(argc, argv);
  QApplication::setCursorFlashTime(0);
  QApplication::setPalette(LightPalette());
  if (Film(QString::fromLocal8Bit(argv[1])).Make()) return 0;
  std::fputs("film: the pictures can't be taken\n", stderr);
  return 1;
}
