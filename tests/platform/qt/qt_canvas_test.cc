#include "app/platform/qt/qt_canvas.h"

#include <QImage>

#include "app/platform/qt/colours.h"
#include "qt_fixture.h"

namespace platform::qt {
namespace {

constexpr Colour kRed = Rgb(255, 0, 0);
constexpr Colour kBlue = Rgb(0, 0, 255);

class QtCanvasTest : public ::testing::Test {
 protected:
  QtCanvasTest() : image(40, 40, QImage::Format_ARGB32) { image.fill(Qt::white); }

  template <typename Act>
  void Draw(Act act) {
    QPainter painter(&image);
    QtCanvas canvas(painter, widget, icons);
    act(canvas);
  }
  bool Is(int x, int y, Colour colour) const { return image.pixelColor(x, y) == ColourOf(colour); }
  int Pixels(Colour colour) const {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) count += Is(x, y, colour);
    }
    return count;
  }
  // Of all that isn't white.
  QRect Drawn() const {
    QRect drawn;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        if (!Is(x, y, Rgb(255, 255, 255))) drawn |= QRect(x, y, 1, 1);
      }
    }
    return drawn;
  }

  QImage image;
  QWidget widget;
  Icons icons;
};

TEST_F(QtCanvasTest, AFilledRectangleEndsBeforeItsRightAndBottomEdge) {
  Draw([](Canvas& canvas) { canvas.FillRect({10, 12, 20, 15}, kRed); });
  EXPECT_EQ(Drawn(), QRect(10, 12, 10, 3));
  EXPECT_EQ(Pixels(kRed), 30);
}

TEST_F(QtCanvasTest, AFrameIsOnePixelWideInside) {
  Draw([](Canvas& canvas) { canvas.FrameRect({10, 10, 20, 20}, kRed); });
  EXPECT_EQ(Drawn(), QRect(10, 10, 10, 10));
  EXPECT_EQ(Pixels(kRed), 36);
}

TEST_F(QtCanvasTest, ARaisedFrameHasTwoColours) {
  Draw([](Canvas& canvas) { canvas.Draw3dRect({10, 10, 20, 20}, kRed, kBlue); });
  EXPECT_TRUE(Is(10, 10, kRed));
  EXPECT_TRUE(Is(18, 10, kRed));
  EXPECT_TRUE(Is(10, 18, kRed));
  EXPECT_TRUE(Is(19, 10, kBlue));
  EXPECT_TRUE(Is(10, 19, kBlue));
  EXPECT_TRUE(Is(19, 19, kBlue));
  EXPECT_EQ(Pixels(kRed), 17);
  EXPECT_EQ(Pixels(kBlue), 19);
}

TEST_F(QtCanvasTest, AFocusRectangleIsDotted) {
  Draw([](Canvas& canvas) { canvas.DrawFocusRect({10, 10, 30, 30}); });
  EXPECT_EQ(Drawn() | QRect(10, 10, 20, 20), QRect(10, 10, 20, 20));
  const int pixels = 1600 - Pixels(Rgb(255, 255, 255));
  EXPECT_GT(pixels, 10);
  EXPECT_LT(pixels, 76);
}

TEST_F(QtCanvasTest, TextStandsWhereItIsAligned) {
  Draw([](Canvas& canvas) { canvas.TextInRect({0, 0, 40, 40}, ".", kRed, DT_LEFT); });
  const QRect leftTop = Drawn();
  EXPECT_LT(leftTop.right(), 20);
  EXPECT_LT(leftTop.bottom(), 30);
  image.fill(Qt::white);
  Draw([](Canvas& canvas) { canvas.TextInRect({0, 0, 40, 40}, ".", kRed, DT_RIGHT | DT_BOTTOM); });
  EXPECT_GT(Drawn().left(), 20);
  EXPECT_GT(Drawn().top(), leftTop.top());
}

TEST_F(QtCanvasTest, AnAmpersandIsDrawn) {
  Draw([](Canvas& canvas) {
    canvas.TextInRect({0, 0, 40, 40}, "&", kRed, DT_CENTER | DT_VCENTER);
  });
  EXPECT_FALSE(Drawn().isEmpty());
}

TEST_F(QtCanvasTest, TheBackgroundIsTheWindows) {
  QPalette palette;
  palette.setColor(QPalette::Window, QColor(1, 2, 3));
  widget.setPalette(palette);
  Draw([](Canvas& canvas) { canvas.EraseBackground({0, 0, 10, 10}); });
  EXPECT_EQ(Pixels(Rgb(1, 2, 3)), 100);
}

TEST_F(QtCanvasTest, ASizeGripIsDrawnInItsRectangle) {
  Draw([](Canvas& canvas) { canvas.DrawSizeGrip({20, 20, 36, 36}); });
  EXPECT_FALSE(Drawn().isEmpty());
  EXPECT_EQ(Drawn() | QRect(20, 20, 16, 16), QRect(20, 20, 16, 16));
}

TEST_F(QtCanvasTest, AnIconIsThirtyTwoPixelsWide) {
  const QtPlatform qt;  // brings the pictures
  const IconHandle icon = icons.Load(128);
  ASSERT_NE(icon, 0u);
  Draw([&](Canvas& canvas) { canvas.DrawIcon(4, 6, icon); });
  EXPECT_FALSE(Drawn().isEmpty());
  EXPECT_EQ(Drawn() | QRect(4, 6, 32, 32), QRect(4, 6, 32, 32));
}

TEST_F(QtCanvasTest, AnIconThatIsntThereIsntDrawn) {
  Draw([](Canvas& canvas) { canvas.DrawIcon(4, 6, 99); });
  EXPECT_TRUE(Drawn().isEmpty());
}

}  // namespace
}  // namespace platform::qt
