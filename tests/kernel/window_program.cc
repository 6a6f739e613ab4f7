#include "tests/kernel/window_program.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "tests/program/stored_settings.h"

namespace kelvaro::kernel {
namespace {

namespace fs = std::filesystem;

void Check(bool good, const std::string& what) {
  if (good) return;
  std::fprintf(stderr, "the window's program: %s\n", what.c_str());
  std::exit(1);
}

void GiveAway(const fs::path& path) {
  constexpr ::uid_t kNobody = 65534;
  Check(chown(path.c_str(), kNobody, kNobody) == 0, path.string() + " can't be given away");
}

// In memory, as KelvaroctlPath() is, and for the same reasons.
const std::string& Copy() {
  static const tests::TemporaryFolder folder("/dev/shm");
  static const std::string path = [] {
    fs::copy_file(KELVARO, folder.In("kelvaro"));
    return folder.In("kelvaro");
  }();
  return path;
}

}  // namespace

WindowProgram::WindowProgram() {
  // The program looks for its profiles beside the file that it was started from.
  fs::create_hard_link(Copy(), home.In("kelvaro"));
  fs::create_hard_link(KelvaroctlPath(), home.In("kelvaroctl"));  // by the name that it answers to
  fs::create_directory(home.In("Profiles"));
  fs::create_directory(home.In("config/kelvaro"));
  Set("Welcome Display", 1);
}

std::string WindowProgram::ProfilePath(const std::string& name) const {
  return home.In("Profiles/" + name + ".idprof");
}

void WindowProgram::AddProfile(const std::string& name, const std::string& json) const {
  const Finished packed = RunToEnd({KelvaroctlPath(), "pack", WriteFile(json), ProfilePath(name)});
  Check(packed.status == 0, packed.err);
  Set("Last Profile", name);
}

void WindowProgram::Set(const std::string& name, std::uint32_t value) const {
  Check(tests::StoredSettings(home).Set(name, value), name + " can't be set");
}

void WindowProgram::Set(const std::string& name, const std::string& text) const {
  Check(tests::StoredSettings(home).Set(name, text), name + " can't be set");
}

void WindowProgram::GiveToNobody() const {
  GiveAway(home.folder);
  for (const auto& entry : fs::recursive_directory_iterator(home.folder)) {
    GiveAway(entry.path());
  }
}

Finished WindowProgram::Steer(const std::vector<std::string>& words) const {
  std::vector<std::string> command = {home.In("kelvaroctl")};
  command.insert(command.end(), words.begin(), words.end());
  return RunToEnd(command, {home.Environment()});
}

std::unique_ptr<Child> WindowProgram::Start(const std::string& display, bool asNobody) const {
  ChildOptions options{home.Environment(), asNobody};
  options.environment["DISPLAY"] = display;
  options.environment["QT_QPA_PLATFORM"] = display.empty() ? "offscreen" : "";
  return std::make_unique<Child>(std::vector<std::string>{home.In("kelvaro")}, options);
}

}  // namespace kelvaro::kernel
