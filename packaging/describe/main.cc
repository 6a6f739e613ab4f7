// Writes what others read of a program's command line: describe FORM PROGRAM >FILE.
#include <cstdio>
#include <cstring>
#include <exception>

#include "foundation/version.h"
#include "packaging/describe/completion.h"
#include "packaging/describe/man_page.h"

namespace {

using namespace kelvaro::describe;

std::string Written(const std::string& form, const Command& program) {
  if (form == "man") return ManPage(program, kelvaro::VersionNumber().Text());
  if (form == "bash") return BashCompletion(program);
  if (form == "zsh") return ZshCompletion(program);
  if (form == "fish") return FishCompletion(program);
  return {};
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3) {
    try {
      for (const Command& program : Programs()) {
        const std::string text = program.name == argv[2] ? Written(argv[1], program) : "";
        if (!text.empty()) return std::fputs(text.c_str(), stdout) < 0;
      }
    } catch (const std::exception& error) {
      std::fprintf(stderr, "describe: %s\n", error.what());
      return 1;
    }
  }
  std::fputs("usage: describe man|bash|zsh|fish kelvaro|kelvaroctl|rendlink\n", stderr);
  return 2;
}
