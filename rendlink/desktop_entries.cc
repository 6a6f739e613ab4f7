#include "rendlink/desktop_entries.h"

#include "app/platform/byte_text.h"
#include "app/resources/desktop_id.h"
#include "rendlink/desktop_entry.h"
#include "rendlink/files.h"
#include "rendlink/target_icon.h"

namespace kelvaro::rendlink {

bool DesktopEntries::Save(const LauncherFacts& launcher, const std::string& path,
                          std::string* refusal) {
  DesktopEntry entry;
  entry.name = Stem(path);
  entry.comment = launcher.comment;
  entry.icon = IconOf(launcher.target, system.ApplicationsFolders());
  // A launcher can do without a picture whose path it can't hold.
  if (!platform::IsUtf8(entry.icon)) entry.icon = kDesktopId;
  entry.exec = launcher.words;
  std::string text;
  if (!DesktopEntryText(entry, &text, refusal) || !WriteLauncher(path, text, refusal)) return false;
  if (system.AllowStart(path)) return true;
  *refusal = "The launcher " + path +
             " was written, but the system refuses to make it one that can be started.";
  return false;
}

}  // namespace kelvaro::rendlink
