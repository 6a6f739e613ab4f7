#include "app/platform/linux/linux_calls.h"

#include <errno.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "app/platform/callers.h"
#include "app/platform/linux/detached_thread.h"
#include "app/platform/linux/instance_news.h"

namespace platform {
namespace {

constexpr char kEnding[] = ".steering";
constexpr int kRestWithoutDescriptorsMs = 100;

bool IsOneOfOurs(int connection) {
  const auto program = PeerProgram(connection);
  return program && BearsOurName(*program, OwnProgram());
}

enum class Packet { Message, Nothing, End };

// One packet, if there is one.
Packet TakePacket(int connection, std::string* message) {
  char bytes[kLongestMessage];
  iovec place{bytes, sizeof bytes};
  msghdr header{};
  header.msg_iov = &place;
  header.msg_iovlen = 1;
  const ssize_t size = Retry([&] { return recvmsg(connection, &header, MSG_DONTWAIT); });
  if (size < 0 && errno == EAGAIN) return Packet::Nothing;
  if (size <= 0 || (header.msg_flags & MSG_TRUNC) != 0) return Packet::End;
  message->assign(bytes, static_cast<std::size_t>(size));
  return Packet::Message;
}

ssize_t SendPacket(int connection, const std::string& message) {
  return Retry([&] {
    return send(connection, message.data(), message.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  });
}

class LinuxConversation final : public Conversation {
 public:
  explicit LinuxConversation(Descriptor connection) : connection(std::move(connection)) {}

  bool Send(const std::string& message) override {
    return SendPacket(connection.Get(), message) == static_cast<ssize_t>(message.size());
  }

  Heard Receive(std::string* message, std::optional<std::uint32_t> ms) override {
    const int wait = ms ? static_cast<int>(std::min<std::uint32_t>(*ms, INT32_MAX)) : -1;
    const bool came = Readable(connection.Get(), wait);
    if (ended) return Heard::End;
    if (!came) return Heard::Nothing;
    switch (TakePacket(connection.Get(), message)) {
      case Packet::Message:
        return Heard::Message;
      case Packet::Nothing:
        return Heard::Nothing;
      case Packet::End:
        break;
    }
    return Heard::End;
  }

  void End() override {
    ended = true;
    shutdown(connection.Get(), SHUT_RDWR);
  }

 private:
  const Descriptor connection;
  std::atomic<bool> ended{false};
};

class LinuxArrivals final : public Arrivals {
 public:
  explicit LinuxArrivals(const std::string& folder)
      : end(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), news(folder) {}

  bool Wait() override {
    pollfd wanted[] = {{end.Get(), POLLIN, 0}, {news.Readable(), POLLIN, 0}};
    if (Retry([&] { return poll(wanted, 2, news.LongestWait()); }) < 0) return false;
    if (wanted[0].revents != 0) return false;
    news.Read();
    return true;
  }
  void End() override { eventfd_write(end.Get(), 1); }

 private:
  const Descriptor end;
  InstanceNews news;
};

}  // namespace

LinuxCalls::LinuxCalls(std::string folder)
    : folder(std::move(folder)),
      wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      ended(eventfd(0, EFD_CLOEXEC)) {}

LinuxCalls::~LinuxCalls() { StopAnswering(); }

bool LinuxCalls::Answer(CallReceiver* called) {
  if (receiver || folder.empty() || !wake || !ended) return false;
  InstancesWith(folder, kEnding);  // so that those of crashed ones don't pile up
  path = InstanceSocketPath(folder, static_cast<std::uint32_t>(getpid()), kEnding);
  listener = ListenAt(path);
  if (!listener) return false;
  receiver = called;
  ending = false;
  if (StartDetachedThread(Listen, this)) return true;
  receiver = nullptr;
  unlink(path.c_str());
  listener = Descriptor();
  return false;
}

void LinuxCalls::StopAnswering() {
  if (!receiver) return;
  unlink(path.c_str());
  ending = true;
  Wake();
  eventfd_t count;
  Retry([&] { return eventfd_read(ended.Get(), &count); });
  receiver = nullptr;
  listener = Descriptor();
  callers.clear();
}

void LinuxCalls::Wake() { eventfd_write(wake.Get(), 1); }

void* LinuxCalls::Listen(void* argument) {
  NameCurrentThread("steering");
  LinuxCalls& self = *static_cast<LinuxCalls*>(argument);
  while (self.ServeOnce()) {
  }
  eventfd_write(self.ended.Get(), 1);
  return nullptr;
}

bool LinuxCalls::ServeOnce() {
  std::vector<pollfd> wanted = {{wake.Get(), POLLIN, 0}, {listener.Get(), POLLIN, 0}};
  std::vector<CallId> calls;
  for (const auto& [call, caller] : callers) {
    const int events = POLLIN | (caller.wantsRoom ? POLLOUT : 0);
    wanted.push_back({caller.connection.Get(), static_cast<short>(events), 0});
    calls.push_back(call);
  }
  if (poll(wanted.data(), wanted.size(), -1) < 0 && errno != EINTR && errno != ENOMEM) return false;
  if (wanted[0].revents != 0) {
    eventfd_t count;
    eventfd_read(wake.Get(), &count);
    if (ending) return false;
    receiver->OnWake();
  }
  for (std::size_t i = 0; i < calls.size(); ++i) {
    const short events = wanted[i + 2].revents;
    Caller& caller = callers.at(calls[i]);
    if ((events & POLLOUT) != 0 && !caller.gone) {
      caller.wantsRoom = false;
      receiver->OnRoom(calls[i]);
    }
    if ((events & (POLLIN | POLLHUP | POLLERR)) != 0 && !caller.gone) Receive(calls[i], &caller);
  }
  std::erase_if(callers, [](const auto& entry) { return entry.second.gone; });
  if (wanted[1].revents != 0) TakeCaller();
  return true;
}

void LinuxCalls::TakeCaller() {
  Descriptor connection(accept4(listener.Get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
  if (!connection) {
    // Out of descriptors or memory: not in circles.
    if (errno != EAGAIN && errno != EINTR && errno != ECONNABORTED)
      Readable(wake.Get(), kRestWithoutDescriptorsMs);
    return;
  }
  if (callers.size() >= kMostCallers || !IsOneOfOurs(connection.Get())) return;
  while (++lastCall == 0 || callers.count(lastCall) != 0) {
  }
  callers[lastCall].connection = std::move(connection);
}

void LinuxCalls::Receive(CallId call, Caller* caller) {
  std::string message;
  switch (TakePacket(caller->connection.Get(), &message)) {
    case Packet::Message:
      return receiver->OnMessage(call, message);
    case Packet::Nothing:
      return;
    case Packet::End:
      caller->gone = true;
      return receiver->OnHungUp(call);
  }
}

bool LinuxCalls::Send(CallId call, const std::string& message) {
  const auto found = callers.find(call);
  if (found == callers.end() || found->second.gone) return true;
  if (SendPacket(found->second.connection.Get(), message) >= 0) return true;
  // That the caller is gone is seen by the next look at it.
  if (errno != EAGAIN && errno != ENOBUFS && errno != ENOMEM) return true;
  found->second.wantsRoom = true;
  return false;
}

void LinuxCalls::HangUp(CallId call) {
  const auto found = callers.find(call);
  if (found != callers.end()) found->second.gone = true;
}

std::vector<std::uint32_t> LinuxCalls::Answering() {
  std::vector<std::uint32_t> processes = InstancesWith(folder, kEnding);
  std::erase_if(processes, [this](std::uint32_t process) {
    return !ConnectTo(InstanceSocketPath(folder, process, kEnding));
  });
  return processes;
}

std::unique_ptr<Conversation> LinuxCalls::Call(std::uint32_t process) {
  Descriptor connection = ConnectTo(InstanceSocketPath(folder, process, kEnding));
  if (!connection || !IsOneOfOurs(connection.Get())) return nullptr;
  return std::make_unique<LinuxConversation>(std::move(connection));
}

std::unique_ptr<Arrivals> LinuxCalls::WatchArrivals() {
  if (folder.empty()) return nullptr;
  return std::make_unique<LinuxArrivals>(folder);
}

}  // namespace platform
