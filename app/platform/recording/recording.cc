#include "app/platform/recording/recording.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <istream>
#include <iterator>
#include <optional>
#include <streambuf>
#include <string_view>

#include "app/platform/byte_text.h"
#include "app/platform/recording/json.h"

namespace platform {
namespace {

constexpr std::uint32_t kVersion = 1;
constexpr std::size_t kLongestLine = 1 << 20;
constexpr int kDeepestNesting = 16;
constexpr std::uint64_t kLatestTime = (std::uint64_t{1} << 53) - 1;  // exact in every JSON reader
constexpr std::int64_t kAxisLimit = 32000;
constexpr std::int64_t kWholeTurn = 36000;
constexpr std::uint32_t kCentredWord = 0xFFFF;

const char* const kAxisKinds[] = {"Axis_X",  "Axis_Y",  "Axis_Z",  "Axis_RX",
                                  "Axis_RY", "Axis_RZ", "SliderA", "SliderB"};

// Reads lines of JSON; the first fault ends it and is kept.
class Reader {
 public:
  Reader(std::istream& in, Recording* recording) : in(in), recording(recording) {}

  bool Run(std::string* error) {
    bool started = false;
    std::string line;
    while (fault.empty() && NextLine(&line)) {
      if (std::all_of(line.begin(), line.end(), IsBlank)) continue;
      json::Value value;
      if (!Parse(line, &value)) break;
      if (started) {
        ReadChange(value);
      } else {
        ReadHeader(value);
      }
      started = true;
    }
    if (fault.empty() && !started) {
      number = 1;
      Fail("", "the line that describes the device is missing");
    }
    if (!fault.empty()) *error = AtLine(fault);
    return fault.empty();
  }

  // With the line that was read last, and the column in it if one is to blame.
  std::string AtLine(const std::string& what) const {
    return std::to_string(number) + ":" + (column > 0 ? std::to_string(column) + ":" : "") + " " +
           what;
  }

 private:
  static bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

  bool Fail(const std::string& member, const std::string& what) {
    if (fault.empty()) fault = member.empty() ? what : member + ": " + what;
    return false;
  }

  // At the beginning of `value`, which is to blame.
  bool FailAt(const json::Value& value, const std::string& member, const std::string& what) {
    if (fault.empty()) column = value.Offset() + 1;
    return Fail(member, what);
  }

  // False at the end, and on a fault.
  bool NextLine(std::string* line) {
    line->clear();
    std::streambuf* bytes = in.rdbuf();
    ++number;
    for (;;) {
      const int c = bytes ? bytes->sbumpc() : std::char_traits<char>::eof();
      if (c == std::char_traits<char>::eof()) {
        if (in.bad()) return Fail("", "can't be read");
        return !line->empty();
      }
      if (c == '\n') return true;
      if (line->size() == kLongestLine) {
        return Fail("", "longer than " + std::to_string(kLongestLine) + " bytes");
      }
      line->push_back(static_cast<char>(c));
    }
  }

  bool Parse(const std::string& line, json::Value* value) {
    if (!IsUtf8(line)) return Fail("", "not UTF-8");
    json::Fault wrong;
    if (!json::Parse(line, kDeepestNesting, value, &wrong)) {
      column = wrong.offset + 1;
      return Fail("", Shown(wrong.what));
    }
    if (!value->IsObject()) return FailAt(*value, "", "not an object");
    return true;
  }

  // False for a member whose name isn't in `known`.
  bool OnlyKnown(const json::Value& value, std::initializer_list<std::string_view> known) {
    for (const auto& [name, member] : value.ByName()) {
      if (std::find(known.begin(), known.end(), name) == known.end()) {
        return FailAt(member, Shown(name), "unknown member");
      }
    }
    return true;
  }

  // A text out of the file, fit for one line of a message.
  static std::string Shown(const std::string& raw) {
    constexpr std::size_t kLongest = 80;
    std::size_t size = std::min(raw.size(), kLongest);
    // No character is cut in two.
    while (size < raw.size() && size > 0 && (raw[size] & 0xC0) == 0x80) --size;
    std::string text = raw.substr(0, size);
    std::replace_if(
        text.begin(), text.end(),
        [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, '?');
    return size < raw.size() ? text + "..." : text;
  }

  // The whole number `value`; nothing, with the fault kept, for any other value.
  std::optional<std::int64_t> Whole(const json::Value& value, const std::string& member) {
    if (!value.IsNumber()) {
      FailAt(value, member, "not a number");
    } else if (!value.Signed()) {
      const double number = value.Real();
      FailAt(value, member, number == std::trunc(number) ? "out of range" : "not a whole number");
    }
    return value.Signed();
  }

  std::optional<std::int64_t> Required(const json::Value& value, const char* member) {
    if (const json::Value* const found = value.Find(member)) return Whole(*found, member);
    FailAt(value, member, "missing");
    return std::nullopt;
  }

  bool ReadCount(const json::Value& value, const char* member, std::uint32_t most,
                 std::uint32_t* count) {
    const auto number = Required(value, member);
    if (!number) return false;
    if (*number < 0 || *number > most) {
      return FailAt(*value.Find(member), member, "not from 0 to " + std::to_string(most));
    }
    *count = static_cast<std::uint32_t>(*number);
    return true;
  }

  bool ReadHeader(const json::Value& value) {
    const json::Value* const number = value.Find("recording");
    if (!number) return FailAt(value, "recording", "missing in the line that describes the device");
    const auto version = Whole(*number, "recording");
    if (!version) return false;
    if (*version != kVersion) {
      return FailAt(*number, "recording", "version " + std::to_string(*version) + " isn't known");
    }
    if (!OnlyKnown(value, {"recording", "device", "guid", "buttons", "axes", "povs"})) return false;
    DeviceDescription& device = recording->device;
    const json::Value* const name = value.Find("device");
    if (!name) return FailAt(value, "device", "missing");
    if (!ReadText(*name, "device", &device.name)) return false;
    const json::Value* const guid = value.Find("guid");
    if (!guid) return FailAt(value, "guid", "missing");
    if (!guid->IsText()) return FailAt(*guid, "guid", "not a text");
    if (!ParseGuid(guid->Text(), &device.guid)) {
      return FailAt(*guid, "guid", "not 32 hexadecimal digits");
    }
    return ReadCount(value, "buttons", 128, &device.buttons) &&
           ReadCount(value, "axes", 8, &device.axes) && ReadCount(value, "povs", 4, &device.povs);
  }

  // A text, or {"bytes":"<hex>"} for what isn't UTF-8.
  bool ReadText(const json::Value& value, const std::string& member, std::string* text) {
    if (value.IsText()) {
      *text = value.Text();
      return true;
    }
    if (!value.IsObject()) return FailAt(value, member, "not a text");
    if (!OnlyKnown(value, {"bytes"})) return false;
    const json::Value* const bytes = value.Find("bytes");
    if (!bytes) return FailAt(value, member + ".bytes", "missing");
    if (!bytes->IsText()) return FailAt(*bytes, member + ".bytes", "not a text");
    const std::string& digits = bytes->Text();
    if (digits.size() % 2 != 0) return FailAt(*bytes, member + ".bytes", "an odd count of digits");
    return ParseHexBytes(digits, text) || FailAt(*bytes, member + ".bytes", "not hexadecimal");
  }

  bool ReadChange(const json::Value& value) {
    if (!OnlyKnown(value, {"t", "buttons", "axes", "povs", "lost"})) return false;
    StateChange change;
    const auto t = Required(value, "t");
    if (!t) return false;
    const json::Value& time = *value.Find("t");
    if (*t < 0) return FailAt(time, "t", "below 0");
    change.t = static_cast<std::uint64_t>(*t);
    if (change.t > kLatestTime) return FailAt(time, "t", "out of range");
    if (change.t < recording->Length()) {
      return FailAt(time, "t",
                    "before the line above, which is at " + std::to_string(recording->Length()));
    }
    const json::Value* const buttons = value.Find("buttons");
    if (buttons && !ReadButtons(*buttons, &change)) return false;
    const json::Value* const axes = value.Find("axes");
    if (axes && !ReadAxes(*axes, &change)) return false;
    const json::Value* const povs = value.Find("povs");
    if (povs && !ReadHats(*povs, &change)) return false;
    if (const json::Value* const lost = value.Find("lost")) {
      if (!lost->IsBool()) return FailAt(*lost, "lost", "neither true nor false");
      change.hasLost = true;
      change.lost = lost->Bool();
    }
    recording->changes.push_back(std::move(change));
    return true;
  }

  bool ReadButtons(const json::Value& value, StateChange* change) {
    if (!value.IsList()) return FailAt(value, "buttons", "not a list");
    change->hasButtons = true;
    for (std::size_t index = 0; index < value.Elements().size(); ++index) {
      const json::Value& element = value.Elements()[index];
      const std::string member = "buttons[" + std::to_string(index) + "]";
      const auto button = Whole(element, member);
      if (!button) return false;
      if (*button < 1 || *button > recording->device.buttons) {
        return FailAt(element, member,
                      "no button " + std::to_string(*button) + " on this device, which has " +
                          std::to_string(recording->device.buttons));
      }
      change->buttons.push_back(static_cast<std::uint32_t>(*button));
    }
    return true;
  }

  bool ReadAxes(const json::Value& value, StateChange* change) {
    if (!value.IsObject()) return FailAt(value, "axes", "not an object");
    for (const auto& [name, number] : value.ByName()) {
      const std::string member = "axes." + Shown(name);
      AxisName axis;
      if (!ParseAxisName(name, &axis)) return FailAt(number, member, "no such axis");
      const auto position = Whole(number, member);
      if (!position) return false;
      if (*position < -kAxisLimit || *position > kAxisLimit) {
        return FailAt(number, member, "not from -32000 to 32000");
      }
      change->axes.emplace_back(axis, static_cast<std::int32_t>(*position));
    }
    return true;
  }

  bool ReadHats(const json::Value& value, StateChange* change) {
    if (!value.IsObject()) return FailAt(value, "povs", "not an object");
    for (const auto& [name, number] : value.ByName()) {
      const std::string member = "povs." + Shown(name);
      const std::string prefix = "POV";
      const bool named = name.size() == prefix.size() + 1 && name.compare(0, 3, prefix) == 0 &&
                         name.back() >= '0' && name.back() <= '9';
      const auto hat = static_cast<std::uint32_t>(named ? name.back() - '0' : 0);
      if (!named || hat >= recording->device.povs) return FailAt(number, member, "no such hat");
      const auto angle = Whole(number, member);
      if (!angle) return false;
      if (*angle < -1 || *angle >= kWholeTurn)
        return FailAt(number, member, "neither -1 nor 0 to 35999");
      change->povs.emplace_back(hat, *angle < 0 ? kPovCentred : static_cast<std::uint32_t>(*angle));
    }
    return true;
  }

 private:
  std::istream& in;
  Recording* const recording;
  std::uint64_t number = 0;  // of the line
  std::size_t column = 0;    // in it, from 1, in bytes; 0 where none is to blame
  std::string fault;
};

// Members for a JSON object out of name and value pairs; a later pair of the same name wins.
template <typename Pairs, typename Name, typename Number>
std::string Members(const Pairs& pairs, Name name, Number number) {
  std::string text;
  for (auto pair = pairs.begin(); pair != pairs.end(); ++pair) {
    const bool outdated = std::any_of(std::next(pair), pairs.end(), [&](const auto& later) {
      return later.first == pair->first;
    });
    if (outdated) continue;
    text += (text.empty() ? "\"" : ",\"") + name(pair->first) +
            "\":" + std::to_string(number(pair->second));
  }
  return "{" + text + "}";
}

}  // namespace

bool ParseAxisName(const std::string& text, AxisName* axis) {
  if (text.empty() || text.back() < '0' || text.back() > '3') return false;
  const std::string kind = text.substr(0, text.size() - 1);
  const auto found = std::find(std::begin(kAxisKinds), std::end(kAxisKinds), kind);
  if (found == std::end(kAxisKinds)) return false;
  axis->kind = static_cast<std::uint16_t>(found - std::begin(kAxisKinds));
  axis->bank = static_cast<std::uint16_t>(text.back() - '0');
  return true;
}

std::string AxisNameText(AxisName axis) {
  return kAxisKinds[axis.kind] + std::to_string(axis.bank);
}

std::int32_t* AxisField(DIJOYSTATE2* state, AxisName axis) {
  using S = DIJOYSTATE2;
  static constexpr std::int32_t S::*kAxes[4][6] = {
      {&S::lX, &S::lY, &S::lZ, &S::lRx, &S::lRy, &S::lRz},
      {&S::lVX, &S::lVY, &S::lVZ, &S::lVRx, &S::lVRy, &S::lVRz},
      {&S::lAX, &S::lAY, &S::lAZ, &S::lARx, &S::lARy, &S::lARz},
      {&S::lFX, &S::lFY, &S::lFZ, &S::lFRx, &S::lFRy, &S::lFRz}};
  static constexpr std::int32_t(S::*kSliders[4])[2] = {&S::rglSlider, &S::rglVSlider,
                                                       &S::rglASlider, &S::rglFSlider};
  if (axis.kind < 6) return &(state->*kAxes[axis.bank][axis.kind]);
  return &(state->*kSliders[axis.bank])[axis.kind - 6];
}

void ApplyChange(const StateChange& change, DIJOYSTATE2* state) {
  if (change.hasButtons) {
    std::fill(std::begin(state->rgbButtons), std::end(state->rgbButtons), std::uint8_t{0});
    for (const std::uint32_t button : change.buttons) state->rgbButtons[button - 1] = 0x80;
  }
  for (const auto& [axis, value] : change.axes) *AxisField(state, axis) = value;
  for (const auto& [hat, angle] : change.povs) state->rgdwPOV[hat] = angle;
}

StateChange ChangeBetween(const DIJOYSTATE2& before, const DIJOYSTATE2& after) {
  StateChange change;
  for (std::uint32_t i = 0; i < std::size(after.rgbButtons); ++i) {
    change.hasButtons |= (before.rgbButtons[i] != 0) != (after.rgbButtons[i] != 0);
    if (after.rgbButtons[i] != 0) change.buttons.push_back(i + 1);
  }
  if (!change.hasButtons) change.buttons.clear();
  DIJOYSTATE2 old = before;
  DIJOYSTATE2 now = after;
  for (std::uint16_t bank = 0; bank < 4; ++bank) {
    for (std::size_t kind = 0; kind < std::size(kAxisKinds); ++kind) {
      const AxisName axis{static_cast<std::uint16_t>(kind), bank};
      const std::int32_t value = *AxisField(&now, axis);
      if (value != *AxisField(&old, axis)) change.axes.emplace_back(axis, value);
    }
  }
  for (std::uint32_t hat = 0; hat < std::size(after.rgdwPOV); ++hat) {
    if (before.rgdwPOV[hat] != after.rgdwPOV[hat]) {
      change.povs.emplace_back(hat, after.rgdwPOV[hat]);
    }
  }
  return change;
}

DIJOYSTATE2 StateAtRest() {
  DIJOYSTATE2 state;
  std::fill(std::begin(state.rgdwPOV), std::end(state.rgdwPOV), kPovCentred);
  return state;
}

bool ReadRecording(std::istream& in, Recording* recording, std::string* error) {
  Recording read;
  Reader reader(in, &read);
  try {
    if (!reader.Run(error)) return false;
  } catch (const std::exception& problem) {
    *error = reader.AtLine(std::string("can't be read: ") + problem.what());
    return false;
  }
  *recording = std::move(read);
  return true;
}

std::string RecordingHeaderLine(const DeviceDescription& device) {
  return "{\"recording\":" + std::to_string(kVersion) + ",\"device\":" + JsonText(device.name) +
         ",\"guid\":\"" + GuidText(device.guid) +
         "\",\"buttons\":" + std::to_string(device.buttons) +
         ",\"axes\":" + std::to_string(device.axes) + ",\"povs\":" + std::to_string(device.povs) +
         "}";
}

std::string RecordingChangeLine(const StateChange& change) {
  std::string line = "{\"t\":" + std::to_string(change.t);
  if (change.hasButtons) {
    line += ",\"buttons\":[";
    for (std::size_t index = 0; index < change.buttons.size(); ++index) {
      if (index) line += ',';
      line += std::to_string(change.buttons[index]);
    }
    line += "]";
  }
  if (!change.axes.empty()) {
    line += ",\"axes\":" + Members(change.axes, AxisNameText,
                                   [](std::int32_t value) { return std::int64_t{value}; });
  }
  if (!change.povs.empty()) {
    line += ",\"povs\":" +
            Members(
                change.povs, [](std::uint32_t hat) { return "POV" + std::to_string(hat); },
                [](std::uint32_t angle) {
                  return (angle & kCentredWord) == kCentredWord ? std::int64_t{-1}
                                                                : std::int64_t{angle};
                });
  }
  if (change.hasLost) line += std::string(",\"lost\":") + (change.lost ? "true" : "false");
  return line + "}";
}

std::string GuidText(const GUID& guid) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(guid.Data1 >> shift);
  for (const std::uint16_t part : {guid.Data2, guid.Data3}) {
    bytes += static_cast<char>(part >> 8);
    bytes += static_cast<char>(part);
  }
  return HexBytes(bytes.append(std::begin(guid.Data4), std::end(guid.Data4)));
}

bool ParseGuid(const std::string& text, GUID* guid) {
  std::string bytes;
  if (text.size() != 32 || !ParseHexBytes(text, &bytes)) return false;
  const auto number = [&bytes](std::size_t at, std::size_t size) {
    std::uint32_t value = 0;
    for (const char c : bytes.substr(at, size)) value = value << 8 | static_cast<std::uint8_t>(c);
    return value;
  };
  guid->Data1 = number(0, 4);
  guid->Data2 = static_cast<std::uint16_t>(number(4, 2));
  guid->Data3 = static_cast<std::uint16_t>(number(6, 2));
  std::copy(bytes.begin() + 8, bytes.end(), guid->Data4);
  return true;
}

std::string JsonText(const std::string& text) {
  if (!IsUtf8(text)) return "{\"bytes\":\"" + HexBytes(text) + "\"}";
  return json::Quoted(text);
}

}  // namespace platform
