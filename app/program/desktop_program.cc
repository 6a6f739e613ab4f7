#include "app/program/desktop_program.h"

#include <unistd.h>

#include <QApplication>
#include <cstdio>
#include <string>
#include <vector>

#include "app/platform/linux/linux_calls.h"
#include "app/platform/linux/linux_platform.h"
#include "app/platform/linux/linux_processes.h"
#include "app/platform/linux/settings/sqlite_registry.h"
#include "app/platform/platform.h"
#include "app/platform/qt/qt_platform.h"
#include "app/platform/qt/stop_requests.h"
#include "app/program/display.h"
#include "app/program/no_input.h"
#include "app/resources/desktop_id.h"
#include "app/resources/resources.h"
#include "app/window/run_program.h"

namespace kelvaro {
namespace {

QtMessageHandler usualMessages = nullptr;

// When Qt finds no display, it would end the program with a dump.
void OnMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (type == QtFatalMsg && !QCoreApplication::instance()) {
    const std::string reason = text.section(u'\n', 0, 0).toStdString();
    std::fprintf(stderr, "%s\n", NoDisplay(reason).c_str());
    _exit(1);
  }
  usualMessages(type, context, text);
}

}  // namespace

int RunOnDesktop(int& argc, char** argv) {
  platform::LinuxPlatform system;
  // First: a desktop needs a moment to take in the new keyboard and mouse.
  std::string inputError;
  const bool hasInput = system.OpenInput(platform::InputChoice::Auto, &inputError);

  usualMessages = qInstallMessageHandler(&OnMessage);
  QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("kelvaro"));
  QApplication::setDesktopFileName(QLatin1String(kDesktopId));
  platform::qt::QtPlatform qt;
  const platform::qt::StopRequests stop(qt.Desktop());

  NoInput noInput;
  platform::SqliteRegistry registry;
  platform::Platform groups = system.Groups();
  groups.registry = &registry;
  groups.desktop = &qt.Desktop();
  groups.controls = &qt.Controls();
  groups.shell = &qt.Shell();
  // Its socket goes before the windows that it offers do.
  platform::LinuxProcesses processes(*groups.threads);
  processes.OfferWindows(
      [&qt] {
        std::vector<platform::OfferedWindow> offered;
        for (const platform::TopLevelWindow& window : qt.Desktop().Windows().TopLevelWindows())
          offered.push_back({window.window, window.visible, window.iconic});
        return offered;
      },
      [&qt](platform::WindowHandle window, std::uint32_t message) {
        return qt.Desktop().PostMessageA(window, message, 0, 0);
      });
  groups.processes = &processes;
  platform::LinuxCalls calls;
  groups.calls = &calls;
  if (hasInput) {
    system.Sender()->OnFailure([&qt](const std::string& reason) {
      qt.Desktop().Tell("The system refuses the keys and mouse events that are sent: " + reason);
    });
  } else {
    groups.input = &noInput;
    qt.Desktop().Tell("Kelvaro " + inputError +
                      ".\n\nUntil then profiles can be edited, and their Controls do nothing.");
  }
  registry.OnTrouble([&qt](const std::string& text) { qt.Desktop().Tell(text); });
  const platform::InstalledPlatform installed(groups);
  return RunProgram();
}

}  // namespace kelvaro
