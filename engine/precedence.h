// Which of those that want the same inputs goes first: a Control with more of them before one with
// a share of these, and the mouse controls before any Control.
#pragma once

#include "engine/control.h"
#include "engine/mouse_settings.h"

namespace kelvaro {

// Whether all inputs of `inner` are among those of `outer`, in any direction. Of two Controls that
// are active the one that comes first in the DispatchList keeps what it contains from firing.
bool IsContained(const Control& inner, const Control& outer);

// Whether an axis or a hat is the pointer's or the wheel's, in any direction.
bool IsMouseInput(const MouseSettings& mouse, const TriggerItem& input);
// Whether the Control has such an input: while the mouse controls are on, it neither starts nor
// ends. Their buttons are another matter: they are gone before any Control looks.
bool UsesMouseInput(const MouseSettings& mouse, const Control& control);

}  // namespace kelvaro
