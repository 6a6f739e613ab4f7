#include "tests/manual/example.h"

#include <cstdint>
#include <cstdlib>
#include <map>
#include <optional>

#include "app/platform/recording/recording.h"
#include "console/json_text.h"
#include "engine/device_snapshot.h"
#include "engine/mouse_settings.h"
#include "tests/engine/axes.h"
#include "tests/manual/page.h"

namespace kelvaro::manual {
namespace {

constexpr int kCentred = -1;

// One input, in the way it is held.
struct Held {
  TriggerItem item;  // of a button, its number from 1 is the index
  int axis = 0;      // where the axis stands
};

// Split at each "+" outside of brackets.
std::vector<std::string> Inputs(const std::string& text) {
  std::vector<std::string> inputs(1);
  bool inBrackets = false;
  for (const char c : text) {
    if (c == '(' || c == ')') inBrackets = c == '(';
    if (c == '+' && !inBrackets) {
      inputs.emplace_back();
    } else {
      inputs.back() += c;
    }
  }
  return inputs;
}

std::optional<std::uint16_t> Directions(const std::string& words) {
  static const std::map<std::string, std::uint16_t> kBits = {
      {"up", PovUp}, {"down", PovDown}, {"left", PovLeft}, {"right", PovRight}};
  std::uint16_t bits = 0;
  for (const std::string& word : Inputs(words)) {
    const auto found = kBits.find(word);
    if (found == kBits.end()) return std::nullopt;
    bits |= found->second;
  }
  return bits;
}

// "Axis_X0(pos)" or "Axis_X0 at 50 %".
std::optional<Held> HeldAxis(const std::string& text) {
  const std::size_t nameEnd = text.find_first_of("( ");
  platform::AxisName axis;
  if (nameEnd == std::string::npos || !platform::ParseAxisName(text.substr(0, nameEnd), &axis))
    return std::nullopt;
  Held held{{axis.kind, axis.bank, AxisPos}, kAxisMax};
  const std::string how = text.substr(nameEnd);
  if (how.rfind(" at ", 0) == 0 && how.ends_with(" %")) {
    held.axis = std::atoi(how.c_str() + 4) * (kAxisMax / 100);
  } else if (how == "(neg)") {
    held.axis = -kAxisMax;
  } else if (how != "(pos)") {
    return std::nullopt;
  }
  if (held.axis < 0) held.item.value = AxisNeg;
  return held;
}

std::optional<Held> HeldInput(const std::string& text) {
  if (text.size() >= 2 && text[0] == 'B') {
    const int number = std::atoi(text.c_str() + 1);
    if (number < 1 || number > 64 || text != "B" + std::to_string(number)) return std::nullopt;
    return Held{{input_kind::kButton, static_cast<std::uint16_t>(number), 0}};
  }
  if (text.rfind("POV", 0) == 0 && text.size() > 6 && text[4] == '(' && text.back() == ')') {
    const auto bits = Directions(text.substr(5, text.size() - 6));
    if (!bits || text[3] < '0' || text[3] > '3') return std::nullopt;
    return Held{{input_kind::kPov, static_cast<std::uint16_t>(text[3] - '0'), *bits}};
  }
  return HeldAxis(text);
}

bool AllHeld(const std::string& text, std::vector<Held>* all) {
  if (text == "nothing") return true;
  for (const std::string& input : Inputs(text)) {
    const auto held = HeldInput(input);
    if (!held) return false;
    all->push_back(*held);
  }
  return true;
}

std::string ItemJson(const TriggerItem& item, bool withValue) {
  return "{\"kind\":" + std::to_string(item.kind) + ",\"index\":" + std::to_string(item.index) +
         (withValue ? ",\"value\":" + std::to_string(item.value) : "") + "}";
}

int AngleOf(std::uint16_t directions) {
  static const std::map<int, int> kAngles = {
      {PovUp, 0},       {PovUp | PovRight, 4500},   {PovRight, 9000}, {PovRight | PovDown, 12500},
      {PovDown, 18000}, {PovDown | PovLeft, 23000}, {PovLeft, 27000}, {PovLeft | PovUp, 31000}};
  return kAngles.at(directions);
}

// All of the device, so that what isn't held is at rest again.
std::string RecordingLine(const std::string& t, const std::vector<Held>& all) {
  std::string buttons;
  std::map<std::string, int> axes;
  std::map<std::string, int> hats;
  for (std::uint16_t kind = input_kind::kAxisX; kind <= input_kind::kSliderB; ++kind)
    axes[platform::AxisNameText({kind, 0})] = 0;
  for (const char hat : {'0', '1', '2', '3'}) hats[std::string("POV") + hat] = kCentred;
  for (const Held& held : all) {
    if (held.item.kind == input_kind::kButton) {
      buttons += (buttons.empty() ? "" : ",") + std::to_string(held.item.index);
    } else if (held.item.kind == input_kind::kPov) {
      hats["POV" + std::to_string(held.item.index)] =
          AngleOf(static_cast<std::uint16_t>(held.item.value));
    } else {
      axes[platform::AxisNameText({held.item.kind, held.item.index})] = held.axis;
    }
  }
  const auto members = [](const std::map<std::string, int>& values) {
    std::string text;
    for (const auto& [name, value] : values)
      text += (text.empty() ? "\"" : ",\"") + name + "\":" + std::to_string(value);
    return text;
  };
  return "{\"t\":" + t + ",\"buttons\":[" + buttons + "],\"axes\":{" + members(axes) +
         "},\"povs\":{" + members(hats) + "}}\n";
}

// Reads the lines one after the other.
class Reader {
 public:
  explicit Reader(Example* out) : out(*out) {
    out->recording =
        "{\"recording\":1,\"device\":\"Pad\",\"guid\":\"000102030405060708090a0b0c0d0e0f\","
        "\"buttons\":64,\"axes\":8,\"povs\":4}\n";
  }

  bool Line(const std::string& line) {
    if (line == "What you do" || line == "What goes out") {
      place = line;
      return true;
    }
    if (place.empty()) return Setting(line);
    if (place == "What goes out") {
      out.events.push_back(line);
      return true;
    }
    const std::size_t unit = line.find(" ms  ");
    std::vector<Held> all;
    if (unit == std::string::npos || !AllHeld(line.substr(unit + 5), &all)) return false;
    out.recording += RecordingLine(line.substr(0, unit), all);
    return true;
  }

  void End() {
    std::string list;
    for (const std::string& control : controls) list += (list.empty() ? "{" : ",{") + control + "}";
    out.profile = "{" + profile + "\"mouse\":{" + mouse + "},\"controls\":[" + list + "]}\n";
  }

 private:
  bool Setting(const std::string& line) {
    static const std::map<std::string, std::string> kOfControl = {
        {"Key hold time", "keyHoldTime"},
        {"Key release pause", "keyReleasePause"},
        {"Delay", "repeatDelay"},
        {"Speed", "repeatSpeed"}};
    static const std::map<std::string, std::string> kOfMouse = {
        {"Movement Sensitivity", "movementSensitivity"},
        {"Movement Axis Damper", "movementDamper"}};
    static const std::map<std::string, std::string> kBoxes = {
        {"Enable Repeat", "\"repeatEnabled\":true"},
        {"Activate/Deactivate Mouse Controls", "\"toggleMouseControls\":true"}};
    if (line == "Answer At Once") {
      out.options.emplace_back("--wake");
      return true;
    }
    if (line == "Mouse Controls Always Active") return AddMouse("\"mouseAlwaysActive\":true");
    if (line == "Hold down all keys of a multi-key event until released") return HoldAll();
    if (const auto box = kBoxes.find(line); box != kBoxes.end()) return AddControl(box->second);

    const std::size_t gap = line.find("  ");
    if (gap == std::string::npos) return Interval(line);
    const std::string name = line.substr(0, gap);
    const std::string value = Trimmed(line.substr(gap));
    if (name == "Trigger") return Begin(value);
    if (name == "Keys") return Keys(value);
    if (name == "Interval") return Interval(name + " " + value);
    if (name == "X movement") return MouseAxis("mouseX", value);
    if (name == "Left button") return LeftButton(value);
    if (const auto found = kOfControl.find(name); found != kOfControl.end())
      return AddControl("\"" + found->second + "\":" + value);
    if (const auto found = kOfMouse.find(name); found != kOfMouse.end())
      return AddMouse("\"" + found->second + "\":" + value);
    return false;
  }

  bool Begin(const std::string& trigger) {
    controls.emplace_back();
    return TriggerJson(trigger, &controls.back());
  }
  bool Keys(const std::string& text) {
    return AddControl("\"actions\":[{\"actionFlags\":0,\"text\":" + console::JsonText(text) + "}]");
  }
  bool HoldAll() {
    constexpr char kFlags[] = "\"actionFlags\":";
    const std::size_t at = controls.empty() ? std::string::npos : controls.back().find(kFlags);
    if (at == std::string::npos) return false;
    controls.back()[at + sizeof kFlags - 1] = '1';
    return true;
  }
  bool AddControl(const std::string& member) {
    if (controls.empty()) return false;
    controls.back() += "," + member;
    return true;
  }
  bool AddMouse(const std::string& member) {
    mouse += (mouse.empty() ? "" : ",") + member;
    return true;
  }
  bool MouseAxis(const std::string& member, const std::string& name) {
    platform::AxisName axis;
    return platform::ParseAxisName(name, &axis) &&
           AddMouse("\"" + member + "\":" + ItemJson({axis.kind, axis.bank, 0}, false));
  }
  bool LeftButton(const std::string& name) {
    const auto held = HeldInput(name);
    if (!held || held->item.kind != input_kind::kButton) return false;
    const auto index = static_cast<std::uint16_t>(held->item.index - 1);
    return AddMouse("\"leftButton\":" + std::to_string(index) +
                    ",\"leftMask\":" + std::to_string(MouseButtonMask(index)));
  }
  bool Interval(const std::string& line) {
    constexpr char kInterval[] = "Interval ";
    if (line.rfind(kInterval, 0) != 0) return false;
    profile = "\"pollInterval\":" + line.substr(sizeof kInterval - 1) + ",";
    return true;
  }

  Example& out;
  std::string place;
  std::string profile, mouse;
  std::vector<std::string> controls;
};

}  // namespace

bool TriggerJson(const std::string& name, std::string* json) {
  std::vector<Held> all;
  if (!AllHeld(name, &all) || all.empty()) return false;
  std::uint64_t mask = 0;
  std::string items;
  for (const Held& held : all) {
    if (held.item.kind == input_kind::kButton) {
      mask |= std::uint64_t{1} << (held.item.index - 1);
    } else {
      items += (items.empty() ? "" : ",") + ItemJson(held.item, true);
    }
  }
  *json = "\"buttonMask\":" + std::to_string(mask) + ",\"triggerItems\":[" + items + "]";
  return true;
}

bool ReadExample(const std::string& text, Example* out, std::string* error) {
  *out = Example{};
  Reader reader(out);
  for (const std::string& each : Lines(text)) {
    const std::string line = Trimmed(each);
    if (line.empty() || reader.Line(line)) continue;
    *error = line;
    return false;
  }
  reader.End();
  return true;
}

}  // namespace kelvaro::manual
