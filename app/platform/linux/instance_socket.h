// How instances of this program reach one another's windows: each listens on a socket of its own in
// the user's runtime folder, named after its process id. It answers with its top-level windows, and
// takes messages for them. Only processes of the same user that run the same program are listened
// to, and asked; whatever else comes over the socket is ignored.
//
// A request is one packet, and so is its answer; numbers are in the byte order of the machine, as
// both ends are on it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/desktop.h"
#include "app/platform/linux/descriptor.h"
#include "app/platform/linux/instance_folder.h"

namespace platform {

// One window of a process, by the process's own number, which has to fit 32 bits.
struct OfferedWindow {
  WindowHandle window = kNoWindow;
  bool visible = false;
  bool iconic = false;
};

using WindowSource = std::function<std::vector<OfferedWindow>()>;
using WindowPost = std::function<bool(WindowHandle window, std::uint32_t message)>;

// The listening end.
class InstanceSocket {
 public:
  // Null when there can be no socket. Removes those of instances that are gone. The functions are
  // called on the socket's thread.
  static std::unique_ptr<InstanceSocket> Open(const std::string& folder, WindowSource windows,
                                              WindowPost post);
  // Stops listening and removes the socket.
  ~InstanceSocket();
  InstanceSocket(const InstanceSocket&) = delete;
  InstanceSocket& operator=(const InstanceSocket&) = delete;

 private:
  InstanceSocket() = default;
  static void* Listen(void* self);
  void Serve(int connection);

  std::string path;
  Descriptor listener;
  Descriptor wake;       // an event descriptor: it is to end
  Descriptor ended;      // the same: the thread has
  bool listens = false;  // there is a thread
  WindowSource windows;
  WindowPost post;
};

// The asking end. Neither waits longer than half a second for an instance that doesn't answer.

// The processes that have a socket in the folder; sockets that nobody listens on are removed.
std::vector<std::uint32_t> Instances(const std::string& folder);
// Whether somebody listens on that one's socket now. Any program may ask.
bool IsListening(const std::string& folder, std::uint32_t process);
// False when the instance can't be reached, or isn't one.
bool AskWindows(const std::string& folder, std::uint32_t process,
                std::vector<OfferedWindow>* windows);
bool PostToInstance(const std::string& folder, std::uint32_t process, WindowHandle window,
                    std::uint32_t message);

}  // namespace platform
