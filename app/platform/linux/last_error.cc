#include "app/platform/linux/last_error.h"

namespace platform {

constinit thread_local int lastError = 0;

}  // namespace platform
