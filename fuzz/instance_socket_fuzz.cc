// Whatever a program of the same user may send to the socket of an instance: nothing but a whole
// request to post is ever posted, and the instance goes on answering.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/linux/instance_socket.h"

namespace {

constexpr std::uint32_t kMagic = 0x4B56494E;
constexpr std::uint32_t kPost = 2;
constexpr std::size_t kRequestSize = 24;

std::atomic<std::uint32_t> posted{0};

struct Instance {
  Instance() {
    char name[] = "/tmp/kelvaro-fuzz-XXXXXX";
    folder = mkdtemp(name);
    socket = platform::InstanceSocket::Open(
        folder,
        [] {
          return std::vector<platform::OfferedWindow>{{1, true, false}};
        },
        [](platform::WindowHandle, std::uint32_t) { return ++posted != 0; });
    if (!socket) std::abort();
  }
  ~Instance() {
    socket.reset();
    rmdir(folder.c_str());
  }
  std::string folder;
  std::unique_ptr<platform::InstanceSocket> socket;
};

// Whether the instance answered. It hangs up on a caller that is too slow, as on a busy machine
// this one may be.
bool IsAnswered(const Instance& instance, const std::uint8_t* data, std::size_t size) {
  const std::string path = instance.folder + "/" + std::to_string(getpid()) + ".socket";
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  const int connection = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
  if (connect(connection, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) std::abort();
  char answer[4096];
  const bool isAnswered =
      send(connection, data, size, MSG_NOSIGNAL) == static_cast<ssize_t>(size) &&
      recv(connection, answer, sizeof answer, 0) > 0;
  close(connection);
  return isAnswered;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;  // an empty packet can't be told from a closed connection
  constexpr int kMostTries = 100;
  static Instance instance;
  std::uint32_t head[2] = {};
  std::memcpy(head, data, std::min(size, sizeof head));
  const bool isPost = size == kRequestSize && head[0] == kMagic && head[1] == kPost;
  const std::uint32_t before = posted;
  int tries = 1;
  while (!IsAnswered(instance, data, size) && isPost) {
    if (posted != before || ++tries > kMostTries) std::abort();
  }
  if (posted - before != (isPost ? 1u : 0u)) std::abort();
  return 0;
}
