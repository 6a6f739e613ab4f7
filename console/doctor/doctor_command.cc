// kelvaroctl doctor: whether Kelvaro can work on this machine.

#include "app/resources/settings_keys.h"
#include "app/settings/app_settings.h"
#include "console/commands.h"
#include "console/console_error.h"
#include "console/doctor/bug_report.h"
#include "console/doctor/diagnosis.h"
#include "console/doctor/machine_facts.h"
#include "console/file_machine.h"
#include "console/json_text.h"
#include "console/profile_json.h"
#include "console/profile_source.h"
#include "console/this_system.h"
#include "console/write_file.h"

namespace kelvaro::console {
namespace {

// The name of the one that the window opened last; empty for none.
std::string LastProfile(Streams streams) {
  const SettingsStore store(streams);
  AppSettings settings;
  RegistryKey key(platform::HKEY_CURRENT_USER, kProductKey, false);
  settings.Load(&key, false);
  return Bytes(settings.lastProfile);
}

// The JSON of the profile asked for, or else of the last one where that can be read. False where
// the one asked for can't be.
bool FindReported(const DoctorOptions& options, std::string* json, Streams streams) {
  const std::string name = options.profile ? *options.profile : LastProfile(streams);
  if (name.empty()) return true;
  const FileMachine machine;
  ProfileFile profile;
  if (!FindProfile(name, &profile, streams.err)) return !options.profile;
  LeaveOutTypedTexts(&profile);
  *json = ProfileJson(profile);
  return true;
}

bool Report(const DoctorOptions& options, const std::vector<Remark>& remarks, Streams streams) {
  std::string json;
  if (!FindReported(options, &json, streams)) return false;
  const std::string text = ReportText(SystemText(), remarks, json, HomeFolder());
  std::string error;
  if (!WriteWholeFile(*options.report, text, &error)) {
    Complain(streams.err, *options.report + ": " + error);
    return false;
  }
  streams.err << "Wrote " << *options.report << "; read it before you send it." << std::endl;
  return true;
}

}  // namespace

int DoctorCommand(const DoctorOptions& options, Streams streams) {
  const std::vector<Remark> remarks = ExamineMachine();
  for (const Remark& remark : remarks) {
    streams.out << (options.json ? RemarkJson(remark) + "\n" : RemarkText(remark, streams.terminal))
                << std::flush;
  }
  if (options.report && !Report(options, remarks, streams)) return kBad;
  return KeepsFromWorking(remarks) ? kBad : kDone;
}

}  // namespace kelvaro::console
