// The program with its window as one person has it: in a folder that may be written, with profiles
// beside it, and a home folder with settings. What can't be prepared ends the program with a
// message.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tests/host/home.h"
#include "tests/kernel/child.h"

namespace kelvaro::kernel {

class WindowProgram {
 public:
  // Without a profile, and with the welcome of the first start seen.
  WindowProgram();
  WindowProgram(const WindowProgram&) = delete;
  WindowProgram& operator=(const WindowProgram&) = delete;

  // Packs `json`, a profile that calls itself `name`, and has the program open it at its start.
  void AddProfile(const std::string& name, const std::string& json) const;
  std::string ProfilePath(const std::string& name) const;

  // A setting under its name. Before the start.
  void Set(const std::string& name, std::uint32_t value) const;
  void Set(const std::string& name, const std::string& text) const;

  // Makes everything the ordinary user's who Child knows as nobody.
  void GiveToNobody() const;

  // Runs kelvaroctl beside it to its end.
  Finished Steer(const std::vector<std::string>& words) const;

  // On that X display, or off-screen for an empty one.
  std::unique_ptr<Child> Start(const std::string& display = "", bool asNobody = false) const;

 private:
  const tests::Home home{"/dev/shm"};
};

}  // namespace kelvaro::kernel
