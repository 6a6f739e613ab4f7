// What a report of a fault has to tell of a machine and a profile, as a text that a person can read
// before sending it. What was typed stays out of it.
#pragma once

#include <string>
#include <vector>

#include "console/doctor/diagnosis.h"
#include "engine/profile.h"

namespace kelvaro::console {

// Empties the profile's name and its descriptions, and makes each step of its keys one of no key,
// so that their number and their pauses are still told.
void LeaveOutTypedTexts(Profile* profile);

// `system` is what the machine is; `profile` its JSON, empty for none. Wherever a remark names the
// home folder, it has "~" in its place; an empty `home` is none.
std::string ReportText(const std::string& system, const std::vector<Remark>& remarks,
                       const std::string& profile, const std::string& home);

}  // namespace kelvaro::console
