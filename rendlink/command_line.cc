#include "rendlink/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <ostream>

#include "app/platform/files.h"
#include "foundation/paths.h"
#include "foundation/version.h"
#include "rendlink/files.h"

namespace kelvaro::rendlink {
namespace {

constexpr char kAbout[] =
    "Starts a game together with Kelvaro, or makes a launcher that does. Without arguments it "
    "shows its window.";
constexpr char kNotes[] =
    "With neither --save nor --start the command line of Kelvaro is printed.\n"
    "\n"
    "rendlink --profile NAME [--dir FOLDER] -- GAME ARGUMENTS... starts Kelvaro with the profile\n"
    "and the game, waits for both to end, and gives the game's exit status: one line for the "
    "start\n"
    "options of another launcher.\n"
    "\n"
    "Exit status: 0 done, 1 it failed, 2 it can't be done so; of a game that can't be started "
    "126,\n"
    "of one that isn't there 127.";

int PlayGame(const Options& options, Session& session, GameCarrier& carrier, Streams streams) {
  const Words& words = *options.game;
  std::string refusal;
  bool isThere = false;
  Game game{carrier.FindProgram(words[0], &refusal, &isThere), words,
            platform::files().GetCurrentDirectoryA()};
  if (game.program.empty())
    return Complain(streams.err, words[0] + ": " + refusal, isThere ? kCantRun : kNotThere);
  if (!options.launch.dir.empty()) game.folder = session.FullPath(options.launch.dir);
  if (!IsFolder(game.folder))
    return Complain(streams.err, "There is no folder " + game.folder + ".", kRefused);

  Launch launch;
  launch.profiles = options.launch.profiles;
  launch.target = Bytes(ProgramPath());
  if (!carrier.Prepare(game, &launch.args, &refusal))
    return Complain(streams.err, refusal, kFailed);
  Ready ready;
  if (!MakeReady(launch, session, &ready, &refusal))
    return Complain(streams.err, refusal, kRefused);
  streams.out.flush();
  return carrier.Run(ready.words);
}

struct CommandLine {
  explicit CommandLine(Options* options);

  CLI::App app{kAbout, "rendlink"};
  CLI::Option* target;
  CLI::Option* args;
  CLI::Option* save;
  CLI::Option* start;
};

CommandLine::CommandLine(Options* options) {
  app.footer(kNotes);
  app.set_help_flag("-h,--help", "show this help");
  app.set_version_flag("--version", "Rendlink", "print the version and end");
  // One at a time, and as it stands: brackets would be a list.
  app.add_option_function<std::string>(
         "--profile",
         [options](const std::string& name) { options->launch.profiles.push_back(name); },
         "a profile, by the beginning of its name; each further one is played by an instance of "
         "its own")
      ->type_name("NAME")
      ->trigger_on_parse()
      ->required();
  target = app.add_option("--target", options->launch.target, "the program to start");
  target->type_name("FILE");
  args = app.add_option("--args", options->launch.args,
                        "its arguments, in one text with double quotes where they need them");
  args->type_name("TEXT");
  app.add_option("--dir", options->launch.dir, "the folder to start it in")->type_name("FOLDER");
  save = app.add_option("--save", options->save,
                        "write a launcher (a .desktop file, on Windows a .lnk file)");
  save->type_name("FILE");
  start = app.add_flag("--start", options->start, "start it now");
  save->excludes(start);
}

}  // namespace

int Complain(std::ostream& err, const std::string& text, int status) {
  err << "rendlink: " << text << std::endl;
  return status;
}

void DescribeRendlink(const std::function<void(const CLI::App&)>& look) {
  Options options;
  look(CommandLine(&options).app);
}

std::optional<int> ReadOptions(const Words& words, Options* options, Streams streams) {
  const auto gap = std::find(words.begin(), words.end(), "--");
  CommandLine line(options);
  auto& [app, target, args, save, start] = line;
  Words backwards(std::make_reverse_iterator(gap), words.rend());
  try {
    app.parse(backwards);
    if (gap != words.end()) {
      options->game = Words(gap + 1, words.end());
      if (options->game->empty()) throw CLI::ValidationError("--", "needs a game behind it");
      for (const CLI::Option* other : {target, args, save, start})
        if (other->count() > 0)
          throw CLI::ValidationError(other->get_name(), "doesn't go with a game behind --");
    } else if (target->count() == 0) {
      throw CLI::RequiredError("--target");
    }
    if (save->count() > 0 && options->save.empty())
      throw CLI::ValidationError("--save", "needs the name of a file");
  } catch (const CLI::CallForHelp&) {
    streams.out << app.help() << std::flush;
    return kDone;
  } catch (const CLI::CallForVersion&) {
    streams.out << "Rendlink, Version " << VersionNumber().Text() << std::endl;
    return kDone;
  } catch (const CLI::ParseError& error) {
    return Complain(streams.err, std::string(error.what()) + " (rendlink --help tells more)",
                    kRefused);
  }
  return std::nullopt;
}

int RunOptions(const Options& options, Session& session, GameCarrier& carrier, Streams streams) {
  std::string refusal;
  std::string kelvaro;
  if (!FindKelvaro(&kelvaro, &refusal)) return Complain(streams.err, refusal, kFailed);
  if (options.game) return PlayGame(options, session, carrier, streams);
  Ready ready;
  if (!MakeReady(options.launch, session, &ready, &refusal))
    return Complain(streams.err, refusal, kRefused);
  if (!options.save.empty()) {
    if (SaveLauncher(ready, options.save, session, &refusal)) return kDone;
    return Complain(streams.err, refusal, kFailed);
  }
  if (options.start) {
    if (StartNow(ready, &refusal)) return kDone;
    return Complain(streams.err, refusal, kFailed);
  }
  streams.out << session.Launchers().CommandText(ready.words) << std::endl;
  return streams.out ? kDone : Complain(streams.err, "the output can't be written", kFailed);
}

}  // namespace kelvaro::rendlink
