#include "console/import/amgp_file.h"

#include <algorithm>
#include <map>
#include <optional>

#include "app/platform/byte_text.h"
#include "console/import/foreign_keys.h"
#include "console/import/xml_tree.h"
#include "engine/device_snapshot.h"

namespace kelvaro::console {
namespace {

constexpr std::size_t kMostSlots = 1000;  // of one input; far more than any profile has
// What the format has where a file says nothing: ms, and a twentieth of pixels a second.
constexpr std::uint32_t kTurboInterval = 100;
constexpr std::uint32_t kMouseSpeed = 50;
constexpr std::uint32_t kPixelsOfSpeed = 20;
constexpr std::uint32_t kFastest = 300;

// The buttons of a standard pad, in the order of the format: the numbers that the kernel's drivers
// give them. 0 for one without a certain number.
constexpr std::uint32_t kXboxButtons[] = {1, 2, 3, 4, 7, 9, 8, 10, 11, 5, 6};
constexpr std::uint32_t kPlayStationButtons[] = {1, 2, 4, 3, 9, 11, 10, 12, 13, 5, 6};
// Behind them its direction pad, which is a hat.
constexpr std::uint16_t kPadDirections[] = {PovUp, PovDown, PovLeft, PovRight};

// X, Y, RX, RY, Z, RZ: left stick, right stick, triggers.
const std::vector<std::uint16_t> kPadAxes = {0, 1, 3, 4, 2, 5};
const std::vector<std::uint16_t> kAllAxes = {0, 1, 2, 3, 4, 5, 6, 7};

// Settings of what moves the pointer; elsewhere they do nothing.
constexpr const char* kMouseSettings[] = {
    "mousemode",         "mouseacceleration",     "mousespeedx",      "mousespeedy",
    "mousespringwidth",  "mousespringheight",     "mousesensitivity", "mousesmoothing",
    "wheelspeedx",       "wheelspeedy",           "relativespring",   "easingduration",
    "extraacceleration", "accelerationmultiplier"};

bool IsMouseSetting(const std::string& name) {
  return std::find(std::begin(kMouseSettings), std::end(kMouseSettings), name) !=
         std::end(kMouseSettings);
}

std::string TextOfChild(const XmlElement& element, const char* name) {
  const XmlElement* const child = element.Child(name);
  return child ? child->text : "";
}

bool IsTrue(const std::string& text) { return text == "true" || text == "1"; }

// Whether anything comes of it: settings alone do nothing.
bool DoesAnything(const XmlElement& element) {
  return std::any_of(element.children.begin(), element.children.end(), [](const XmlElement& each) {
    return each.name == "slot" || each.name == "setselect" || DoesAnything(each);
  });
}

std::optional<std::uint64_t> Hexadecimal(const std::string& digits) {
  std::uint64_t number = 0;
  for (const char c : digits) {
    const auto digit = std::string("0123456789abcdef").find(static_cast<char>(c | 0x20));
    if (digit == std::string::npos || number >> 60 != 0) return std::nullopt;
    number = number << 4 | digit;
  }
  return digits.empty() ? std::nullopt : std::optional(number);
}

// The directions that a dpad or a stick has: words, and the directions of a hat.
struct Direction {
  const char* name;
  std::uint32_t index;
  std::uint16_t directions;
};
constexpr Direction kDpadDirections[] = {
    {"up", 1, PovUp},
    {"right", 2, PovRight},
    {"down", 4, PovDown},
    {"left", 8, PovLeft},
    {"up and right", 3, PovUp | PovRight},
    {"down and right", 6, PovDown | PovRight},
    {"down and left", 12, PovDown | PovLeft},
    {"up and left", 9, PovUp | PovLeft},
};
constexpr Direction kStickDirections[] = {
    {"up", 1, PovUp},       {"up and right", 2, PovUp | PovRight},
    {"right", 3, PovRight}, {"down and right", 4, PovDown | PovRight},
    {"down", 5, PovDown},   {"down and left", 6, PovDown | PovLeft},
    {"left", 7, PovLeft},   {"up and left", 8, PovUp | PovLeft},
};

template <std::size_t N>
const Direction* FindDirection(const Direction (&directions)[N], std::uint32_t index) {
  const auto* const direction =
      std::find_if(std::begin(directions), std::end(directions),
                   [index](const Direction& each) { return each.index == index; });
  return direction == std::end(directions) ? nullptr : direction;
}

// What makes one Control, or one direction of the mouse: an element of the file, and what follows
// from all that it has.
struct Source {
  std::string title;  // for notes
  std::optional<ForeignInput> input;
  std::string name;            // that the file gives it
  std::uint32_t deadZone = 0;  // of its stick
  bool movesPointer = false;
  bool turbo = false;
  std::uint32_t turboInterval = 0;
  std::uint32_t speedX = 0;
  std::uint32_t speedY = 0;
};

class AmgpReader {
 public:
  AmgpReader(const ForeignChoice& choice, ForeignProfile* profile)
      : choice(choice), profile(*profile) {}

  bool Read(const XmlElement& root, ForeignFault* faultOut) {
    isPad = root.name == "gamecontroller";
    if (!isPad && root.name != "joystick" && root.name != "gamepad") {
      Fail(root.place, "not an .amgp: it begins with <" + root.name + ">");
    }
    axes = !choice.axes.empty() ? choice.axes : isPad ? kPadAxes : kAllAxes;
    for (const XmlElement& each : root.children) ReadGlobal(each);
    if (const XmlElement* const sets = root.Child("sets")) ReadSets(*sets);
    if (!found) {
      Fail(root.place, choice.section == 0 ? "it has no set"
                                           : "it has no set " + std::to_string(choice.section));
    }
    if (failed) *faultOut = fault;
    return !failed;
  }

 private:
  // The first one stands.
  void Fail(Place place, const std::string& what) {
    if (!failed) fault = {place, what};
    failed = true;
  }

  // Decimal, or hexadecimal behind 0x.
  std::uint32_t Number(const XmlElement& element) { return Number(element.place, element.text); }
  std::uint32_t Number(Place place, const std::string& text) {
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const auto number =
        hexadecimal ? Hexadecimal(text.substr(2)) : platform::ParseWholeNumber(text);
    if (!number || *number > UINT32_MAX) {
      Fail(place, "not a number");
      return 0;
    }
    return static_cast<std::uint32_t>(*number);
  }
  // 0 where there is no such element.
  std::uint32_t NumberOfChild(const XmlElement& element, const char* name) {
    const XmlElement* const child = element.Child(name);
    return child ? Number(*child) : 0;
  }
  std::uint32_t Attribute(const XmlElement& element, const char* name) {
    const auto found = element.attributes.find(name);
    return found == element.attributes.end() ? 0 : Number(element.place, found->second);
  }

  void ReadGlobal(const XmlElement& element) {
    const std::string& name = element.name;
    if (name == "profilename") {
      profile.profile.profileName = TextOf(element.text);
    } else if (name == "sdlname") {
      if (!element.text.empty()) {
        profile.LeaveOut(element.place,
                         "the device '" + element.text + "': choose yours on the tab Device");
      }
    } else if (name == "stickAxisAssociation") {
      sticks[element.Index()] = {Attribute(element, "xAxis"), Attribute(element, "yAxis")};
    } else if (name == "vdpadButtonAssociations") {
      ReadVirtualPad(element);
    } else if (name == "names") {
      for (const XmlElement& each : element.children) names[NameKey(each)] = each.text;
    } else if (name == "keyPressTime") {
      pressTime = Number(element);
    } else if (name != "sets" && name != "guid" && name != "uniqueID") {
      profile.LeaveOut(element.place, Leaf(element));
    }
  }

  // "<x> text".
  static std::string Leaf(const XmlElement& element) {
    return "<" + element.name + ">" + (element.text.empty() ? "" : " " + element.text);
  }

  static std::string NameKey(const XmlElement& element) {
    std::string key = element.name + " " + std::to_string(element.Index());
    const auto button = element.attributes.find("button");
    return button == element.attributes.end() ? key : key + " " + button->second;
  }
  std::string Name(const std::string& key) const {
    const auto name = names.find(key);
    return name == names.end() ? "" : name->second;
  }

  void ReadVirtualPad(const XmlElement& pad) {
    for (const XmlElement& each : pad.children) {
      const std::uint32_t axis = Attribute(each, "axis");
      const std::uint32_t button = Attribute(each, "button");
      virtualPads[{pad.Index(), Attribute(each, "direction")}] =
          axis != 0 ? InputOfAxis(axis, button == 2) : InputOfButton(button);
    }
  }

  void ReadSets(const XmlElement& sets) {
    for (const XmlElement& set : sets.children) {
      if (set.name != "set") {
        profile.LeaveOut(set.place, Leaf(set));
      } else if (!found && (choice.section == 0 || set.Index() == choice.section)) {
        found = true;
        for (const XmlElement& each : set.children) ReadInput(each);
      } else if (DoesAnything(set)) {
        const std::string number = std::to_string(set.Index());
        std::string note = "set " + number;
        note.append(": a profile has one; --set ").append(number).append(" takes this one");
        profile.LeaveOut(set.place, note);
      }
    }
  }

  std::optional<ForeignInput> InputOfAxis(std::uint32_t axis, bool positive) const {
    if (axis == 0 || axis > axes.size()) return std::nullopt;
    return AxisInput(axes[axis - 1], positive);
  }

  std::optional<ForeignInput> InputOfButton(std::uint32_t button) const {
    if (button == 0 || button > kMostButtons) return std::nullopt;
    if (!isPad) return ButtonInput(button);
    const auto& order = choice.playStation ? kPlayStationButtons : kXboxButtons;
    const std::size_t known = std::size(order);
    if (button <= known) return ButtonInput(order[button - 1]);
    if (button <= known + 4) return HatInput(0, kPadDirections[button - known - 1]);
    return std::nullopt;
  }

  void ReadInput(const XmlElement& element) {
    const std::string& name = element.name;
    if (name == "name" || !DoesAnything(element)) return;
    const std::uint32_t index = element.Index();
    const std::string title = name + " " + std::to_string(index);
    if (name == "button") {
      ReadAction(element,
                 {title, InputOfButton(index), Name("buttonname " + std::to_string(index))});
    } else if (name == "axis" || name == "trigger") {
      ReadAxis(element, title);
    } else if (name == "dpad" || name == "vdpad") {
      ReadDpad(element, title);
    } else if (name == "stick") {
      ReadStick(element, title);
    } else {
      profile.LeaveOut(element.place, title + ": there is no such input");
    }
  }

  void LeaveOutSetting(const std::string& title, const XmlElement& setting) {
    profile.LeaveOut(setting.place, title + ": " + Leaf(setting));
  }

  void ReadAxis(const XmlElement& element, const std::string& title) {
    std::uint32_t axis = element.Index();
    // The triggers of a pad go by numbers of their own, too.
    if (element.name == "trigger" && axis <= 2) axis += 4;
    const std::uint32_t deadZone = NumberOfChild(element, "deadZone");
    const bool pointer = MovesPointer(element);
    for (const XmlElement& each : element.children) {
      if (each.name == "axisbutton" || each.name == "triggerbutton") {
        const bool positive = each.Index() == 2;
        ReadAction(each, {title + (positive ? " +" : " -"), InputOfAxis(axis, positive),
                          Name(element.name + "buttonname " + std::to_string(element.Index()) +
                               (positive ? " 2" : " 1")),
                          deadZone});
      } else if (each.name == "throttle") {
        if (each.text == "positive" || each.text == "negative") {
          profile.Change(each.place, title + ": throttle " + each.text +
                                         ": a key counts from half of the way on");
        }
      } else if (each.name != "deadZone" || !pointer) {
        LeaveOutSetting(title, each);
      }
    }
  }

  void ReadDpad(const XmlElement& element, const std::string& title) {
    const std::uint32_t index = element.Index();
    for (const XmlElement& each : element.children) {
      const Direction* const direction = FindDirection(kDpadDirections, each.Index());
      if (each.name != element.name + "button") {
        LeaveOutSetting(title, each);
      } else if (!direction) {
        profile.LeaveOut(each.place, title + ": there is no such direction");
      } else {
        const auto input = Directed(direction->directions, [&](std::uint16_t one) {
          return InputOfDpad(element.name == "vdpad", index, one);
        });
        ReadAction(each, {title + " " + direction->name, input,
                          Name(each.name + "name " + std::to_string(index) + " " +
                               std::to_string(each.Index()))});
      }
    }
  }

  std::optional<ForeignInput> InputOfDpad(bool isVirtual, std::uint32_t index,
                                          std::uint16_t direction) const {
    if (!isVirtual) {
      if (index == 0 || index > kHats) return std::nullopt;
      return HatInput(static_cast<std::uint16_t>(index - 1), direction);
    }
    for (const Direction& each : kDpadDirections) {
      const auto input = virtualPads.find({index, each.index});
      if (each.directions == direction && input != virtualPads.end()) return input->second;
    }
    return std::nullopt;
  }

  // What inputOf(direction) gives for one direction, or for two both.
  template <typename InputOf>
  static std::optional<ForeignInput> Directed(std::uint16_t directions, InputOf inputOf) {
    ForeignInput all;
    for (const std::uint16_t one : {PovLeft, PovUp, PovRight, PovDown}) {
      if ((directions & one) == 0) continue;
      const std::optional<ForeignInput> input = inputOf(one);
      if (!input) return std::nullopt;
      all = all + *input;
    }
    return all;
  }

  void ReadStick(const XmlElement& element, const std::string& title) {
    const std::uint32_t index = element.Index();
    auto stick = sticks.find(index);
    // Of a standard pad they are known.
    if (stick == sticks.end() && isPad && (index == 1 || index == 2)) {
      stick = sticks.insert({index, {index * 2 - 1, index * 2}}).first;
    }
    if (stick == sticks.end()) {
      return profile.LeaveOut(element.place, title + ": the file doesn't say which axes it has");
    }
    const std::uint32_t deadZone = NumberOfChild(element, "deadZone");
    const bool pointer = MovesPointer(element);
    for (const XmlElement& each : element.children) {
      const Direction* const direction = FindDirection(kStickDirections, each.Index());
      if (each.name != "stickbutton") {
        if (each.name != "deadZone" || !pointer) LeaveOutSetting(title, each);
      } else if (!direction) {
        profile.LeaveOut(each.place, title + ": there is no such direction");
      } else {
        const auto input = Directed(direction->directions, [&](std::uint16_t one) {
          const bool vertical = one == PovUp || one == PovDown;
          return InputOfAxis(vertical ? stick->second.second : stick->second.first,
                             one == PovRight || one == PovDown);
        });
        ReadAction(each, {title + " " + direction->name, input,
                          Name("controlstickbuttonname " + std::to_string(index) + " " +
                               std::to_string(each.Index())),
                          deadZone});
      }
    }
  }

  // Whether a slot somewhere in it moves the pointer.
  static bool MovesPointer(const XmlElement& element) {
    return std::any_of(
        element.children.begin(), element.children.end(), [](const XmlElement& each) {
          return (each.name == "slot" && TextOfChild(each, "mode") == "mousemovement") ||
                 MovesPointer(each);
        });
  }

  void ReadAction(const XmlElement& element, Source source) {
    if (!DoesAnything(element)) return;
    if (!source.input) {
      return profile.LeaveOut(element.place,
                              source.title + ": this pad has no certain input for it");
    }
    ForeignControl control;
    control.place = element.place;
    control.input = *source.input;
    control.description = source.name;
    control.keyHoldTime = pressTime;
    source.movesPointer = MovesPointer(element);
    source.turbo = IsTrue(TextOfChild(element, "useturbo"));
    source.turboInterval = NumberOfChild(element, "turbointerval");
    source.speedX = NumberOfChild(element, "mousespeedx");
    source.speedY = NumberOfChild(element, "mousespeedy");
    for (const XmlElement& each : element.children) {
      if (each.name == "slots") {
        ReadSlots(each, source, &control);
      } else {
        ReadSetting(each, source, &control);
      }
    }
    if (!failed && !control.keys.IsEmpty()) profile.Add(control);
  }

  void ReadSetting(const XmlElement& setting, const Source& source, ForeignControl* control) {
    const std::string& name = setting.name;
    if (name == "actionname") {
      if (!setting.text.empty()) control->description = setting.text;
    } else if (name == "toggle") {
      if (IsTrue(setting.text)) {
        profile.Change(setting.place,
                       source.title + ": toggle: the keys are down only while it is held");
      }
    } else if (name == "useturbo") {
      if (source.turbo) {
        control->repeatEvery = source.turboInterval == 0 ? kTurboInterval : source.turboInterval;
      }
    } else if (name == "turbointerval" || name == "turbomode") {
      if (source.turbo && name == "turbomode" && setting.text != "normal") {
        LeaveOutSetting(source.title, setting);
      }
    } else if (name == "setselect") {
      profile.LeaveOut(setting.place, source.title + ": the change to set " + setting.text);
    } else if (IsMouseSetting(name)) {
      const bool isSpeed = name == "mousespeedx" || name == "mousespeedy";
      if (source.movesPointer && !isSpeed && setting.text != "cursor") {
        LeaveOutSetting(source.title, setting);
      }
    } else if (name != "setselectcondition") {
      LeaveOutSetting(source.title, setting);
    }
  }

  // What comes from a slot that asks for something that the key language can't do: it and all
  // behind it are left out.
  static bool BeginsZone(const std::string& mode) {
    return mode == "release" || mode == "cycle" || mode == "distance";
  }

  void ReadSlots(const XmlElement& slots, const Source& source, ForeignControl* control) {
    if (slots.children.size() > kMostSlots) return Fail(slots.place, "too many slots");
    bool ended = false;
    bool first = true;
    for (const XmlElement& slot : slots.children) {
      const std::string mode = TextOfChild(slot, "mode");
      if (mode == "release" && first) {
        control->whenLetGo = true;
        if (Code(slot) != 0) {
          profile.Change(slot.place, source.title + ": release " + std::to_string(Code(slot)) +
                                         ": it acts however short the button was held");
        }
      } else if (ended || BeginsZone(mode)) {
        profile.LeaveOut(slot.place, source.title + ": " + SlotText(slot, mode));
        ended = true;
      } else if (mode == "mousemovement") {
        AddMouseMove(slot, source);
      } else {
        ReadKeySlot(slot, mode, source, control);
      }
      first = false;
    }
  }

  static std::string SlotText(const XmlElement& slot, const std::string& mode) {
    std::string text = mode.empty() ? "<" + slot.name + ">" : mode;
    for (const char* const child : {"code", "text", "path", "arguments", "profile"}) {
      const std::string value = TextOfChild(slot, child);
      if (!value.empty()) text += " " + value;
    }
    return text;
  }

  std::uint32_t Code(const XmlElement& slot) {
    const XmlElement* const code = slot.Child("code");
    if (!code) {
      Fail(slot.place, "this slot has no code");
      return 0;
    }
    return Number(*code);
  }

  void AddMouseMove(const XmlElement& slot, const Source& source) {
    const std::uint32_t code = Code(slot);
    if (code < 1 || code > 4) {
      return profile.LeaveOut(slot.place, source.title + ": " + SlotText(slot, "mousemovement"));
    }
    const bool vertical = code <= 2;
    const std::uint32_t told = vertical ? source.speedY : source.speedX;
    const std::uint32_t speed = told == 0 ? kMouseSpeed : std::min(told, kFastest);
    profile.Add(ForeignMouseMove{slot.place, *source.input,
                                 vertical ? ForeignMotion::Y : ForeignMotion::X,
                                 code == 2 || code == 4, speed * kPixelsOfSpeed, source.deadZone});
  }

  std::uint32_t PauseOf(const XmlElement& slot, const std::string& mode, const Source& source) {
    const std::uint32_t time = Code(slot);
    if (time > GatheredKeys::kLongestPause) {
      profile.Change(slot.place, source.title + ": " + mode + " " + std::to_string(time) +
                                     ": the longest pause is " +
                                     std::to_string(GatheredKeys::kLongestPause) + " ms");
    }
    return time;
  }

  void ReadKeySlot(const XmlElement& slot, const std::string& mode, const Source& source,
                   ForeignControl* control) {
    GatheredKeys& keys = control->keys;
    if (mode == "keyboard" || mode == "mousebutton") {
      ReadKey(slot, mode, source, &keys);
    } else if (mode == "pause") {
      keys.LetGo(PauseOf(slot, mode, source));
    } else if (mode == "delay") {
      keys.Wait(PauseOf(slot, mode, source));
    } else if (mode == "hold") {
      const std::uint32_t time = PauseOf(slot, mode, source);
      keys.LetGo(time);
      profile.Change(slot.place, source.title + ": hold " + std::to_string(time) +
                                     ": the keys behind it come even when it was let go by then");
    } else if (mode == "keypress") {
      control->keyHoldTime = Code(slot);
    } else if (mode != "textentry" || !keys.Type(TextOfChild(slot, "text"))) {
      profile.LeaveOut(slot.place, source.title + ": " + SlotText(slot, mode));
    }
  }

  void ReadKey(const XmlElement& slot, const std::string& mode, const Source& source,
               GatheredKeys* keys) {
    const std::uint32_t code = Code(slot);
    const bool mouse = mode == "mousebutton";
    if (mouse && (code == 4 || code == 5)) {
      return profile.Add(
          ForeignMouseMove{slot.place, *source.input, ForeignMotion::Wheel, code == 5, 0, 0});
    }
    const std::string key = mouse ? MouseButtonKey(code) : KeyOfQt(code);
    if (key.empty()) {
      return profile.LeaveOut(slot.place, source.title + ": no key for " + SlotText(slot, mode));
    }
    keys->Press(key);
  }

  const ForeignChoice& choice;
  ForeignProfile& profile;
  bool isPad = false;  // a standard pad, whose inputs go by their place
  std::vector<std::uint16_t> axes;
  std::map<std::uint32_t, std::pair<std::uint32_t, std::uint32_t>> sticks;  // their axes
  // By number and direction of a virtual dpad.
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::optional<ForeignInput>> virtualPads;
  std::map<std::string, std::string> names;  // by NameKey
  std::uint32_t pressTime = 0;               // ms
  bool found = false;                        // the set
  bool failed = false;
  ForeignFault fault;
};

}  // namespace

bool LooksLikeAmgp(const std::string& bytes) {
  const std::size_t begin = bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0;
  // Two bytes a character say so at their very beginning.
  if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) return true;
  const std::size_t first = bytes.find_first_not_of(" \t\r\n", begin);
  return first != std::string::npos && bytes[first] == '<';
}

bool ReadAmgp(const std::string& bytes, const ForeignChoice& choice, ForeignProfile* profile,
              ForeignFault* fault) {
  XmlElement root;
  return ReadXml(bytes, &root, fault) && AmgpReader(choice, profile).Read(root, fault);
}

}  // namespace kelvaro::console
