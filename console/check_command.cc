// kelvaroctl check: what is wrong with profiles.

#include "console/commands.h"
#include "console/console_error.h"
#include "console/json_text.h"
#include "console/profile_check.h"
#include "console/read_file.h"
#include "console/terminal_text.h"

namespace kelvaro::console {
namespace {

const char* KindName(Finding::Kind kind) {
  switch (kind) {
    case Finding::Kind::Damage:
      return "damage";
    case Finding::Kind::Lacks:
      return "lacks";
    case Finding::Kind::PassedOver:
      return "passedOver";
    case Finding::Kind::NeverFires:
      return "neverFires";
  }
  return "";
}

std::string Sentence(const Finding& finding) {
  switch (finding.kind) {
    case Finding::Kind::Damage:
      return finding.where + ": damaged: " + finding.what;
    case Finding::Kind::Lacks:
      return finding.where + ": lacks " + finding.what;
    case Finding::Kind::PassedOver:
      return finding.where + ": passed over: " + finding.what;
    case Finding::Kind::NeverFires:
      return finding.where + " can never fire: " + finding.what;
  }
  return "";
}

std::string JsonReport(const std::string& file, const ProfileReport& report) {
  std::string line =
      "{\"file\":" + JsonText(file) + ",\"loads\":" + (report.loads ? "true" : "false");
  if (!report.loads) line += ",\"error\":" + JsonText(report.fault.message);
  line += ",\"profileName\":" + JsonText(report.profileName) +
          ",\"controls\":" + std::to_string(report.controls) + ",\"findings\":[";
  for (const Finding& finding : report.findings) {
    if (&finding != &report.findings.front()) line += ',';
    line += std::string("{\"kind\":\"") + KindName(finding.kind) +
            "\",\"where\":" + JsonText(finding.where) + ",\"what\":" + JsonText(finding.what) + "}";
  }
  return line + "]}";
}

void PrintReport(const std::string& file, const ProfileReport& report, std::ostream& out) {
  const std::string shown = TerminalText(file);
  if (report.loads) {
    out << shown << ": loads, '" << TerminalText(report.profileName) << "', "
        << std::to_string(report.controls) << (report.controls == 1 ? " Control" : " Controls")
        << '\n';
  }
  for (const Finding& finding : report.findings) {
    // The error says it.
    if (finding.kind == Finding::Kind::Damage) continue;
    out << shown << ": " << Sentence(finding) << '\n';
  }
  out << std::flush;
}

}  // namespace

int CheckCommand(const CheckOptions& options, Streams streams) {
  int status = kDone;
  for (const std::string& file : options.files) {
    std::string bytes;
    std::string error;
    ProfileReport report;
    if (ReadWholeFile(file, kMostProfile, &bytes, &error)) {
      report = CheckProfile(bytes, file);
    } else {
      report.fault.message = file + ": " + error;
    }
    if (options.json) {
      streams.out << JsonReport(file, report) << std::endl;
    } else {
      PrintReport(file, report, streams.out);
    }
    if (!report.loads) status = Complain(streams.err, report.fault.message, report.fault.detail);
  }
  return status;
}

}  // namespace kelvaro::console
