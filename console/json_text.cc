#include "console/json_text.h"

namespace kelvaro::console {
std::string JsonText(const ByteString& text) { return JsonText(Bytes(text)); }

std::string JsonSteps(const KeySequence& steps) {
  std::string out = "[";
  for (const KeyStep& step : steps) {
    if (out.size() > 1) out += ',';
    out += '[' + std::to_string(step.vk) + ',' + std::to_string(step.scan) + ',' +
           std::to_string(step.flags) + ']';
  }
  return out + ']';
}

std::string Bytes(const ByteString& text) {
  return text.IsEmpty() ? std::string() : std::string(text.Text(), text.Length());
}

ByteString FromBytes(const std::string& bytes) {
  ByteString text;
  text.AssignBytes(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  return text;
}

}  // namespace kelvaro::console
