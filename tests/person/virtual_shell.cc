#include "tests/person/virtual_shell.h"

#include <bit>
#include <utility>

namespace platform::simulation {
namespace {

constexpr std::uint32_t kHelpOrdinal = 14;
constexpr LibraryHandle kHelpLibrary = 1;

// The help function takes no context.
VirtualShell* current = nullptr;

}  // namespace

VirtualShell::VirtualShell(Journal& journal) : journal(journal) { current = this; }

VirtualShell::~VirtualShell() { current = nullptr; }

std::intptr_t VirtualShell::ShellExecuteA(const std::string& target) {
  if (const auto fault = journal.Enter("ShellExecuteA", target)) return *fault;
  opened.push_back(target);
  return 42;
}

bool VirtualShell::ChooseFile(WindowHandle owner, const std::string& title, bool forSaving,
                              const std::string& suggested, std::string* path) {
  return AnswerPath({owner, title, suggested, forSaving, false}, path);
}

bool VirtualShell::ChooseFolder(WindowHandle owner, const std::string& title,
                                const std::string& suggested, std::string* path) {
  return AnswerPath({owner, title, suggested, false, true}, path);
}

bool VirtualShell::AnswerPath(const AskedPath& asked, std::string* path) {
  askedPaths.push_back(asked);
  if (chosenPaths.empty()) return false;
  const std::string answer = chosenPaths.front();
  chosenPaths.pop_front();
  if (answer.empty()) return false;
  *path = answer;
  return true;
}

bool VirtualShell::MessageBeep(std::uint32_t) {
  ++beeps;
  return true;
}

LibraryHandle VirtualShell::LoadLibraryA(const std::string& name) {
  askedFor.push_back(name);
  if (journal.Enter("LoadLibraryA", name)) return 0;
  const auto found = libraries.find(name);
  return found != libraries.end() && found->second ? kHelpLibrary : 0;
}

HtmlHelpFunction VirtualShell::GetHelpFunction(LibraryHandle library, std::uint32_t ordinal) {
  if (journal.Enter("GetHelpFunction", ordinal)) return nullptr;
  return library == kHelpLibrary && ordinal == kHelpOrdinal ? &VirtualShell::HtmlHelp : nullptr;
}

std::uintptr_t VirtualShell::HtmlHelp(WindowHandle, const char* file, std::uint32_t command,
                                      std::uintptr_t data) {
  return current ? current->Help(file, command, data) : 0;
}

std::uintptr_t VirtualShell::Help(const char* file, std::uint32_t command, std::uintptr_t data) {
  HelpCall call;
  call.file = file ? file : "";
  call.command = command;
  std::optional<HRESULT> fault;
  if (command == HH_DISPLAY_TOPIC) {
    call.topic = data ? std::bit_cast<const char*>(data) : "";
    fault = journal.Enter("HtmlHelp", command, call.topic);
  } else {
    fault = journal.Enter("HtmlHelp", command);
  }
  if (fault) return 0;
  if (command == HH_INITIALIZE) {
    call.cookie = ++lastCookie;
    *std::bit_cast<std::uint32_t*>(data) = call.cookie;
  } else if (command == HH_UNINITIALIZE) {
    call.cookie = static_cast<std::uint32_t>(data);
  }
  helpCalls.push_back(std::move(call));
  return 1;
}

}  // namespace platform::simulation
