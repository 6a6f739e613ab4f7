// Random texts and steps of the key language, the same ones for the same seed on every machine.
#pragma once

#include <cstdint>
#include <random>
#include <string>

#include "keys/key_step.h"
#include "keys/key_tables.h"

namespace kelvaro {

class RandomKeys {
 public:
  explicit RandomKeys(std::uint32_t seed) : engine(seed) {}

  std::uint32_t Below(std::uint32_t n) { return static_cast<std::uint32_t>(engine() % n); }
  bool OneIn(std::uint32_t n) { return Below(n) == 0; }
  std::uint8_t Byte() { return static_cast<std::uint8_t>(Below(256)); }

  std::string Token() { return std::string("<") + KeyTokenTable[Below(kKeyTokenCount)].name + ">"; }
  std::string ModifierToken() { return std::string("<") + KeyTokenTable[Below(9)].name + ">"; }
  std::string TypedCharacter() {
    const char c = static_cast<char>(0x20 + Below(0x7F - 0x20));
    return c == '<' ? "<<" : std::string(1, c);
  }

  // A piece that parses wherever it stands.
  std::string SoundPiece() {
    switch (Below(6)) {
      case 0:
        return Token();
      case 1:
      case 2:
        return ModifierToken();
      case 3:
        return "<P:" + std::to_string(engine()) + ">";
      case 4:
        return "<<";
      default:
        return TypedCharacter();
    }
  }

  std::string SoundText() {
    std::string text;
    for (std::uint32_t pieces = Below(12); pieces > 0; --pieces) text += SoundPiece();
    return text;
  }

  // Sound pieces, and now and then a few bytes that may open, close or break a token.
  std::string Text() {
    static const char* const kBroken[] = {"<",   "<>", ">",    "<P:", "<P:>",
                                          "<Es", "\t", "\x80", "P:1>"};
    std::string text;
    for (std::uint32_t pieces = 1 + Below(10); pieces > 0; --pieces) {
      if (OneIn(12)) {
        text += kBroken[Below(sizeof kBroken / sizeof *kBroken)];
      } else if (OneIn(40)) {
        text += static_cast<char>(Byte());
      } else {
        text += SoundPiece();
      }
    }
    return text;
  }

  KeyStep AnyStep() { return {Byte(), Byte(), Byte()}; }

 private:
  std::mt19937 engine;
};

}  // namespace kelvaro
