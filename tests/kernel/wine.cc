#include "tests/kernel/wine.h"

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>

namespace kelvaro::kernel {
namespace {

[[noreturn]] void GiveUp(const std::string& what) {
  std::fprintf(stderr, "Wine: %s\n", what.c_str());
  std::exit(1);
}

std::string Given(const char* name) {
  const char* const value = std::getenv(name);
  if (value == nullptr) GiveUp(std::string(name) + " isn't set; start by tests/kernel/with_wine");
  return value;
}

// What Wine's clock is ahead of the monotonic one, in microseconds.
std::int64_t AheadUs() {
  timespec raw = {};
  timespec monotonic = {};
  clock_gettime(CLOCK_MONOTONIC_RAW, &raw);
  clock_gettime(CLOCK_MONOTONIC, &monotonic);
  return ((raw.tv_sec - monotonic.tv_sec) * 1000000000 + raw.tv_nsec - monotonic.tv_nsec) / 1000;
}

}  // namespace

Wine::Wine()
    : server([](const std::string& pipe) { return tests::XServerCommand(pipe, "640x480x24"); }),
      options{home.Environment()} {
  if (server.Address().empty()) GiveUp("no X server starts");
  const std::string folder = Given("KELVARO_WINE");
  // Wine works only in a folder of its user's own, and here that is root.
  if (chown(folder.c_str(), 0, 0) != 0) GiveUp(folder + " can't be made root's");
  options.environment["DISPLAY"] = Display();
  options.environment["WINEPREFIX"] = folder;
  options.environment["WINEDEBUG"] = "-all";
  options.environment["WINEDLLOVERRIDES"] = "mscoree,mshtml,winemenubuilder.exe=d";
}

Wine::~Wine() {
  Child({"wineserver", "-k"}, options).WaitForEnd(kWinePatience);
  Child({"wineserver", "-w"}, options).WaitForEnd(kWinePatience);
}

std::unique_ptr<Child> Wine::Start(const std::string& program,
                                   const std::vector<std::string>& words) const {
  std::vector<std::string> command = {"wine", Given("KELVARO_WINDOWS") + "/" + program};
  command.insert(command.end(), words.begin(), words.end());
  return std::make_unique<Child>(command, options);
}

std::unique_ptr<Child> Wine::StartKelvaroctl(const std::vector<std::string>& words) const {
  return Start("bin/kelvaroctl.exe", words);
}

Finished Wine::RunKelvaroctl(const std::vector<std::string>& words) const {
  const std::unique_ptr<Child> child = StartKelvaroctl(words);
  const int status = child->WaitForEnd(kWinePatience);
  return {status, child->Out(), child->Err()};
}

std::vector<pid_t> Wine::Shared() const {
  std::vector<pid_t> found;
  for (const auto& process : std::filesystem::directory_iterator("/proc")) {
    const pid_t id = std::atoi(process.path().filename().c_str());
    const std::string name = id > 0 ? tests::NameOf(id) : "";
    if (name.rfind("wineserver", 0) == 0 || name.rfind("winedevice", 0) == 0) found.push_back(id);
  }
  return found;
}

TypedKeys::TypedKeys(const Wine& wine)
    : child(wine.Start("tests/windows/typed_keys/typed_keys.exe")) {
  const auto ready = [this] { return child->Out().rfind("ready", 0) == 0; };
  if (!tests::Eventually(ready, kWinePatience)) GiveUp("no window to type into: " + child->Log());
  taken = child->Out().find('\n') + 1;
}

std::vector<TypedKeys::Line> TypedKeys::Take() {
  std::vector<Line> lines;
  const std::string out = child->Out();
  for (std::size_t end; (end = out.find('\n', taken)) != std::string::npos; taken = end + 1) {
    const std::string line = out.substr(taken, end - taken);
    const std::size_t blank = line.find(' ');
    std::string text = line.substr(blank + 1);
    if (!text.empty() && text.back() == '\r') text.pop_back();
    lines.push_back({std::atoll(line.c_str()) - AheadUs(), text});
  }
  return lines;
}

}  // namespace kelvaro::kernel
