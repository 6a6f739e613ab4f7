#include "app/platform/qt/pictures.h"

#include <QImage>

#include "qt_fixture.h"

namespace platform::qt {
namespace {

class PicturesTest : public QtTest {};

TEST_F(PicturesTest, AnIconThatIsThereGetsAFreshHandleEachTime) {
  const IconHandle one = desktop().LoadIconA(128);
  const IconHandle other = desktop().LoadIconA(128);
  EXPECT_NE(one, 0u);
  EXPECT_NE(other, 0u);
  EXPECT_NE(one, other);
  EXPECT_TRUE(desktop().DestroyIcon(one));
  EXPECT_FALSE(desktop().DestroyIcon(one));
  EXPECT_TRUE(desktop().DestroyIcon(other));
}

TEST_F(PicturesTest, ANumberWithoutAPictureGivesNone) {
  EXPECT_EQ(desktop().LoadIconA(1), 0u);
  EXPECT_EQ(desktop().LoadBitmapA(1), 0u);
}

TEST_F(PicturesTest, TheIconIsSharpInEachSizeThatDesktopsAskFor) {
  Icons icons;
  const QIcon icon = icons.Find(icons.Load(128));
  for (const int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
    EXPECT_TRUE(icon.availableSizes().contains(QSize(size, size))) << size;
  }
}

TEST_F(PicturesTest, AnArrowIsDrawnInTheInkThatCanBeSeen) {
  const BitmapHandle arrow = desktop().LoadBitmapA(145);
  ASSERT_NE(arrow, 0u);
  EXPECT_EQ(BitmapSize(arrow), QSize(16, 16));
  QImage image(16, 16, QImage::Format_ARGB32);
  image.fill(Qt::black);
  {
    QPainter painter(&image);
    DrawBitmap(painter, image.rect(), arrow, QColor(Qt::white));
  }
  EXPECT_EQ(image.pixelColor(8, 8), QColor(Qt::white));  // the arrow's shaft
  EXPECT_EQ(image.pixelColor(0, 15), QColor(Qt::black));
}

TEST_F(PicturesTest, TheBannerKeepsItsColoursAndItsShape) {
  const BitmapHandle banner = desktop().LoadBitmapA(148);
  ASSERT_NE(banner, 0u);
  const QSize natural = BitmapSize(banner);
  // Twice as high a place: as wide as fits, in the middle.
  QImage image(natural.width(), 2 * natural.height(), QImage::Format_ARGB32);
  image.fill(Qt::white);
  {
    QPainter painter(&image);
    DrawBitmap(painter, image.rect(), banner, QColor(Qt::red));
  }
  EXPECT_EQ(image.pixelColor(natural.width() / 2, 0), QColor(Qt::white));
  EXPECT_NE(image.pixelColor(natural.width() / 2, natural.height()), QColor(Qt::white));
  EXPECT_NE(image.pixelColor(natural.width() / 2, natural.height()), QColor(Qt::red));
}

}  // namespace
}  // namespace platform::qt
