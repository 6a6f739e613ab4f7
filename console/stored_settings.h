// The window's settings as kelvaroctl lists, shows and changes them, through the installed
// registry. Each gives the exit status of its command.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "console/commands.h"

namespace kelvaro::console {

int ListSettings(const SettingsOptions& options, Streams streams);
int ShowSetting(const SettingsOptions& options, Streams streams);

// `running`: the processes that have read the settings already. What the window itself writes isn't
// changed while there are any, since they would write their own value over it. `file` is where the
// settings lie, for the message.
int ChangeSetting(const SettingsOptions& options, const std::vector<std::uint32_t>& running,
                  const std::string& file, Streams streams);

}  // namespace kelvaro::console
