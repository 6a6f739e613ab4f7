#include "console/follow/front_watch.h"

namespace kelvaro::console {

struct FrontWatch::Parts {};

FrontWatch::FrontWatch() = default;
FrontWatch::~FrontWatch() = default;

// There is no need to watch as long as no running Kelvaro can be told anything (platform::calls).
bool FrontWatch::Open(std::string* error) {
  *error =
      "on Windows a running Kelvaro can't be given another profile from outside, so follow works "
      "on Linux alone";
  return false;
}

std::string FrontWatch::Teller() const { return {}; }
std::string FrontWatch::Lack() const { return {}; }
void FrontWatch::Begin(Listener) {}

}  // namespace kelvaro::console
