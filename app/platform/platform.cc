#include "app/platform/platform.h"

#include "app/platform/cut_off.h"

namespace platform {
namespace {

Platform installed;

// Nobody calls, and nobody answers.
class NoCalls final : public Calls {
 public:
  bool Answer(CallReceiver*) override { return false; }
  void StopAnswering() override {}
  bool Send(CallId, const std::string&) override { return true; }
  void HangUp(CallId) override {}
  void Wake() override {}
  std::vector<std::uint32_t> Answering() override { return {}; }
  std::unique_ptr<Conversation> Call(std::uint32_t) override { return nullptr; }
  std::unique_ptr<Arrivals> WatchArrivals() override { return nullptr; }
};

const Platform& Reach() {
  StopHereIfCutOff();
  return installed;
}

}  // namespace

InstalledPlatform::InstalledPlatform(const Platform& platform) : previous(installed) {
  installed = platform;
}

InstalledPlatform::~InstalledPlatform() { installed = previous; }

Clock& clock() { return *Reach().clock; }
Threads& threads() { return *Reach().threads; }
Timers& timers() { return *Reach().timers; }
Devices& devices() { return *Reach().devices; }
Input& input() { return *Reach().input; }
Files& files() { return *Reach().files; }
System& system() { return *Reach().system; }
Registry& registry() { return *Reach().registry; }
Desktop& desktop() { return *Reach().desktop; }
Controls& controls() { return *Reach().controls; }
Shell& shell() { return *Reach().shell; }
Processes& processes() { return *Reach().processes; }

Calls& calls() {
  static NoCalls none;
  if (Calls* const group = Reach().calls) return *group;
  return none;
}

}  // namespace platform
