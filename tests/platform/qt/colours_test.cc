#include "app/platform/qt/colours.h"

#include <gtest/gtest.h>

namespace platform::qt {
namespace {

TEST(Colours, ComeAndGoWithTheirParts) {
  EXPECT_EQ(ColourOf(Rgb(1, 2, 3)), QColor(1, 2, 3));
  EXPECT_EQ(ColourOf(QColor(1, 2, 3)), Rgb(1, 2, 3));
  EXPECT_EQ(Rgb(1, 2, 3), 0x030201u);
}

TEST(Colours, ALinkStaysAsItWasGivenOnALightBackground) {
  EXPECT_EQ(Readable(QColor(0, 0, 255), QColor(0xEF, 0xEF, 0xEF)), QColor(0, 0, 255));
}

TEST(Colours, ALinkBecomesLighterOnADarkBackground) {
  for (const QColor& ink : {QColor(0, 0, 255), QColor(128, 0, 128)}) {
    const QColor shown = Readable(ink, QColor(0x2D, 0x2D, 0x30));
    EXPECT_GT(shown.lightness(), ink.lightness());
    EXPECT_EQ(shown.hslHue(), ink.hslHue());
  }
}

TEST(Colours, WhatCanBeReadOnADarkBackgroundStays) {
  EXPECT_EQ(Readable(QColor(Qt::white), QColor(Qt::black)), QColor(Qt::white));
}

TEST(Colours, ContrastIsThatOfTheGuidelines) {
  EXPECT_DOUBLE_EQ(Contrast(QColor(Qt::white), QColor(Qt::black)), 21);
  EXPECT_DOUBLE_EQ(Contrast(QColor(Qt::black), QColor(Qt::white)), 21);
  EXPECT_NEAR(Contrast(QColor(0, 0, 255), QColor(Qt::white)), 8.59, 0.01);
  EXPECT_DOUBLE_EQ(Contrast(QColor(1, 2, 3), QColor(1, 2, 3)), 1);
}

TEST(Colours, ALinkCanBeReadBeforeAnyGrey) {
  for (int grey = 0; grey < 256; ++grey) {
    for (const QColor& ink : {QColor(0, 0, 255), QColor(128, 0, 128)}) {
      const QColor background(grey, grey, grey);
      EXPECT_GE(Contrast(Readable(ink, background), background), 4.5) << grey;
    }
  }
}

}  // namespace
}  // namespace platform::qt
