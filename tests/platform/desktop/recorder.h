// What happens to a window, written down, and a dialog that has a control of each kind.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "app/platform/desktop.h"

namespace platform {

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

}  // namespace platform
