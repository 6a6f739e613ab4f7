// Of the tests that a person at a simulated machine plays in: Qt off the screen, in virtual time.
#include <gtest/gtest.h>

#include <QApplication>

#include "app/platform/qt/qt_platform.h"
#include "tests/person/virtual_dispatcher.h"

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QCoreApplication::setEventDispatcher(new platform::simulation::VirtualDispatcher);
  QApplication application(argc, argv);
  QApplication::setStyle(QStringLiteral("Fusion"));
  const platform::qt::QtPlatform pictures;
  return RUN_ALL_TESTS();
}
