// A dialog's table in the form in which Windows takes it: an extended template in memory.
#pragma once

#include <cstddef>
#include <vector>

#include "app/platform/windows/ui/system.h"

namespace platform::ui {

// The class of our windows, so that they are told from the system's own boxes.
constexpr wchar_t kDialogClass[] = L"KelvaroDialog";

// In the font of the system's messages. The bytes must be aligned as the vector's are. `owned`:
// it stands in front of another window.
std::vector<WORD> InMemory(const DialogTemplate& dialog, bool owned);

}  // namespace platform::ui
