#include "app/platform/qt/text.h"

#include <gtest/gtest.h>

namespace platform::qt {
namespace {

TEST(Text, BytesThatAreUtf8AreShownAsThat) {
  EXPECT_EQ(Shown("Gr\xC3\xBC\xC3\x9F"
                  "e"),
            QStringLiteral("Grüße"));
}

TEST(Text, OtherBytesAreShownAsLatin1SoThatNoneIsLost) {
  EXPECT_EQ(Shown("Gr\xFC\xDF"
                  "e"),
            QStringLiteral("Grüße"));
  EXPECT_FALSE(IsUtf8("\xFC"));
  EXPECT_TRUE(IsUtf8("plain"));
}

TEST(Text, BytesOfAShownTextAreUtf8) { EXPECT_EQ(Bytes(QStringLiteral("ü")), "\xC3\xBC"); }

TEST(Text, AMnemonicMarkGoesAndADoubledOneIsOne) {
  EXPECT_EQ(WithoutMnemonic(QStringLiteral("&Keys && more")), QStringLiteral("Keys & more"));
  EXPECT_EQ(WithoutMnemonic(QStringLiteral("at the end&")), QStringLiteral("at the end"));
}

TEST(Text, RichTextShowsAngleBracketsAndLineEnds) {
  EXPECT_EQ(AsRichText(QStringLiteral("<>\nx")),
            QStringLiteral("<div style=\"white-space:pre\">&lt;&gt;<br/>x</div>"));
}

}  // namespace
}  // namespace platform::qt
