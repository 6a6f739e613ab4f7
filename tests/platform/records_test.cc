// What a record says that nobody has filled: of the published ones as if cleared by its caller, and
// of the others that nothing is there.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

#include "app/platform/desktop.h"
#include "app/platform/direct_input.h"
#include "app/platform/files.h"
#include "app/platform/processes.h"
#include "app/platform/registry_parts.h"
#include "app/platform/timers.h"

namespace platform {
namespace {

// As 32-bit numbers.
template <class Record>
std::vector<std::uint32_t> NumbersOf(const Record& record) {
  std::vector<std::uint32_t> numbers(sizeof record / 4);
  static_assert(sizeof record % 4 == 0);
  std::memcpy(numbers.data(), &record, sizeof record);
  return numbers;
}

TEST(Records, OfDevicesBeginClearedWithTheirSizesInFront) {
  EXPECT_EQ(NumbersOf(GUID{}), std::vector<std::uint32_t>(4));
  EXPECT_EQ(NumbersOf(DIJOYSTATE2{}), std::vector<std::uint32_t>(68));
  std::vector<std::uint32_t> capabilities(11);
  capabilities[0] = 44;
  EXPECT_EQ(NumbersOf(DIDEVCAPS{}), capabilities);
  std::vector<std::uint32_t> instance(145);
  instance[0] = 580;
  EXPECT_EQ(NumbersOf(DIDEVICEINSTANCE{}), instance);
  EXPECT_EQ(NumbersOf(DIPROPRANGE{}), (std::vector<std::uint32_t>{24, 16, 0, 0, 0, 0}))
      << "its own size and the header's";
}

TEST(Records, OfWindowsBeginWithNothing) {
  EXPECT_EQ(Point{}, (Point{0, 0}));
  EXPECT_EQ(Rect{}, (Rect{0, 0, 0, 0}));
  const MinMaxInfo limits;
  EXPECT_EQ(limits.minTrackWidth, 0);
  EXPECT_EQ(limits.minTrackHeight, 0);
  EXPECT_EQ(limits.maxTrackWidth, 0);
  EXPECT_EQ(limits.maxTrackHeight, 0);
  const NOTIFYICONDATA icon;
  EXPECT_EQ(icon.cbSize, 88u) << "of the published short form";
  EXPECT_EQ(icon.uID, 0u);
  EXPECT_EQ(icon.uFlags, 0u);
  EXPECT_EQ(icon.uCallbackMessage, 0u);
  EXPECT_EQ(icon.hIcon, 0u);
  const DrawItem item;
  EXPECT_EQ(item.id, 0u);
  EXPECT_FALSE(item.pressed || item.focused || item.disabled || item.focusAction);
  EXPECT_EQ((ControlTemplate{ControlKind::Label, 1, "", 0, 0, 1, 1}).style, 0u);
}

TEST(Records, OfFilesProgramsTimersAndValuesBeginWithNothing) {
  const FindData file;
  EXPECT_EQ(file.attributes, 0u);
  EXPECT_EQ(file.size + file.created + file.accessed + file.written, 0u);
  EXPECT_EQ(RunningProcess().id, 0u);
  EXPECT_EQ(TopLevelWindow().processId, 0u);
  EXPECT_FALSE(TopLevelWindow().visible);
  EXPECT_FALSE(TopLevelWindow().iconic);
  EXPECT_EQ(PROCESS_INFORMATION().dwProcessId, 0u);
  EXPECT_EQ(TIMECAPS().wPeriodMin, 0u);
  EXPECT_EQ(TIMECAPS().wPeriodMax, 0u);
  EXPECT_EQ(StoredValue().type, REG_NONE);
}

TEST(Guid, IsAnotherWhereAnyOfItsPartsIs) {
  const GUID guid{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
  EXPECT_TRUE(guid == (GUID{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}}));
  EXPECT_FALSE(guid != guid);
  const std::function<void(GUID&)> changes[] = {
      [](GUID& other) { ++other.Data1; }, [](GUID& other) { ++other.Data2; },
      [](GUID& other) { ++other.Data3; }, [](GUID& other) { ++other.Data4[0]; },
      [](GUID& other) { ++other.Data4[7]; }};
  for (const auto& change : changes) {
    GUID other = guid;
    change(other);
    EXPECT_FALSE(guid == other);
    EXPECT_TRUE(guid != other);
  }
}

}  // namespace
}  // namespace platform
