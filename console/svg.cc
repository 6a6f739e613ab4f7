#include "console/svg.h"

namespace kelvaro::console {

std::string XmlText(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

std::string SvgPicture(std::size_t width, std::size_t height, const std::string& inside) {
  const std::string across = std::to_string(width);
  const std::string down = std::to_string(height);
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + across + "\" height=\"" + down +
         "\" viewBox=\"0 0 " + across + " " + down +
         "\" font-family=\"monospace\" font-size=\"13\">\n"
         "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n" +
         inside + "</svg>\n";
}

std::string SvgText(std::size_t x, std::size_t y, const std::string& text, SvgAnchor anchor) {
  const char* const at = anchor == SvgAnchor::Middle ? " text-anchor=\"middle\""
                         : anchor == SvgAnchor::End  ? " text-anchor=\"end\""
                                                     : "";
  return "<text x=\"" + std::to_string(x) + "\" y=\"" + std::to_string(y) + "\"" + at + ">" +
         XmlText(text) + "</text>\n";
}

}  // namespace kelvaro::console
