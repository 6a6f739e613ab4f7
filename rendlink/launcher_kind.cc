#include "rendlink/launcher_kind.h"

#include "app/platform/byte_text.h"
#include "rendlink/files.h"

namespace kelvaro::rendlink {

bool CanHold(const std::string& what, const std::string& text, std::string* refusal) {
  for (const char c : text) {
    if ((static_cast<unsigned char>(c) >= 32 && c != 127) || c == '\t') continue;
    *refusal = what + " has a control character in it, which a launcher can't hold.";
    return false;
  }
  if (platform::IsUtf8(text)) return true;
  *refusal = what + " isn't UTF-8 text, and a launcher can't hold other.";
  return false;
}

bool CanHold(const Words& words, std::string* refusal) {
  for (const std::string& word : words)
    if (!CanHold("The word \"" + word + "\"", word, refusal)) return false;
  return true;
}

bool WriteLauncher(const std::string& path, const std::string& bytes, std::string* refusal) {
  std::string error;
  if (WriteFile(path, bytes, &error)) return true;
  *refusal = "The launcher " + path + " can't be written: " + error + ".";
  return false;
}

}  // namespace kelvaro::rendlink
