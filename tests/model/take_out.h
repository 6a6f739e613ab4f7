// How a script that fails is made shorter.
#pragma once

#include <cstddef>

namespace kelvaro::plain {

// Takes elements out of a list of size() elements, first many at once. take(first, count) takes
// those out if the list still fails without them, and says whether it did.
template <typename Size, typename Take>
void TakeOut(Size size, Take take) {
  for (std::size_t count = size(); count > 0; count /= 2) {
    for (std::size_t first = 0; first + count <= size();) {
      if (!take(first, count)) ++first;
    }
  }
}

}  // namespace kelvaro::plain
