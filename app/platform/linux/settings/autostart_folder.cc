#include "app/platform/linux/settings/autostart_folder.h"

#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>
#include <tuple>
#include <utility>

#include "app/platform/entry_text.h"
#include "app/platform/file_pattern.h"
#include "app/platform/linux/descriptor.h"
#include "app/platform/linux/home_folders.h"

namespace platform {
namespace {

constexpr std::string_view kPrefix = "kelvaro-";
constexpr std::string_view kSuffix = ".desktop";
constexpr std::size_t kLongestName = 200;  // file systems allow 255 for all of a file's name

// A percent sign starts a field code; a double one is itself.
std::string WithoutFieldCodes(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    out += text[i];
    if (text[i] == '%' && i + 1 < text.size() && text[i + 1] == '%') ++i;
  }
  return out;
}

bool CanBeInFileName(const std::string& name) {
  if (name.empty() || name.size() > kLongestName) return false;
  return std::all_of(name.begin(), name.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x20 && byte != 0x7F && byte != '/';
  });
}

// Whole or not at all.
bool WriteFile(const std::string& folder, const std::string& file, const std::string& text) {
  std::string aside = folder + "/.kelvaro-XXXXXX";
  Descriptor made(mkstemp(aside.data()));
  if (!made) return false;
  std::size_t written = 0;
  bool done = WriteAll(made.Get(), text.data(), text.size(), &written) && fsync(made.Get()) == 0;
  done = made.Close() && done;
  done = done && rename(aside.c_str(), (folder + "/" + file).c_str()) == 0;
  if (!done) unlink(aside.c_str());
  return done;
}

}  // namespace

std::string ProgramOf(const std::string& exec) {
  if (!exec.starts_with('"')) {
    const bool isOneArgument = exec.find_first_of(kReservedInExec) == std::string::npos;
    return isOneArgument ? WithoutFieldCodes(exec) : exec;
  }
  std::string argument;
  for (std::size_t i = 1; i < exec.size(); ++i) {
    if (exec[i] == '"') {
      return i + 1 == exec.size() ? WithoutFieldCodes(argument) : exec;
    }
    const bool isEscape = exec[i] == '\\' && i + 1 < exec.size() &&
                          kEscapedInQuotes.find(exec[i + 1]) != std::string_view::npos;
    if (isEscape) ++i;
    argument += exec[i];
  }
  return exec;  // the quote never ends
}

struct AutostartFolder::Entry {
  std::string file;       // its name in the folder
  std::string valueName;  // as its file name tells
  bool isOurs = false;    // the entry tells the same name
  bool isOn = true;
  std::int64_t order = 0;
  std::string program;
};

AutostartFolder::AutostartFolder(std::string path) : path(std::move(path)) {}

std::vector<AutostartFolder::Entry> AutostartFolder::Entries() const {
  std::vector<Entry> entries;
  if (path.empty()) return entries;
  std::error_code error;
  for (std::filesystem::directory_iterator at(path, error), end; !error && at != end;
       at.increment(error)) {
    Entry entry;
    entry.file = at->path().filename();
    const std::string_view name = entry.file;
    if (name.size() <= kPrefix.size() + kSuffix.size() || !name.starts_with(kPrefix) ||
        !name.ends_with(kSuffix)) {
      continue;
    }
    entry.valueName = name.substr(kPrefix.size(), name.size() - kPrefix.size() - kSuffix.size());
    std::error_code noFile;
    if (at->is_regular_file(noFile)) {
      std::ifstream file(at->path());
      auto values = ReadEntry(std::string((std::istreambuf_iterator<char>(file)), {}));
      entry.program = ProgramOf(values["Exec"]);
      entry.isOn = values["Hidden"] != "true" && values["X-GNOME-Autostart-enabled"] != "false";
      entry.order = std::strtoll(values["X-Kelvaro-Order"].c_str(), nullptr, 10);
      entry.isOurs = SameName(values["X-Kelvaro-Value"], entry.valueName);
    }
    entries.push_back(std::move(entry));
  }
  std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
    return std::tie(a.order, a.file) < std::tie(b.order, b.file);
  });
  return entries;
}

std::vector<StoredValue> AutostartFolder::Values() const {
  std::vector<StoredValue> values;
  for (const Entry& entry : Entries()) {
    if (entry.isOurs && entry.isOn) {
      values.push_back({entry.valueName, REG_SZ, entry.program + '\0'});
    }
  }
  return values;
}

std::uint32_t AutostartFolder::Write(const StoredValue& value) {
  if (value.type != REG_SZ || !CanBeInFileName(value.name)) return ERROR_INVALID_PARAMETER;
  if (path.empty() || !MakeFolders(path)) return ERROR_ACCESS_DENIED;
  std::string name = value.name;
  std::string file = std::string(kPrefix) + name + std::string(kSuffix);
  std::int64_t last = 0;
  std::optional<std::int64_t> own;
  for (const Entry& entry : Entries()) {
    last = std::max(last, entry.order);
    if (!SameName(entry.valueName, name)) continue;
    if (!entry.isOurs) return ERROR_ACCESS_DENIED;
    name = entry.valueName;
    file = entry.file;
    if (entry.isOn) own = entry.order;
  }
  const std::string program = value.data.substr(0, value.data.find('\0'));
  const std::string text = "[Desktop Entry]\nType=Application\nName=" + EscapedForEntry(name) +
                           "\nExec=" + EscapedForEntry(ExecWord(program)) +
                           "\nTerminal=false\nX-Kelvaro-Value=" + EscapedForEntry(name) +
                           "\nX-Kelvaro-Order=" + std::to_string(own.value_or(last + 1)) + "\n";
  return WriteFile(path, file, text) ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

std::uint32_t AutostartFolder::Delete(const std::string& name) {
  for (const Entry& entry : Entries()) {
    if (!entry.isOurs || !entry.isOn || !SameName(entry.valueName, name)) continue;
    return unlink((path + "/" + entry.file).c_str()) == 0 ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
  }
  return ERROR_FILE_NOT_FOUND;
}

}  // namespace platform
