#include "rendlink/shortcuts.h"

#include <cstddef>

#include "app/platform/file_pattern.h"
#include "rendlink/target_icon.h"

namespace kelvaro::rendlink {
namespace {

// Of a path, in units of UTF-16.
constexpr std::size_t kLongestPath = 259;

std::size_t Units(const std::string& text) {
  std::size_t units = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0) != 0x80) units += byte >= 0xF0 ? 2 : 1;
  }
  return units;
}

// A program has its own pictures in it; what else can be started has one beside it, or Kelvaro's.
std::string PictureOf(const LauncherFacts& launcher) {
  std::string icon = PictureBeside(launcher.target, {".ico"});
  if (icon.empty() && platform::Folded(launcher.target).ends_with(".exe")) icon = launcher.target;
  return icon.empty() || Units(icon) > kLongestPath ? launcher.words[0] : icon;
}

}  // namespace

bool Shortcuts::Save(const LauncherFacts& launcher, const std::string& path, std::string* refusal) {
  if (!CanHold(launcher.words, refusal) || !CanHold("The comment", launcher.comment, refusal))
    return false;
  const std::string& kelvaro = launcher.words[0];
  if (Units(kelvaro) > kLongestPath) {
    *refusal = "The path " + kelvaro +
               " is longer than a shortcut can hold. Move Kelvaro to a folder with a shorter path.";
    return false;
  }
  const Shortcut shortcut{kelvaro, ProcessLine({launcher.words.begin() + 1, launcher.words.end()}),
                          launcher.comment, PictureOf(launcher)};
  std::string bytes;
  std::string error;
  if (maker.Make(shortcut, &bytes, &error)) return WriteLauncher(path, bytes, refusal);
  *refusal = "Windows makes no shortcut of this: " + error + ".";
  return false;
}

}  // namespace kelvaro::rendlink
