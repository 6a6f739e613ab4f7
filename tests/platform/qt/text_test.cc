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

TEST(Text, ALongWordCanBeBrokenBetweenItsLetters) {
  EXPECT_EQ(Breakable(QStringLiteral("short words stay as they are, however many of them")),
            QStringLiteral("short words stay as they are, however many of them"));
  // Two marks are one letter, and an e with its accent is one, too.
  const QString word = QStringLiteral("&&e\u0301") + QString(30, u'x');
  const QString broken = Breakable(QStringLiteral("a ") + word + QStringLiteral(" b"));
  EXPECT_TRUE(broken.startsWith(QStringLiteral("a &&e\u0301\u200Bx\u200Bx")));
  EXPECT_TRUE(broken.endsWith(QStringLiteral("x b")) ||
              broken.endsWith(QStringLiteral("x\u200B b")));
  EXPECT_EQ(QString(broken).remove(QChar(0x200B)),
            QStringLiteral("a ") + word + QStringLiteral(" b"));
}

TEST(Text, AMnemonicMarkGoesAndADoubledOneIsOne) {
  EXPECT_EQ(WithoutMnemonic(QStringLiteral("&Keys && more")), QStringLiteral("Keys & more"));
  EXPECT_EQ(WithoutMnemonic(QStringLiteral("at the end&")), QStringLiteral("at the end"));
  EXPECT_EQ(Marked(QStringLiteral("Keys & && more")), QStringLiteral("Keys && &&&& more"));
}

TEST(Text, RichTextShowsAngleBracketsAndLineEnds) {
  EXPECT_EQ(AsRichText(QStringLiteral("<>\nx")),
            QStringLiteral("<div style=\"white-space:pre\">&lt;&gt;<br/>x</div>"));
}

}  // namespace
}  // namespace platform::qt
