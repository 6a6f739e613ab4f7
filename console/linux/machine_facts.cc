#include "console/doctor/machine_facts.h"

#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <string.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "app/platform/linux/descriptor.h"
#include "app/platform/linux/device_use.h"
#include "app/platform/linux/environment.h"
#include "app/platform/linux/icon_area.h"
#include "app/platform/linux/instance_socket.h"
#include "app/platform/linux/linux_input.h"
#include "app/platform/linux/pad_nodes.h"
#include "app/platform/linux/realtime_kit.h"
#include "app/platform/linux/settings/sqlite_registry.h"
#include "app/platform/linux/udev_nodes.h"
#include "app/platform/linux/xtest_input.h"
#include "console/file_machine.h"
#include "console/json_text.h"
#include "console/program_list.h"
#include "console/running_instances.h"
#include "storage/profile_library.h"

namespace kelvaro::console {
namespace {

namespace fs = std::filesystem;

void LookAtOutput(MachineFacts* facts) {
  const platform::Descriptor node(open("/dev/uinput", O_WRONLY | O_NONBLOCK | O_CLOEXEC));
  if (!node) {
    const int errorCode = errno;
    facts->uinputTrouble = std::string("it can't be opened: ") + strerror(errorCode);
    facts->uinputAdvice = platform::UinputAdvice(errorCode);
  }
  // Behind the opening, which may have loaded it.
  facts->moduleLoaded = access("/sys/devices/virtual/misc/uinput", F_OK) == 0;
  facts->moduleFile = FileWith({"/etc/modules-load.d", "/run/modules-load.d",
                                "/usr/local/lib/modules-load.d", "/usr/lib/modules-load.d"},
                               ".conf", "uinput");
  facts->ruleFile = FileWith({"/etc/udev/rules.d", "/run/udev/rules.d",
                              "/usr/local/lib/udev/rules.d", "/usr/lib/udev/rules.d"},
                             ".rules", "uinput");
  // Only where it would be used.
  if (!node) platform::XTestInput::Open({}, &facts->xtestTrouble);
}

std::vector<PadFacts> LookAtPads() {
  platform::UdevNodes nodes;
  std::vector<PadFacts> pads;
  for (const platform::PadNode& node : platform::PadNodes(nodes)) {
    PadFacts pad;
    pad.name = node.place.ids.name;
    pad.node = node.place.path;
    if (node.openError != 0) pad.whyClosed = strerror(node.openError);
    pad.mirror = platform::IsMirror(node.place.ids);
    pad.grabbed = platform::IsGrabbed(node.place.path);
    const auto programs = platform::ProgramsWithOpen(node.place.path);
    pad.openIn = ProgramsText(programs);
    pad.openInKelvaro = HasKelvaro(programs);
    pads.push_back(pad);
  }
  return pads;
}

bool MayBeRealtime() {
  bool granted = false;
  std::thread([&granted] {
    const sched_param lowest{1};
    granted = pthread_setschedparam(pthread_self(), SCHED_RR, &lowest) == 0;
  }).join();
  return granted || platform::RealtimeKit::Instance().LongestRunUs() > 0;
}

std::vector<FolderFacts> LookAtFolders() {
  std::string profiles;
  {
    const FileMachine machine;
    profiles = Bytes(ProfileLibrary::ProfileFolder());
  }
  const std::string settings = fs::path(platform::UsualRegistryPlaces().userFile).parent_path();
  return {
      {"profiles", profiles, CanWriteInto(profiles)},
      {"settings", settings, CanWriteInto(settings)},
      {"running windows", platform::InstanceFolder(), CanWriteInto(platform::InstanceFolder())}};
}

bool HasWord(const fs::path& path, const std::string& word) {
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    const std::size_t begin = line.find_first_not_of(" \t");
    if (begin == std::string::npos || line[begin] == '#' || line[begin] == ';') continue;
    if (line.find(word) != std::string::npos) return true;
  }
  return false;
}

}  // namespace

std::string FileWith(const std::vector<std::string>& folders, const std::string& suffix,
                     const std::string& word) {
  for (const std::string& folder : folders) {
    std::error_code error;
    for (fs::directory_iterator file(folder, error), end; !error && file != end;
         file.increment(error)) {
      if (file->path().extension() == suffix && HasWord(file->path(), word)) return file->path();
    }
  }
  return {};
}

bool CanWriteInto(const std::string& folder) {
  fs::path path(folder);
  std::error_code error;
  while (path.has_relative_path() && !fs::exists(path, error)) path = path.parent_path();
  return !folder.empty() && fs::is_directory(path, error) && access(path.c_str(), W_OK | X_OK) == 0;
}

std::string HomeFolder() { return platform::Variable("HOME"); }

std::string SystemText() {
  std::string text = "Linux";
  std::ifstream file("/etc/os-release");
  const std::string mark = "PRETTY_NAME=";
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with(mark)) continue;
    text = line.substr(mark.size());
    std::erase(text, '"');
  }
  utsname names{};
  if (uname(&names) == 0) text += std::string(", kernel ") + names.release + ", " + names.machine;
  const std::string desktop = platform::Variable("XDG_CURRENT_DESKTOP");
  return desktop.empty() ? text : text + ", desktop " + desktop;
}

std::vector<Remark> ExamineMachine() {
  MachineFacts facts;
  facts.sessionType = platform::Variable("XDG_SESSION_TYPE");
  facts.hasWayland = !platform::Variable("WAYLAND_DISPLAY").empty();
  facts.hasX = !platform::Variable("DISPLAY").empty();
  LookAtOutput(&facts);
  facts.pads = LookAtPads();
  facts.iconsOnBus = platform::BusShowsIcons();
  facts.iconsOnX = facts.hasX && platform::XServerShowsIcons();
  facts.realtime = MayBeRealtime();
  facts.folders = LookAtFolders();
  facts.running = RunningInstances();
  return Diagnose(facts);
}

}  // namespace kelvaro::console
