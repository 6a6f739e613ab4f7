// Random numbers that are the same for the same seed on every machine: the engine is the standard
// library's, its distributions differ from one library to the next.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>

namespace kelvaro {

class Random {
 public:
  explicit Random(std::uint32_t seed) : engine(seed) {}

  // From 0 to n - 1.
  std::uint32_t Below(std::uint32_t n) { return engine() % n; }
  std::uint32_t Between(std::uint32_t least, std::uint32_t most) {
    return least + Below(most - least + 1);
  }
  bool OneIn(std::uint32_t n) { return Below(n) == 0; }
  std::string OneOf(std::initializer_list<const char*> texts) {
    return texts.begin()[Below(static_cast<std::uint32_t>(texts.size()))];
  }

 private:
  std::mt19937 engine;
};

}  // namespace kelvaro
