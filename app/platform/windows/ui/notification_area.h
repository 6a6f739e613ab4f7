// The icons in the notification area. It may not be there yet when the program starts with the
// session, and goes and comes back with the system's shell: an icon is added anew then.
#pragma once

#include <vector>

#include "app/platform/windows/ui/pictures.h"

namespace platform::ui {

class NotificationArea {
 public:
  // Borrowed.
  explicit NotificationArea(const Icons& icons) : icons(icons) {}

  // False when it is there already, or when there is an area that refuses it.
  bool Add(const NOTIFYICONDATA& data);
  // False when it isn't there.
  bool Delete(WindowHandle window, std::uint32_t id);
  void DeleteAll(WindowHandle window);
  bool Has(WindowHandle window, std::uint32_t id) const;

  // The area has come, or come back. The windows of the icons.
  std::vector<WindowHandle> ShowAll();
  // An icon of that window was added and nobody shows it.
  bool Lacks(WindowHandle window) const;

 private:
  struct Entry {
    NOTIFYICONDATA data;
    bool shown = false;
  };
  bool Tell(DWORD message, const NOTIFYICONDATA& data) const;

  const Icons& icons;
  std::vector<Entry> entries;
};

}  // namespace platform::ui
