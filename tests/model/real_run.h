// Plays a script on the real engine, on the simulated machine.
#pragma once

#include <vector>

#include "app/platform/recording/recording.h"
#include "engine/profile.h"
#include "tests/model/plain_keys.h"
#include "tests/model/script.h"

namespace kelvaro::plain {

std::vector<Event> PlayReally(const Script& script);

// *profile, a fresh one, becomes what the script says.
void MakeProfile(const ScriptProfile& script, Profile* profile);

platform::StateChange StateChangeOf(const PadChange& change, std::vector<std::uint32_t>* held);

}  // namespace kelvaro::plain
