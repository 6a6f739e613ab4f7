// An interface of COM's, let go of when its owner goes.
#pragma once

#include <memory>

#include "app/platform/windows/win32.h"

// COM's, which a lean windows.h leaves out.
#include <objbase.h>

namespace platform {

struct ReleaseInterface {
  void operator()(IUnknown* object) const { object->Release(); }
};
template <typename Interface>
using Owned = std::unique_ptr<Interface, ReleaseInterface>;

}  // namespace platform
