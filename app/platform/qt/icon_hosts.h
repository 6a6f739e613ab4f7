// Whether somebody shows the icons that programs offer: on the session bus, as desktops of today
// do, or on the X server, as they have since long. Looked at once and then watched. User
// interface's thread.
#pragma once

#include <QDBusMessage>
#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>

namespace platform::qt {

class IconHosts : public QObject {
 public:
  // `changed` is called when an answer became another, never from here.
  explicit IconHosts(std::function<void()> changed);
  ~IconHosts() override;

  bool OnBus() const { return onBus; }
  bool OnX() const;
  // Asks the bus once more, and waits shortly: one that has just come may not have been heard of.
  void AskBus();

 private:
  class OnXServer;
  void WatchBus();
  void Answered(const QDBusMessage& answer);

  const std::function<void()> changed;
  QTimer asking;          // runs out as soon as there is time to ask the bus
  bool watching = false;  // there is a bus
  bool onBus = false;
  std::unique_ptr<OnXServer> onX;  // null without such a server
};

}  // namespace platform::qt
