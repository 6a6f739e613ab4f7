// A fixture with Qt behind the seam, off the screen, and a dialog that has a control of each kind.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "app/platform/linux/linux_platform.h"
#include "app/platform/platform.h"
#include "app/platform/qt/qt_platform.h"

namespace platform::qt {

// Writes down what happens to a window, one line a call, and lets a test do more at some of them.
class Recorder : public WindowListener {
 public:
  std::vector<std::string> lines;
  std::function<void(WindowHandle)> onInit;
  std::function<void(std::uint32_t id, Notice notice, std::int32_t value)> onNotice;
  std::function<void()> onClose;
  std::function<void(std::uint32_t message)> onMessage;
  std::function<void(std::uint32_t id)> onTimer;
  std::function<void(Canvas&)> onPaint;
  std::function<void(const DrawItem&, Canvas&)> onDraw;
  std::function<std::string(std::uint32_t id)> tip;
  MinMaxInfo limits;
  WindowHandle window = kNoWindow;
  Point place;
  bool destroyed = false;

  std::vector<std::string> TakeLines() { return std::exchange(lines, {}); }
  // Only those of one control.
  std::vector<std::string> LinesOf(std::uint32_t id) const;

  void OnInitDialog(WindowHandle handle) override;
  void OnNotice(std::uint32_t id, Notice notice, std::int32_t value) override;
  void OnClose() override;
  void OnMessage(std::uint32_t message, std::uintptr_t wParam, std::intptr_t lParam) override;
  void OnTimer(std::uint32_t id) override;
  void OnSize(std::uint32_t type, std::int32_t width, std::int32_t height) override;
  void OnMove(std::int32_t x, std::int32_t y) override { place = {x, y}; }
  void OnGetMinMaxInfo(MinMaxInfo* info) override { *info = limits; }
  void OnPaint(Canvas& canvas) override;
  std::int32_t OnNcHitTest(Point) override { return HTCLIENT; }
  void OnDrawItem(const DrawItem& item, Canvas& canvas) override;
  std::string OnToolTip(std::uint32_t id) override { return tip ? tip(id) : std::string(); }
  void OnDestroy() override { destroyed = true; }
};

// Of the dialog.
constexpr std::uint32_t kNameLabel = 100;
constexpr std::uint32_t kNameEdit = 101;
constexpr std::uint32_t kDigitsEdit = 102;
constexpr std::uint32_t kReadOnlyEdit = 103;
constexpr std::uint32_t kArea = 104;
constexpr std::uint32_t kButton = 105;
constexpr std::uint32_t kPictureButton = 106;
constexpr std::uint32_t kDrawnButton = 107;
constexpr std::uint32_t kCheck = 108;
constexpr std::uint32_t kRadioA = 109;
constexpr std::uint32_t kRadioB = 110;
constexpr std::uint32_t kGroup = 111;
constexpr std::uint32_t kRadioC = 112;
constexpr std::uint32_t kRadioD = 113;
constexpr std::uint32_t kDropList = 114;
constexpr std::uint32_t kSortedList = 115;
constexpr std::uint32_t kList = 116;
constexpr std::uint32_t kTabs = 117;
constexpr std::uint32_t kSliderGroup = 118;
constexpr std::uint32_t kSlider = 119;
constexpr std::uint32_t kLink = 120;
constexpr std::uint32_t kPicture = 121;
constexpr std::uint32_t kRule = 122;
constexpr std::uint32_t kBox = 123;
constexpr std::uint32_t kHiddenButton = 124;
constexpr std::uint32_t kSingleList = 125;

extern const DialogTemplate kAllKinds;   // resizable, "Edit" is the default button
extern const DialogTemplate kOneButton;  // fixed, with IDOK as its default

class QtTest : public ::testing::Test {
 protected:
  QtTest();

  // Runs `dialog` with `script` inside of its loop, and ends it with `result` unless the script
  // did.
  std::int32_t Run(const DialogTemplate& dialog, std::function<void()> script,
                   WindowHandle owner = kNoWindow);
  std::int32_t Run(std::function<void()> script) { return Run(kAllKinds, std::move(script)); }

  WindowHandle Window() const { return recorder.window; }
  DialogWindow* Dialog() const;
  QWidget* Widget(std::uint32_t id) const;  // the one that has the focus
  // Handles what is posted.
  static void Settle();

  LinuxPlatform system;
  QtPlatform qt;
  Platform groups;
  InstalledPlatform installed;
  Recorder recorder;
};

// A test whose body runs inside of the loop of kAllKinds.
#define WINDOW_TEST(Fixture, Name)                                                 \
  class Fixture##Name : public Fixture {                                           \
    void TestBody() override {                                                     \
      Run([this] { Body(); });                                                     \
    }                                                                              \
    void Body();                                                                   \
  };                                                                               \
  [[maybe_unused]] const auto* const registered##Fixture##Name =                   \
      testing::RegisterTest(#Fixture, #Name, nullptr, nullptr, __FILE__, __LINE__, \
                            []() -> Fixture* { return new Fixture##Name; });       \
  void Fixture##Name::Body()

// What is seen at a pixel.
QColor PixelOf(QWidget* widget, int x, int y);

}  // namespace platform::qt
