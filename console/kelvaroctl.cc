#include "console/kelvaroctl.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <optional>

#include "app/platform/byte_text.h"
#include "console/called_command.h"
#include "console/console_error.h"
#include "console/help_text.h"
#include "console/import/foreign_profile.h"
#include "console/profile_check.h"
#include "foundation/version.h"

namespace kelvaro::console {
namespace {

constexpr char kAbout[] =
    "Kelvaro without a window: turns a game pad into keys and mouse motion, and shows how.";

constexpr char kJsonHelp[] = "print JSON Lines, one object a line";
constexpr char kProfileHelp[] =
    "a profile: a file, stored (.idprof) or in JSON, or a stored one's name or its beginning";
constexpr char kUntilHelp[] = "end after this many milliseconds";

constexpr std::uint64_t kMostHold = UINT32_MAX;                     // ms, as a Control has it
constexpr std::uint64_t kMostUntil = (std::uint64_t{1} << 53) - 1;  // ms, as a recording has it

// An option of a whole number, in decimal whatever zeros it starts with. A fault in it goes by the
// last of its names.
template <typename T>
CLI::Option* AddNumber(CLI::App* command, const std::string& name, T* out, std::uint64_t least,
                       std::uint64_t most, const std::string& help) {
  const auto read = [name = name.substr(name.rfind(',') + 1), out, least,
                     most](const std::string& text) {
    const auto number = platform::ParseWholeNumber(text);
    if (!number || *number < least || *number > most) {
      throw CLI::ValidationError(name, "'" + text + "' is not a whole number from " +
                                           std::to_string(least) + " to " + std::to_string(most));
    }
    *out = static_cast<T>(*number);
  };
  return command->add_option_function<std::string>(name, read, help);
}

template <typename T>
void AddMilliseconds(CLI::App* command, const std::string& name, T* out, std::uint64_t most,
                     const std::string& help) {
  AddNumber(command, name, out, 0, most, help)->type_name("MS");
}

// All options of all commands, and which command was chosen.
struct Choice {
  KeysOptions keys;
  PlayOptions play;
  ProfilesOptions profiles;
  ShowOptions show;
  PackOptions pack;
  ImportOptions import;
  CheckOptions check;
  ConflictsOptions conflicts;
  DevicesOptions devices;
  DoctorOptions doctor;
  WatchOptions watch;
  RecordOptions record;
  TuneOptions tune;
  RunOptions run;
  RunOptions explain;
  RunOptions test;
  PlayBackOptions playBack;
  FollowOptions follow;
  LatencyOptions latency;
  SteerOptions status;
  SteerOptions select;
  SteerOptions pause;
  SteerOptions resume;
  SteerOptions releaseAll;
  SteerOptions followEvents;
  SettingsOptions settings;
  std::function<int(Streams)> command;
};

// Has `command`, once it is chosen, run with its options.
template <typename Options>
void Choose(CLI::App* command, Choice& choice, const Options& options,
            int (*run)(const Options&, Streams)) {
  command->callback([&choice, &options, run] {
    choice.command = [&options, run](Streams streams) { return run(options, streams); };
  });
}

void AddKeys(CLI::App& app, Choice& choice) {
  CLI::App* keys = app.add_subcommand("keys", "Read a key text, or write one from its steps");
  keys->footer(
      "TEXT is plain characters, <NAME> for a special key, << for '<', and <P:500> for a pause "
      "of 500 ms, such as '<Ctrl>c' or 'go<Enter>'. A fault in it gives exit status 1 and a caret "
      "below it. With --json: result (-1 read, -2 read and holding upper case letters, else the "
      "offset of the fault), duplicateKey, steps as [vk,scan,flags], and the canonical text.");
  auto* text = keys->add_option("TEXT", choice.keys.text, "the key text");
  auto* steps = keys->add_option("--steps", choice.keys.steps,
                                 "steps to write as text: vk scan flags in hexadecimal, parted by "
                                 "commas, such as \"41 1e 00, 42 30 08\"")
                    ->type_name("STEPS");
  text->excludes(steps);
  keys->add_flag("--hold-all", choice.keys.holdAll,
                 "read it as held down all together: no key may be there twice");
  keys->add_flag("--json", choice.keys.json, kJsonHelp);
  keys->callback([&choice, text, steps] {
    if (text->count() + steps->count() == 0) throw CLI::RequiredError("TEXT or --steps");
    choice.command = [&choice](Streams streams) { return KeysCommand(choice.keys, streams); };
  });
}

void AddPlay(CLI::App& app, Choice& choice) {
  CLI::App* play = app.add_subcommand("play", "Send a key text's keys, as a Control would");
  play->footer(
      "Without --simulate the keys go to whatever has the focus, after a countdown of three "
      "seconds. Ctrl-C breaks it off, then or while it sends, and lets go of what is down. With "
      "--simulate nothing is sent: time is virtual and each event is printed with its "
      "millisecond.");
  play->add_option("TEXT", choice.play.text, "the key text, as `kelvaroctl keys` takes it")
      ->required();
  play->add_flag("--simulate", choice.play.simulate, "send nothing, print the events");
  play->add_flag("--hold-all", choice.play.holdAll, "hold all keys down until the release");
  play->add_flag("--repeat", choice.play.repeat,
                 "as a repeating Control: each key is let go, and no release follows");
  AddMilliseconds(play, "--hold-time", &choice.play.holdTime, kMostHold,
                  "ms that each key stays down (0)");
  AddMilliseconds(play, "--release-pause", &choice.play.releasePause, kMostHold,
                  "ms between two keys (0)");
  AddMilliseconds(play, "--release-after", &choice.play.releaseAfter, kMostHold,
                  "ms until what is still down is let go (0)");
  play->add_flag("--json", choice.play.json, kJsonHelp);
  Choose(play, choice, choice.play, &PlayCommand);
}

void AddProfiles(CLI::App& app, Choice& choice) {
  CLI::App* profiles = app.add_subcommand("profiles", "List the stored profiles and their files");
  profiles->footer(
      "Profiles are stored in the folder Profiles beside the program, or where a file PerUser "
      "lies there, in kelvaro/Profiles of your data folder, and go by the name inside the "
      "file. With --json: name and file.");
  profiles->add_flag("--json", choice.profiles.json, kJsonHelp);
  Choose(profiles, choice, choice.profiles, &ProfilesCommand);
}

void AddShow(CLI::App& app, Choice& choice) {
  CLI::App* show = app.add_subcommand("show", "Print a profile");
  show->footer(
      "A line for each Control: its number, its inputs, its keys, its description. With --json "
      "the whole profile on one line, as `kelvaroctl pack` takes it.");
  show->add_option("FILE|NAME", choice.show.profile, kProfileHelp)->required();
  show->add_flag("--json", choice.show.json, kJsonHelp);
  Choose(show, choice, choice.show, &ShowCommand);
}

void AddPack(CLI::App& app, Choice& choice) {
  CLI::App* pack = app.add_subcommand("pack", "Make a profile file of a profile in JSON");
  pack->footer(
      "Members left out have their defaults, triggerText is ignored, and an action without steps "
      "is made of its text. docs/profile.schema.json tells all members. OUT appears whole or not "
      "at all.");
  pack->add_option("IN", choice.pack.in,
                   "the profile in JSON, as `kelvaroctl show --json` prints "
                   "it; - for standard input")
      ->required();
  pack->add_option("OUT", choice.pack.out, "the file to make, such as walk.idprof")->required();
  Choose(pack, choice, choice.pack, &PackCommand);
}

void AddImport(CLI::App& app, Choice& choice) {
  CLI::App* import =
      app.add_subcommand("import", "Make a profile of another program's .amgp or .lyt");
  import->footer(
      "Without OUT the profile is stored under its name: --name, or the file's. No file is "
      "overwritten. What can't be brought over, or works otherwise, is listed with its place.\n"
      "Buttons go by their numbers, those of a standard pad by the order of an Xbox pad or of the "
      "one that --pad names. The axes are taken to be X, Y, Z, RX, RY, RZ, and then the hats of a "
      ".lyt or SliderA and SliderB; --axes names others.\n"
      "With --json: file, profile, profileName, controls, and notes, each with line, column, kind "
      "(left-out or different) and what.");
  import->add_option("IN", choice.import.in, "the .amgp or .lyt; - for standard input")->required();
  import->add_option("OUT", choice.import.out, "the file to make, such as walk.idprof");
  import->add_option("--name", choice.import.name, "name of the profile")->type_name("NAME");
  const auto section = [&choice](const std::string& text) {
    const auto number = platform::ParseWholeNumber(text);
    if (!number || *number == 0 || *number > UINT32_MAX) {
      throw CLI::ValidationError("--set", "'" + text + "' is not a number from 1 on");
    }
    choice.import.section = static_cast<std::uint32_t>(*number);
  };
  import
      ->add_option_function<std::string>(
          "--set", section, "which set of an .amgp, or joystick of a .lyt, to take (the first)")
      ->type_name("NUMBER");
  const auto axes = [&choice](const std::string& text) {
    if (ParseAxes(text, &choice.import.axes)) return;
    throw CLI::ValidationError("--axes", "'" + text + "' is no list such as X,Y,RX,RY,SliderA");
  };
  import->add_option_function<std::string>("--axes", axes, "the pad's axes, in the file's order")
      ->type_name("AXES");
  const auto pad = [&choice](const std::string& text) {
    if (text != "xbox" && text != "playstation") {
      throw CLI::ValidationError("--pad", "'" + text + "' is neither xbox nor playstation");
    }
    choice.import.playStation = text == "playstation";
  };
  import
      ->add_option_function<std::string>("--pad", pad, "xbox or playstation: order of the buttons")
      ->type_name("PAD");
  import->add_flag("--json", choice.import.json, kJsonHelp);
  Choose(import, choice, choice.import, &ImportCommand);
}

void AddCheck(CLI::App& app, Choice& choice) {
  std::string kinds;
  for (const FindingKind& kind : kFindingKinds) {
    kinds += std::string(kinds.empty() ? "" : ", ") + kind.name;
  }
  CLI::App* check =
      app.add_subcommand("check", "Say what is wrong with profiles, or odd about them");
  check->footer(
      "Says of each file whether it loads, what it lacks or holds that a load passes over, "
      "which Controls can never fire, which keys may come out otherwise than written (also by the "
      "keyboard layout, where an X server tells it) or end in a pause, and where a save would go "
      "to another file. Exit status 1 when one of them doesn't load, or isn't whole.\n"
      "With --json: file, loads, error, profileName, controls (how many were read), and findings, "
      "each with its kind (" +
      kinds + "), where and what.");
  check->add_option("FILE|NAME", choice.check.profiles, kProfileHelp)->required();
  check->add_flag("--json", choice.check.json, kJsonHelp);
  Choose(check, choice, choice.check, &CheckCommand);
}

void AddConflicts(CLI::App& app, Choice& choice) {
  CLI::App* conflicts =
      app.add_subcommand("conflicts", "Say which Controls of a profile are in one another's way");
  conflicts->footer(
      "A Control whose inputs another one has as well is silent while that one is active; what "
      "comes of it depends on which inputs are pressed first. Also said: what the mouse controls "
      "take away, which Controls stop repeating when another one begins, and which can never fire. "
      "The engine is asked about each two of them, with nobody else there.\n"
      "With --json a line for each Control, in the order in which the engine goes through them: "
      "controlId, description, inputs, silences and silencedBy (controlId, and atOnce, first and "
      "last: fires, late, silent, rests, or null where there is no such order), mouseTakes, "
      "repeatGoesTo and neverFires.\n"
      "In the graphs a line leads from a Control to one that it keeps silent, a heavy one where "
      "that one doesn't fire when it is pressed first either; and a broken one to the Control to "
      "which it loses its repeat. Those that take it from one another are marked \"repeats\".");
  conflicts->add_option("FILE|NAME", choice.conflicts.profile, kProfileHelp)->required();
  auto* json = conflicts->add_flag("--json", choice.conflicts.json, kJsonHelp);
  auto* dot =
      conflicts->add_flag("--dot", choice.conflicts.dot, "print a graph for Graphviz and its like");
  auto* svg = conflicts->add_flag("--svg", choice.conflicts.svg, "print a picture");
  json->excludes(dot)->excludes(svg);
  dot->excludes(svg);
  Choose(conflicts, choice, choice.conflicts, &ConflictsCommand);
}

void AddDevices(CLI::App& app, Choice& choice) {
  CLI::App* devices = app.add_subcommand("devices", "List the game pads that are plugged in");
  devices->add_flag("--json", choice.devices.json, kJsonHelp);
  Choose(devices, choice, choice.devices, &DevicesCommand);
}

void AddDoctor(CLI::App& app, Choice& choice) {
  CLI::App* doctor = app.add_subcommand("doctor", "Say what keeps Kelvaro from working here");
  doctor->footer(
      "Looks at the session, the way out for keys, the pads, the notification area, the folders "
      "and the windows that run, and sends nothing. Each line says whether it is good, worth a "
      "note or bad, and what to do. Exit status 1 when something bad keeps Kelvaro from "
      "working.\n"
      "--report writes the same to a file for a report of a fault, with the version, the system "
      "and a profile: the one named, or the one that the window opened last. The keys that you "
      "typed, names and descriptions stay out of it, and so does the name of your home folder.\n"
      "With --json: topic, state (good, note or bad), what and next.");
  auto* report =
      doctor->add_option("--report", choice.doctor.report, "write a report to this file as well")
          ->type_name("FILE");
  doctor->add_option("--profile", choice.doctor.profile, "the report's profile: a file or a name")
      ->type_name("FILE|NAME")
      ->needs(report);
  doctor->add_flag("--json", choice.doctor.json, kJsonHelp);
  Choose(doctor, choice, choice.doctor, &DoctorCommand);
}

void AddWatch(CLI::App& app, Choice& choice) {
  CLI::App* watch = app.add_subcommand("watch", "Print what a pad does, until Ctrl-C");
  watch->footer(
      "Each changed state is a line in the names of a Trigger, such as B1+POV0(up)+Axis_X0(neg).\n"
      "With --json: {\"t\":120,\"text\":\"B1\"}, with the milliseconds since the start.");
  watch->add_option("NAME", choice.watch.device,
                    "the pad's name or its beginning; needless with only one");
  AddMilliseconds(watch, "--until", &choice.watch.until, kMostUntil, kUntilHelp);
  watch->add_flag("--json", choice.watch.json, kJsonHelp);
  Choose(watch, choice, choice.watch, &WatchCommand);
}

void AddRecord(CLI::App& app, Choice& choice) {
  CLI::App* record =
      app.add_subcommand("record", "Write down what a pad does, until Ctrl-C, for --replay");
  record->footer("The recording goes to standard output: kelvaroctl record >FILE");
  record->add_option("NAME", choice.record.device,
                     "the pad's name or its beginning; needless with only one");
  AddMilliseconds(record, "--until", &choice.record.until, kMostUntil, kUntilHelp);
  Choose(record, choice, choice.record, &RecordCommand);
}

void AddTune(CLI::App& app, Choice& choice) {
  CLI::App* tune =
      app.add_subcommand("tune", "Watch a pad for a minute and say which mouse settings fit it");
  tune->footer(
      "Says what to do: 10 seconds of rest, 30 in which you turn the sticks, 20 in which you press "
      "the buttons. It shows of each axis where it rests, its noise in a second, its drift from "
      "second to second, how far it goes, and the damper that keeps it still; how often each "
      "button was pressed, and how often reports come. It names axes that rest off their centre "
      "and buttons that bounce. The damper that it proposes holds what the sticks do at rest, with "
      "a quarter to spare; the sensitivity moves the pointer at the end that each stick reaches as "
      "fast as the present one does at a full end.\n"
      "With --apply that is for the axes that the profile uses, and is written into it once you "
      "say yes. Otherwise it is for all sticks.\n"
      "A recording by `kelvaroctl record --until 60000` that keeps to the same seconds will do in "
      "place of a pad; it tells of reports each 5 ms at the most.\n"
      "With --json lines with a topic: pad (name, buttons, axes; interval, in ms, or null), axis "
      "(axis, rest, noise, drift, furthest, returned, from, to, damper; from -32000 to 32000), "
      "button (button, presses, bounces), note (what), proposal (setting, value, was, lack), "
      "written (file).");
  auto* device = tune->add_option("NAME", choice.tune.device,
                                  "the pad's name or its beginning; needless with only one");
  tune->add_option("--replay", choice.tune.replay, "a recording in place of a pad")
      ->type_name("FILE")
      ->excludes(device);
  auto* apply = tune->add_option("--apply", choice.tune.profile,
                                 "write what is proposed into this stored profile")
                    ->type_name("FILE|NAME");
  tune->add_flag("--yes", choice.tune.yes, "write it without asking")->needs(apply);
  tune->add_flag("--json", choice.tune.json, kJsonHelp);
  Choose(tune, choice, choice.tune, &TuneCommand);
}

// What all commands that run the engine have; gives the option for a recording.
CLI::Option* AddRunOptions(CLI::App* command, RunOptions* options, const char* jsonHelp) {
  command->add_option("FILE|NAME", options->profile, kProfileHelp)->required();
  auto* replay =
      command->add_option("--replay", options->replay, "a recording that plays in place of a pad")
          ->type_name("FILE");
  command->add_option("--device", options->device, "name of the pad to take, or its beginning")
      ->type_name("NAME");
  command->add_flag("--mouse-active", options->mouseActive, "start with the mouse controls on");
  command->add_flag("--wake", options->wake,
                    "answer at once: don't wait for the next poll when the pad does something");
  AddMilliseconds(command, "--until", &options->until, kMostUntil, kUntilHelp);
  command->add_flag("--json", options->json, jsonHelp);
  return replay;
}

void AddRun(CLI::App& app, Choice& choice) {
  CLI::App* run = app.add_subcommand("run", "Run a profile: the pad moves, keys come out");
  run->footer(
      "It takes the profile's device (or --device, or the recording given by --replay) and ends "
      "on Ctrl-C, at --until, or one second after the last line of the recording; then it lets go "
      "of every key and button that it holds down.\n"
      "With --wake what the pad does brings a poll at once; the next comes a full interval later "
      "at the earliest. A tap between two polls isn't lost: its press and its release are two "
      "changes. So are two buttons that go down a moment apart: a Control for the first of them "
      "may fire before the one for both. A recording is answered at once with --simulate alone.\n"
      "With --grab programs that read the pad's event or joystick node get nothing of it until "
      "this ends, in whatever way. The raw reports of a pad (hidraw), which some games read, can't "
      "be kept from them. A button that is down at the start stays down for the others.");
  auto* replay = AddRunOptions(
      run, &choice.run, "print JSON Lines; on a real run the events are printed beside being sent");
  run->add_flag("--simulate", choice.run.simulate,
                "send nothing, print the events; time is virtual (needs --replay)")
      ->needs(replay);
  run->add_flag("--grab", choice.run.grab,
                "keep what the pad does from other programs, such as the game")
      ->excludes(replay);
  Choose(run, choice, choice.run, &RunCommand);
}

void AddExplain(CLI::App& app, Choice& choice) {
  CLI::App* explain =
      app.add_subcommand("explain", "Say why a profile does what it does; nothing is sent");
  explain->footer(
      "For each change of the pad, or of the recording given by --replay, which plays in virtual "
      "time: what is held; which Controls match, fire, are down already, or are contained in "
      "another; what the mouse controls take; what would be sent; which Control loses its repeat "
      "to another; and how many polls were left out because keys were being sent. A change in "
      "which all stays as it is isn't told, nor is the pointer's motion.\n"
      "With --json: t (ms) and event: change (inputs), control (controlId; verdict: fires, ends, "
      "down, contained, mouse, armed, spoiled, repeats, losesRepeat; in, to, keys), mouseTakes "
      "(inputs), mouseControls (on), lostPolls (count), key and mouse as `kelvaroctl run` has "
      "them.");
  AddRunOptions(explain, &choice.explain, kJsonHelp);
  Choose(explain, choice, choice.explain, &ExplainCommand);
}

void AddTest(CLI::App& app, Choice& choice) {
  CLI::App* test =
      app.add_subcommand("test", "Try a profile: move the pad and see what it would send");
  test->footer(
      "Nothing is sent. Press a button, and a line says which Control fires and with which keys, "
      "or why none does. `kelvaroctl explain` tells more of the same, and names the members that "
      "--json prints. A recording given by --replay plays in virtual time.");
  AddRunOptions(test, &choice.test, kJsonHelp);
  Choose(test, choice, choice.test, &TestCommand);
}

void AddPlayBack(CLI::App& app, Choice& choice) {
  CLI::App* playBack = app.add_subcommand("play-back", "Play a recording as a pad of its own");
  playBack->footer(
      "Makes a virtual pad of the recording's name, buttons, axes and hats, which all programs see "
      "as one that is plugged in, and moves it as it was recorded: a fault can be shown to others "
      "with any program. The pad goes one second after the last line, at --until, or on Ctrl-C. "
      "Where the recording loses its pad, this one is pulled out.");
  playBack->add_option("FILE", choice.playBack.recording, "the recording")->required();
  AddMilliseconds(playBack, "--delay", &choice.playBack.delay, kMostUntil,
                  "ms from plugging in to the recording's begin (3000)");
  AddMilliseconds(playBack, "--until", &choice.playBack.until, kMostUntil,
                  "end after this many milliseconds of the recording");
  Choose(playBack, choice, choice.playBack, &PlayBackCommand);
}

void AddLatency(CLI::App& app, Choice& choice) {
  CLI::App* latency =
      app.add_subcommand("latency", "Measure the time from press to key on this machine");
  latency->footer(
      "Makes a pad and a keyboard of its own, presses a button of the pad, and measures until a "
      "program that waits for the key has read it: with a program that does nothing but that (the "
      "machine alone), and with Kelvaro at the profile's interval (5 ms without one) and at once, "
      "as by --wake. It also counts short taps that give no key. That takes half a minute. No "
      "other program gets anything of the pad or the keys, though the desktop may show for a "
      "moment that they are there. It takes /dev/uinput.\n"
      "--svg draws which share of the presses had their key after which time.\n"
      "With --json a line for each of the three: way (machine, interval, wake), interval (ms), "
      "presses, lost, kernel and read (until the kernel has the key, until it was read; each with "
      "least, median, p95, p99 and slowest, in microseconds), taps and tapsLost.");
  latency->add_option("FILE|NAME", choice.latency.profile, kProfileHelp);
  AddNumber(latency, "--presses", &choice.latency.presses, 10, 100000,
            "how often to press in each way (200, fewer where the interval is long)")
      ->type_name("NUMBER");
  latency->add_option("--svg", choice.latency.svg, "draw a picture into this file as well")
      ->type_name("FILE");
  latency->add_flag("--json", choice.latency.json, kJsonHelp);
  Choose(latency, choice, choice.latency, &LatencyCommand);
}

// A command for what runs.
CLI::App* AddSteering(CLI::App& app, Choice& choice, const char* name, const char* about,
                      SteerOptions* options, int (*run)(const SteerOptions&, Streams)) {
  CLI::App* command = app.add_subcommand(name, about);
  AddNumber(command, "-i,--instance", &options->instance, 1, INT32_MAX,
            "the process of one of several; all without it")
      ->type_name("PID");
  Choose(command, choice, *options, run);
  return command;
}

void AddSteeringCommands(CLI::App& app, Choice& choice) {
  const auto add = [&](const char* name, const char* about, SteerOptions* options,
                       int (*run)(const SteerOptions&, Streams), const char* footer) {
    CLI::App* command = AddSteering(app, choice, name, about, options, run);
    command->footer(footer);
    command->add_flag("--json", options->json, kJsonHelp);
    return command;
  };
  add("status", "Say how each running Kelvaro stands", &choice.status, &StatusCommand,
      "Windows and `kelvaroctl run` alike. With --json: process, program (window or run), version, "
      "profile, device, deviceAnswers, paused, mouseControls.");
  add("select", "Have a running Kelvaro open another profile", &choice.select, &SelectCommand,
      "The window does what it does when you choose the profile in its list, but asks nothing: "
      "where a dialog or a box is open, changes couldn't be stored, or a number is being typed, it "
      "says so and stays as it is. With --json: process, done.")
      ->add_option("NAME", choice.select.profile, "the whole name of a stored profile")
      ->required();
  add("pause", "Have a running Kelvaro do nothing, with all let go", &choice.pause, &PauseCommand,
      "From here on nothing that the pad does counts, and every key and button that was held is "
      "let go. Keys that are being sent are sent to their end first. With --json: process, done.");
  add("resume", "Have a paused Kelvaro go on", &choice.resume, &ResumeCommand,
      "What you hold on the pad now counts as pressed now. With --json: process, done.");
  add("release-all", "Have a running Kelvaro let go of all keys and buttons", &choice.releaseAll,
      &ReleaseAllCommand,
      "What you still hold on the pad does nothing until you have let go of it. Keys that are "
      "being sent are sent to their end first, and what repeats ends. With --json: process, done.");
  AddSteering(app, choice, "follow-events", "Print what a running Kelvaro does, until Ctrl-C",
              &choice.followEvents, &FollowEventsCommand)
      ->footer(
          "JSON Lines with process, event and t (ms since that one began to answer). Events: "
          "following (no t; from here on all is told), profile and device (name; empty for none), "
          "deviceLost, deviceBack, controlFired (controlId), mouseControls (on), paused, resumed, "
          "missed (count of events that were dropped because they weren't read), ended (no t). "
          "A Kelvaro that starts later is followed, too; with --instance only that one is, until "
          "it ends.");
}

void AddFollow(CLI::App& app, Choice& choice) {
  CLI::App* follow =
      app.add_subcommand("follow", "Select a profile by the window in front, until Ctrl-C");
  follow->footer(
      "RULES is JSON: {\"default\":\"Desktop\",\"rules\":[{\"program\":\"doom*\",\"profile\":"
      "\"Shooter\"}]}. A rule names patterns for the program's file name, the window's class or "
      "its title, in which * stands for any text and ? for one character, and a stored profile. "
      "The first rule counts of which all fits the window in front; where none does, the default. "
      "Each Kelvaro that runs, and each that comes, is asked for that profile. "
      "docs/follow.schema.json tells all members.\n"
      "X servers tell the window in front, sway and KWin do; so do other wlroots compositors such "
      "as labwc, but not its program. Other desktops on Wayland, such as GNOME Shell, tell it of "
      "X11 programs alone. Start with --dry-run, and go from window to "
      "window: each is a line. Exit status 1 when the desktop has ended.\n"
      "With --json: event (window in a dry run, selected, or waiting where no Kelvaro runs), and "
      "with the first two program, class, title (null where there is no window), rule (from 1; 0 "
      "for the default) and profile.");
  follow->add_option("RULES", choice.follow.rules, "the file of rules; - for standard input")
      ->required();
  follow->add_flag("--dry-run", choice.follow.dryRun,
                   "select nothing; say of each window which rule fits it");
  follow->add_flag("--json", choice.follow.json, kJsonHelp);
  Choose(follow, choice, choice.follow, &FollowCommand);
}

void AddSettings(CLI::App& app, Choice& choice) {
  CLI::App* settings = app.add_subcommand("settings", "Show or change what the window remembers");
  settings->require_subcommand(1);
  settings->footer(
      "The window reads its settings when it starts, so a change counts from its next start on. "
      "While it runs, what it writes itself when it ends can't be changed.");
  const auto add = [&](const char* name, const char* about, auto command) {
    CLI::App* sub = settings->add_subcommand(name, about);
    sub->add_flag("--json", choice.settings.json, kJsonHelp);
    Choose(sub, choice, choice.settings, command);
    return sub;
  };
  const auto addName = [&](CLI::App* command) {
    command
        ->add_option("NAME", choice.settings.name,
                     "a setting, such as \"Smart Check\", or its beginning")
        ->required();
  };
  CLI::App* list =
      add("list", "List all settings with their values and meanings", &SettingsListCommand);
  list->footer(
      "With --json: name, value, set (false where the default holds), default, allowed, means.");
  CLI::App* get = add("get", "Print the value of one setting", &SettingsGetCommand);
  addName(get);
  get->footer("With --json: the same as `kelvaroctl settings list`, of one.");
  CLI::App* set = add("set", "Change one setting", &SettingsSetCommand);
  addName(set);
  set->add_option("VALUE", choice.settings.value,
                  "0 or 1, a number or a text; `kelvaroctl settings list` tells which")
      ->required();
  set->footer(
      "Says when the change counts. With --json: the same as `kelvaroctl settings list`, of one, "
      "and startAgain, the processes that have to be ended and started again for it to count.");
}

void AddAll(CLI::App& app, Choice& choice) {
  // A word that begins with a slash is a path on every system.
  app.allow_windows_style_options(false);
  app.name("kelvaroctl");
  app.description(kAbout);
  app.require_subcommand(1);
  app.set_version_flag("--version", "kelvaroctl", "show the version");
  app.set_help_flag("-h,--help", "show this help");
  AddKeys(app, choice);
  AddPlay(app, choice);
  AddProfiles(app, choice);
  AddShow(app, choice);
  AddPack(app, choice);
  AddImport(app, choice);
  AddCheck(app, choice);
  AddConflicts(app, choice);
  AddDevices(app, choice);
  AddDoctor(app, choice);
  AddWatch(app, choice);
  AddRecord(app, choice);
  AddTune(app, choice);
  AddRun(app, choice);
  AddExplain(app, choice);
  AddTest(app, choice);
  AddPlayBack(app, choice);
  AddLatency(app, choice);
  AddSteeringCommands(app, choice);
  AddFollow(app, choice);
  AddSettings(app, choice);
  // Last: commands take over what their program has as they are added.
  app.footer(
      "kelvaroctl COMMAND --help tells more. Exit status: 0 done, 1 the thing asked about is bad, "
      "2 the command line is wrong.");
}

// A command with commands of its own is called without one: the help says which there are.
int ShowCommands(const CalledCommand& called, Streams streams) {
  streams.err << HelpText(*called.command, called.path, streams.terminal.columns) << std::flush;
  return kUsage;
}

// The words that no option and no argument takes.
std::string SurplusWords(const CLI::App& app) {
  std::string words;
  for (const std::string& word : app.remaining(true)) words += " '" + word + "'";
  return "there are more words than it takes:" + words;
}

// Fills *choice with the command and its options. Otherwise all is said, and the result is the exit
// status.
std::optional<int> Parse(const std::vector<std::string>& words, Choice* choice, Streams streams) {
  CLI::App app;
  AddAll(app, *choice);

  const CalledCommand called = FindCommand(app, words);
  const auto wrong = [&](const std::string& what) {
    Complain(streams.err, what);
    return kUsage;
  };
  if (!called.fault.empty()) return wrong(called.fault);
  const std::string more = " (" + called.path + " --help tells more)";
  try {
    app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
  } catch (const CLI::CallForHelp&) {
    streams.out << HelpText(*called.command, called.path, streams.terminal.columns) << std::flush;
    return kDone;
  } catch (const CLI::CallForVersion&) {
    streams.out << "kelvaroctl " << VersionNumber().Text() << std::endl;
    return kDone;
  } catch (const CLI::ExtrasError&) {
    return wrong(SurplusWords(app) + more);
  } catch (const CLI::ParseError& error) {
    if (!called.command->get_subcommands({}).empty()) return ShowCommands(called, streams);
    return wrong(error.what() + more);
  }
  return std::nullopt;
}

}  // namespace

void DescribeKelvaroctl(const std::function<void(const CLI::App&)>& look) {
  Choice choice;
  CLI::App app;
  AddAll(app, choice);
  look(app);
}

int RunKelvaroctl(const std::vector<std::string>& words, Streams streams) {
  Choice choice;
  // Its memory is given back before the command begins, which may run for hours.
  if (const auto status = Parse(words, &choice, streams)) return *status;
  const int status = choice.command(streams);
  streams.out.flush();
  if (!streams.out) return Complain(streams.err, "the output can't be written");
  return status;
}

}  // namespace kelvaro::console
