#include "rendlink/program/carrier.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <optional>

#include "app/platform/linux/find_program.h"
#include "app/platform/linux/instance_socket.h"

namespace kelvaro::rendlink {
namespace {

using platform::Descriptor;
using platform::Retry;

constexpr char kSocketName[] = "/carrier";
constexpr char kShell[] = "/bin/sh";
constexpr int kForwarded[] = {SIGINT, SIGTERM, SIGHUP};

int Complain(const std::string& text) {
  std::fprintf(stderr, "rendlink: %s\n", text.c_str());
  return 1;
}

bool SendAll(const Descriptor& to, const void* bytes, std::size_t size) {
  const char* at = static_cast<const char*>(bytes);
  while (size > 0) {
    const ssize_t sent = Retry([&] { return send(to.Get(), at, size, MSG_NOSIGNAL); });
    if (sent < 0) return false;
    at += sent;
    size -= static_cast<std::size_t>(sent);
  }
  return true;
}

bool ReadAll(const Descriptor& from, void* bytes, std::size_t size) {
  char* at = static_cast<char*>(bytes);
  while (size > 0) {
    const ssize_t received = Retry([&] { return read(from.Get(), at, size); });
    if (received <= 0) return false;
    at += received;
    size -= static_cast<std::size_t>(received);
  }
  return true;
}

// The size, and then each text with a zero byte behind it.
bool SendGame(const Descriptor& to, const Game& game) {
  std::string all = game.program + '\0' + game.folder + '\0';
  for (const std::string& word : game.words) all += word + '\0';
  const auto size = static_cast<std::uint32_t>(all.size());
  return SendAll(to, &size, sizeof size) && SendAll(to, all.data(), all.size());
}

bool ReceiveGame(const Descriptor& from, Game* game) {
  std::uint32_t size = 0;
  if (!ReadAll(from, &size, sizeof size)) return false;
  std::string all(size, '\0');
  if (!ReadAll(from, all.data(), size)) return false;
  Words texts;
  for (std::size_t at = 0; at < all.size();) {
    const std::size_t end = all.find('\0', at);
    if (end == std::string::npos) return false;
    texts.push_back(all.substr(at, end - at));
    at = end + 1;
  }
  if (texts.size() < 3) return false;
  *game = {texts[0], {texts.begin() + 2, texts.end()}, texts[1]};
  return true;
}

// Binds or connects at a path of any length: an address has room for little more than a hundred
// bytes.
bool CallAt(int (*call)(int, const sockaddr*, socklen_t), const Descriptor& socket,
            const std::filesystem::path& path) {
  const Descriptor folder(open(path.parent_path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  const std::string name =
      "/proc/self/fd/" + std::to_string(folder.Get()) + "/" + path.filename().string();
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (name.size() >= sizeof address.sun_path) return false;
  memcpy(address.sun_path, name.c_str(), name.size());
  return call(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

// While this object lives, signals are something to read. A new process gets them as before.
class Signals {
 public:
  Signals() {
    sigset_t taken;
    sigemptyset(&taken);
    sigaddset(&taken, SIGCHLD);
    for (const int signal : kForwarded) sigaddset(&taken, signal);
    sigprocmask(SIG_BLOCK, &taken, &before);
    // Where ends of children are ignored, none is told.
    childBefore = signal(SIGCHLD, SIG_DFL);
    incoming = Descriptor(signalfd(-1, &taken, SFD_CLOEXEC | SFD_NONBLOCK));
  }
  ~Signals() { Restore(); }
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;

  // A new process, 0 in itself; -1, with errno set, where there can be none, or no signals.
  pid_t Fork() const {
    const pid_t process = incoming ? fork() : -1;
    if (process == 0) Restore();
    return process;
  }
  int Fd() const { return incoming.Get(); }
  // The next one that came; 0 for none.
  int Take() const {
    signalfd_siginfo info;
    return read(Fd(), &info, sizeof info) == sizeof info ? static_cast<int>(info.ssi_signo) : 0;
  }

 private:
  void Restore() const {
    signal(SIGCHLD, childBefore);
    sigprocmask(SIG_SETMASK, &before, nullptr);
  }

  sigset_t before;
  sighandler_t childBefore;
  Descriptor incoming;
};

// Whether the child has ended, its status then in *status.
bool HasEnded(pid_t child, int* status) {
  int value = 0;
  if (waitpid(child, &value, WNOHANG) == 0) return false;
  *status = WIFEXITED(value) ? WEXITSTATUS(value) : 128 + WTERMSIG(value);
  return true;
}

std::vector<char*> Pointers(const Words& words) {
  std::vector<char*> pointers;
  for (const std::string& word : words) pointers.push_back(const_cast<char*>(word.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

// Replaces this process, a new one. A script without a first line that names its interpreter runs
// in the shell.
[[noreturn]] void Become(const std::string& program, const Words& words) {
  execv(program.c_str(), Pointers(words).data());
  int error = errno;
  if (error == ENOEXEC) {
    Words script = {kShell, program};
    script.insert(script.end(), words.begin() + 1, words.end());
    execv(kShell, Pointers(script).data());
    error = errno;
  }
  Complain(program + ": " + strerror(error));
  _exit(error == ENOENT ? 127 : 126);
}

// Until both the game and Kelvaro have ended.
class Wait {
 public:
  Wait(pid_t kelvaro, const CarrierSocket& socket, const Game& game)
      : kelvaro(kelvaro), listener(socket.Listener()), game(game) {}

  int Run(const Signals& signals) {
    while (kelvaroRuns || connection) {
      pollfd wanted[] = {{signals.Fd(), POLLIN, 0},
                         {met ? connection.Get() : listener.Get(), POLLIN, 0}};
      Retry([&] { return poll(wanted, std::size(wanted), -1); });
      while (const int signal = signals.Take())
        if (signal != SIGCHLD) OnSignal(signal);
      int ignored = 0;
      kelvaroRuns = kelvaroRuns && !HasEnded(kelvaro, &ignored);
      if (!met) {
        Meet();
      } else if (wanted[1].revents != 0) {
        ReadStatus();
      }
    }
    if (status) return *status;
    if (stopped != 0) return 128 + stopped;
    return Complain(met ? "the game was begun, and nobody can tell how it ended"
                        : "Kelvaro ended without having started the game");
  }

 private:
  void OnSignal(int signal) {
    if (connection) {
      const auto byte = static_cast<std::uint8_t>(signal);
      SendAll(connection, &byte, 1);
    } else {
      if (!met) stopped = signal;
      kill(kelvaro, SIGTERM);
    }
  }

  void Meet() {
    connection = Descriptor(accept4(listener.Get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!connection) return;
    met = true;
    SendGame(connection, game);
    // It came too late: the carrier hands it on.
    if (stopped != 0) OnSignal(stopped);
  }

  void ReadStatus() {
    std::uint32_t value = 0;
    if (ReadAll(connection, &value, sizeof value)) status = static_cast<int>(value);
    connection = Descriptor();
  }

  const pid_t kelvaro;
  const Descriptor& listener;
  const Game& game;
  bool kelvaroRuns = true;
  bool met = false;  // the carrier
  Descriptor connection;
  int stopped = 0;  // the signal that came before there was a game
  std::optional<int> status;
};

}  // namespace

CarrierSocket::CarrierSocket() {
  folder = platform::InstanceFolder();
  if (folder.empty()) return;
  folder += "/rendlink-XXXXXX";
  if (!mkdtemp(folder.data())) {
    folder.clear();
    return;
  }
  listener = Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  const std::string wanted = folder + kSocketName;
  if (CallAt(bind, listener, wanted) && listen(listener.Get(), 1) == 0) path = wanted;
}

CarrierSocket::~CarrierSocket() {
  if (folder.empty()) return;
  unlink((folder + kSocketName).c_str());
  rmdir(folder.c_str());
}

std::string SocketCarrier::FindProgram(const std::string& typed, std::string* reason,
                                       bool* isThere) {
  int error = 0;
  std::string found = platform::FindProgram(typed, &error);
  *isThere = error != ENOENT && error != ENOTDIR;
  if (found.empty()) *reason = strerror(error);
  return found;
}

bool SocketCarrier::Prepare(const Game& carried, std::string* args, std::string* refusal) {
  socket = std::make_unique<CarrierSocket>();
  game = &carried;
  const std::string& path = socket->Path();
  if (path.empty()) {
    *refusal = "There is no folder in which the game could be waited for.";
    return false;
  }
  if (path.find('"') != std::string::npos) {
    *refusal = "The path " + path + " has a double quote.";
    return false;
  }
  // Where it goes without quotes it depends on no character that stands for one.
  const bool blanks = path.find_first_of(" \t") != std::string::npos;
  *args = blanks ? "--carry \"" + path + "\"" : "--carry " + path;
  return true;
}

int SocketCarrier::Run(const Words& kelvaro) {
  const Signals signals;
  const pid_t process = signals.Fork();
  if (process < 0) return Complain(std::string("Kelvaro can't be started: ") + strerror(errno));
  if (process == 0) {
    // Ctrl-C is for the game, which this process hands it to.
    setpgid(0, 0);
    Become(kelvaro[0], kelvaro);
  }
  return Wait(process, *socket, *game).Run(signals);
}

int Carry(const std::string& socketPath) {
  const Descriptor connection(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  Game game;
  if (!CallAt(connect, connection, socketPath) || !ReceiveGame(connection, &game))
    return Complain("--carry is for Rendlink's own use, and nobody waits at " + socketPath);
  const Signals signals;
  const pid_t process = signals.Fork();
  if (process == 0) {
    if (chdir(game.folder.c_str()) == 0) Become(game.program, game.words);
    Complain(game.folder + ": " + strerror(errno));
    _exit(126);
  }
  int status = 126;
  if (process < 0) Complain(game.program + ": " + strerror(errno));
  bool running = process > 0;
  bool heard = true;  // until the other end is gone: the game then goes on without it
  while (running) {
    pollfd wanted[] = {{signals.Fd(), POLLIN, 0}, {heard ? connection.Get() : -1, POLLIN, 0}};
    Retry([&] { return poll(wanted, std::size(wanted), -1); });
    if (wanted[1].revents != 0) {
      std::uint8_t sent = 0;
      heard = ReadAll(connection, &sent, 1);
      if (heard) kill(process, sent);
    }
    while (const int signal = signals.Take())
      if (signal != SIGCHLD) kill(process, signal);
    running = !HasEnded(process, &status);
  }
  const auto value = static_cast<std::uint32_t>(status);
  SendAll(connection, &value, sizeof value);
  return status;
}

}  // namespace kelvaro::rendlink
