#include "qt_fixture.h"

namespace platform::qt {

QWidget* QtTest::Widget(std::uint32_t id) const { return Dialog()->Find(id)->FocusWidget(); }

QMessageBox* BoxThatIsUp() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    auto* const box = qobject_cast<QMessageBox*>(widget);
    if (box && box->isVisible()) return box;
  }
  return nullptr;
}

QColor PixelOf(QWidget* widget, int x, int y) { return widget->grab().toImage().pixelColor(x, y); }

}  // namespace platform::qt

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
