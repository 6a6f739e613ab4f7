#include "app/platform/linux/instance_folder.h"

#include <errno.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

#include "app/platform/linux/environment.h"
#include "app/platform/linux/program_file.h"

namespace platform {
namespace {

constexpr int kCallersInLine = 64;

bool Address(const std::string& path, sockaddr_un* address) {
  *address = {};
  address->sun_family = AF_UNIX;
  if (path.empty() || path.size() >= sizeof address->sun_path) return false;
  std::memcpy(address->sun_path, path.c_str(), path.size() + 1);
  return true;
}

Descriptor MakeSocket() {
  return Descriptor(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

std::string ProgramOf(const std::string& process) {
  const std::string path = ProgramFileOf(process);
  return path.substr(path.rfind('/') + 1);
}

bool OwnFolder(const std::string& path) {
  if (mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) return false;
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
         status.st_uid == geteuid() && (status.st_mode & 022) == 0;
}

}  // namespace

std::string InstanceFolder() {
  const std::string runtime = Variable("XDG_RUNTIME_DIR");
  const std::string folder =
      runtime.starts_with('/') ? runtime + "/kelvaro" : "/tmp/kelvaro-" + std::to_string(geteuid());
  return OwnFolder(folder) ? folder : std::string();
}

std::string InstanceSocketPath(const std::string& folder, std::uint32_t process,
                               std::string_view ending) {
  return folder + "/" + std::to_string(process) + std::string(ending);
}

std::vector<std::uint32_t> InstancesWith(const std::string& folder, std::string_view ending) {
  std::vector<std::uint32_t> processes = ProcessesIn(folder, ending);
  std::erase_if(processes, [&](std::uint32_t process) {
    if (access(("/proc/" + std::to_string(process)).c_str(), F_OK) == 0) return false;
    unlink(InstanceSocketPath(folder, process, ending).c_str());
    return true;
  });
  return processes;
}

Descriptor ListenAt(const std::string& path) {
  sockaddr_un address;
  if (!Address(path, &address)) return Descriptor();
  Descriptor listener = MakeSocket();
  if (!listener) return listener;
  unlink(path.c_str());  // of a crashed one that had the same id
  const mode_t before = umask(0177);
  const bool bound =
      bind(listener.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  umask(before);
  if (!bound) return Descriptor();
  // That the rights are set again, now that it can be called, is news to who watches the folder.
  if (listen(listener.Get(), kCallersInLine) == 0 && chmod(path.c_str(), 0600) == 0)
    return listener;
  unlink(path.c_str());
  return Descriptor();
}

Descriptor ConnectTo(const std::string& path) {
  sockaddr_un address;
  if (!Address(path, &address)) return Descriptor();
  Descriptor connection = MakeSocket();
  if (connection &&
      connect(connection.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    return Descriptor();
  }
  return connection;
}

std::optional<std::string> PeerProgram(int connection) {
  ucred peer{};
  socklen_t size = sizeof peer;
  if (getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) return std::nullopt;
  if (peer.uid != geteuid()) return std::nullopt;
  return ProgramOf(std::to_string(peer.pid));
}

std::string OwnProgram() { return ProgramOf("self"); }

bool Readable(int fd, int ms) {
  pollfd wanted{fd, POLLIN, 0};
  return Retry([&] { return poll(&wanted, 1, ms); }) > 0;
}

}  // namespace platform
