// Where in a row of measured values a share of them ends.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace kelvaro {

// `share` from 0 to 1 of the values, which are in rising order and at least one; between the two
// nearest where it falls between.
inline double Percentile(const std::vector<double>& rising, double share) {
  const double place = share * static_cast<double>(rising.size() - 1);
  const std::size_t below = static_cast<std::size_t>(place);
  const std::size_t above = std::min(below + 1, rising.size() - 1);
  return rising[below] + (rising[above] - rising[below]) * (place - static_cast<double>(below));
}

}  // namespace kelvaro
