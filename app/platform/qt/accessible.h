// What screen readers are told of windows and controls where Qt would say something else.
#pragma once

namespace platform::qt {

// From then on, for the rest of the process. Cheap when it is done already.
void InstallAccessible();

}  // namespace platform::qt
