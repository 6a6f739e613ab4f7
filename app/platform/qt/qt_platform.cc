#include "app/platform/qt/qt_platform.h"

#include <QApplication>
#include <QDir>

// In the global namespace, as it must be.
static void InitPictures() { Q_INIT_RESOURCE(kelvaro_pictures); }

namespace platform::qt {

QtPlatform::QtPlatform() {
  InitPictures();
  // A window that is hidden waits in the notification area.
  QApplication::setQuitOnLastWindowClosed(false);
}

}  // namespace platform::qt
