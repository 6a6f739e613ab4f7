// A game pad that a test plays, for programs that load the dinput8.dll of this folder: memory that
// all processes share. Two axes, eleven buttons, one hat.
#pragma once

#include <cstdint>

namespace kelvaro::tests {

constexpr char kPadMemory[] = "KelvaroScriptedPad";
constexpr char kPadNews[] = "KelvaroScriptedPadNews";  // an auto-reset event: there is a change
constexpr std::uint32_t kMostPadChanges = 4096;

// All zero at first.
struct PadMemory {
  struct Change {
    std::uint32_t offset;  // in DIJOYSTATE2
    std::uint32_t data;    // of an axis -1000 to 1000, to be scaled
  };
  volatile std::uint32_t unplugged;     // of which nothing tells
  volatile std::uint32_t missed;        // times that it was asked for while it was unplugged
  volatile std::uint32_t alone;         // it was asked for so by the last who opened it
  volatile std::uint32_t mustBePolled;  // tells of nothing by itself
  volatile std::uint32_t failure;       // what DirectInput8Create gives
  volatile std::uint32_t count;         // of the changes; written last
  Change changes[kMostPadChanges];
};

}  // namespace kelvaro::tests
