#include "console/svg.h"

#include <gtest/gtest.h>

namespace kelvaro::console {
namespace {

TEST(Svg, ATextIsEscaped) {
  EXPECT_EQ(SvgText(3, 4, "a<b> & \"c\""),
            "<text x=\"3\" y=\"4\">a&lt;b&gt; &amp; &quot;c&quot;</text>\n");
}

TEST(Svg, ATextStandsWhereItsAnchorSays) {
  EXPECT_EQ(SvgText(3, 4, "a", SvgAnchor::Middle),
            "<text x=\"3\" y=\"4\" text-anchor=\"middle\">a</text>\n");
  EXPECT_EQ(SvgText(3, 4, "a", SvgAnchor::End),
            "<text x=\"3\" y=\"4\" text-anchor=\"end\">a</text>\n");
}

TEST(Svg, APictureHasItsSizeAndAWhiteGround) {
  EXPECT_EQ(SvgPicture(7, 9, "inside\n"),
            "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"7\" height=\"9\" "
            "viewBox=\"0 0 7 9\" font-family=\"monospace\" font-size=\"13\">\n"
            "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\ninside\n</svg>\n");
}

}  // namespace
}  // namespace kelvaro::console
