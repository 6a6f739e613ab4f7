// Calls over a named pipe, "kelvaro-steering-" and the process's id, whose messages are those of
// calls.h. Nobody but the user may open it, and not from another machine. Each end looks at the
// other: only programs of the same user are listened to, and called, that bear the name of one of
// Kelvaro's or of this one. All that comes and goes ends at one completion port, where one thread
// sleeps while nobody says anything. A pipe ends with its process.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/calls.h"

namespace platform {

class WindowsCalls final : public Calls {
 public:
  // `place`: what the names of the pipes begin with.
  explicit WindowsCalls(std::string place = "kelvaro");
  ~WindowsCalls() override;
  WindowsCalls(const WindowsCalls&) = delete;
  WindowsCalls& operator=(const WindowsCalls&) = delete;

  bool Answer(CallReceiver* receiver) override;
  void StopAnswering() override;
  bool Send(CallId call, const std::string& message) override;
  void HangUp(CallId call) override;
  void Wake() override;
  std::vector<std::uint32_t> Answering() override;
  // Waits up to ten seconds while others are just being taken.
  std::unique_ptr<Conversation> Call(std::uint32_t process) override;
  std::unique_ptr<Arrivals> WatchArrivals() override;

  // Full name of a process's pipe.
  static std::string PipeOf(const std::string& place, std::uint32_t process);

 private:
  struct Line;

  const std::string place;
  const std::unique_ptr<Line> line;
};

}  // namespace platform
