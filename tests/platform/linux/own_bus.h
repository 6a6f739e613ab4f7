// A message bus for a test.
#pragma once

#include <string>
#include <vector>

#include "tests/host/processes.h"

namespace platform {

// A message bus of the test's own. Its address is empty where it can't be started.
class Bus : public kelvaro::tests::Server {
 public:
  Bus()
      : Server([](const std::string& pipe) {
          return std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--nopidfile",
                                          "--print-address=" + pipe};
        }) {}
};

}  // namespace platform
