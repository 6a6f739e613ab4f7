#include "app/platform/linux/pad_nodes.h"

#include <climits>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace platform {
namespace {

// Sets the bits of a file with words in hexadecimal, the highest first, of the kernel's long.
template <std::size_t kSize>
void ReadBits(const std::string& path, std::bitset<kSize>* bits) {
  constexpr std::size_t kWordBits = sizeof(long) * CHAR_BIT;
  std::ifstream file(path);
  std::vector<unsigned long> words;
  for (std::string word; file >> word;) {
    words.insert(words.begin(), std::strtoul(word.c_str(), nullptr, 16));
  }
  for (std::size_t bit = 0; bit < kSize && bit / kWordBits < words.size(); ++bit) {
    (*bits)[bit] = (words[bit / kWordBits] >> (bit % kWordBits) & 1) != 0;
  }
}

}  // namespace

DeviceFacts FactsInTree(const NodePlace& place) {
  const std::string folder = place.place + "/device/";
  DeviceFacts facts;
  facts.ids = place.ids;
  ReadBits(folder + "capabilities/key", &facts.keys);
  ReadBits(folder + "capabilities/rel", &facts.relative);
  ReadBits(folder + "properties", &facts.properties);
  std::bitset<ABS_CNT> axes;
  ReadBits(folder + "capabilities/abs", &axes);
  for (std::size_t code = 0; code < axes.size(); ++code) facts.axes[code].present = axes[code];
  return facts;
}

std::vector<PadNode> PadNodes(DeviceNodes& nodes) {
  std::vector<PadNode> pads;
  for (const NodePlace& place : nodes.List()) {
    PadNode pad{place, 0};
    const auto node = nodes.Open(place, &pad.openError);
    if (IsGameDevice(node ? node->Facts() : FactsInTree(place))) pads.push_back(pad);
  }
  return pads;
}

}  // namespace platform
