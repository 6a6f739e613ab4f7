#include "tests/kernel/window_program.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "app/platform/linux/settings/sqlite_registry.h"

namespace kelvaro::kernel {
namespace {

namespace fs = std::filesystem;

constexpr char kProductKey[] = "Software\\Marnstone\\Kelvaro";
constexpr ::uid_t kNobody = 65534;

[[noreturn]] void Fail(const std::string& what) {
  std::fprintf(stderr, "the window's program: %s\n", what.c_str());
  std::exit(1);
}

std::string NewFolder() {
  char name[] = "/dev/shm/window.XXXXXX";
  if (mkdtemp(name) == nullptr) Fail("no folder");
  fs::permissions(name, fs::perms(0755));
  return name;
}

// In memory, as KelvaroctlPath() is, and for the same reasons.
const std::string& Copy() {
  static const std::string path = [] {
    const std::string copy = NewFolder() + "/kelvaro";
    fs::copy_file(KELVARO, copy);
    return copy;
  }();
  return path;
}

void SetValue(const std::string& file, const std::string& name, std::uint32_t type,
              const void* data, std::size_t size) {
  platform::SqliteRegistry registry({file, "", ""});
  platform::HKEY key = 0;
  if (registry.RegCreateKeyA(platform::HKEY_CURRENT_USER, kProductKey, &key) != 0 ||
      registry.RegSetValueExA(key, name, type, data, static_cast<std::uint32_t>(size)) != 0) {
    Fail("the setting \"" + name + "\" can't be written");
  }
  registry.RegCloseKey(key);
}

}  // namespace

WindowProgram::WindowProgram() : folder(NewFolder()) {
  // The program looks for its profiles beside the file that it was started from.
  fs::create_hard_link(Copy(), folder + "/kelvaro");
  for (const char* name : {"Profiles", "config", "config/kelvaro", "runtime", "cache", "data"}) {
    fs::create_directory(folder + "/" + name);
  }
  fs::permissions(folder + "/runtime", fs::perms::owner_all);
  Set("Welcome Display", 1);
}

WindowProgram::~WindowProgram() {
  std::error_code ignored;  // it goes with the virtual machine anyway
  fs::remove_all(folder, ignored);
}

std::string WindowProgram::ProfilePath(const std::string& name) const {
  return folder + "/Profiles/" + name + ".idprof";
}

void WindowProgram::AddProfile(const std::string& name, const std::string& json) const {
  const Finished packed = RunToEnd({KelvaroctlPath(), "pack", WriteFile(json), ProfilePath(name)});
  if (packed.status != 0) Fail(packed.err);
  Set("Last Profile", name);
}

void WindowProgram::Set(const std::string& name, std::uint32_t value) const {
  SetValue(folder + "/config/kelvaro/settings.sqlite3", name, platform::REG_DWORD, &value,
           sizeof value);
}

void WindowProgram::Set(const std::string& name, const std::string& text) const {
  SetValue(folder + "/config/kelvaro/settings.sqlite3", name, platform::REG_SZ, text.c_str(),
           text.size() + 1);
}

void WindowProgram::GiveToNobody() const {
  if (chown(folder.c_str(), kNobody, kNobody) != 0) Fail("can't be given away");
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (chown(entry.path().c_str(), kNobody, kNobody) != 0) Fail("can't be given away");
  }
}

std::unique_ptr<Child> WindowProgram::Start(const std::string& display, bool asNobody) const {
  ChildOptions options;
  options.asNobody = asNobody;
  options.environment = {{"HOME", folder},
                         {"XDG_CONFIG_HOME", folder + "/config"},
                         {"XDG_RUNTIME_DIR", folder + "/runtime"},
                         {"XDG_CACHE_HOME", folder + "/cache"},
                         {"XDG_DATA_HOME", folder + "/data"},
                         {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + folder + "/runtime/none"},
                         {"WAYLAND_DISPLAY", ""},
                         {"DISPLAY", display},
                         {"QT_QPA_PLATFORM", display.empty() ? "offscreen" : ""}};
  return std::make_unique<Child>(std::vector<std::string>{folder + "/kelvaro"}, options);
}

}  // namespace kelvaro::kernel
