// Whether somebody shows the icons that programs offer to a notification area, as one look tells.
#pragma once

namespace platform {

// On the session bus. Waits for a second at most.
bool BusShowsIcons();

// On the X server of the environment. To be called before other threads use Xlib.
bool XServerShowsIcons();

}  // namespace platform
