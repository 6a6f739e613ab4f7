#include "app/platform/qt/qt_shell.h"

#include <QApplication>
#include <QDesktopServices>
#include <QUrl>
#include <algorithm>
#include <fstream>
#include <iterator>
#include <vector>

#include "app/platform/linux/program_file.h"
#include "app/platform/qt/text.h"

namespace platform::qt {
namespace {

// Published results of a failure.
constexpr std::intptr_t kFileNotFound = 2;
constexpr std::intptr_t kNoAssociation = 31;
constexpr std::intptr_t kDone = 33;

constexpr LibraryHandle kHelpLibrary = 1;
constexpr std::uint32_t kHelpOrdinal = 14;

bool IsBlank(char c) { return static_cast<unsigned char>(c) < 33; }

std::string Quoted(const std::string& argument, char quoteSub) {
  const auto blank = std::find_if(argument.begin(), argument.end(), IsBlank);
  const bool quotes = argument.find_first_of({'"', quoteSub}) != std::string::npos;
  if (argument.empty()) return "\"\"";
  if (blank == argument.end() || quotes) return argument;
  const auto equals = std::find(argument.begin(), blank, '=');
  const auto value = equals == blank ? argument.begin() : equals + 1;
  return std::string(argument.begin(), value) + '"' + std::string(value, argument.end()) + '"';
}

}  // namespace

std::string JoinCommandLine(const std::string& program, const std::vector<std::string>& arguments,
                            char quoteSub) {
  std::string line = Quoted(program, '"');
  for (const std::string& argument : arguments) line += ' ' + Quoted(argument, quoteSub);
  return line;
}

std::intptr_t QtShell::ShellExecuteA(const std::string& target) {
  const QUrl url(Shown(target), QUrl::StrictMode);
  if (!url.isValid() || url.scheme().isEmpty()) return kFileNotFound;
  return QDesktopServices::openUrl(url) ? kDone : kNoAssociation;
}

bool QtShell::MessageBeep(std::uint32_t) {
  QApplication::beep();
  return true;
}

LibraryHandle QtShell::LoadLibraryA(const std::string& name) {
  return Shown(name).compare(QLatin1String("hhctrl.ocx"), Qt::CaseInsensitive) == 0 ? kHelpLibrary
                                                                                    : 0;
}

HtmlHelpFunction QtShell::GetHelpFunction(LibraryHandle library, std::uint32_t ordinal) {
  return library == kHelpLibrary && ordinal == kHelpOrdinal ? &HelpViewer::HtmlHelp : nullptr;
}

std::string QtShell::GetCommandLineA(char quoteSub) {
  std::ifstream file("/proc/self/cmdline", std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), {});
  std::vector<std::string> words;
  for (auto begin = bytes.begin(); begin != bytes.end();) {
    const auto end = std::find(begin, bytes.end(), '\0');
    words.emplace_back(begin, end);
    begin = end == bytes.end() ? end : end + 1;
  }
  std::string program = ProgramFileOf("self");
  if (program.empty() && !words.empty()) program = words.front();
  if (!words.empty()) words.erase(words.begin());
  return JoinCommandLine(program, words, quoteSub);
}

bool QtShell::ChooseFile(WindowHandle owner, const std::string& title, bool forSaving,
                         const std::string& suggested, std::string* path) {
  QFileDialog dialog(desktop.SeenOwner(owner), Shown(title));
  dialog.setFileMode(forSaving ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  dialog.setAcceptMode(forSaving ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  return Choose(dialog, suggested, path);
}

bool QtShell::ChooseFolder(WindowHandle owner, const std::string& title,
                           const std::string& suggested, std::string* path) {
  QFileDialog dialog(desktop.SeenOwner(owner), Shown(title));
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  return Choose(dialog, suggested, path);
}

bool QtShell::Choose(QFileDialog& dialog, const std::string& suggested, std::string* path) {
  const QFileInfo start(Shown(suggested));
  if (start.isDir()) {
    dialog.setDirectory(start.filePath());
  } else if (!suggested.empty()) {
    dialog.setDirectory(start.path());
    dialog.selectFile(start.fileName());
  }
  if (desktop.Exec(dialog) != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return false;
  *path = QFile::encodeName(dialog.selectedFiles().constFirst()).toStdString();
  return true;
}

}  // namespace platform::qt
