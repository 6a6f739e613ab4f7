#include "tests/host/child.h"

// Last.
#include <windows.h>

namespace kelvaro::tests {
namespace {

constexpr UINT kKilled = 128 + 9;  // as elsewhere

// A file that the program writes to; ours to close.
HANDLE Opened(const std::string& path) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  return CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                     FILE_ATTRIBUTE_NORMAL, nullptr);
}

}  // namespace

Child::Child(const std::vector<std::string>& command, const ChildOptions& options) {
  std::vector<std::unique_ptr<Variable>> changed;
  for (const auto& [name, value] : options.environment)
    changed.push_back(
        std::make_unique<Variable>(name.c_str(), value.empty() ? nullptr : value.c_str()));
  std::string words;
  for (const std::string& word : command) words += '"' + word + "\" ";
  STARTUPINFOA start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = Opened(folder.In("out"));
  start.hStdError = Opened(folder.In("err"));
  PROCESS_INFORMATION made{};
  if (CreateProcessA(nullptr, words.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                     &made)) {
    CloseHandle(made.hThread);
    process = made.hProcess;
    id = made.dwProcessId;
  } else {
    status = 127;
  }
  CloseHandle(start.hStdOutput);
  CloseHandle(start.hStdError);
}

Child::~Child() {
  Kill();
  CloseHandle(process);
}

void Child::Kill() {
  if (!Running()) return;
  TerminateProcess(process, kKilled);
  WaitForSingleObject(process, INFINITE);
  WaitForEnd();
}

int Child::WaitForEnd(std::chrono::milliseconds limit) {
  if (status != -1) return status;
  DWORD code = 0;
  if (WaitForSingleObject(process, static_cast<DWORD>(limit.count())) == WAIT_OBJECT_0 &&
      GetExitCodeProcess(process, &code))
    status = static_cast<int>(code);
  return status;
}

std::string Child::Out() const { return Content(folder.In("out")); }
std::string Child::Err() const { return Content(folder.In("err")); }

}  // namespace kelvaro::tests
