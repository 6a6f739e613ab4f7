// An open file as the logic reads and writes it, and the system's words for an error.
#pragma once

#include <cstdint>
#include <string>

namespace platform {

constexpr std::uint32_t FILE_BEGIN = 0;
constexpr std::uint32_t FILE_CURRENT = 1;
constexpr std::uint32_t FILE_END = 2;

// One open file; closed when it is destroyed. One thread at a time.
class File {
 public:
  virtual ~File() = default;

  // Reads up to `wanted` bytes from the position on; *read is fewer at the end of the file, 0
  // behind it. False on failure.
  virtual bool ReadFile(void* buffer, std::uint32_t wanted, std::uint32_t* read) = 0;

  // Writes at the position. *written may be fewer on failure, with false.
  virtual bool WriteFile(const void* data, std::uint32_t size, std::uint32_t* written) = 0;

  // Moves the position by `distance` from FILE_BEGIN, FILE_CURRENT or FILE_END; *position, where
  // wanted, takes the new one. False, with nothing moved, in front of the start.
  virtual bool SetFilePointer(std::int64_t distance, std::uint32_t method,
                              std::int64_t* position) = 0;
};

class System {
 public:
  virtual ~System() = default;

  // The system's message for an error code, line end included; empty when it has none.
  virtual std::string FormatMessageA(std::uint32_t code) = 0;
};

// Of the installed platform.
std::string FormatMessageA(std::uint32_t code);

}  // namespace platform
