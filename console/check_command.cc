// kelvaroctl check: what is wrong with profiles.

#include "console/commands.h"
#include "console/console_error.h"
#include "console/file_machine.h"
#include "console/json_text.h"
#include "console/profile_check.h"
#include "console/read_file.h"
#include "console/terminal_text.h"
#include "console/this_system.h"

namespace kelvaro::console {
namespace {

const FindingKind& KindOf(const Finding& finding) {
  return kFindingKinds[static_cast<std::size_t>(finding.kind)];
}

bool IsGood(const ProfileReport& report) { return report.loads && report.isWhole; }

std::string JsonReport(const std::string& file, const ProfileReport& report) {
  std::string findings;
  for (const Finding& finding : report.findings) {
    if (!findings.empty()) findings += ',';
    findings.append("{\"kind\":\"").append(KindOf(finding).name);
    findings.append("\",\"where\":").append(JsonText(finding.where));
    findings.append(",\"what\":").append(JsonText(finding.what)).append("}");
  }
  return "{\"file\":" + JsonText(file) + ",\"loads\":" + (IsGood(report) ? "true" : "false") +
         (IsGood(report) ? "" : ",\"error\":" + JsonText(report.fault.message)) +
         ",\"profileName\":" + JsonText(report.profileName) +
         ",\"controls\":" + std::to_string(report.controls) + ",\"findings\":[" + findings + "]}";
}

void PrintReport(const std::string& file, const ProfileReport& report, std::ostream& out) {
  const std::string shown = TerminalText(file);
  if (IsGood(report)) {
    out << shown << ": loads, '" << TerminalText(report.profileName) << "', "
        << std::to_string(report.controls) << (report.controls == 1 ? " Control" : " Controls")
        << '\n';
  }
  for (const Finding& finding : report.findings) {
    // The error says it.
    if (finding.kind == Finding::Kind::Damage) continue;
    out << shown << ": " << finding.where << KindOf(finding).between << finding.what << '\n';
  }
  out << std::flush;
}

// `path` is its file where it goes by a name.
ProfileReport CheckOne(const std::string& fileOrName, const Typing& types, std::string* path) {
  ProfileReport report;
  {
    const FileMachine machine;
    if (!FindProfilePath(fileOrName, path, &report.fault)) return report;
  }
  std::string bytes;
  std::string error;
  if (ReadWholeFile(*path, kMostProfile, &bytes, &error)) return CheckProfile(bytes, *path, types);
  report.fault.message = *path + ": " + error;
  return report;
}

}  // namespace

int CheckCommand(const CheckOptions& options, Streams streams) {
  const Typing types = DesktopTyping();
  int status = kDone;
  for (const std::string& each : options.profiles) {
    std::string path;
    const ProfileReport report = CheckOne(each, types, &path);
    if (options.json) {
      streams.out << JsonReport(path, report) << std::endl;
    } else {
      PrintReport(path, report, streams.out);
    }
    if (!IsGood(report)) status = Complain(streams.err, report.fault.message, report.fault.detail);
  }
  return status;
}

}  // namespace kelvaro::console
