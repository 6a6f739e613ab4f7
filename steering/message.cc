#include "steering/message.h"

#include <algorithm>

namespace kelvaro {
namespace {

constexpr std::string_view kGreeting = "kelvaro ";

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool IsKind(std::string_view text) {
  return !text.empty() &&
         std::all_of(text.begin(), text.end(), [](char c) { return IsLetter(c) || c == '-'; });
}

bool IsName(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), IsLetter);
}

std::string Escaped(const std::string& value) {
  std::string text;
  for (const char c : value) {
    if (c == '\n') {
      text += "\\n";
    } else if (c == '\\') {
      text += "\\\\";
    } else {
      text += c;
    }
  }
  return text;
}

bool Unescape(std::string_view text, std::string* value) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      *value += text[i];
      continue;
    }
    if (++i == text.size() || (text[i] != 'n' && text[i] != '\\')) return false;
    *value += text[i] == 'n' ? '\n' : '\\';
  }
  return true;
}

// Takes the first line, without its end, from *text.
std::string_view TakeLine(std::string_view* text) {
  const std::size_t end = std::min(text->find('\n'), text->size());
  const std::string_view line = text->substr(0, end);
  text->remove_prefix(std::min(end + 1, text->size()));
  return line;
}

bool ParseFirstLine(std::string_view line, SteeringMessage* message, std::string* error) {
  *error = "this isn't a message";
  if (line.substr(0, kGreeting.size()) != kGreeting) return false;
  line.remove_prefix(kGreeting.size());
  const std::size_t blank = line.find(' ');
  if (blank == std::string_view::npos) return false;
  const std::string_view version = line.substr(0, blank);
  if (version != std::to_string(kSteeringVersion)) {
    *error = "only version " + std::to_string(kSteeringVersion) + " is spoken here";
    return false;
  }
  message->kind = line.substr(blank + 1);
  return IsKind(message->kind);
}

}  // namespace

SteeringMessage& SteeringMessage::Add(const std::string& name, const std::string& value) {
  fields.emplace_back(name, value);
  return *this;
}

SteeringMessage& SteeringMessage::Add(const std::string& name, std::uint32_t value) {
  return Add(name, std::to_string(value));
}

SteeringMessage& SteeringMessage::AddFlag(const std::string& name, bool value) {
  return Add(name, std::string(value ? "yes" : "no"));
}

const std::string* SteeringMessage::Find(std::string_view name) const {
  const auto found = std::find_if(fields.begin(), fields.end(),
                                  [name](const auto& field) { return field.first == name; });
  return found == fields.end() ? nullptr : &found->second;
}

std::string SteeringMessage::Text() const {
  std::string text = std::string(kGreeting) + std::to_string(kSteeringVersion) + ' ' + kind;
  for (const auto& [name, value] : fields) text += '\n' + name + ' ' + Escaped(value);
  return text;
}

std::optional<SteeringMessage> ParseSteeringMessage(std::string_view text, std::string* error) {
  SteeringMessage message;
  if (!ParseFirstLine(TakeLine(&text), &message, error)) return std::nullopt;
  *error = "a field of the message is spoilt";
  while (!text.empty()) {
    const std::string_view line = TakeLine(&text);
    const std::size_t blank = line.find(' ');
    if (blank == std::string_view::npos || !IsName(line.substr(0, blank))) return std::nullopt;
    std::string value;
    if (!Unescape(line.substr(blank + 1), &value)) return std::nullopt;
    message.Add(std::string(line.substr(0, blank)), value);
  }
  error->clear();
  return message;
}

}  // namespace kelvaro
