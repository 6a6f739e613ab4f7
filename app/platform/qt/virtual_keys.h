// The published virtual-key codes of what is typed into a window.
#pragma once

#include <QKeyEvent>
#include <cstdint>

namespace platform::qt {

// 0 for a key that has none.
std::int32_t VirtualKey(const QKeyEvent& event);

}  // namespace platform::qt
