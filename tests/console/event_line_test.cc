#include "console/event_line.h"

#include <gtest/gtest.h>

#include <sstream>

#include "console/event_printer.h"

namespace kelvaro::console {
namespace {

constexpr auto* Key = &platform::simulation::SentKey;
constexpr auto* Mouse = &platform::simulation::SentMouse;

TEST(JsonEventLine, IsSpelledAsPromised) {
  EXPECT_EQ(JsonEventLine(Key(120, 65, 30, 0)),
            R"({"t":120,"event":"key","vk":65,"scan":30,"flags":0})");
  EXPECT_EQ(JsonEventLine(Key(0, 46, 211, 3)),
            R"({"t":0,"event":"key","vk":46,"scan":211,"flags":3})");
  EXPECT_EQ(JsonEventLine(Mouse(120, 1, 4, 0, 0)),
            R"({"t":120,"event":"mouse","flags":1,"dx":4,"dy":0,"data":0})");
  EXPECT_EQ(JsonEventLine(Mouse(18446744073709551615U, 2049, -2147483647 - 1, 2147483647, -3)),
            R"({"t":18446744073709551615,"event":"mouse","flags":2049,"dx":-2147483648,)"
            R"("dy":2147483647,"data":-3})");
}

TEST(TextEventLine, NamesKeysAsTheKeyLanguageDoes) {
  struct {
    SentEvent event;
    const char* line;
  } const kCases[] = {
      {Key(120, 65, 30, 0), "     120 ms  a down"},
      {Key(120, 65, 30, 2), "     120 ms  a up"},
      {Key(1, 0x20, 0x39, 0), "       1 ms  <Space> down"},
      {Key(1, 0xBC, 0x33, 0), "       1 ms  , down"},
      {Key(1, 0x2E, 0xD3, 1), "       1 ms  <Del> down"},
      {Key(1, 0x2E, 0xD3, 3), "       1 ms  <Del> up"},
      {Key(1, 0x10, 0x2A, 0), "       1 ms  <Shift> down"},
      {Key(1, 0xA0, 0x2A, 2), "       1 ms  <LShift> up"},
      {Key(1, 0xA1, 0x36, 0), "       1 ms  <RShift> down"},
      {Key(1, 0x11, 0x1D, 0), "       1 ms  <Ctrl> down"},
      {Key(1, 0xA2, 0x1D, 0), "       1 ms  <LCtrl> down"},
      {Key(1, 0xA3, 0x9D, 1), "       1 ms  <RCtrl> down"},
      {Key(1, 0x12, 0x38, 0), "       1 ms  <Alt> down"},
      {Key(1, 0xA4, 0x38, 0), "       1 ms  <LAlt> down"},
      {Key(1, 0xA5, 0xB8, 3), "       1 ms  <RAlt> up"},
      {Key(1, 3, 0xE8, 3), "       1 ms  key 3 scan 232 up"},  // the stray one of a pause of 1 s
      {Key(123456789, 65, 30, 0), "123456789 ms  a down"},
  };
  for (const auto& c : kCases) EXPECT_EQ(TextEventLine(c.event), c.line);
}

TEST(TextEventLine, TellsAllThatOneMouseEventDoes) {
  EXPECT_EQ(TextEventLine(Mouse(5, 1, 4, 0, 0)), "       5 ms  pointer +4 0");
  EXPECT_EQ(TextEventLine(Mouse(5, 1, -4, 12, 0)), "       5 ms  pointer -4 +12");
  EXPECT_EQ(TextEventLine(Mouse(5, 0x801, 0, 0, -2)), "       5 ms  wheel -2");
  EXPECT_EQ(TextEventLine(Mouse(5, 0x801, 1, 0, 2)), "       5 ms  pointer +1 0, wheel +2");
  EXPECT_EQ(TextEventLine(Mouse(5, 2, 0, 0, 0)), "       5 ms  left mouse button down");
  EXPECT_EQ(TextEventLine(Mouse(5, 4 | 0x20, 0, 0, 0)),
            "       5 ms  left mouse button up, middle mouse button down");
  EXPECT_EQ(TextEventLine(Mouse(5, 0x40 | 8, 0, 0, 0)),
            "       5 ms  middle mouse button up, right mouse button down");
  EXPECT_EQ(TextEventLine(Mouse(5, 0x10, 0, 0, 0)), "       5 ms  right mouse button up");
}

TEST(EventPrinter, SaysOfAReleaseWithoutAPressThatItComesOfAPause) {
  std::ostringstream text;
  EventPrinter printer(text, false);
  printer.Print(Key(0, 65, 30, 0));
  printer.Print(Key(1, 65, 30, 2));
  printer.Print(Key(2, 65, 30, 2));  // another Control's, which had it down, too
  printer.Print(Key(3, 3, 0xE8, 3));
  EXPECT_EQ(text.str(),
            "       0 ms  a down\n"
            "       1 ms  a up\n"
            "       2 ms  a up\n"
            "       3 ms  key 3 scan 232 up (stray, of the pause of 1000 ms)\n");
}

TEST(EventPrinter, PrintsALineAnEventInTheFormAskedFor) {
  std::ostringstream json;
  EventPrinter(json, true).Print(Key(1, 65, 30, 0));
  EXPECT_EQ(json.str(), "{\"t\":1,\"event\":\"key\",\"vk\":65,\"scan\":30,\"flags\":0}\n");
  std::ostringstream text;
  EventPrinter printer(text, false);
  printer.Print(Key(1, 65, 30, 0));
  printer.Print(Key(2, 65, 30, 2));
  EXPECT_EQ(text.str(), "       1 ms  a down\n       2 ms  a up\n");
}

TEST(EventPrinter, TellsOnceThatNobodyReadsAnyMore) {
  static int told;
  told = 0;
  std::ostringstream out;
  EventPrinter printer(out, true, [] { ++told; });
  printer.Print(Key(1, 65, 30, 0));
  EXPECT_EQ(told, 0);
  out.setstate(std::ios::badbit);
  printer.Print(Key(2, 65, 30, 2));
  EXPECT_EQ(told, 0);  // the stream was broken by others

  struct FullDisk : std::streambuf {
  } nothingFits;
  std::ostream full(&nothingFits);
  EventPrinter toFull(full, true, [] { ++told; });
  toFull.Print(Key(1, 65, 30, 0));
  toFull.Print(Key(2, 65, 30, 2));
  EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace kelvaro::console
