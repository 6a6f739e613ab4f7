// The real window on an X server without a screen, with a window manager: how long until it is
// painted, what it holds, and what a resize costs. Prints its figures; nothing passes or fails.
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/program/machine.h"
#include "tests/program/stored_settings.h"

namespace {

namespace fs = std::filesystem;
using namespace kelvaro::tests;
using Clock = std::chrono::steady_clock;

constexpr int kStarts = 11;
constexpr int kControls = 500;
constexpr int kResizes = 180;
constexpr auto kFrame = std::chrono::microseconds(16667);

double Milliseconds(Clock::duration time) {
  return std::chrono::duration<double, std::milli>(time).count();
}

// The program in a folder of its own, with one profile that names no pad that is there, and
// settings by which it comes up without a word.
class Installed {
 public:
  Installed() {
    fs::create_directories(folder + "/Profiles");
    fs::copy_file(Program("kelvaro"), folder + "/kelvaro");
    Pack("Bench", kControls);
    Pack("Large", 2 * kControls);
    if (!StoredSettings(home).SetQuiet()) {
      std::fprintf(stderr, "the settings can't be written\n");
      std::exit(1);
    }
  }

  Home home;
  const std::string folder = home.folder + "/programs";

 private:
  void Pack(const std::string& name, int controls) {
    std::ofstream json(folder + "/profile.json");
    json << R"({"profileName": ")" << name << R"(", "deviceName": "No such pad", "controls": [)";
    for (int i = 0; i < controls; ++i)
      json << (i ? "," : "") << R"({"description": "Control )" << i
           << R"(", "buttonMask": "0x5", "actions": [{"text": "<Ctrl>a"}]})";
    json << "]}";
    json.close();
    Child pack({Program("kelvaroctl"), "pack", folder + "/profile.json",
                folder + "/Profiles/" + name + ".idprof"},
               {home.Environment()});
    if (pack.WaitForEnd() != 0) {
      std::fprintf(stderr, "%s", pack.Log().c_str());
      std::exit(1);
    }
  }
};

double SecondsOfProcessor(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/stat");
  std::string line;
  std::getline(file, line);
  std::istringstream fields(line.substr(line.rfind(')') + 2));
  std::vector<std::string> words;
  for (std::string word; fields >> word;) words.push_back(word);
  return static_cast<double>(std::stol(words[11]) + std::stol(words[12])) /
         static_cast<double>(sysconf(_SC_CLK_TCK));
}

long Kilobytes(pid_t process, const std::string& what) {
  std::ifstream file("/proc/" + std::to_string(process) + "/smaps_rollup");
  for (std::string line; std::getline(file, line);)
    if (line.rfind(what + ":", 0) == 0) return std::stol(line.substr(what.size() + 1));
  return 0;
}

void PrintMemory(pid_t process, const char* window) {
  const auto megabytes = [process](const char* what) {
    return static_cast<double>(Kilobytes(process, what)) / 1024;
  };
  std::printf("Memory of the %s: %.1f MB resident, %.1f MB proportional, %.1f MB its own\n", window,
              megabytes("Rss"), megabytes("Pss"), megabytes("Private_Dirty"));
}

}  // namespace

int main() {
  Installed installed;
  XDesktop desktop(true);
  if (!desktop.Works()) {
    std::fprintf(stderr, "Xvfb and icewm can't be started\n");
    return 1;
  }
  auto environment = installed.home.Environment();
  environment["DISPLAY"] = desktop.Name();
  const auto start = [&] {
    return std::make_unique<Child>(std::vector<std::string>{installed.folder + "/kelvaro"},
                                   ChildOptions{environment});
  };
  const auto untilPainted = [&] {
    const auto begin = Clock::now();
    const auto program = start();
    if (!desktop.AwaitPainted("Kelvaro", 60s)) std::exit(1);
    const double time = Milliseconds(Clock::now() - begin);
    program->Signal(SIGTERM);
    program->WaitForEnd();
    return time;
  };

  sync();
  std::ofstream drop("/proc/sys/vm/drop_caches");
  drop << "3\n";
  drop.close();
  const double cold = untilPainted();
  std::vector<double> warm;
  for (int i = 0; i < kStarts; ++i) warm.push_back(untilPainted());
  std::sort(warm.begin(), warm.end());
  std::printf("First painted window, %s: %.0f ms\n",
              drop ? "cold" : "cold (the caches couldn't be dropped)", cold);
  std::printf("First painted window, warm: %.0f ms (median of %d; %.0f to %.0f)\n",
              warm[kStarts / 2], kStarts, warm.front(), warm.back());

  const auto program = start();
  if (!desktop.AwaitPainted("Kelvaro", 60s)) return 1;
  std::this_thread::sleep_for(2s);
  PrintMemory(program->Id(), "idle window");

  const XWindow window = desktop.Find("Kelvaro", false);
  double before = SecondsOfProcessor(program->Id());
  auto due = Clock::now();
  for (int i = 0; i < kResizes; ++i) {
    desktop.Resize(window.id, window.width + i % 60 * 4, window.height + i % 60 * 3);
    due += kFrame;
    std::this_thread::sleep_until(due);
  }
  const double perResize = (SecondsOfProcessor(program->Id()) - before) / kResizes * 1000;
  std::printf(
      "A resize with %d rows: %.1f ms of processor time, %.0f %% of a core at 60 a second\n",
      kControls, perResize, perResize * 6);

  // What one act costs the program, in processor time; it is waited for generously.
  const auto cost = [&](const char* what, const std::string& keys) {
    const double begun = SecondsOfProcessor(program->Id());
    desktop.Type(keys);
    std::this_thread::sleep_for(1500ms);
    std::printf("%s: %.0f ms of processor time\n", what,
                (SecondsOfProcessor(program->Id()) - begun) * 1000);
  };
  std::printf("With %d Controls:\n", 2 * kControls);
  cost("  choosing the profile: load, list filled", "Alt_L+p Down");
  desktop.Press(window.x + 60, window.y + 45);  // the tab "Control"
  cost("  opening \"Define Control\"", "Alt_L+w");
  cost("  OK with a save, and the row", "x Return");

  desktop.Minimise(window.id);
  std::this_thread::sleep_for(3s);
  PrintMemory(program->Id(), "hidden window after all this");
  before = SecondsOfProcessor(program->Id());
  const auto begin = Clock::now();
  std::this_thread::sleep_for(20s);
  std::printf("Processor, hidden, no pad: %.2f %%\n", (SecondsOfProcessor(program->Id()) - before) *
                                                          1000 /
                                                          Milliseconds(Clock::now() - begin) * 100);

  program->Signal(SIGTERM);
  program->WaitForEnd();
  const auto fresh = start();
  if (!desktop.AwaitPainted("Kelvaro", 60s)) return 1;
  desktop.Minimise(desktop.Find("Kelvaro", false).id);
  std::this_thread::sleep_for(3s);
  PrintMemory(fresh->Id(), "hidden window");
  return 0;
}
