// A run that others ask and steer while it goes on.
#pragma once

#include "console/commands.h"
#include "console/engine_session.h"
#include "steering/steering.h"
#include "storage/profile_file.h"

namespace kelvaro::console {

class SteeredRun : private SteeringHost {
 public:
  // All must outlive this, and `session`'s threads end before it does. `profile` is the session's.
  SteeredRun(EngineSession& session, ProfileFile& profile, const RunOptions& options)
      : session(session), profile(profile), options(options) {}

  // Of a session that runs. From here until End nobody else touches it.
  void Begin();
  void End() { steering.End(); }

 private:
  const char* ProgramKind() const override { return "run"; }
  void SelectProfile(std::uint32_t ticket, const std::string& name) override;
  // Why that profile isn't open now; empty if it is.
  std::string Open(const std::string& name);
  void TellNames();

  EngineSession& session;
  ProfileFile& profile;
  const RunOptions& options;
  Steering steering{*this};
};

}  // namespace kelvaro::console
