// Somebody on the session bus who shows icons, for as long as the object is there: on a thread of
// its own, as it would be another program.
#pragma once

#include <QString>
#include <memory>

class NotificationHost {
 public:
  NotificationHost();
  ~NotificationHost();
  NotificationHost(const NotificationHost&) = delete;
  NotificationHost& operator=(const NotificationHost&) = delete;

  // The program that has offered an icon, empty before one has.
  QString Item() const;
  // What a person does to it.
  void Click();
  void RightClick();

 private:
  class Watcher;
  void Call(const char* method);

  std::unique_ptr<Watcher> watcher;
};
