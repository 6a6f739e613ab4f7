#include "app/platform/qt/qt_platform.h"

#include <QApplication>

// Qt wants this in the global namespace.
static void InitPictures() { Q_INIT_RESOURCE(kelvaro_pictures); }

namespace platform::qt {

QtPlatform::QtPlatform() {
  InitPictures();
  QApplication::setWindowIcon(QIcon(QStringLiteral(":/kelvaro/icon/128/64.png")));
  // A window that is hidden waits in the notification area.
  QApplication::setQuitOnLastWindowClosed(false);
}

}  // namespace platform::qt
