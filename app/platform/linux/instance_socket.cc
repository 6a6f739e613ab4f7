#include "app/platform/linux/instance_socket.h"

#include <errno.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <utility>

#include "app/platform/linux/detached_thread.h"

namespace platform {
namespace {

constexpr std::uint32_t kMagic = 0x4B56494E;
constexpr std::uint32_t kAskWindows = 1;
constexpr std::uint32_t kPost = 2;
constexpr std::size_t kMostWindows = 64;
constexpr int kAnswerWithinMs = 500;
constexpr int kRequestWithinMs = 100;
constexpr char kEnding[] = ".socket";

struct Request {
  std::uint32_t magic = kMagic;
  std::uint32_t kind = 0;
  std::uint64_t window = 0;
  std::uint32_t message = 0;
  std::uint32_t reserved = 0;
};

struct Answer {
  struct Window {
    std::uint32_t number = 0;
    std::uint32_t state = 0;  // bit 0: visible, bit 1: iconic
  };
  std::uint32_t magic = kMagic;
  std::uint32_t count = 0;  // of windows; of a post 1 when it went through
  Window windows[kMostWindows];
};
constexpr std::size_t kAnswerHead = offsetof(Answer, windows);

// The other end belongs to this user and runs this program.
bool IsOneOfUs(int connection) {
  const std::string own = OwnProgram();
  return !own.empty() && PeerProgram(connection) == own;
}

std::string SocketPath(const std::string& folder, std::uint32_t process) {
  return InstanceSocketPath(folder, process, kEnding);
}

// False when the instance isn't there, isn't one of us or doesn't answer in time.
bool Ask(const std::string& path, const Request& request, Answer* answer) {
  const Descriptor connection = ConnectTo(path);
  if (!connection || !IsOneOfUs(connection.Get())) return false;
  if (send(connection.Get(), &request, sizeof request, MSG_NOSIGNAL) != sizeof request)
    return false;
  if (!Readable(connection.Get(), kAnswerWithinMs)) return false;
  const ssize_t size = recv(connection.Get(), answer, sizeof *answer, 0);
  return size >= static_cast<ssize_t>(kAnswerHead) && answer->magic == kMagic &&
         answer->count <= kMostWindows;
}

}  // namespace

std::unique_ptr<InstanceSocket> InstanceSocket::Open(const std::string& folder,
                                                     WindowSource windows, WindowPost post) {
  std::unique_ptr<InstanceSocket> made(new InstanceSocket);
  if (folder.empty()) return nullptr;
  const std::string path = SocketPath(folder, static_cast<std::uint32_t>(getpid()));
  made->wake = Descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  made->ended = Descriptor(eventfd(0, EFD_CLOEXEC));
  if (!made->wake || !made->ended) return nullptr;
  Instances(folder);  // so that those of crashed ones don't pile up
  made->listener = ListenAt(path);
  if (!made->listener) return nullptr;
  made->path = path;
  made->windows = std::move(windows);
  made->post = std::move(post);
  made->listens = StartDetachedThread(Listen, made.get());
  return made->listens ? std::move(made) : nullptr;
}

InstanceSocket::~InstanceSocket() {
  if (!path.empty()) unlink(path.c_str());
  if (!listens) return;
  eventfd_write(wake.Get(), 1);
  eventfd_t count;
  Retry([&] { return eventfd_read(ended.Get(), &count); });
}

void* InstanceSocket::Listen(void* argument) {
  NameCurrentThread("instances");
  InstanceSocket& self = *static_cast<InstanceSocket*>(argument);
  for (;;) {
    pollfd wanted[] = {{self.wake.Get(), POLLIN, 0}, {self.listener.Get(), POLLIN, 0}};
    if (poll(wanted, 2, -1) < 0 && errno != EINTR) break;
    if (wanted[0].revents != 0) break;
    const Descriptor connection(
        accept4(self.listener.Get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (connection) {
      self.Serve(connection.Get());
    } else if (errno != EAGAIN && errno != EINTR && errno != ECONNABORTED) {
      Readable(self.wake.Get(), kRequestWithinMs);  // out of descriptors or memory: not in circles
    }
  }
  eventfd_write(self.ended.Get(), 1);
  return nullptr;
}

void InstanceSocket::Serve(int connection) {
  Request request;
  if (!IsOneOfUs(connection) || !Readable(connection, kRequestWithinMs)) return;
  // A packet that is too long comes cut, with the flag that says so.
  iovec place{&request, sizeof request};
  msghdr message{};
  message.msg_iov = &place;
  message.msg_iovlen = 1;
  if (recvmsg(connection, &message, 0) != sizeof request) return;
  if ((message.msg_flags & MSG_TRUNC) != 0 || request.magic != kMagic) return;
  Answer answer;
  if (request.kind == kAskWindows) {
    for (const OfferedWindow& window : windows()) {
      if (answer.count == kMostWindows) break;
      answer.windows[answer.count++] = {static_cast<std::uint32_t>(window.window),
                                        (window.visible ? 1u : 0u) | (window.iconic ? 2u : 0u)};
    }
  } else if (request.kind == kPost) {
    answer.count = post(static_cast<WindowHandle>(request.window), request.message) ? 1 : 0;
  } else {
    return;
  }
  const std::size_t size =
      kAnswerHead + (request.kind == kAskWindows ? answer.count * sizeof(Answer::Window) : 0);
  // A caller that doesn't wait for the answer doesn't get it.
  if (send(connection, &answer, size, MSG_NOSIGNAL) < 0) return;
}

std::vector<std::uint32_t> Instances(const std::string& folder) {
  return InstancesWith(folder, kEnding);
}

bool IsListening(const std::string& folder, std::uint32_t process) {
  return bool(ConnectTo(SocketPath(folder, process)));
}

bool AskWindows(const std::string& folder, std::uint32_t process,
                std::vector<OfferedWindow>* windows) {
  windows->clear();
  Request request;
  request.kind = kAskWindows;
  Answer answer;
  if (!Ask(SocketPath(folder, process), request, &answer)) return false;
  for (std::uint32_t i = 0; i < answer.count; ++i) {
    const Answer::Window& window = answer.windows[i];
    windows->push_back({window.number, (window.state & 1) != 0, (window.state & 2) != 0});
  }
  return true;
}

bool PostToInstance(const std::string& folder, std::uint32_t process, WindowHandle window,
                    std::uint32_t message) {
  Request request;
  request.kind = kPost;
  request.window = window;
  request.message = message;
  Answer answer;
  return Ask(SocketPath(folder, process), request, &answer) && answer.count == 1;
}

}  // namespace platform
