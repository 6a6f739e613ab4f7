// Pictures in SVG. Lengths are the picture's own units, a pixel each where nobody scales it.
#pragma once

#include <cstddef>
#include <string>

namespace kelvaro::console {

std::string XmlText(const std::string& text);

// `inside` on white.
std::string SvgPicture(std::size_t width, std::size_t height, const std::string& inside);

// A line of text whose baseline begins, has its middle or ends at that point.
enum class SvgAnchor { Start, Middle, End };
std::string SvgText(std::size_t x, std::size_t y, const std::string& text,
                    SvgAnchor anchor = SvgAnchor::Start);

}  // namespace kelvaro::console
