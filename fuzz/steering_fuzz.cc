// Whatever callers may say to a program that is steered: each message is answered once, by an
// answer of the protocol, or the caller is hung up on; and a message that is understood comes back
// as it was.
//
// The input is what callers say, parted by zero bytes. The first byte of each tells the caller, in
// its lower bits, and what else happens: the caller stops or begins to read, or hangs up.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>

#include "app/platform/simulation/simulation.h"
#include "engine/control_engine.h"
#include "fuzz/check.h"
#include "steering/steering.h"
#include "tests/steering/virtual_calls.h"

namespace {

using namespace kelvaro;

class Host final : public SteeringHost, public EngineHost {
 public:
  const char* ProgramKind() const override { return "run"; }
  void SelectProfile(std::uint32_t ticket, const std::string& name) override {
    steering->Selected(ticket, name == "Game" ? "" : "no");
  }
  bool ControlDialogOpen() const override { return false; }
  void ShowDetectedTrigger(const DeviceManager&, const DeviceSnapshot&) override {}
  void ShowDetectedInput(MouseRole, const ByteString&) override {}
  void MouseDetectionEnded(MouseRole) override {}
  void SaveAfterMouseDetection() override {}
  Steering* steering = nullptr;
};

void CheckMessage(std::string_view text) {
  std::string error;
  const auto read = ParseSteeringMessage(text, &error);
  Check(read.has_value() == error.empty(), "only what can't be read has an error",
        std::string(text));
  if (!read) return;
  const auto again = ParseSteeringMessage(read->Text(), &error);
  Check(again && again->kind == read->kind && again->fields == read->fields,
        "a message comes back as it was", std::string(text));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  platform::simulation::Simulation simulation;
  VirtualCalls calls(simulation.Groups());
  Host host;
  Profile profile;
  DeviceManager device(platform::kNoWindow);
  ControlEngine engine(profile, device, host);
  Steering steering(host);
  host.steering = &steering;
  steering.Begin(engine);

  std::string_view rest(reinterpret_cast<const char*>(data), size);
  std::map<platform::CallId, bool> full;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\0'), rest.size());
    const std::string_view said = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (said.empty()) continue;
    const platform::CallId call = 1u + (static_cast<std::uint8_t>(said[0]) & 7u);
    if ((said[0] & 8) != 0) calls.Fill(call, full[call] = !full[call]);
    const std::string_view message = said.substr(1);
    CheckMessage(message);
    calls.Heard(call);
    const std::size_t hungUp = calls.hungUp.size();
    calls.Say(call, std::string(message));
    simulation.RunFor(0);
    const std::string heard = calls.Heard(call);
    Check(full[call] || !heard.empty() || calls.hungUp.size() != hungUp, "each is answered",
          std::string(message));
    if ((said[0] & 16) != 0) calls.HangUpBy(call);
  }
  steering.End();
  return 0;
}
