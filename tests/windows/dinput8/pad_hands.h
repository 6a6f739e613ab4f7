// A test's hands on the pad of our dinput8.dll, in this process or another. To be included behind
// all else, as Windows' header is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "app/platform/direct_input.h"
#include "tests/windows/dinput8/scripted_pad.h"

// Last.
#include "app/platform/windows/win32.h"

namespace kelvaro::tests {

class PadHands {
 public:
  PadHands() {
    // Of a test before.
    std::memset(static_cast<void*>(memory), 0, sizeof *memory);
  }
  ~PadHands() {
    UnmapViewOfFile(memory);
    ::CloseHandle(section);
    ::CloseHandle(news);
  }
  PadHands(const PadHands&) = delete;
  PadHands& operator=(const PadHands&) = delete;

  void Change(std::size_t offset, std::int32_t data) {
    memory->changes[memory->count] = {static_cast<std::uint32_t>(offset),
                                      static_cast<std::uint32_t>(data)};
    memory->count = memory->count + 1;
    ::SetEvent(news);
  }
  void Button(std::size_t number, bool down) {
    Change(offsetof(platform::DIJOYSTATE2, rgbButtons) + number, down ? 0x80 : 0);
  }
  PadMemory& Memory() { return *memory; }

 private:
  const HANDLE section = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                            sizeof(PadMemory), kPadMemory);
  PadMemory* const memory =
      static_cast<PadMemory*>(MapViewOfFile(section, FILE_MAP_ALL_ACCESS, 0, 0, 0));
  const HANDLE news = ::CreateEventA(nullptr, FALSE, FALSE, kPadNews);
};

}  // namespace kelvaro::tests
