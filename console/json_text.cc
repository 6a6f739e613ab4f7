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

}  // namespace kelvaro::console
