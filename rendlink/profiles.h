// The stored profiles, and which one Kelvaro takes for a name on its command line.
#pragma once

#include <string>
#include <vector>

namespace kelvaro::rendlink {

// Names of all profiles in the folder, in the order of Kelvaro's list.
std::vector<std::string> StoredProfiles();

// Replaces each of *names by the profile that Kelvaro takes for it, the first in its list that
// begins so in any letter case. False, with a sentence in *refusal, when there is none, or when it
// is another than the profile of just that name.
bool FindProfiles(const std::vector<std::string>& stored, std::vector<std::string>* names,
                  std::string* refusal);

}  // namespace kelvaro::rendlink
