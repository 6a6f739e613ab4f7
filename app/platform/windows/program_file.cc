#include "app/platform/windows/program_file.h"

#include <vector>

#include "app/platform/windows/owned_handle.h"

#include <sddl.h>

namespace platform {
namespace {

OwnedHandle Open(std::uint32_t process) {
  return OwnedHandle(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, process));
}

std::string UserOf(HANDLE process) {
  HANDLE opened = nullptr;
  if (!OpenProcessToken(process, TOKEN_QUERY, &opened)) return {};
  const OwnedHandle token(opened);
  DWORD size = 0;
  GetTokenInformation(token.Get(), TokenUser, nullptr, 0, &size);
  std::vector<char> memory(size);
  if (!GetTokenInformation(token.Get(), TokenUser, memory.data(), size, &size)) return {};
  char* text = nullptr;
  if (!ConvertSidToStringSidA(reinterpret_cast<const TOKEN_USER*>(memory.data())->User.Sid, &text))
    return {};
  const std::string user = text;
  LocalFree(text);
  return user;
}

}  // namespace

std::string ProgramFileOf(std::uint32_t process) {
  constexpr DWORD kLongestPath = 32768;
  const OwnedHandle opened = Open(process);
  std::string path(kLongestPath, '\0');
  DWORD size = kLongestPath;
  if (!opened || !QueryFullProcessImageNameA(opened.Get(), 0, path.data(), &size)) return {};
  path.resize(size);
  return path;
}

std::string ProgramNameOf(std::uint32_t process) {
  const std::string path = ProgramFileOf(process);
  return path.substr(path.find_last_of('\\') + 1);
}

bool IsOfThisUser(std::uint32_t process) {
  const OwnedHandle opened = Open(process);
  const std::string user = opened ? UserOf(opened.Get()) : std::string();
  return !user.empty() && user == ThisUser();
}

std::string ThisUser() { return UserOf(GetCurrentProcess()); }

}  // namespace platform
