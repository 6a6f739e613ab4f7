#include "rendlink/launcher.h"

#include "app/platform/byte_text.h"
#include "app/platform/files.h"
#include "app/platform/processes.h"
#include "app/resources/desktop_id.h"
#include "foundation/paths.h"
#include "rendlink/desktop_entry.h"
#include "rendlink/files.h"
#include "rendlink/profiles.h"
#include "rendlink/target_icon.h"

namespace kelvaro::rendlink {
namespace {

std::string InWords(const std::vector<std::string>& profiles) {
  std::string text = profiles.size() == 1 ? "the profile " : "the profiles ";
  for (std::size_t i = 0; i < profiles.size(); ++i) {
    if (i > 0) text += i + 1 == profiles.size() ? " and " : ", ";
    text += profiles[i];
  }
  return text;
}

std::string SystemError() {
  ByteString text = SystemErrorText(platform::files().GetLastError());
  text.Trim(0, 32);
  return Bytes(text);
}

}  // namespace

bool FindKelvaro(std::string* path, std::string* refusal) {
  const std::string folder = Bytes(ProgramFolder());
  *path = folder + platform::files().PathSeparator() + "kelvaro";
  if (IsFile(*path)) return true;
  *refusal = "The program kelvaro isn't in " + (folder.empty() ? std::string("/") : folder) +
             ", where Rendlink lies.";
  return false;
}

bool MakeReady(const Launch& chosen, Session& session, Ready* ready, std::string* refusal) {
  std::string kelvaro;
  if (!FindKelvaro(&kelvaro, refusal)) return false;
  Ready made;
  made.launch = chosen;
  if (!chosen.target.empty()) made.launch.target = session.FullPath(chosen.target);
  if (!chosen.dir.empty()) made.launch.dir = session.FullPath(chosen.dir);
  // First: a name with a zero byte, say, can't be looked for.
  const QuoteChars chars = LoadQuoteChars();
  if (!KelvaroWords(kelvaro, made.launch, chars, &made.words, refusal)) return false;
  if (!FindProfiles(StoredProfiles(), &made.launch.profiles, refusal)) return false;
  if (!IsFile(made.launch.target)) {
    *refusal = "There is no file " + made.launch.target + ".";
    return false;
  }
  if (!made.launch.dir.empty() && !IsFolder(made.launch.dir)) {
    *refusal = "There is no folder " + made.launch.dir + ".";
    return false;
  }
  if (!KelvaroWords(kelvaro, made.launch, chars, &made.words, refusal)) return false;
  *ready = made;
  return true;
}

bool SaveLauncher(const Ready& ready, const std::string& path, Session& session,
                  std::string* refusal) {
  DesktopEntry entry;
  entry.name = Stem(path);
  entry.comment = "Starts " + Stem(ready.launch.target) + " with " + InWords(ready.launch.profiles);
  entry.icon = IconOf(ready.launch.target, session.ApplicationsFolders());
  // A launcher can do without a picture whose path it can't hold.
  if (!platform::IsUtf8(entry.icon)) entry.icon = kDesktopId;
  entry.exec = ready.words;
  std::string text;
  if (!DesktopEntryText(entry, &text, refusal)) return false;
  std::string error;
  if (!WriteFile(path, text, &error)) {
    *refusal = "The launcher " + path + " can't be written: " + error + ".";
    return false;
  }
  if (session.AllowStart(path)) return true;
  *refusal = "The launcher " + path +
             " was written, but the system refuses to make it one that can be started.";
  return false;
}

bool StartNow(const Ready& ready, std::string* refusal) {
  platform::PROCESS_INFORMATION started;
  if (!platform::processes().CreateProcessA(ready.words[0], ProcessLine(ready.words),
                                            platform::CREATE_NEW_CONSOLE, nullptr, &started)) {
    *refusal = "Kelvaro can't be started: " + SystemError() + ".";
    return false;
  }
  if (started.hThread != platform::kInvalidHandle) platform::threads().CloseHandle(started.hThread);
  platform::threads().CloseHandle(started.hProcess);
  return true;
}

std::string Stem(const std::string& path) {
  const std::string name = path.substr(path.rfind(platform::files().PathSeparator()) + 1);
  const std::size_t dot = name.rfind('.');
  return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

}  // namespace kelvaro::rendlink
