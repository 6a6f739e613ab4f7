// The icons in the notification area of the person's desktop. There may be none of that kind yet,
// or it may go: an icon is shown for as long as somebody shows icons. On the session bus the
// program that does so also shows the icon's menu; on an X server this program does.
#pragma once

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
#include <functional>
#include <map>
#include <memory>
#include <utility>

#include "app/platform/desktop.h"
#include "app/platform/qt/icon_hosts.h"
#include "app/platform/qt/pictures.h"

namespace platform::qt {

class NotificationArea : public QObject {
 public:
  // Mouse messages go out by `post`; `changed` is told the windows of the icons when the area came
  // or went. Icons are borrowed.
  NotificationArea(const Icons& icons,
                   std::function<void(const NOTIFYICONDATA&, std::intptr_t mouse)> post,
                   std::function<void(WindowHandle)> changed);

  // The menu itself handles what is chosen. False when the icon isn't there.
  bool SetMenu(WindowHandle window, std::uint32_t id, std::unique_ptr<QMenu> menu);
  // False when it is there already.
  bool Add(const NOTIFYICONDATA& data);
  // False when it isn't there.
  bool Delete(WindowHandle window, std::uint32_t id);
  void DeleteAll(WindowHandle window);

  // An icon of that window was added and nobody shows it.
  bool Lacks(WindowHandle window) const;

 private:
  struct Entry {
    NOTIFYICONDATA data;
    std::unique_ptr<QMenu> menu;            // null for none
    std::unique_ptr<QSystemTrayIcon> icon;  // null while nobody shows icons
  };
  enum class Way : std::uint8_t { NotKnown, Bus, X };
  void Look();
  void Show(Entry& entry);
  void GiveMenu(Entry& entry);
  void Activated(const NOTIFYICONDATA& data, QSystemTrayIcon::ActivationReason reason);

  const Icons& icons;
  const std::function<void(const NOTIFYICONDATA&, std::intptr_t)> post;
  const std::function<void(WindowHandle)> changed;
  std::map<std::pair<WindowHandle, std::uint32_t>, Entry> entries;
  std::unique_ptr<IconHosts> hosts;  // made for the first icon
  Way way = Way::NotKnown;
  bool there = false;
};

}  // namespace platform::qt
