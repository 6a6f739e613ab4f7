#include "rendlink/program/dialog_program.h"

#include <QApplication>

#include "app/platform/linux/linux_platform.h"
#include "app/platform/linux/linux_processes.h"
#include "app/platform/qt/qt_platform.h"
#include "app/platform/qt/stop_requests.h"
#include "app/resources/desktop_id.h"
#include "rendlink/program/desktop_session.h"
#include "rendlink/rendlink_dialog.h"

namespace kelvaro::rendlink {

int RunDialogOnDesktop(int& argc, char** argv) {
  platform::LinuxPlatform system;
  QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("rendlink"));
  QApplication::setDesktopFileName(QLatin1String(kRendlinkDesktopId));
  platform::qt::QtPlatform qt;
  const platform::qt::StopRequests stop(qt.Desktop());
  platform::Platform groups = system.Groups();
  platform::LinuxProcesses processes(*groups.threads);
  groups.processes = &processes;
  groups.desktop = &qt.Desktop();
  groups.controls = &qt.Controls();
  groups.shell = &qt.Shell();
  const platform::InstalledPlatform installed(groups);
  DesktopSession session;
  return RendlinkDialog(session).DoModal(platform::kNoWindow) == -1 ? 1 : 0;
}

}  // namespace kelvaro::rendlink
