// Tells that sockets of the user's running programs have come or gone (instance_folder.h).
#pragma once

#include <string>

#include "app/platform/linux/descriptor.h"

namespace platform {

// One thread at a time.
class InstanceNews {
 public:
  // Of what comes or goes from here on. Where the folder isn't there it is looked for again.
  explicit InstanceNews(std::string folder);

  // A descriptor that can be read when there is news; -1 where the system doesn't tell.
  int Readable() const { return watches ? changes.Get() : -1; }
  // How long to wait for that before one looks all the same, in ms; -1 for as long as it takes.
  int LongestWait() const;
  // Takes the news in: from here on it tells what comes afterwards.
  void Read();

 private:
  void Watch();

  const std::string folder;
  const Descriptor changes;
  bool watches = false;
};

}  // namespace platform
