#include "rendlink/launcher.h"

#include "app/platform/files.h"
#include "app/platform/processes.h"
#include "foundation/paths.h"
#include "rendlink/files.h"
#include "rendlink/profiles.h"

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

}  // namespace

bool FindKelvaro(std::string* path, std::string* refusal) {
  *refusal = ProgramPathRefusal();
  if (!refusal->empty()) return false;
  const std::string own = Bytes(ProgramPath());
  const std::string ending = own.substr(own.rfind(Stem(own)) + Stem(own).size());
  const std::string name = "kelvaro" + ending;
  const std::string folder = Bytes(ProgramFolder());
  *path = folder + platform::files().PathSeparator() + name;
  if (IsFile(*path)) return true;
  *refusal = "The program " + name + " isn't in " + (folder.empty() ? std::string("/") : folder) +
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
  const std::string comment =
      "Starts " + Stem(ready.launch.target) + " with " + InWords(ready.launch.profiles);
  return session.Launchers().Save({comment, ready.launch.target, ready.words}, path, refusal);
}

bool StartNow(const Ready& ready, std::string* refusal) {
  platform::PROCESS_INFORMATION started;
  if (!platform::processes().CreateProcessA(ready.words[0], ProcessLine(ready.words),
                                            platform::CREATE_NEW_CONSOLE, nullptr, &started)) {
    *refusal = "Kelvaro can't be started: " + ErrorText() + ".";
    return false;
  }
  if (started.hThread != platform::kInvalidHandle) platform::threads().CloseHandle(started.hThread);
  platform::threads().CloseHandle(started.hProcess);
  return true;
}

}  // namespace kelvaro::rendlink
