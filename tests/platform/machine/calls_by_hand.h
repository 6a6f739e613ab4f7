// A call as any program can make one, which looks at nobody's name.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "app/platform/machine/this_machine.h"
#ifdef _WIN32
#include "app/platform/windows/owned_handle.h"
#else
#include <unistd.h>

#include "tests/platform/linux/local_socket.h"
#endif

namespace platform {

#ifdef _WIN32

inline std::uint32_t OwnProcess() { return GetCurrentProcessId(); }

// A place of a test's own.
inline std::string PlaceFor(const std::string& folder) {
  return std::filesystem::path(folder).filename().string();
}

// Empty for none.
inline std::string AnswerByHand(const std::string& place, std::uint32_t process,
                                const std::string& request) {
  const OwnedHandle pipe(CreateFileA(WindowsCalls::PipeOf(place, process).c_str(),
                                     GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0,
                                     nullptr));
  EXPECT_TRUE(pipe);
  DWORD size = 0;
  char answer[kLongestMessage];
  WriteFile(pipe.Get(), request.data(), static_cast<DWORD>(request.size()), &size, nullptr);
  return ReadFile(pipe.Get(), answer, sizeof answer, &size, nullptr) ? std::string(answer, size)
                                                                     : "";
}

#else

inline std::uint32_t OwnProcess() { return static_cast<std::uint32_t>(getpid()); }

// A place of a test's own.
inline std::string PlaceFor(const std::string& folder) { return folder; }

// Empty for none.
inline std::string AnswerByHand(const std::string& place, std::uint32_t process,
                                const std::string& request) {
  const Descriptor connection(ConnectByHand(place + "/" + std::to_string(process) + ".steering"));
  send(connection.Get(), request.data(), request.size(), MSG_NOSIGNAL);
  char answer[kLongestMessage];
  const ssize_t size = recv(connection.Get(), answer, sizeof answer, 0);
  return size > 0 ? std::string(answer, static_cast<std::size_t>(size)) : "";
}

#endif

}  // namespace platform
