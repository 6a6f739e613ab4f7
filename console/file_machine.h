// What commands that only read and write files need behind the seam, installed for the life of the
// object: the real clock and threads, and the real files or others in their place.
#pragma once

#include "app/platform/machine/this_machine.h"
#include "app/platform/platform.h"

namespace kelvaro::console {

class FileMachine {
 public:
  FileMachine() : installed(Groups(&realFiles)) {}
  // Borrowed.
  explicit FileMachine(platform::Files& files) : installed(Groups(&files)) {}
  FileMachine(const FileMachine&) = delete;
  FileMachine& operator=(const FileMachine&) = delete;

 private:
  platform::Platform Groups(platform::Files* files) {
    platform::Platform groups;
    groups.clock = &clock;
    groups.threads = &threads;
    groups.files = files;
    groups.system = &system;
    return groups;
  }

  platform::ThisClock clock;
  platform::ThisThreads threads;
  platform::ThisFiles realFiles;
  platform::ThisSystem system;
  platform::InstalledPlatform installed;
};

}  // namespace kelvaro::console
