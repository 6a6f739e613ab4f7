#include "rendlink/program/desktop_session.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QStandardPaths>
#include <filesystem>

#include "app/platform/linux/find_program.h"

namespace kelvaro::rendlink {
namespace {

std::string PathOf(const QString& path) { return QFile::encodeName(path).toStdString(); }

std::string Absolute(const std::string& path) {
  std::error_code failed;
  const std::filesystem::path whole = std::filesystem::absolute(path, failed);
  return failed ? path : whole.string();
}

}  // namespace

std::string DesktopSession::DesktopFolder() {
  return PathOf(QStandardPaths::writableLocation(QStandardPaths::DesktopLocation));
}

std::string DesktopSession::MenuFolder() {
  return PathOf(QStandardPaths::writableLocation(QStandardPaths::ApplicationsLocation));
}

std::vector<std::string> DesktopSession::ApplicationsFolders() {
  std::vector<std::string> folders;
  for (const QString& folder :
       QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation))
    folders.push_back(PathOf(folder));
  return folders;
}

std::string DesktopSession::FullPath(const std::string& typed) {
  if (typed.empty()) return {};
  int error = 0;
  const std::string found =
      access(typed.c_str(), F_OK) == 0 ? "" : platform::FindProgram(typed, &error);
  return Absolute(found.empty() ? typed : found);
}

bool DesktopSession::AllowStart(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return false;
  return chmod(path.c_str(), (status.st_mode | S_IXUSR) & 07777) == 0;
}

}  // namespace kelvaro::rendlink
