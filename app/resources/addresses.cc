#include "app/resources/resources.h"

namespace kelvaro::resources {

const char* const kWebAddress = KELVARO_WEB_ADDRESS;
const char* const kSupportAddress = KELVARO_SUPPORT_ADDRESS;

}  // namespace kelvaro::resources
