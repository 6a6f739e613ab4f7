// The engine, told a second time: Triggers, containment, dispatch, the mouse, repeating, and the
// polling under them. Nothing of engine/, keys/ or device/ is used here, and nothing is made fast
// or shared: time goes on by a millisecond at a time, and everybody who might have something to do
// is asked at each.
#pragma once

#include <vector>

#include "tests/model/plain_keys.h"
#include "tests/model/script.h"

namespace kelvaro::plain {

// All that is sent up to the script's end.
std::vector<Event> Play(const Script& script);

}  // namespace kelvaro::plain
