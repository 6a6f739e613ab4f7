// States of a pad that Triggers want.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "engine/control.h"

namespace kelvaro::console {

// Whether all that the Trigger wants is held, as the engine has it; the same whether it fires when
// it is pressed or when it is let go.
bool IsHeld(const Trigger& trigger, const DIJOYSTATE2& state);

// The first state that `fits` accepts, of those in which the inputs of these Triggers are pushed
// and no others: each axis to the side that is wanted, each hat in one of its eight directions.
std::optional<DIJOYSTATE2> FindState(const std::vector<const Trigger*>& triggers,
                                     const std::function<bool(const DIJOYSTATE2&)>& fits);

// The state with the Trigger's inputs at rest.
DIJOYSTATE2 Without(const Trigger& trigger, DIJOYSTATE2 state);

}  // namespace kelvaro::console
