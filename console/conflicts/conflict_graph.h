// The Controls that are in one another's way as a picture: a line for each, heaviest first, as the
// engine goes through them. Arcs on the right lead from a Control to one that it keeps silent, so
// they all lead down; arcs on the left, broken, to one to which it loses its repeat. Controls that
// take the repeat from one another have a note instead.
#pragma once

#include <string>

#include "console/conflicts/conflicts.h"
#include "engine/profile.h"

namespace kelvaro::console {

// In the language of graph drawing programs.
std::string DotGraph(const Profile& profile, const Conflicts& conflicts);

// A picture of its own.
std::string SvgGraph(const Profile& profile, const Conflicts& conflicts);

}  // namespace kelvaro::console
