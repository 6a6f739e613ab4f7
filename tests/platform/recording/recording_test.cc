#include "app/platform/recording/recording.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace platform {
namespace {

const std::string kHeader =
    R"({"recording":1,"device":"Pad","guid":"00000001000200030405060708090a0b",)"
    R"("buttons":11,"axes":6,"povs":2})";

// The error; "read" when there is none.
std::string Read(const std::string& text, Recording* recording) {
  std::istringstream in(text);
  std::string error = "unset";
  if (ReadRecording(in, recording, &error)) return "read";
  return error;
}

std::string Read(const std::string& text) {
  Recording recording;
  return Read(text, &recording);
}

TEST(Recording, ReadsEveryKindOfChange) {
  Recording recording;
  ASSERT_EQ(Read(kHeader + "\n"
                           R"({"t":120,"buttons":[1,4]})"
                           "\n"
                           R"({"t":125,"axes":{"Axis_X0":20000,"SliderA0":-32000}})"
                           "\n"
                           R"({"t":125,"povs":{"POV0":9000,"POV1":-1}})"
                           "\n"
                           R"({"t":400,"lost":true,"buttons":[]})"
                           "\n"
                           R"({"t":500})",
                 &recording),
            "read");
  EXPECT_EQ(recording.device.name, "Pad");
  EXPECT_EQ(recording.device.guid, (GUID{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}}));
  EXPECT_EQ(recording.device.buttons, 11u);
  EXPECT_EQ(recording.device.axes, 6u);
  EXPECT_EQ(recording.device.povs, 2u);
  EXPECT_EQ(recording.Length(), 500u);
  ASSERT_EQ(recording.changes.size(), 5u);

  EXPECT_EQ(recording.changes[0].t, 120u);
  EXPECT_TRUE(recording.changes[0].hasButtons);
  EXPECT_EQ(recording.changes[0].buttons, (std::vector<std::uint32_t>{1, 4}));
  EXPECT_FALSE(recording.changes[0].hasLost);

  EXPECT_FALSE(recording.changes[1].hasButtons);
  const std::vector<std::pair<AxisName, std::int32_t>> axes{{{0, 0}, 20000}, {{6, 0}, -32000}};
  EXPECT_EQ(recording.changes[1].axes, axes);

  const std::vector<std::pair<std::uint32_t, std::uint32_t>> povs{{0, 9000}, {1, kPovCentred}};
  EXPECT_EQ(recording.changes[2].t, 125u);
  EXPECT_EQ(recording.changes[2].povs, povs);

  EXPECT_TRUE(recording.changes[3].hasLost);
  EXPECT_TRUE(recording.changes[3].lost);
  EXPECT_TRUE(recording.changes[3].hasButtons);
  EXPECT_TRUE(recording.changes[3].buttons.empty());

  EXPECT_EQ(recording.changes[4].t, 500u);
}

TEST(Recording, PassesOverEmptyLinesAndTakesEitherLineEnd) {
  Recording recording;
  EXPECT_EQ(Read("\n\r\n" + kHeader + "\r\n \t\r\n{\"t\":1}\r\n\n", &recording), "read");
  EXPECT_EQ(recording.changes.size(), 1u);
}

TEST(Recording, MayHaveNoChanges) {
  Recording recording;
  EXPECT_EQ(Read(kHeader, &recording), "read");
  EXPECT_EQ(recording.Length(), 0u);
}

TEST(Recording, NamesLineAndMemberOfAFaultInTheFirstLine) {
  struct Case {
    const char* text;
    const char* error;
  };
  const Case cases[] = {
      {"", "1: the line that describes the device is missing"},
      {"\n\n", "1: the line that describes the device is missing"},
      {"{\"t\":1}", "1:1: recording: missing in the line that describes the device"},
      {"{}", "1:1: recording: missing in the line that describes the device"},
      {"[]", "1:1: not an object"},
      {R"({"recording":2})", "1:14: recording: version 2 isn't known"},
      {R"({"recording":"1"})", "1:14: recording: not a number"},
      {R"({"recording":1,"colour":3})", "1:25: colour: unknown member"},
      {R"({"recording":1})", "1:1: device: missing"},
      {R"({"recording":1,"device":5})", "1:25: device: not a text"},
      {R"({"recording":1,"device":{"bytes":5}})", "1:34: device.bytes: not a text"},
      {R"({"recording":1,"device":{}})", "1:25: device.bytes: missing"},
      {R"({"recording":1,"device":{"bytes":"abc"}})", "1:34: device.bytes: an odd count of digits"},
      {R"({"recording":1,"device":{"bytes":"zz"}})", "1:34: device.bytes: not hexadecimal"},
      {R"({"recording":1,"device":"P"})", "1:1: guid: missing"},
      {R"({"recording":1,"device":"P","guid":1})", "1:36: guid: not a text"},
      {R"({"recording":1,"device":"P","guid":"12"})", "1:36: guid: not 32 hexadecimal digits"},
      {R"({"recording":1,"device":"P","guid":"00000001000200030405060708090a0b"})",
       "1:1: buttons: missing"},
      {R"({"recording":1,"device":"P","guid":"00000001000200030405060708090a0b","buttons":129})",
       "1:81: buttons: not from 0 to 128"},
      {R"({"recording":1,"device":"P","guid":"00000001000200030405060708090a0b","buttons":-1})",
       "1:81: buttons: not from 0 to 128"},
      {R"({"recording":1,"device":"P","guid":"00000001000200030405060708090a0b","buttons":1.5})",
       "1:81: buttons: not a whole number"},
      {R"({"recording":1,"device":"P","guid":"00000001000200030405060708090a0b","buttons":1,)"
       R"("axes":9})",
       "1:90: axes: not from 0 to 8"},
      {R"({"recording":1,"device":"P","guid":"00000001000200030405060708090a0b","buttons":1,)"
       R"("axes":8,"povs":5})",
       "1:99: povs: not from 0 to 4"},
      {R"({"recording":1,"recording":1})", "1:16: Duplicate key: 'recording'"},
  };
  for (const Case& faulty : cases) EXPECT_EQ(Read(faulty.text), faulty.error) << faulty.text;
}

TEST(Recording, NamesLineAndMemberOfAFaultInAChange) {
  struct Case {
    const char* line;
    const char* error;
  };
  // An empty line stands between the header and the faulty one.
  const Case cases[] = {
      {"{}", "3:1: t: missing"},
      {"7", "3:1: not an object"},
      {"[7]", "3:1: not an object"},
      {R"({"t":"5"})", "3:6: t: not a number"},
      {R"({"t":true})", "3:6: t: not a number"},
      {R"({"t":null})", "3:6: t: not a number"},
      {R"({"t":-1})", "3:6: t: below 0"},
      {R"({"t":0.5})", "3:6: t: not a whole number"},
      {R"({"t":1e300})", "3:6: t: out of range"},
      {R"({"t":9007199254740992})", "3:6: t: out of range"},
      {R"({"t":18446744073709551615})", "3:6: t: out of range"},
      {R"({"t":1,"button":[1]})", "3:17: button: unknown member"},
      {R"({"t":1,"recording":1})", "3:20: recording: unknown member"},
      {R"({"t":1,"buttons":1})", "3:18: buttons: not a list"},
      {R"({"t":1,"buttons":{"0":1}})", "3:18: buttons: not a list"},
      {R"({"t":1,"buttons":[1,"2"]})", "3:21: buttons[1]: not a number"},
      {R"({"t":1,"buttons":[0]})", "3:19: buttons[0]: no button 0 on this device, which has 11"},
      {R"({"t":1,"buttons":[11,12]})",
       "3:22: buttons[1]: no button 12 on this device, which has 11"},
      {R"({"t":1,"axes":[]})", "3:15: axes: not an object"},
      {R"({"t":1,"axes":{"Axis_X":1}})", "3:25: axes.Axis_X: no such axis"},
      {R"({"t":1,"axes":{"Axis_X4":1}})", "3:26: axes.Axis_X4: no such axis"},
      {R"({"t":1,"axes":{"axis_x0":1}})", "3:26: axes.axis_x0: no such axis"},
      {R"({"t":1,"axes":{"":1}})", "3:19: axes.: no such axis"},
      {R"({"t":1,"axes":{"Axis_X0":32001}})", "3:26: axes.Axis_X0: not from -32000 to 32000"},
      {R"({"t":1,"axes":{"Axis_X0":-32001}})", "3:26: axes.Axis_X0: not from -32000 to 32000"},
      {R"({"t":1,"axes":{"Axis_X0":"1"}})", "3:26: axes.Axis_X0: not a number"},
      {R"({"t":1,"axes":{"Axis_X0":1,"Axis_X0":2}})", "3:28: Duplicate key: 'Axis_X0'"},
      {R"({"t":1,"povs":5})", "3:15: povs: not an object"},
      {R"({"t":1,"povs":{"POV2":0}})", "3:23: povs.POV2: no such hat"},
      {R"({"t":1,"povs":{"POV9":0}})", "3:23: povs.POV9: no such hat"},
      {R"({"t":1,"povs":{"POV00":0}})", "3:24: povs.POV00: no such hat"},
      {R"({"t":1,"povs":{"POV":0}})", "3:22: povs.POV: no such hat"},
      {R"({"t":1,"povs":{"PQV0":0}})", "3:23: povs.PQV0: no such hat"},
      {R"({"t":1,"povs":{"POV0":36000}})", "3:23: povs.POV0: neither -1 nor 0 to 35999"},
      {R"({"t":1,"povs":{"POV0":-2}})", "3:23: povs.POV0: neither -1 nor 0 to 35999"},
      {R"({"t":1,"lost":1})", "3:15: lost: neither true nor false"},
      {R"({"t":1,"lost":"true"})", "3:15: lost: neither true nor false"},
      {R"({"t":1)", "3:7: Missing a comma or '}' after an object member"},
      {R"({"t":1} x)", "3:9: The document root must not be followed by other values"},
      {R"({"t":1} {"t":2})", "3:9: The document root must not be followed by other values"},
      {"{\"t\":1,\"a\\nb\":2}", "3:15: a?b: unknown member"},
      {"{\"t\":1,\"\xFF\":2}", "3: not UTF-8"},
      {R"({"t":1,"\u001b[31m":2,"\u001b[31m":2})", "3:23: Duplicate key: '?[31m'"},
  };
  for (const Case& faulty : cases) {
    EXPECT_EQ(Read(kHeader + "\n\n" + faulty.line + "\n"), faulty.error) << faulty.line;
  }
}

TEST(Recording, QuotesALongNameInPart) {
  const std::string long80(80, 'n');
  EXPECT_EQ(Read(kHeader + "\n{\"" + long80 + "\":1}"), "2:85: " + long80 + ": unknown member");
  EXPECT_EQ(Read(kHeader + "\n{\"" + long80 + "m\":1}"), "2:86: " + long80 + "...: unknown member");
  const std::string long79(79, 'n');
  EXPECT_EQ(Read(kHeader + "\n{\"" + long79 + "\xC3\xBC\":1}"),
            "2:86: " + long79 + "...: unknown member")
      << "a character of two bytes isn't cut";
}

TEST(Recording, TimesRiseOrAreEqual) {
  EXPECT_EQ(Read(kHeader + "\n{\"t\":5}\n{\"t\":5}\n{\"t\":4}"),
            "4:6: t: before the line above, which is at 5");
}

TEST(Recording, TakesTheOutermostValues) {
  EXPECT_EQ(Read(kHeader + "\n" +
                 R"({"t":0,"buttons":[1,11],"axes":{"Axis_X0":-32000,"SliderB3":32000},)"
                 R"("povs":{"POV0":0,"POV1":35999},"lost":false})"
                 "\n" +
                 R"({"t":9007199254740991})"),
            "read");
}

TEST(Recording, AFaultLeavesTheRecordingAlone) {
  Recording recording;
  recording.device.name = "before";
  EXPECT_EQ(Read(kHeader + "\n{\"t\":5}\nnonsense", &recording).substr(0, 4), "3:1:");
  EXPECT_EQ(recording.device.name, "before");
  EXPECT_TRUE(recording.changes.empty());
}

TEST(Recording, RefusesDeepNesting) {
  for (const std::size_t depth : {17u, 1000u, 500000u}) {
    EXPECT_EQ(Read(kHeader + "\n" + std::string(depth, '[')), "2:17: nested too deeply");
    std::string objects;
    for (std::size_t level = 0; level < depth / 5; ++level) objects += "{\"t\":";
    if (depth >= 100) {
      EXPECT_EQ(Read(kHeader + "\n" + objects), "2:81: nested too deeply");
    }
  }
}

TEST(Recording, RefusesALineThatIsTooLong) {
  constexpr std::size_t kLongest = 1024 * 1024;
  const std::string start = "{\"t\":1";
  const std::string fits = start + std::string(kLongest - start.size() - 1, ' ') + "}";
  EXPECT_EQ(Read(kHeader + "\n" + fits), "read");
  EXPECT_EQ(Read(kHeader + "\n" + fits + " "), "2: longer than 1048576 bytes");
}

TEST(Recording, ALineDoesNotEndAtAZeroByte) {
  EXPECT_EQ(Read(kHeader + "\n{\"t\":1}" + std::string("\0{\"t\":0}", 9)), "2:8: a zero byte");
}

TEST(Recording, TellsWhenItCannotBeRead) {
  class Broken final : public std::streambuf {
    int_type underflow() override { throw std::runtime_error("broken"); }
  } buffer;
  std::istream in(&buffer);
  Recording recording;
  std::string error;
  EXPECT_FALSE(ReadRecording(in, &recording, &error));
  EXPECT_EQ(error, "1: can't be read: broken");
}

TEST(Recording, WritesTheseLines) {
  DeviceDescription device;
  EXPECT_EQ(RecordingHeaderLine(device),
            R"({"recording":1,"device":"Pad","guid":"00000001000200030405060708090a0b",)"
            R"("buttons":11,"axes":6,"povs":1})");
  StateChange change;
  change.t = 120;
  EXPECT_EQ(RecordingChangeLine(change), R"({"t":120})");
  change.hasButtons = true;
  EXPECT_EQ(RecordingChangeLine(change), R"({"t":120,"buttons":[]})");
  change.buttons = {1, 4};
  change.hasLost = true;
  EXPECT_EQ(RecordingChangeLine(change), R"({"t":120,"buttons":[1,4],"lost":false})");
  change.lost = true;
  change.axes = {{{6, 0}, -32000}, {{0, 0}, 20000}};
  change.povs = {{0, 9000}, {3, kPovCentred}};
  EXPECT_EQ(RecordingChangeLine(change),
            R"({"t":120,"buttons":[1,4],"axes":{"SliderA0":-32000,"Axis_X0":20000},)"
            R"("povs":{"POV0":9000,"POV3":-1},"lost":true})");
}

TEST(Recording, WritesCentredForBothFormsOfIt) {
  StateChange change;
  change.povs = {{0, 0xFFFFu}, {1, 0xFFFFFFFFu}};
  EXPECT_EQ(RecordingChangeLine(change), R"({"t":0,"povs":{"POV0":-1,"POV1":-1}})");
}

TEST(Recording, OfTwoValuesForOneInputTheLaterIsWritten) {
  StateChange change;
  change.axes = {{{0, 0}, 1}, {{1, 0}, 2}, {{0, 0}, 3}};
  EXPECT_EQ(RecordingChangeLine(change), R"({"t":0,"axes":{"Axis_Y0":2,"Axis_X0":3}})");
}

TEST(Recording, NamesSurviveWritingAndReading) {
  const std::string names[] = {"",
                               "Pad",
                               "quote \" backslash \\ slash /",
                               "tab\tline\nbell\a",
                               "Gr\xC3\xBC\xC3\x9F"
                               "e \xE2\x82\xAC \xF0\x9F\x8E\xAE",
                               "\xFF\xFE not UTF-8",
                               "cut off \xC3",
                               std::string("zero\0inside", 11)};
  for (const std::string& name : names) {
    DeviceDescription device;
    device.name = name;
    Recording recording;
    EXPECT_EQ(Read(RecordingHeaderLine(device), &recording), "read") << name;
    EXPECT_EQ(recording.device.name, name);
  }
  DeviceDescription device;
  device.name =
      "Gr\xC3\xBC"
      "n";
  EXPECT_NE(RecordingHeaderLine(device).find("\"device\":\"Gr\xC3\xBC"
                                             "n\""),
            std::string::npos);
  device.name = "\xFF";
  EXPECT_NE(RecordingHeaderLine(device).find("\"device\":{\"bytes\":\"ff\"}"), std::string::npos);
}

TEST(Recording, WhatIsWrittenReadsBackTheSame) {
  DeviceDescription device;
  device.buttons = 128;
  device.axes = 8;
  device.povs = 4;
  device.guid = GUID{0xFEDCBA98u, 0x7654, 0x3210, {0xFF, 0, 0xAA, 1, 2, 3, 4, 5}};
  StateChange change;
  change.t = 7;
  change.hasButtons = true;
  change.buttons = {128, 1};
  for (std::uint16_t bank = 0; bank < 4; ++bank) {
    for (std::uint16_t kind = 0; kind < 8; ++kind) {
      change.axes.push_back({{kind, bank}, kind * 1000 - bank});
    }
  }
  change.povs = {{0, 0}, {1, 35999}, {2, kPovCentred}, {3, 4500}};
  change.hasLost = true;
  Recording recording;
  ASSERT_EQ(Read(RecordingHeaderLine(device) + "\n" + RecordingChangeLine(change), &recording),
            "read");
  EXPECT_EQ(recording.device, device);
  // A reader has them by name.
  std::sort(change.axes.begin(), change.axes.end(), [](const auto& a, const auto& b) {
    return AxisNameText(a.first) < AxisNameText(b.first);
  });
  EXPECT_EQ(recording.changes, std::vector<StateChange>{change});
}

TEST(Recording, AChangeHasWhatIsDifferent) {
  DIJOYSTATE2 before = StateAtRest();
  before.rgbButtons[3] = 0x80;
  EXPECT_EQ(ChangeBetween(before, before), StateChange());
  DIJOYSTATE2 after = before;
  after.lX = 5;
  after.rglFSlider[1] = -1;
  after.rgdwPOV[3] = 0;
  StateChange change;
  change.axes = {{{0, 0}, 5}, {{7, 3}, -1}};
  change.povs = {{3, 0}};
  EXPECT_EQ(ChangeBetween(before, after), change);
  after.rgbButtons[127] = 0x80;
  change.hasButtons = true;
  change.buttons = {4, 128};
  EXPECT_EQ(ChangeBetween(before, after), change);
}

TEST(Recording, NamesEachAxisOfTheFourBanks) {
  struct Case {
    const char* name;
    AxisName axis;
    std::size_t offset;
  };
  const Case cases[] = {
      {"Axis_X0", {0, 0}, 0},    {"Axis_Y0", {1, 0}, 4},    {"Axis_Z0", {2, 0}, 8},
      {"Axis_RX0", {3, 0}, 12},  {"Axis_RY0", {4, 0}, 16},  {"Axis_RZ0", {5, 0}, 20},
      {"SliderA0", {6, 0}, 24},  {"SliderB0", {7, 0}, 28},  {"Axis_X1", {0, 1}, 176},
      {"Axis_RZ1", {5, 1}, 196}, {"SliderB1", {7, 1}, 204}, {"Axis_X2", {0, 2}, 208},
      {"SliderA2", {6, 2}, 232}, {"Axis_Y3", {1, 3}, 244},  {"SliderB3", {7, 3}, 268},
  };
  DIJOYSTATE2 state;
  for (const Case& named : cases) {
    AxisName axis{9, 9};
    EXPECT_TRUE(ParseAxisName(named.name, &axis)) << named.name;
    EXPECT_EQ(axis, named.axis) << named.name;
    EXPECT_EQ(AxisNameText(named.axis), named.name);
    EXPECT_EQ(reinterpret_cast<char*>(AxisField(&state, axis)) - reinterpret_cast<char*>(&state),
              static_cast<std::ptrdiff_t>(named.offset))
        << named.name;
  }
  AxisName axis{9, 9};
  for (const char* bad :
       {"", "0", "Axis_X", "Axis_X4", "Axis_X00", "Axis_W0", "POV0", " Axis_X0"}) {
    EXPECT_FALSE(ParseAxisName(bad, &axis)) << bad;
  }
  EXPECT_EQ(axis, (AxisName{9, 9}));
}

TEST(Recording, GuidsAreWrittenInFileOrder) {
  const GUID guid{0x01234567u, 0x89AB, 0xCDEF, {0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10}};
  EXPECT_EQ(GuidText(guid), "0123456789abcdeffedcba9876543210");
  GUID back;
  EXPECT_TRUE(ParseGuid("0123456789ABCDEFfedcba9876543210", &back));
  EXPECT_EQ(back, guid);
  for (const char* bad :
       {"", "0123", "0123456789abcdeffedcba987654321", "g123456789abcdeffedcba9876543210",
        "0123456789abcdeffedcba98765432100"}) {
    EXPECT_FALSE(ParseGuid(bad, &back)) << bad;
  }
  EXPECT_EQ(back, guid);
}

}  // namespace
}  // namespace platform
