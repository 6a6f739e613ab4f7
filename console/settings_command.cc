// kelvaroctl settings: what the window remembers, on the machine that this program runs on.

#include <functional>

#include "app/platform/platform.h"
#include "app/resources/settings_keys.h"
#include "console/commands.h"
#include "console/console_error.h"
#include "console/running_instances.h"
#include "console/stored_settings.h"
#include "console/this_system.h"

namespace kelvaro::console {
namespace {

using platform::HKEY_CURRENT_USER;

// Why the settings can't be told; empty if they can, or if there are none yet.
std::string WhyUnreadable(const std::string& file) {
  platform::HKEY key = 0;
  switch (platform::registry().RegOpenKeyA(HKEY_CURRENT_USER, kProductKey, &key)) {
    case platform::ERROR_SUCCESS:
      platform::registry().RegCloseKey(key);
      return {};
    case platform::ERROR_FILE_NOT_FOUND:
      return {};
    case platform::ERROR_BUSY:
      return file + ": another program keeps the settings locked";
    default:
      return file + ": the settings can't be read";
  }
}

// `work` with the registry installed, if what is stored can be read.
int OnSettings(Streams streams, const std::function<int(const std::string& file)>& work) {
  const SettingsStore store(streams);
  const std::string reason = WhyUnreadable(store.Place());
  if (store.IsDamaged()) return kBad;
  return reason.empty() ? work(store.Place()) : Complain(streams.err, reason);
}

}  // namespace

int SettingsListCommand(const SettingsOptions& options, Streams streams) {
  return OnSettings(streams, [&](const std::string&) { return ListSettings(options, streams); });
}

int SettingsGetCommand(const SettingsOptions& options, Streams streams) {
  return OnSettings(streams, [&](const std::string&) { return ShowSetting(options, streams); });
}

int SettingsSetCommand(const SettingsOptions& options, Streams streams) {
  return OnSettings(streams, [&](const std::string& file) {
    return ChangeSetting(options, RunningInstances(), file, streams);
  });
}

}  // namespace kelvaro::console
