#include "app/platform/linux/icon_area.h"

#include <X11/Xlib.h>
#include <dbus/dbus.h>

#include <string>

#include "app/platform/linux/message_bus.h"

namespace platform {

bool BusShowsIcons() {
  const std::string address = SessionBusAddress();
  if (address.empty()) return false;
  MessageBus bus(address);
  dbus_bool_t registered = FALSE;
  return bus.ReadProperty("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher",
                          "IsStatusNotifierHostRegistered", false, DBUS_TYPE_BOOLEAN,
                          &registered) &&
         registered == TRUE;
}

bool XServerShowsIcons() {
  Display* const display = XOpenDisplay(nullptr);
  if (!display) return false;
  const std::string name = "_NET_SYSTEM_TRAY_S" + std::to_string(DefaultScreen(display));
  const Atom selection = XInternAtom(display, name.c_str(), True);
  const bool shows = selection != None && XGetSelectionOwner(display, selection) != None;
  XCloseDisplay(display);
  return shows;
}

}  // namespace platform
