// Wine in the virtual machine, and a program to type into that runs there. tests/kernel/with_wine
// makes ready on the host what it takes. What can't be prepared ends the program with a message.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tests/host/home.h"
#include "tests/kernel/child.h"

namespace kelvaro::kernel {

// Wine takes some seconds to come up, and longer while its files come slowly from the host.
constexpr auto kWinePatience = std::chrono::minutes(3);

class Wine {
 public:
  // Starts an X server without a screen; Wine itself comes up with its first program.
  Wine();
  ~Wine();
  Wine(const Wine&) = delete;
  Wine& operator=(const Wine&) = delete;

  // A program of the build for Windows, by its path in there.
  std::unique_ptr<Child> Start(const std::string& program,
                               const std::vector<std::string>& words = {}) const;
  std::unique_ptr<Child> StartKelvaroctl(const std::vector<std::string>& words) const;
  Finished RunKelvaroctl(const std::vector<std::string>& words) const;

  std::string Display() const { return ":" + server.Address(); }
  // The processes that all of Wine's programs share.
  std::vector<pid_t> Shared() const;

 private:
  const tests::Home home{"/dev/shm"};
  tests::Server server;
  ChildOptions options;
};

// Another program, whose window has the focus.
class TypedKeys {
 public:
  // Comes back once the window is there.
  explicit TypedKeys(const Wine& wine);

  struct Line {
    std::int64_t us;   // monotonic clock: when the program had got it
    std::string text;  // "down 65 scan 30"
  };
  // That have come since the last call.
  std::vector<Line> Take();

 private:
  const std::unique_ptr<Child> child;
  std::size_t taken = 0;
};

}  // namespace kelvaro::kernel
