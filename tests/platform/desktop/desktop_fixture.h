// A fixture with a desktop behind the seam and a person before it, for the tests of what every
// desktop does. Each platform's tests link their own desktop_fixture.cc and run the same cases.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "app/platform/platform.h"
#include "recorder.h"

namespace platform {

using Lines = std::vector<std::string>;
using Numbers = std::vector<std::int32_t>;

// Keys by their published virtual numbers.
namespace key {
constexpr std::uint8_t kTab = 0x09;
constexpr std::uint8_t kReturn = 0x0D;
constexpr std::uint8_t kEscape = 0x1B;
constexpr std::uint8_t kSpace = 0x20;
constexpr std::uint8_t kPageUp = 0x21;
constexpr std::uint8_t kPageDown = 0x22;
constexpr std::uint8_t kEnd = 0x23;
constexpr std::uint8_t kLeft = 0x25;
constexpr std::uint8_t kUp = 0x26;
constexpr std::uint8_t kRight = 0x27;
constexpr std::uint8_t kDown = 0x28;
constexpr std::uint8_t kF1 = 0x70;
}  // namespace key

// Held down with a key.
constexpr unsigned kShift = 1;
constexpr unsigned kControl = 2;
constexpr unsigned kAlt = 4;

// A box that is up.
struct SeenBox {
  std::string text;
  std::string caption;
};

class DesktopTest : public ::testing::Test {
 protected:
  DesktopTest();
  ~DesktopTest() override;

  // Runs `dialog` with `script` inside of its loop, and ends it with IDOK unless the script did.
  std::int32_t Run(const DialogTemplate& dialog, std::function<void()> script,
                   WindowHandle owner = kNoWindow);
  std::int32_t Run(std::function<void()> script) { return Run(kAllKinds, std::move(script)); }
  WindowHandle Window() const { return recorder.window; }

  // The person. A click that nobody can make, on what is hidden or disabled, does nothing.
  void Click(std::uint32_t id);
  void ClickAt(std::uint32_t id, Point inside);  // from the control's corner
  void Key(std::uint8_t vk, unsigned held = 0);  // to what has the focus
  void Type(const std::string& ascii);
  void PressCloseBox();
  void PressMinimiseBox();
  void PressMaximiseBox();
  std::optional<SeenBox> Box() const;
  void Answer(std::int32_t button);  // of the box: IDOK, IDYES or IDNO
  bool IsSeen(std::uint32_t id) const;

  // What stands in the lists and the tabs.
  void AddColumns(std::uint32_t id = kList) {
    EXPECT_EQ(controls().ListInsertColumn(Window(), id, "Trigger", 100), 0);
    EXPECT_EQ(controls().ListInsertColumn(Window(), id, "Action", 50), 1);
    EXPECT_EQ(controls().ListInsertColumn(Window(), id, "Description", 150), 2);
  }
  void AddRows(int count, std::uint32_t id = kList) {
    for (int row = 0; row < count; ++row) {
      EXPECT_EQ(controls().ListInsertItem(Window(), id, 1000u + static_cast<unsigned>(row)), row);
    }
  }
  void AddTabs() {
    EXPECT_EQ(controls().TabInsertItem(Window(), kTabs, "One"), 0);
    EXPECT_EQ(controls().TabInsertItem(Window(), kTabs, "Two"), 1);
  }
  // With the focus in an edit before.
  void ClickSecondTab() {
    controls().SetControlFocus(Window(), kNameEdit);
    Rect rect;
    ASSERT_TRUE(controls().TabGetItemRect(Window(), kTabs, 1, &rect));
    ClickAt(kTabs, {rect.left + 4, rect.top + 4});
  }
  // In the notice of a lost focus: a person isn't let go, by a box or by the focus alone.
  void HoldBack(bool byABox) {
    if (byABox) {
      Later([this] { Answer(IDOK); });
      desktop().MessageBoxA(Window(), "Please enter another", "Refused", MB_OK);
    } else {
      controls().SetControlFocus(Window(), kNameEdit);
    }
  }

  // What the recorder writes down of a window that has got this inside.
  static std::string SizeLine(const Rect& inside) {
    return "size 0 " + std::to_string(inside.Width()) + 'x' + std::to_string(inside.Height());
  }

  // Another thread asks in a box, and waits for the answer.
  std::thread Ask(std::uint32_t type) {
    return std::thread(
        [this, type] { answer = desktop().MessageBoxA(Window(), "Launched?", "Game", type); });
  }
  bool ABoxComesUp() {
    return WaitFor([this] { return Box().has_value(); });
  }

  // Once the loop runs that runs next, that of a box too.
  void Later(std::function<void()> act);
  // Handles what is posted.
  void Settle();
  // For at most a minute.
  bool WaitFor(const std::function<bool()>& condition);

  struct Machine;
  std::unique_ptr<Machine> machine;
  Recorder recorder;
  std::atomic<std::int32_t> answer{-1};
};

// A test whose body runs inside of the loop of kAllKinds.
#define IN_WINDOW(Fixture, Name)                                                   \
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

}  // namespace platform
