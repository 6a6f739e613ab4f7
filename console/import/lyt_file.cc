#include "console/import/lyt_file.h"

#include <algorithm>
#include <optional>

#include "app/platform/byte_text.h"
#include "console/import/foreign_keys.h"
#include "engine/device_snapshot.h"

namespace kelvaro::console {
namespace {

// The presses of "rapidfire" come in a rhythm that the file doesn't tell. ms.
constexpr std::uint32_t kRapidFire = 100;
// The format counts the pointer's speed in pixels of such a time. ms.
constexpr std::uint32_t kSpeedUnit = 10;

constexpr std::size_t kMostWords = 1000;  // in a line; far more than any layout has

struct Word {
  std::string text;     // in lower case
  std::string written;  // as it stands
  Place place;
};
using Words = std::vector<Word>;

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }
bool IsMark(char c) { return c == ':' || c == ',' || c == '{' || c == '}'; }

// Of one line, up to a comment.
Words WordsOf(const std::string& line, std::size_t number) {
  Words words;
  bool open = false;
  for (std::size_t i = 0; i < line.size() && line[i] != '#' && words.size() <= kMostWords; ++i) {
    const char c = line[i];
    if (IsBlank(c)) {
      open = false;
      continue;
    }
    if (!open || IsMark(c)) words.push_back({"", "", {number, i + 1}});
    words.back().written += c;
    words.back().text += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    open = !IsMark(c);
  }
  return words;
}

// What stands between commas behind the colon of an entry: its own words, at least one.
std::vector<Words> SettingsOf(const Words& entry) {
  std::vector<Words> settings(1);
  for (auto word = entry.begin() + 3; word != entry.end(); ++word) {
    if (word->text == ",") {
      settings.emplace_back();
    } else {
      settings.back().push_back(*word);
    }
  }
  std::erase_if(settings, [](const Words& each) { return each.empty(); });
  return settings;
}

// One side of an axis, or a button.
struct Side {
  std::string title;  // for notes
  Place place;
  ForeignInput input;
  GatheredKeys keys;
};

struct Axis {
  std::string title;
  Place place;
  Side sides[2];  // negative, positive
  std::optional<ForeignMotion> motion;
  bool reversed = false;
  bool gradient = false;
  std::uint32_t speed = 0;
  const Word* throttle = nullptr;
  const Words* deadZone = nullptr;
  std::uint32_t deadZoneWidth = 0;
};

class LytReader {
 public:
  LytReader(const ForeignChoice& choice, ForeignProfile* profile)
      : choice(choice), profile(*profile) {
    if (axes.empty()) axes = {0, 1, 2, 3, 4, 5};
  }

  bool Read(const std::string& bytes, ForeignFault* faultOut) {
    std::size_t number = 0;
    for (std::size_t begin = 0; begin < bytes.size() && !failed;) {
      const std::size_t end = std::min(bytes.find('\n', begin), bytes.size());
      ReadLine(WordsOf(bytes.substr(begin, end - begin), ++number));
      begin = end + 1;
    }
    if (inside) Fail(opened, "this joystick has no '}'");
    if (!found) Fail({}, MissingText());
    if (failed) *faultOut = fault;
    return !failed;
  }

 private:
  std::string MissingText() const {
    if (!any) return "neither an .amgp nor a .lyt: it has no 'Joystick 1 {'";
    return "it has no joystick " + std::to_string(choice.section);
  }

  // The first one stands.
  void Fail(Place place, const std::string& what) {
    if (!failed) fault = {place, what};
    failed = true;
  }

  std::uint32_t Number(const Word& word) {
    const auto number = platform::ParseWholeNumber(word.text);
    if (!number || *number > UINT32_MAX) Fail(word.place, "not a number");
    return number ? static_cast<std::uint32_t>(*number) : 0;
  }
  // Of a setting such as "dZone 5538".
  std::uint32_t NumberOf(const Words& setting) {
    if (setting.size() != 2) {
      Fail(setting[0].place, "one number belongs here");
      return 0;
    }
    return Number(setting[1]);
  }

  void ReadLine(const Words& words) {
    if (words.empty()) return;
    if (words.size() > kMostWords) return Fail(words.back().place, "this line has too many words");
    if (!inside) return Open(words);
    if (words[0].text == "}" && words.size() == 1) {
      inside = false;
      return;
    }
    const bool isAxis = words[0].text == "axis";
    if ((!isAxis && words[0].text != "button") || words.size() < 3 || words[2].text != ":") {
      return Fail(words[0].place, "not an axis, a button or a '}'");
    }
    const std::uint32_t number = Number(words[1]);
    const std::vector<Words> settings = SettingsOf(words);
    if (failed || settings.empty()) return;
    if (!chosen) return LeaveOutJoystick();
    if (isAxis) {
      ReadAxis(number, words[0].place, settings);
    } else {
      ReadButton(number, words[0].place, settings);
    }
  }

  void Open(const Words& words) {
    if (words.size() != 3 || words[0].text != "joystick" || words[2].text != "{") {
      return Fail(words[0].place, any ? "not 'Joystick 2 {'"
                                      : "neither an .amgp nor a .lyt: 'Joystick 1 {' is missing");
    }
    joystick = Number(words[1]);
    inside = any = true;
    opened = words[0].place;
    told = false;
    if (choice.section != 0) {
      chosen = joystick == choice.section;
    } else {
      chosen = !found || joystick == taken;
    }
    if (!chosen) return;
    found = true;
    taken = joystick;
  }

  // Once, where it has anything.
  void LeaveOutJoystick() {
    const std::string number = std::to_string(joystick);
    if (!told) {
      profile.LeaveOut(opened, "joystick " + number + ": a profile is for one pad; --set " +
                                   number + " takes this one");
    }
    told = true;
  }

  // The axes that the pad has, and then its hats, two to each. Nothing for one beyond them.
  std::optional<ForeignInput> InputOfAxis(std::uint32_t number, bool positive) const {
    if (number == 0) return std::nullopt;
    const std::size_t index = number - 1;
    if (index < axes.size()) return AxisInput(axes[index], positive);
    const std::size_t hat = (index - axes.size()) / 2;
    if (hat >= kHats) return std::nullopt;
    const bool vertical = (index - axes.size()) % 2 == 1;
    const std::uint16_t direction =
        vertical ? (positive ? PovDown : PovUp) : (positive ? PovRight : PovLeft);
    return HatInput(static_cast<std::uint16_t>(hat), direction);
  }

  void ReadAxis(std::uint32_t number, Place place, const std::vector<Words>& settings) {
    Axis axis;
    axis.title = "axis " + std::to_string(number);
    axis.place = place;
    for (const bool positive : {false, true}) {
      const auto input = InputOfAxis(number, positive);
      if (!input) return profile.LeaveOut(place, axis.title + ": no pad has so many");
      Side& side = axis.sides[positive ? 1 : 0];
      side.title = axis.title + (positive ? " +" : " -");
      side.place = place;
      side.input = *input;
    }
    for (const Words& setting : settings) ReadAxisSetting(setting, &axis);
    if (!failed) AddAxis(&axis);
  }

  void ReadAxisSetting(const Words& setting, Axis* axis) {
    const std::string& name = setting[0].text;
    if (name == "gradient") {
      axis->gradient = true;
    } else if (name == "throttle+" || name == "throttle-") {
      axis->throttle = &setting[0];
    } else if (name == "dzone") {
      axis->deadZone = &setting;
      axis->deadZoneWidth = NumberOf(setting);
    } else if (name == "maxspeed") {
      axis->speed = std::min(NumberOf(setting), 10'000U) * (1000 / kSpeedUnit);
    } else if (name == "mouse+h" || name == "mouse-h" || name == "mouse+v" || name == "mouse-v") {
      axis->motion = name[6] == 'h' ? ForeignMotion::X : ForeignMotion::Y;
      axis->reversed = name[5] == '-';
    } else if (name == "+key" || name == "-key" || name == "+mouse" || name == "-mouse") {
      ReadKeys(setting, name.substr(1) == "mouse", &axis->sides[name[0] == '+' ? 1 : 0]);
    } else {
      LeaveOutSetting(axis->title, setting);
    }
  }

  void LeaveOutSetting(const std::string& title, const Words& setting) {
    std::string text;
    for (const Word& word : setting) text += " " + word.written;
    profile.LeaveOut(setting[0].place, title + ":" + text);
  }

  // The codes behind the name; 0 is none.
  void ReadKeys(const Words& setting, bool mouse, Side* side) {
    if (setting.size() < 2) return Fail(setting[0].place, "a number belongs behind it");
    for (auto word = setting.begin() + 1; word != setting.end(); ++word) {
      const std::uint32_t code = Number(*word);
      if (failed || code == 0) continue;
      if (mouse && (code == 4 || code == 5)) {
        profile.Add(
            ForeignMouseMove{word->place, side->input, ForeignMotion::Wheel, code == 5, 0, 0});
        continue;
      }
      const std::string key = mouse ? MouseButtonKey(code) : KeyOfX11(code);
      if (key.empty()) {
        profile.LeaveOut(word->place, side->title + ": no key for " + (mouse ? "mouse " : "key ") +
                                          std::to_string(code));
      } else {
        side->keys.Press(key);
      }
    }
  }

  void AddAxis(Axis* axis) {
    const auto change = [this, axis](const std::string& what) {
      profile.Change(axis->place, axis->title + ": " + what);
    };
    if (axis->motion) {
      for (const bool positive : {false, true}) {
        profile.Add(ForeignMouseMove{axis->place, axis->sides[positive ? 1 : 0].input,
                                     *axis->motion, positive != axis->reversed, axis->speed,
                                     axis->deadZoneWidth});
      }
      if (!axis->gradient) change("the further it is pushed, the faster the pointer moves");
      return;
    }
    bool any = false;
    for (Side& side : axis->sides) {
      if (side.keys.IsEmpty()) continue;
      any = true;
      Add(side, false);
    }
    if (!any) return;
    if (axis->deadZone) LeaveOutSetting(axis->title, *axis->deadZone);
    if (axis->gradient) change("a key is held past half of the way, not for a share of the time");
    if (axis->throttle) change(axis->throttle->written + ": a key counts from half of the way on");
  }

  void ReadButton(std::uint32_t number, Place place, const std::vector<Words>& settings) {
    Side side;
    side.title = "button " + std::to_string(number);
    side.place = place;
    if (number == 0 || number > kMostButtons) {
      return profile.LeaveOut(place, side.title + ": a Trigger takes the buttons 1 to 64");
    }
    side.input = ButtonInput(number);
    bool rapid = false;
    for (const Words& setting : settings) {
      const std::string& name = setting[0].text;
      if (name == "rapidfire") {
        rapid = true;
      } else if (name == "sticky") {
        profile.Change(setting[0].place,
                       side.title + ": sticky: the keys are down only while it is held");
      } else if (name == "key" || name == "mouse") {
        ReadKeys(setting, name == "mouse", &side);
      } else {
        LeaveOutSetting(side.title, setting);
      }
    }
    if (!failed && !side.keys.IsEmpty()) Add(side, rapid);
  }

  void Add(const Side& side, bool rapid) {
    ForeignControl control;
    control.place = side.place;
    control.input = side.input;
    control.keys = side.keys;
    control.repeatEvery = rapid ? kRapidFire : 0;
    profile.Add(control);
  }

  const ForeignChoice& choice;
  ForeignProfile& profile;
  std::vector<std::uint16_t> axes = choice.axes;
  std::uint32_t joystick = 0;  // the one that is open, or was
  std::uint32_t taken = 0;
  Place opened;
  bool inside = false;
  bool any = false;     // a joystick was there
  bool chosen = false;  // this joystick is the one to be read
  bool found = false;
  bool told = false;
  bool failed = false;
  ForeignFault fault;
};

}  // namespace

bool ReadLyt(const std::string& bytes, const ForeignChoice& choice, ForeignProfile* profile,
             ForeignFault* fault) {
  return LytReader(choice, profile).Read(bytes, fault);
}

}  // namespace kelvaro::console
