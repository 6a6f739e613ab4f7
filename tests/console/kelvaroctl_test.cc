#include "console/kelvaroctl.h"

#include <algorithm>

#include "tests/console/console_run.h"

namespace kelvaro::console {
namespace {

const std::vector<std::string> kCommands{
    "keys",    "play",        "profiles",      "show",   "pack",    "check",
    "devices", "doctor",      "watch",         "record", "run",     "explain",
    "test",    "play-back",   "latency",       "status", "select",  "pause",
    "resume",  "release-all", "follow-events", "follow", "settings"};

TEST(CommandLine, AWrongOneIsOneLineAndStatusTwo) {
  const std::vector<std::string> kCases[] = {
      {""},
      {"nonsense"},
      {"KEYS", "a"},
      {"--nonsense"},
      {"--json", "keys", "a"},
      {"keys"},
      {"keys", "a", "b"},
      {"keys", "-a"},
      {"keys", "--nonsense", "a"},
      {"keys", "--js", "a"},
      {"keys", "--simulate", "a"},
      {"keys", "--steps"},
      {"keys", "--steps", "41 1e 00", "a"},
      {"keys", "a", "keys", "b"},
      {"keys", "--", "a", "--json"},
      {"keys", "--\n", "a"},
      {"play"},
      {"play", "a", "b"},
      {"play", "--simulate"},
      {"play", "--hold-time", "a"},
      {"play", "a", "--hold-time"},
      {"play", "a", "--hold-time", "-1"},
      {"play", "a", "--hold-time", "4294967296"},
      {"play", "a", "--hold-time", "18446744073709551616"},
      {"play", "a", "--hold-time", "1.5"},
      {"latency", "--presses", "9"},
      {"latency", "--presses", "100001"},
      {"latency", "--presses", "1e2"},
      {"latency", "--presses"},
      {"latency", "--svg"},
      {"latency", "a", "b"},
      {"play", "a", "--hold-time", "0x10"},
      {"play", "a", "--hold-time", "5 "},
      {"play", "a", "--hold-time", ""},
      {"play", "a", "--release-pause", "x"},
      {"play", "a", "--release-after", "x"},
      {"profiles", "x"},
      {"show"},
      {"show", "a", "b"},
      {"show", "--until", "5", "a"},
      {"follow"},
      {"follow", "a", "b"},
      {"follow", "--dryrun", "a"},
      {"pack"},
      {"pack", "a"},
      {"pack", "a", "b", "c"},
      {"pack", "--json", "a", "b"},
      {"check"},
      {"check", "--simulate", "a"},
      {"devices", "x"},
      {"devices", "--until", "5"},
      {"doctor", "x"},
      {"doctor", "--report"},
      {"doctor", "--profile", "x"},
      {"watch", "a", "b"},
      {"watch", "--until", "soon"},
      {"record", "a", "b"},
      {"record", "--json"},
      {"record", "--until", "-1"},
      {"status", "x"},
      {"select"},
      {"select", "a", "b"},
      {"pause", "x"},
      {"resume", "--instance"},
      {"release-all", "-i", "x"},
      {"follow-events", "--json"},
      {"run"},
      {"run", "a", "b"},
      {"run", "a", "--simulate"},
      {"run", "a", "--replay"},
      {"run", "a", "--device"},
      {"run", "a", "--until", "9007199254740992"},
      {"run", "a", "--repeat"},
      {"explain"},
      {"explain", "a", "b"},
      {"explain", "--simulate", "a"},
      {"test"},
      {"test", "--until", "soon", "a"},
      {"settings", "nonsense"},
      {"settings", "--json", "list"},
      {"settings", "list", "x"},
      {"settings", "get"},
      {"settings", "get", "a", "b"},
      {"settings", "set", "a"},
      {"settings", "set", "a", "b", "c"},
  };
  for (const auto& words : kCases) {
    const Outcome outcome = Kelvaroctl(words);
    const std::string line = testing::PrintToString(words) + " " + outcome.err;
    EXPECT_EQ(outcome.status, 2) << line;
    EXPECT_EQ(outcome.out, "") << line;
    EXPECT_EQ(outcome.err.rfind("kelvaroctl: ", 0), 0U) << line;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << line;
    EXPECT_EQ(outcome.err.back(), '\n') << line;
  }
}

TEST(CommandLine, NamesWhatIsWrong) {
  EXPECT_EQ(Kelvaroctl({"nonsense"}).err,
            "kelvaroctl: there is no command 'nonsense' (kelvaroctl --help lists them)\n");
  EXPECT_EQ(Kelvaroctl({"settings", "nonsense"}).err,
            "kelvaroctl: there is no command 'settings nonsense' (kelvaroctl --help lists them)\n");
  EXPECT_EQ(Kelvaroctl({"settings", "lits"}).err,
            "kelvaroctl: there is no command 'settings lits' (did you mean 'list'? "
            "kelvaroctl --help lists them)\n");
  EXPECT_EQ(Kelvaroctl({"run", "a", "--simulate"}).err,
            "kelvaroctl: --simulate requires --replay (kelvaroctl run --help tells more)\n");
  EXPECT_EQ(Kelvaroctl({"run", "a", "--replay"}).err, "kelvaroctl: --replay needs a value\n");
  EXPECT_EQ(Kelvaroctl({"show", "a", "b", "c"}).err,
            "kelvaroctl: there are more words than it takes: 'b' 'c' "
            "(kelvaroctl show --help tells more)\n");
  EXPECT_EQ(Kelvaroctl({"show"}).err,
            "kelvaroctl: FILE|NAME is required (kelvaroctl show --help tells more)\n");
  EXPECT_EQ(Kelvaroctl({"play", "a", "--hold-time", "1e3"}).err,
            "kelvaroctl: --hold-time: '1e3' is not a whole number from 0 to 4294967295 "
            "(kelvaroctl play --help tells more)\n");
}

// Wherever it stands, and whatever else is wrong or missing.
TEST(CommandLine, AnUnknownOptionIsNamed) {
  EXPECT_EQ(Kelvaroctl({"devices", "--jsn"}).err,
            "kelvaroctl: kelvaroctl devices has no option '--jsn' (did you mean '--json'? "
            "kelvaroctl devices --help lists the options)\n");
  EXPECT_EQ(Kelvaroctl({"keys", "--nonsense"}).err,
            "kelvaroctl: kelvaroctl keys has no option '--nonsense' (a text that begins with - "
            "goes behind --; kelvaroctl keys --help lists the options)\n");
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"show", "--until", "5", "a"},
                                             {"show", "a", "--until=5"},
                                             {"run", "--device", "--json", "--until"},
                                             {"play", "--hold-time", "x", "--until"},
                                             {"--until", "keys"}}) {
    const Outcome outcome = Kelvaroctl(words);
    EXPECT_EQ(outcome.status, 2);
    const bool value = words.back() == "--until" && words[0] == "run";
    EXPECT_NE(outcome.err.find(value ? "--until needs a value" : "has no option '--until'"),
              std::string::npos)
        << testing::PrintToString(words) << outcome.err;
  }
}

TEST(CommandLine, WithoutACommandItIsTheHelpThatIsShown) {
  const Outcome bare = Kelvaroctl({});
  EXPECT_EQ(bare.status, 2);
  EXPECT_EQ(bare.out, "");
  EXPECT_EQ(bare.err, Kelvaroctl({"--help"}).out);
  EXPECT_EQ(Kelvaroctl({"--", "keys", "a"}).err, bare.err);
  const Outcome settings = Kelvaroctl({"settings"});
  EXPECT_EQ(settings.status, 2);
  EXPECT_EQ(settings.err, Kelvaroctl({"settings", "--help"}).out);
}

TEST(CommandLine, TwoDashesEndTheOptions) {
  EXPECT_EQ(Kelvaroctl({"keys", "--json", "--", "-a"}).out,
            "{\"result\":-1,\"duplicateKey\":false,\"steps\":[[189,12,0],[65,30,0]],"
            "\"text\":\"-a\"}\n");
  EXPECT_EQ(Kelvaroctl({"play", "--simulate", "--", "--"}).out,
            "       0 ms  - down\n       0 ms  - up\n       0 ms  - down\n       0 ms  - up\n");
  const Outcome run = Kelvaroctl({"run", "--", "--no-such/file"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "kelvaroctl: --no-such/file: No such file or directory\n");
}

TEST(CommandLine, ATextMayBeAnything) {
  for (const std::string& text :
       {std::string("keys"), std::string("play"), std::string("run"), std::string("help"),
        std::string("[a,b]"), std::string("{}"), std::string("\"a\""), std::string("a=b"),
        std::string("%%"), std::string("$a"), std::string("'a b'"), std::string("+")}) {
    const Outcome outcome = Kelvaroctl({"keys", text});
    EXPECT_EQ(outcome.status, 0) << text;
    std::string canonical = text;
    if (const auto blank = canonical.find(' '); blank != std::string::npos) {
      canonical.replace(blank, 1, "<Space>");
    }
    EXPECT_EQ(outcome.out.substr(0, outcome.out.find('\n')), canonical);
  }
}

TEST(CommandLine, HelpOfEachCommandNamesAllItsOptions) {
  struct {
    const char* command;
    std::vector<std::string> names;
  } const kCases[] = {
      {"keys", {"TEXT", "--steps", "--hold-all", "--json", "--help"}},
      {"play",
       {"TEXT", "--simulate", "--hold-all", "--repeat", "--hold-time", "--release-pause",
        "--release-after", "--json", "--help"}},
      {"profiles", {"--json", "--help"}},
      {"show", {"FILE", "NAME", "--json", "--help"}},
      {"pack", {"IN", "OUT", "--help"}},
      {"check", {"FILE", "--json", "--help"}},
      {"devices", {"--json", "--help"}},
      {"doctor", {"--report", "--profile", "--json", "--help"}},
      {"watch", {"NAME", "--until", "--json", "--help"}},
      {"record", {"NAME", "--until", "--help"}},
      {"run",
       {"FILE", "NAME", "--simulate", "--replay", "--device", "--mouse-active", "--wake", "--grab",
        "--until", "--json", "--help"}},
      {"latency", {"FILE", "NAME", "--presses", "--svg", "--json", "--help"}},
      {"settings", {"list", "get", "set", "--help"}},
  };
  for (const auto& c : kCases) {
    for (const char* help : {"--help", "-h"}) {
      const Outcome outcome = Kelvaroctl({c.command, help});
      EXPECT_EQ(outcome.status, 0) << c.command;
      EXPECT_EQ(outcome.err, "") << c.command;
      EXPECT_NE(outcome.out.find("Usage: kelvaroctl " + std::string(c.command)), std::string::npos)
          << outcome.out;
      for (const std::string& name : c.names) {
        EXPECT_NE(outcome.out.find(name), std::string::npos) << c.command << " " << name;
      }
    }
  }
}

TEST(CommandLine, HelpOfASettingsCommandIsItsOwn) {
  const Outcome outcome = Kelvaroctl({"settings", "set", "--help"});
  EXPECT_EQ(outcome.status, 0);
  for (const char* name : {"Usage: kelvaroctl settings set", "NAME", "VALUE", "--json"})
    EXPECT_NE(outcome.out.find(name), std::string::npos) << name << outcome.out;
}

TEST(CommandLine, HelpListsTheCommandsAndTheExitStatus) {
  const Outcome outcome = Kelvaroctl({"--help"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  for (const std::string& command : kCommands) {
    EXPECT_NE(outcome.out.find("\n  " + command + " "), std::string::npos) << command;
  }
  EXPECT_NE(outcome.out.find("Exit status"), std::string::npos);
  EXPECT_NE(outcome.out.find("--version"), std::string::npos);
}

TEST(CommandLine, VersionIsOneLine) {
  const Outcome outcome = Kelvaroctl({"--version"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.out, "kelvaroctl 3.5\n");
}

TEST(CommandLine, OutputThatCantBeWrittenIsAnError) {
  struct FullDisk : std::streambuf {
  } nothingFits;
  for (const auto& words : std::vector<std::vector<std::string>>{
           {"keys", "a"}, {"keys", "--json", "a"}, {"play", "--simulate", "a"}}) {
    std::ostream full(&nothingFits);
    std::ostringstream err;
    EXPECT_EQ(RunKelvaroctl(words, {full, err}), 1) << words[0];
    EXPECT_EQ(err.str(), "kelvaroctl: the output can't be written\n") << words[0];
  }
}

}  // namespace
}  // namespace kelvaro::console
