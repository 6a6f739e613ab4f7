// kelvaroctl show: what is in a profile.

#include "console/commands.h"
#include "console/console_error.h"
#include "console/file_machine.h"
#include "console/profile_json.h"
#include "console/profile_source.h"
#include "console/profile_text.h"

namespace kelvaro::console {

int ShowCommand(const ShowOptions& options, Streams streams) {
  const FileMachine machine;
  ProfileFile profile;
  if (!FindProfile(options.profile, &profile, streams.err)) return kBad;
  if (options.json) {
    streams.out << ProfileJson(profile) << std::endl;
  } else {
    streams.out << ProfileText(profile) << std::flush;
  }
  return kDone;
}

}  // namespace kelvaro::console
