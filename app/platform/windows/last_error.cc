#include "app/platform/windows/last_error.h"

namespace platform {

constinit thread_local DWORD lastError = 0;

}  // namespace platform
