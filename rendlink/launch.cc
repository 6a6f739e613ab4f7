#include "rendlink/launch.h"

#include <algorithm>
#include <cstdint>

namespace kelvaro::rendlink {
namespace {

std::uint8_t Byte(char c) { return static_cast<std::uint8_t>(c); }

bool IsControl(char c) { return (Byte(c) < 32 && c != '\t') || c == 127; }

// As a person reads it.
std::string CharName(char c) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  if (c == '\0') return "a zero byte";
  if (c == '\n') return "a line feed";
  if (c == '\r') return "a carriage return";
  if (c == '\t') return "a tab";
  if (c == ' ') return "a blank";
  if (c == '"') return "a double quote";
  if (Byte(c) > 32 && Byte(c) < 127) return std::string("the character ") + c;
  return std::string("the byte 0x") + kDigits[Byte(c) >> 4] + kDigits[Byte(c) & 15];
}

// Whether something can't be in any word; `subject` as "The target has".
bool Refuse(const std::string& subject, std::string_view word, const QuoteChars& chars,
            std::string* refusal) {
  for (const char c : word) {
    std::string why;
    if (IsControl(c)) {
      why = "which can't be carried.";
    } else if (c == '"') {
      why = "which Kelvaro's command line has no way to write.";
    } else if (c == chars.quoteSub) {
      why = "which stands for a double quote on Kelvaro's command line (QuoteSub).";
    } else {
      continue;
    }
    *refusal = subject;
    *refusal += " " + CharName(c) + ", ";
    *refusal += why;
    return true;
  }
  return false;
}

// Whether a double quote in "args=" may be written so.
bool StandsForQuote(char c, const QuoteChars& chars) {
  return c != '"' && c != chars.quoteSub && !IsControl(c);
}

// The value of "args=": each double quote as one of the characters that stand for it there.
bool WriteArgs(const std::string& args, const QuoteChars& chars, std::string* out,
               std::string* refusal) {
  char open = chars.leftArgQuote;
  char close = chars.rightArgQuote;
  if (!StandsForQuote(open, chars)) open = close;
  if (!StandsForQuote(close, chars)) close = open;
  std::string text;
  bool inside = false;
  for (const char c : args) {
    if (c == '"') {
      if (!StandsForQuote(open, chars)) {
        *refusal =
            "The arguments have a double quote, and QuoteChars.txt beside Kelvaro leaves no "
            "character that could stand for it.";
        return false;
      }
      text += inside ? close : open;
      inside = !inside;
      continue;
    }
    for (const auto& [stands, key] :
         {std::pair{chars.leftArgQuote, "LeftArgQuote"}, {chars.rightArgQuote, "RightArgQuote"}}) {
      if (c != stands) continue;
      *refusal = "The arguments have " + CharName(c) + ", which stands for a double quote there (" +
                 key + ").";
      return false;
    }
    text += c;
  }
  *out = text;
  return true;
}

}  // namespace

bool KelvaroWords(const std::string& kelvaro, const Launch& launch, const QuoteChars& chars,
                  Words* words, std::string* refusal) {
  if (launch.profiles.empty()) {
    *refusal = "Choose a profile.";
    return false;
  }
  if (launch.target.empty()) {
    *refusal = "Choose a target, which is the program to start.";
    return false;
  }
  if (chars.quoteSub == ' ') {
    *refusal =
        "QuoteChars.txt beside Kelvaro makes a blank stand for a double quote (QuoteSub); no "
        "command line can be written then.";
    return false;
  }
  std::string args;
  Words made = {kelvaro};
  std::vector<std::string> subjects = {"The path of Kelvaro has"};
  for (const std::string& profile : launch.profiles) {
    if (profile.empty()) {
      *refusal = "The name of a profile is empty.";
      return false;
    }
    made.push_back(profile);
    subjects.push_back("The name of the profile \"" + profile + "\" has");
  }
  made.push_back(launch.target);
  subjects.emplace_back("The target has");
  made.push_back(launch.dir);
  subjects.emplace_back("The folder has");
  for (std::size_t i = 0; i < made.size(); ++i)
    if (Refuse(subjects[i], made[i], chars, refusal)) return false;
  if (!WriteArgs(launch.args, chars, &args, refusal)) return false;
  if (Refuse("The arguments have", args, chars, refusal)) return false;

  made = {kelvaro};
  for (const std::string& profile : launch.profiles) made.push_back("profile=" + profile);
  made.push_back("target=" + launch.target);
  if (!args.empty()) made.push_back("args=" + args);
  if (!launch.dir.empty()) made.push_back("dir=" + launch.dir);
  for (std::size_t i = 1; i < made.size(); ++i) {
    const std::string key = made[i].substr(0, made[i].find('=') + 1);
    if (Refuse("Kelvaro's own word \"" + key + "\" has", key, chars, refusal)) return false;
  }
  *words = made;
  return true;
}

std::string ShellLine(const Words& words) {
  constexpr std::string_view kPlain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_@%+=:,./-";
  std::string line;
  for (const std::string& word : words) {
    if (!line.empty()) line += ' ';
    if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) {
      line += word;
      continue;
    }
    line += '\'';
    for (const char c : word) {
      if (c == '\'') {
        line += "'\\''";
      } else {
        line += c;
      }
    }
    line += '\'';
  }
  return line;
}

std::string ProcessLine(const Words& words) {
  std::string line;
  for (const std::string& word : words) {
    if (!line.empty()) line += ' ';
    line += '"' + word + '"';
  }
  return line;
}

std::string LineBehind(std::string_view line, std::size_t words) {
  const auto blank = [&](std::size_t i) { return line[i] == ' ' || line[i] == '\t'; };
  std::size_t at = 0;
  for (std::size_t word = 0; word < words; ++word) {
    bool quoted = false;
    std::size_t backslashes = 0;  // right before this byte
    for (; at < line.size() && (quoted || !blank(at)); ++at) {
      // In the program's own path, the first word, a backslash is one.
      if (line[at] == '"' && (backslashes % 2 == 0 || word == 0)) quoted = !quoted;
      backslashes = line[at] == '\\' ? backslashes + 1 : 0;
    }
    while (at < line.size() && blank(at)) ++at;
  }
  return std::string(line.substr(at));
}

}  // namespace kelvaro::rendlink
