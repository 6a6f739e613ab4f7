#include <cstdio>
#include <string>

#include "app/platform/linux/standard_streams.h"
#include "app/program/desktop_program.h"
#include "app/program/display.h"
#include "app/start/usage.h"
#include "foundation/version.h"

int main(int argc, char** argv) {
  using namespace kelvaro;
  platform::OpenStandardStreams();
  const std::string first = argc > 1 ? argv[1] : "";
  if (first == "--help") {
    std::fputs(UsageText().c_str(), stdout);
    return 0;
  }
  if (first == "--version") {
    std::printf("Kelvaro, Version %s\n", VersionNumber().Text());
    return 0;
  }
  std::string error;
  if (!FindDisplay(RealDisplaySystem(), &error)) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return 1;
  }
  return RunOnDesktop(argc, argv);
}
