#include "rendlink/target_icon.h"

#include <algorithm>
#include <map>
#include <memory>

#include "app/platform/entry_text.h"
#include "app/platform/files.h"
#include "app/resources/desktop_id.h"
#include "foundation/paths.h"
#include "rendlink/desktop_entry.h"
#include "rendlink/files.h"

namespace kelvaro::rendlink {
namespace {

// A desktop entry is a page or two; what is longer isn't one.
constexpr std::uint32_t kLongestEntry = 1 << 20;

std::string NameOf(const std::string& path) {
  return path.substr(path.rfind(platform::files().PathSeparator()) + 1);
}

// An entry names its program by the full path, or by the name alone, as a shell would find it.
bool Starts(const std::map<std::string, std::string>& entry, const std::string& target) {
  const auto exec = entry.find("Exec");
  if (exec == entry.end()) return false;
  const Words words = ExecWords(exec->second);
  return !words.empty() && (words[0] == target || words[0] == NameOf(target));
}

std::string IconByEntries(const std::string& folder, const std::string& target) {
  const std::string start = folder + platform::files().PathSeparator();
  platform::FindData found;
  std::vector<std::string> names;
  const auto search = platform::files().FindFirstFileA(start + "*.desktop", &found);
  for (bool more = search != nullptr; more; more = search->FindNextFileA(&found))
    names.push_back(found.name);
  std::sort(names.begin(), names.end());
  for (const std::string& name : names) {
    std::string text;
    if (!ReadFile(start + name, kLongestEntry, &text)) continue;
    const auto entry = platform::ReadEntry(text);
    const auto icon = entry.find("Icon");
    if (icon != entry.end() && !icon->second.empty() && Starts(entry, target)) return icon->second;
  }
  return {};
}

}  // namespace

std::string PictureBeside(const std::string& target, const std::vector<const char*>& endings) {
  const std::string name = NameOf(target);
  const std::string folder = target.substr(0, target.size() - name.size());
  const std::size_t dot = name.rfind('.');
  std::vector<std::string> stems = {name};
  if (dot != std::string::npos && dot > 0) stems.insert(stems.begin(), name.substr(0, dot));
  stems.emplace_back("icon");
  for (const std::string& stem : stems) {
    for (const char* ending : endings) {
      std::string path = folder + stem + ending;
      if (path != target && IsFile(path)) return path;
    }
  }
  return {};
}

std::string IconOf(const std::string& target, const std::vector<std::string>& folders) {
  std::string icon = PictureBeside(target, {".svg", ".png", ".xpm"});
  for (std::size_t i = 0; icon.empty() && i < folders.size(); ++i)
    icon = IconByEntries(folders[i], target);
  return icon.empty() ? kDesktopId : icon;
}

}  // namespace kelvaro::rendlink
