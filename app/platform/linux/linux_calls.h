// Calls over a socket in the user's runtime folder, PID.steering, beside the one for windows
// (instance_socket.h). A message is a packet. Only programs of the same user are listened to, and
// called, that bear the name of one of Kelvaro's or of this one. Callers come and go on one thread,
// which sleeps while nobody says anything.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/calls.h"
#include "app/platform/linux/descriptor.h"
#include "app/platform/linux/instance_folder.h"

namespace platform {

class LinuxCalls final : public Calls {
 public:
  // `folder`: where the sockets are; empty where there is none, and then nobody can call.
  explicit LinuxCalls(std::string folder = InstanceFolder());
  ~LinuxCalls() override;
  LinuxCalls(const LinuxCalls&) = delete;
  LinuxCalls& operator=(const LinuxCalls&) = delete;

  bool Answer(CallReceiver* receiver) override;
  void StopAnswering() override;
  bool Send(CallId call, const std::string& message) override;
  void HangUp(CallId call) override;
  void Wake() override;
  std::vector<std::uint32_t> Answering() override;
  std::unique_ptr<Conversation> Call(std::uint32_t process) override;
  std::unique_ptr<Arrivals> WatchArrivals() override;

 private:
  struct Caller {
    Descriptor connection;
    bool wantsRoom = false;
    bool gone = false;  // to be taken off the list once nothing goes through it
  };

  static void* Listen(void* self);
  bool ServeOnce();  // false when it is to end
  void TakeCaller();
  void Receive(CallId call, Caller* caller);

  const std::string folder;
  Descriptor wake;   // event descriptors: something is to be told, or it is to end
  Descriptor ended;  // the thread has
  std::atomic<bool> ending{false};
  CallReceiver* receiver = nullptr;  // null when nobody answers
  std::string path;
  Descriptor listener;
  std::map<CallId, Caller> callers;  // of the thread, as is the next
  CallId lastCall = 0;
};

}  // namespace platform
