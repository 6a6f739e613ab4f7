// Which virtual keys hold each of the kernel's keys down. A release counts only for what its own
// virtual key has pressed: the one behind a long pause carries a virtual key that nobody pressed,
// and its scan code may be that of a key which is held. Any thread; no allocation, no lock.
#pragma once

#include <linux/input-event-codes.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace platform {

class KeyHolders {
 public:
  // Takes note of a press or a release; `code` is below KEY_CNT. Whether it is to go out: a press
  // always, a release where `vk` held the key down.
  bool Note(std::uint16_t code, std::uint8_t vk, bool isDown) {
    std::atomic<std::uint64_t>& word = words[code * kWords + vk / 64];
    const std::uint64_t bit = std::uint64_t{1} << (vk % 64);
    if (!isDown) return (word.fetch_and(~bit) & bit) != 0;
    word.fetch_or(bit);
    return true;
  }

 private:
  static constexpr std::size_t kWords = 256 / 64;

  std::array<std::atomic<std::uint64_t>, KEY_CNT * kWords> words{};
};

}  // namespace platform
