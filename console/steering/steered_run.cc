#include "console/steering/steered_run.h"

#include "console/run_choice.h"

namespace kelvaro::console {

void SteeredRun::Begin() {
  TellNames();
  steering.Begin(session.Engine());
}

void SteeredRun::TellNames() {
  steering.ProfileIs(profile.profileName);
  steering.DeviceIs(session.DeviceName());
}

void SteeredRun::SelectProfile(std::uint32_t ticket, const std::string& name) {
  steering.Selected(ticket, Open(name));
}

std::string SteeredRun::Open(const std::string& name) {
  if (TextOf(name).Equals(profile.profileName)) return {};
  // Looked at first: a run goes on as it is when the other profile can't be had.
  ProfileFile wanted;
  ByteString path;
  std::string error = FindStoredProfile(name, &wanted, &path);
  if (!error.empty()) return error;
  const DeviceChoice choice = ChosenDevice(options, wanted);
  if (!HasChosenDevice(choice, &error) || !session.TakeInterval(wanted.pollInterval, &error))
    return error;
  session.Change([&] { static_cast<void>(profile.Load(path)); }, choice, &error);
  TellNames();
  return error;
}

}  // namespace kelvaro::console
