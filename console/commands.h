// The commands of kelvaroctl. Each takes its options and the streams of the program, and gives the
// exit status.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "console/terminal.h"

namespace kelvaro::console {

struct Streams {
  std::ostream& out;
  std::ostream& err;
  Terminal terminal = {};  // that `out` goes to
};

struct KeysOptions {
  std::string text;
  std::optional<std::string> steps;  // "41 1e 00, 42 30 08" in place of a text
  bool holdAll = false;
  bool json = false;
};
int KeysCommand(const KeysOptions& options, Streams streams);

struct PlayOptions {
  std::string text;
  bool simulate = false;
  bool holdAll = false;
  bool repeat = false;
  std::uint32_t holdTime = 0;      // ms
  std::uint32_t releasePause = 0;  // ms
  std::uint32_t releaseAfter = 0;  // ms
  bool json = false;
};
int PlayCommand(const PlayOptions& options, Streams streams);

struct ProfilesOptions {
  bool json = false;
};
int ProfilesCommand(const ProfilesOptions& options, Streams streams);

struct ShowOptions {
  std::string profile;  // file or stored name
  bool json = false;
};
int ShowCommand(const ShowOptions& options, Streams streams);

struct PackOptions {
  std::string in;   // file, "-" for standard input
  std::string out;  // file
};
int PackCommand(const PackOptions& options, Streams streams);

struct ImportOptions {
  std::string in;                  // file, "-" for standard input
  std::optional<std::string> out;  // file; stored under its name without it
  std::optional<std::string> name;
  std::uint32_t section = 0;  // set or joystick; 0 for the first
  std::vector<std::uint16_t> axes;
  bool playStation = false;
  bool json = false;
};
int ImportCommand(const ImportOptions& options, Streams streams);

struct CheckOptions {
  std::vector<std::string> profiles;  // files or stored names
  bool json = false;
};
int CheckCommand(const CheckOptions& options, Streams streams);

struct ConflictsOptions {
  std::string profile;  // file or stored name
  bool json = false;
  bool dot = false;
  bool svg = false;
};
int ConflictsCommand(const ConflictsOptions& options, Streams streams);

struct DevicesOptions {
  bool json = false;
};
int DevicesCommand(const DevicesOptions& options, Streams streams);

struct DoctorOptions {
  std::optional<std::string> report;   // file
  std::optional<std::string> profile;  // file or stored name, for the report
  bool json = false;
};
int DoctorCommand(const DoctorOptions& options, Streams streams);

struct WatchOptions {
  std::optional<std::string> device;
  std::optional<std::uint64_t> until;  // ms
  bool json = false;
};
int WatchCommand(const WatchOptions& options, Streams streams);

struct RecordOptions {
  std::optional<std::string> device;
  std::optional<std::uint64_t> until;  // ms
};
int RecordCommand(const RecordOptions& options, Streams streams);

struct TuneOptions {
  std::optional<std::string> device;
  std::optional<std::string> replay;   // file of a recording
  std::optional<std::string> profile;  // file or stored name, to be changed
  bool yes = false;
  bool json = false;
};
int TuneCommand(const TuneOptions& options, Streams streams);

struct RunOptions {
  std::string profile;  // file or stored name
  bool simulate = false;
  std::optional<std::string> replay;  // file of a recording
  std::optional<std::string> device;
  bool mouseActive = false;
  bool wake = false;
  bool grab = false;
  std::optional<std::uint64_t> until;  // ms
  bool json = false;
};
int RunCommand(const RunOptions& options, Streams streams);
// Those of a run, without simulate: nothing is ever sent, and a recording plays in virtual time.
int ExplainCommand(const RunOptions& options, Streams streams);
int TestCommand(const RunOptions& options, Streams streams);

struct PlayBackOptions {
  std::string recording;               // file
  std::uint64_t delay = 3000;          // ms, so that a program can find the pad
  std::optional<std::uint64_t> until;  // ms
};
int PlayBackCommand(const PlayBackOptions& options, Streams streams);

struct LatencyOptions {
  std::optional<std::string> profile;  // file or stored name, for its interval
  std::optional<std::uint32_t> presses;
  std::optional<std::string> svg;  // file
  bool json = false;
};
int LatencyCommand(const LatencyOptions& options, Streams streams);

// What runs is asked and steered; the profile is select's.
struct SteerOptions {
  std::optional<std::uint32_t> instance;  // process; all without it
  std::string profile;                    // stored name
  bool json = false;
};
int StatusCommand(const SteerOptions& options, Streams streams);
int SelectCommand(const SteerOptions& options, Streams streams);
int PauseCommand(const SteerOptions& options, Streams streams);
int ResumeCommand(const SteerOptions& options, Streams streams);
int ReleaseAllCommand(const SteerOptions& options, Streams streams);
int FollowEventsCommand(const SteerOptions& options, Streams streams);
struct FollowOptions {
  std::string rules;  // file, "-" for standard input
  bool dryRun = false;
  bool json = false;
};
int FollowCommand(const FollowOptions& options, Streams streams);

// Which of them count follows from the command.
struct SettingsOptions {
  std::string name;
  std::string value;
  bool json = false;
};
int SettingsListCommand(const SettingsOptions& options, Streams streams);
int SettingsGetCommand(const SettingsOptions& options, Streams streams);
int SettingsSetCommand(const SettingsOptions& options, Streams streams);

}  // namespace kelvaro::console
