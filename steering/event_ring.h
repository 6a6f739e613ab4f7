// A bounded queue between any threads that put something in and one that takes it out. Nobody ever
// waits: what finds no place isn't put in. The order of two that are put in at the same time is
// either.
#pragma once

#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace kelvaro {

// `kPlaces` is a power of two; T is moved, which must not throw.
template <typename T, std::uint32_t kPlaces>
class EventRing {
  static_assert(std::has_single_bit(kPlaces));

 public:
  EventRing() {
    for (std::uint32_t place = 0; place < kPlaces; ++place) cells[place].turn = place;
  }

  // Any thread. False when all places are taken.
  bool Put(T value) {
    std::uint32_t place = next.load(std::memory_order_relaxed);
    for (;;) {
      Cell& cell = cells[place % kPlaces];
      const auto ahead =
          static_cast<std::int32_t>(cell.turn.load(std::memory_order_acquire) - place);
      if (ahead < 0) return false;
      // If another thread has it meanwhile, `place` becomes the next one.
      if (next.compare_exchange_weak(place, place + 1, std::memory_order_relaxed)) {
        cell.value = std::move(value);
        cell.turn.store(place + 1, std::memory_order_release);
        return true;
      }
    }
  }

  // One thread. False when there is nothing, or the next one is just being put in.
  bool Take(T* value) {
    Cell& cell = cells[first % kPlaces];
    if (cell.turn.load(std::memory_order_acquire) != first + 1) return false;
    *value = std::move(cell.value);
    cell.turn.store(first + kPlaces, std::memory_order_release);
    ++first;
    return true;
  }

 private:
  // `turn` is the number of the Put that may fill it, and one more once that is done.
  struct Cell {
    std::atomic<std::uint32_t> turn;
    T value;
  };

  std::array<Cell, kPlaces> cells;
  std::atomic<std::uint32_t> next{0};
  std::uint32_t first = 0;  // of the taking thread
};

}  // namespace kelvaro
