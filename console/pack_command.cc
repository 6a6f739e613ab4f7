// kelvaroctl pack: a stored profile of one in JSON.

#include "console/commands.h"
#include "console/console_error.h"
#include "console/file_machine.h"
#include "console/profile_json.h"
#include "console/profile_output.h"
#include "console/profile_source.h"
#include "console/read_file.h"

namespace kelvaro::console {

int PackCommand(const PackOptions& options, Streams streams) {
  std::string text;
  std::string error;
  if (!ReadWholeFile(options.in, kMostProfile, &text, &error)) {
    return Complain(streams.err, options.in + ": " + error);
  }
  if (IsStoredProfile(text)) {
    return Complain(streams.err, options.in + ": a stored profile already; pack takes JSON");
  }
  const FileMachine machine;
  ProfileFile profile;
  JsonFault fault;
  if (!ReadProfile(text, &profile, &fault)) {
    return Complain(streams.err, fault.Text(options.in), fault.detail);
  }
  if (!WriteProfile(profile, options.out, &error)) return Complain(streams.err, error);
  return kDone;
}

}  // namespace kelvaro::console
