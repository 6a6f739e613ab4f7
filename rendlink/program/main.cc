#include <cstdio>
#include <iostream>
#include <optional>
#include <string>

#include "app/platform/linux/linux_platform.h"
#include "app/platform/linux/linux_processes.h"
#include "app/platform/linux/standard_streams.h"
#include "app/platform/platform.h"
#include "app/program/display.h"
#include "rendlink/command_line.h"
#include "rendlink/program/carrier.h"
#include "rendlink/program/desktop_session.h"
#include "rendlink/program/dialog_program.h"

namespace kelvaro::rendlink {
namespace {

std::string NoDisplayForRendlink(const std::string& reason) {
  return "rendlink: there is no display to show the window on (" + reason +
         "); \"rendlink --help\" tells what it does without one.";
}

int ShowWindow(int& argc, char** argv) {
  std::string error;
  if (FindDisplay(RealDisplaySystem(), &error, &NoDisplayForRendlink))
    return RunDialogOnDesktop(argc, argv);
  std::fprintf(stderr, "%s\n", error.c_str());
  return kFailed;
}

int RunWithoutWindow(const Words& words) {
  const Streams streams{std::cout, std::cerr};
  Options options;
  if (const std::optional<int> status = ReadOptions(words, &options, streams)) return *status;
  platform::LinuxPlatform system;
  platform::Platform groups = system.Groups();
  platform::LinuxProcesses processes(*groups.threads);
  groups.processes = &processes;
  const platform::InstalledPlatform installed(groups);
  DesktopSession session;
  SocketCarrier carrier;
  return RunOptions(options, session, carrier, streams);
}

}  // namespace
}  // namespace kelvaro::rendlink

int main(int argc, char** argv) {
  using namespace kelvaro::rendlink;
  platform::OpenStandardStreams();
  const Words words(argv + 1, argv + argc);
  if (words.empty()) return ShowWindow(argc, argv);
  if (words.size() == 2 && words[0] == "--carry") return Carry(words[1]);
  return RunWithoutWindow(words);
}
