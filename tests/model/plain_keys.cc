#include "tests/model/plain_keys.h"

namespace kelvaro::plain {
namespace {

constexpr std::uint8_t kShift = 0x01;
constexpr std::uint8_t kCtrl = 0x02;
constexpr std::uint8_t kAlt = 0x04;
constexpr std::uint8_t kImpliedShift = 0x08;
constexpr std::uint8_t kMouse = 0x10;
constexpr std::uint8_t kLeft = 0x20;
constexpr std::uint8_t kRight = 0x40;
constexpr std::uint8_t kPause = 0x80;

std::uint8_t Byte(unsigned value) { return static_cast<std::uint8_t>(value & 0xFF); }

// ---- Reading ----

struct Token {
  const char* name;
  std::uint8_t vk;
  std::uint8_t scan;
  std::uint8_t flags;
};

// Some of each kind; another test goes through all names.
constexpr Token kTokens[] = {
    {"Shift", 0x00, 0x00, 0x01},  {"LShift", 0x00, 0x00, 0x21}, {"RShift", 0x00, 0x00, 0x41},
    {"Ctrl", 0x00, 0x00, 0x02},   {"LCtrl", 0x00, 0x00, 0x22},  {"RCtrl", 0x00, 0x00, 0x42},
    {"Alt", 0x00, 0x00, 0x04},    {"LAlt", 0x00, 0x00, 0x24},   {"RAlt", 0x00, 0x00, 0x44},
    {"Space", 0x20, 0x39, 0x00},  {"Esc", 0x1B, 0x01, 0x00},    {"Del", 0x2E, 0xD3, 0x00},
    {"Up", 0x26, 0xC8, 0x00},     {"Cancel", 0x03, 0x00, 0x00}, {"NPEnter", 0x0D, 0x9C, 0x00},
    {"NP.", 0x2E, 0x53, 0x00},    {"F12", 0x7B, 0x58, 0x00},    {"LWin", 0x5B, 0xDB, 0x20},
    {"LMenu", 0xA4, 0x00, 0x00},  {"LMouse", 0x00, 0x00, 0x30}, {"MMouse", 0x00, 0x00, 0x10},
    {"RMouse", 0x00, 0x00, 0x50}, {"X1Mouse", 0x05, 0x00, 0x00}};

struct Character {
  char character;
  std::uint8_t vk;
  std::uint8_t scan;
  std::uint8_t flags;
};

constexpr Character kCharacters[] = {
    {' ', 0x20, 0x39, 0}, {';', 0xBA, 0x27, 0}, {',', 0xBC, 0x33, 0},
    {'.', 0xBE, 0x34, 0}, {':', 0xBA, 0x27, 8}, {'>', 0xBE, 0x34, 8},
    {'!', 0x31, 0x02, 8}, {')', 0x30, 0x0B, 8}, {'"', 0xDE, 0x28, 8}};

constexpr std::uint8_t kLetterScans[] = {0x1E, 0x30, 0x2E, 0x20, 0x12, 0x21, 0x22, 0x23, 0x17,
                                         0x24, 0x25, 0x26, 0x32, 0x31, 0x18, 0x19, 0x10, 0x13,
                                         0x1F, 0x14, 0x16, 0x2F, 0x11, 0x2D, 0x15, 0x2C};

bool FindCharacter(char c, Step* step) {
  if (c >= 'a' && c <= 'z') {
    step->vk = Byte(static_cast<unsigned>(c - 'a' + 'A'));
    step->scan = kLetterScans[c - 'a'];
    return true;
  }
  if (c >= '0' && c <= '9') {
    step->vk = Byte(static_cast<unsigned>(c));
    step->scan = c == '0' ? 0x0B : Byte(static_cast<unsigned>(c - 0x2F));
    return true;
  }
  if (c >= 'A' && c <= 'Z') {
    step->vk = Byte(static_cast<unsigned>(c));
    step->scan = kLetterScans[c - 'A'];
    step->flags |= kImpliedShift;
    return true;
  }
  for (const Character& row : kCharacters) {
    if (row.character != c) continue;
    step->vk = row.vk;
    step->scan = row.scan;
    step->flags |= row.flags;
    return true;
  }
  return false;
}

std::string Upper(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

const Token* FindToken(const std::string& name) {
  for (const Token& token : kTokens) {
    if (Upper(token.name) == Upper(name)) return &token;
  }
  return nullptr;
}

bool IsPause(const std::string& name) {
  if (name.size() <= 2 || Upper(name.substr(0, 2)) != "P:") return false;
  return name.find_first_not_of("0123456789", 2) == std::string::npos;
}

// One reading under way. Each function that can fail returns false where it does, with the text
// left as it is there.
struct Reader {
  std::string text;  // what is left of it
  const bool holdAll;
  std::vector<Step> steps;
  bool duplicateKey = false;
  Step step;                          // under construction; its flags gather pending modifiers
  std::vector<std::uint8_t> pending;  // each modifier since the last step, as written

  void Flush() {
    for (const std::uint8_t flags : pending) steps.push_back({0, 0, flags});
  }

  void Append() {
    steps.push_back(step);
    step = Step();
  }

  bool HasKey(std::uint8_t vk) const {
    for (const Step& each : steps) {
      if (vk != 0 && each.vk == vk) return true;
    }
    return false;
  }

  bool HasModifier(std::uint8_t flags) const {
    for (const Step& each : steps) {
      if ((flags & 7 & each.flags) != 0) return true;
    }
    return false;
  }

  bool Duplicate() {
    duplicateKey = true;
    return false;
  }

  bool ReadCharacter() {
    if (!FindCharacter(text[0], &step)) return false;
    if (holdAll && HasKey(step.vk)) return Duplicate();
    text.erase(0, 1);
    Append();
    pending.clear();
    return true;
  }

  bool ReadLessThan() {
    if (step.flags != 0) Flush();
    pending.clear();
    if (holdAll && HasKey(0xBC)) return Duplicate();
    text.erase(0, text.size() == 1 ? 1 : 2);
    step = {0xBC, 0x33, kImpliedShift};
    Append();
    return true;
  }

  bool ReadPause(const std::string& digits, std::size_t length) {
    if (step.flags != 0) Flush();
    pending.clear();
    text.erase(0, length);
    std::uint32_t ms = 0;
    for (const char digit : digits) ms = ms * 10 + static_cast<std::uint32_t>(digit - '0');
    step = {Byte(ms >> 8), Byte(ms), kPause};
    Append();
    return true;
  }

  // The modifiers of a step; the shift that a character needs is one, too.
  static unsigned Modifiers(unsigned flags) {
    return (flags & 15) | ((flags & kImpliedShift) != 0 ? kShift : 0u);
  }

  bool ReadToken() {
    const std::size_t end = text.find('>');
    if (end == std::string::npos) return false;
    const std::string name = text.substr(1, end - 1);
    if (name.empty()) return false;
    if (IsPause(name)) return ReadPause(name.substr(2), end + 1);
    const Token* const token = FindToken(name);
    if (!token) return false;
    if (holdAll && (HasKey(token->vk) || HasModifier(token->flags))) return Duplicate();
    if (step.flags != 0) {
      bool combine = true;
      if ((token->flags & kMouse) != 0) {
        combine = false;
      } else if ((Modifiers(step.flags) & Modifiers(token->flags)) != 0) {
        if (holdAll) return Duplicate();
        combine = false;
      }
      if (!combine) {
        Flush();
        step = Step();
        pending.clear();
      }
    }
    text.erase(0, end + 1);
    step.flags |= token->flags;
    if (token->vk != 0) {
      step.vk = token->vk;
      step.scan = token->scan;
      Append();
      pending.clear();
    } else if ((step.flags & kMouse) != 0) {
      step.vk = 0;
      step.scan = 0;
      Append();
      pending.clear();
    } else {
      pending.push_back(token->flags);
    }
    return true;
  }

  bool ReadOne() {
    if (text[0] != '<') return ReadCharacter();
    if (text.size() == 1 || text[1] == '<') return ReadLessThan();
    return ReadToken();
  }
};

// ---- Replay ----

constexpr std::uint32_t kExtended = 1;
constexpr std::uint32_t kUp = 2;

void SendKey(std::vector<Moment>* moments, std::uint8_t vk, std::uint8_t scan, bool up) {
  Moment moment;
  moment.event.isKey = true;
  moment.event.vk = vk;
  moment.event.scan = scan;
  moment.event.flags = ((scan & 0x80) != 0 ? kExtended : 0) | (up ? kUp : 0);
  moments->push_back(moment);
}

void SendButton(std::vector<Moment>* moments, std::uint32_t flags) {
  Moment moment;
  moment.event.flags = flags;
  moments->push_back(moment);
}

void Wait(std::vector<Moment>* moments, std::uint32_t ms) {
  if (ms == 0) return;
  Moment moment;
  moment.wait = ms;
  moments->push_back(moment);
}

void SendModifiers(std::vector<Moment>* moments, std::uint8_t flags, bool up) {
  const bool left = (flags & kLeft) != 0;
  const bool right = (flags & kRight) != 0;
  if ((flags & (kShift | kImpliedShift)) != 0) {
    if (left) {
      SendKey(moments, 0xA0, 0x2A, up);
    } else if (right) {
      SendKey(moments, 0xA1, 0x36, up);
    } else {
      SendKey(moments, 0x10, 0x2A, up);
    }
  }
  if ((flags & kCtrl) != 0) {
    if (left) {
      SendKey(moments, 0xA2, 0x1D, up);
    } else if (right) {
      SendKey(moments, 0xA3, 0x9D, up);
    } else {
      SendKey(moments, 0x11, 0x1D, up);
    }
  }
  if ((flags & kAlt) != 0) {
    if (left) {
      SendKey(moments, 0xA4, 0x38, up);
    } else if (right) {
      SendKey(moments, 0xA5, 0xB8, up);
    } else {
      SendKey(moments, 0x12, 0x38, up);
    }
  }
  if ((flags & kMouse) != 0) {
    if (left) {
      SendButton(moments, up ? 4 : 2);
    } else if (right) {
      SendButton(moments, up ? 0x10 : 8);
    } else {
      SendButton(moments, up ? 0x40 : 0x20);
    }
  }
}

}  // namespace

Reading ReadKeys(const std::string& text, bool holdAll) {
  Reader reader{text, holdAll, {}, false, {}, {}};
  Reading reading;
  while (!reader.text.empty()) {
    if (reader.ReadOne()) continue;
    reading.result = static_cast<int>(text.size() - reader.text.size());
    break;
  }
  if (reader.text.empty() && reader.step.flags != 0) reader.Flush();
  reading.steps = reader.steps;
  reading.duplicateKey = reader.duplicateKey;
  return reading;
}

std::vector<Moment> Replay(const Action& action, bool repeat, std::uint32_t holdTime,
                           std::uint32_t releasePause) {
  std::vector<Moment> moments;
  bool first = true;
  bool afterPause = false;
  unsigned heldModifiers = 0;
  std::uint8_t vk = 0;
  std::uint8_t scan = 0;
  std::uint8_t flags = 0;
  if (!repeat && action.holdAll) {
    holdTime = 0;
    releasePause = 0;
  }
  for (const Step& step : action.steps) {
    if (!action.holdAll) {
      if (vk != 0) SendKey(&moments, vk, scan, true);
      if (flags != 0) SendModifiers(&moments, flags, true);
    }
    vk = step.vk;
    scan = step.scan;
    flags = step.flags;
    if ((flags & kPause) != 0) {
      Wait(&moments, vk * 256u + scan);
      afterPause = true;
    } else {
      if (!first && releasePause != 0 && !afterPause) Wait(&moments, releasePause);
      if (flags != 0) {
        if (action.holdAll) {
          flags = Byte(flags & ~(heldModifiers & 0x0F));
          if (flags != 0) {
            SendModifiers(&moments, flags, false);
            heldModifiers |= flags;
          }
        } else {
          SendModifiers(&moments, flags, false);
        }
      }
      if (vk != 0) SendKey(&moments, vk, scan, false);
      Wait(&moments, holdTime);
      afterPause = false;
    }
    first = false;
  }
  if (repeat) {
    if (vk != 0) SendKey(&moments, vk, scan, true);
    if (flags != 0) SendModifiers(&moments, flags, true);
  }
  return moments;
}

std::vector<Moment> Release(const Action& action) {
  std::vector<Moment> moments;
  if (action.holdAll) {
    unsigned letGo = 0;
    for (const Step& step : action.steps) {
      if ((step.flags & kPause) != 0) continue;
      if (step.flags != 0) {
        const std::uint8_t flags = Byte(step.flags & ~(letGo & 0x0F));
        if (flags != 0) {
          SendModifiers(&moments, flags, true);
          letGo |= flags;
        }
      }
      if (step.vk != 0) SendKey(&moments, step.vk, step.scan, true);
    }
  } else if (!action.steps.empty()) {
    const Step& last = action.steps.back();
    if ((last.flags & kPause) != 0) return moments;
    if (last.flags != 0) SendModifiers(&moments, last.flags, true);
    if (last.vk != 0) SendKey(&moments, last.vk, last.scan, true);
  }
  return moments;
}

}  // namespace kelvaro::plain
