#ifndef _WIN32
#include <unistd.h>

#include "app/platform/linux/instance_socket.h"
#include "app/platform/linux/settings/sqlite_registry.h"
#include "tests/host/home.h"
#endif

#include "app/platform/platform.h"
#include "app/platform/simulation/simulation.h"
#include "app/settings/app_settings.h"
#include "console/stored_settings.h"
#include "foundation/registry_key.h"
#include "tests/console/console_run.h"

namespace kelvaro::console {
namespace {

using platform::HKEY_CURRENT_USER;

constexpr char kKey[] = "Software\\Marnstone\\Kelvaro";
constexpr char kSimulatedKey[] = "HKCU\\Software\\Marnstone\\Kelvaro";
constexpr char kSimulatedFormer[] = "HKCU\\Software\\Marnstone\\Vendrix";

// ---- On a machine in memory.

class SettingsInMemory : public testing::Test {
 protected:
  Outcome Run(int (*command)(const SettingsOptions&, Streams), const SettingsOptions& options) {
    return Taken([&](Streams streams) { return command(options, streams); });
  }
  Outcome Set(const std::string& name, const std::string& value,
              const std::vector<std::uint32_t>& running = {}, bool json = false) {
    return Taken([&](Streams streams) {
      return ChangeSetting({name, value, json}, running, "the file", streams);
    });
  }
  // All that is stored, a value a line.
  std::string Stored() {
    std::string lines;
    for (const std::string& name : sim.Registry().ValueNames(kSimulatedKey)) {
      const auto number = sim.Registry().Number(kSimulatedKey, name);
      lines += name + "=" +
               (number ? std::to_string(*number)
                       : sim.Registry().Text(kSimulatedKey, name).value_or("?")) +
               "\n";
    }
    return lines;
  }
  void Preset(const std::string& name, std::uint32_t number) {
    sim.Registry().PutDword(kSimulatedKey, name, number);
  }

  platform::simulation::Simulation sim;

 private:
  template <typename Work>
  Outcome Taken(const Work& work) {
    std::ostringstream out;
    std::ostringstream err;
    Outcome outcome;
    outcome.status = work(Streams{out, err});
    outcome.out = out.str();
    outcome.err = err.str();
    return outcome;
  }
};

TEST_F(SettingsInMemory, AListSaysWhatHoldsAndWhatItMeans) {
  Preset("Smart Check", 0);
  Preset("Start Minimized", 7);
  sim.Registry().PutString(kSimulatedKey, "Last Profile", "My \x1B game");
  const Outcome outcome = Run(&ListSettings, {});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(
      outcome.out,
      "Show Auto-Detect Usage = 1 (not set)\n"
      "  explain the detection of inputs before it begins: 0 or 1; 1 if not set\n"
      "Start Minimized = 1\n"
      "  hide the window after the start: 0 or 1; 0 if not set\n"
      "Smart Check = 0\n"
      "  look for forgotten angle brackets in keys: 0 or 1; 1 if not set\n"
      "Shift Reminder = 1 (not set)\n"
      "  ask before an uppercase letter is taken: 0 or 1; 1 if not set\n"
      "Last Profile = 'My ? game'\n"
      "  the profile that the window starts with: a text of up to 16383 bytes; '' if not set\n"
      "No Device Error Msg = 0 (not set)\n"
      "  don't say that a profile's device is missing: 0 or 1; 0 if not set\n"
      "Autodetect Device Plugin = 0 (not set)\n"
      "  look for a missing device every five seconds: 0 or 1; 0 if not set\n"
      "Welcome Display = 0 (not set)\n"
      "  the welcome was shown, if it isn't 0: a whole number from 0 to 4294967295; 0 if not "
      "set\n"
      "Last Device = '' (not set)\n"
      "  the device that the window starts with: a text of up to 16383 bytes; '' if not "
      "set\n"
      "Answer At Once = 0 (not set)\n"
      "  take in what a device does when it does it, not at the next poll: 0 or 1; 0 if not "
      "set\n"
      "Only For Kelvaro = '' (not set)\n"
      "  pads that no other program gets while they are in use, with ; between two: a text of up "
      "to 16383 bytes; '' if not set\n");
}

TEST_F(SettingsInMemory, AListInJsonIsAnObjectALine) {
  Preset("Smart Check", 0);
  sim.Registry().PutString(kSimulatedKey, "Last Device", "\xFF");
  const std::string out = Run(&ListSettings, {"", "", true}).out;
  EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), std::ssize(Settings()));
  EXPECT_NE(out.find("{\"name\":\"Smart Check\",\"value\":0,\"set\":true,\"default\":1,"
                     "\"allowed\":\"0 or 1\","
                     "\"means\":\"look for forgotten angle brackets in keys\"}\n"),
            std::string::npos)
      << out;
  EXPECT_NE(out.find("{\"name\":\"Last Profile\",\"value\":\"\",\"set\":false,\"default\":\"\","),
            std::string::npos)
      << out;
  EXPECT_NE(out.find("{\"name\":\"Last Device\",\"value\":{\"bytes\":\"ff\"},\"set\":true,"),
            std::string::npos)
      << out;
}

TEST_F(SettingsInMemory, LookingWritesNothing) {
  sim.Registry().RemoveKey("HKCU\\Software");
  Run(&ListSettings, {});
  Run(&ShowSetting, {"Smart Check", "", false});
  EXPECT_FALSE(sim.Registry().HasKey("HKCU\\Software"));
  EXPECT_EQ(sim.Registry().OpenHandles(), 0u);
}

TEST_F(SettingsInMemory, GetPrintsTheValueAlone) {
  EXPECT_EQ(Run(&ShowSetting, {"Smart Check", "", false}).out, "1\n");
  Preset("Smart Check", 0);
  EXPECT_EQ(Run(&ShowSetting, {"Smart Check", "", false}).out, "0\n");
  EXPECT_EQ(Run(&ShowSetting, {"sMART check", "", false}).out, "0\n") << "names have no case";
  EXPECT_EQ(Run(&ShowSetting, {"Last Profile", "", false}).out, "\n");
  EXPECT_EQ(Run(&ShowSetting, {"Smart Check", "", true}).out,
            "{\"name\":\"Smart Check\",\"value\":0,\"set\":true,\"default\":1,"
            "\"allowed\":\"0 or 1\","
            "\"means\":\"look for forgotten angle brackets in keys\"}\n");
}

TEST_F(SettingsInMemory, AValueOfTheOtherKindIsNotSet) {
  sim.Registry().PutString(kSimulatedKey, "Smart Check", "0");
  EXPECT_NE(Run(&ShowSetting, {"Smart Check", "", true}).out.find("\"value\":1,\"set\":false"),
            std::string::npos);
}

TEST_F(SettingsInMemory, EachKindOfValueIsStoredAsTheWindowReadsIt) {
  struct {
    const char* name;
    const char* value;
    const char* stored;
    const char* said;
  } const kCases[] = {
      {"Smart Check", "0", "Smart Check=0\n", "Smart Check = 0, from the window's next start on\n"},
      {"smart check", "1", "Smart Check=1\n", "Smart Check = 1, from the window's next start on\n"},
      {"Welcome Display", "4294967295", "Welcome Display=4294967295\n",
       "Welcome Display = 4294967295, from the window's next start on\n"},
      {"Last Profile", "My game", "Last Profile=My game\n",
       "Last Profile = 'My game', from the window's next start on\n"},
      {"Last Profile", "", "Last Profile=\n",
       "Last Profile = '', from the window's next start on\n"},
  };
  for (const auto& c : kCases) {
    sim.Registry().RemoveKey(kSimulatedKey);
    sim.Registry().PutKey(kSimulatedKey);
    const Outcome outcome = Set(c.name, c.value);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, c.said);
    EXPECT_EQ(Stored(), c.stored);
    EXPECT_EQ(sim.Registry().OpenHandles(), 0u);
  }
}

TEST_F(SettingsInMemory, SetInJsonSaysWhatHoldsNow) {
  EXPECT_EQ(Set("Smart Check", "0", {}, true).out,
            "{\"name\":\"Smart Check\",\"value\":0,\"set\":true,\"default\":1,"
            "\"allowed\":\"0 or 1\","
            "\"means\":\"look for forgotten angle brackets in keys\",\"startAgain\":[]}\n");
}

TEST_F(SettingsInMemory, TheOtherValuesStay) {
  Preset("Smart Check", 0);
  Preset("Of A Later Version", 5);
  sim.Registry().PutString(kSimulatedKey, "Last Profile", "Race");
  Preset("Start Minimized", 1);
  EXPECT_EQ(Set("Start Minimized", "0").status, 0);
  EXPECT_EQ(Stored(),
            "Smart Check=0\nOf A Later Version=5\nLast Profile=Race\nStart Minimized=0\n");
}

TEST_F(SettingsInMemory, AnUnknownNameOrABadValueSaysWhatIsAllowedAndChangesNothing) {
  Preset("Smart Check", 0);
  Preset("Welcome Display", 1);
  const std::string before = Stored();
  struct {
    const char* name;
    std::string value;
    const char* error;
  } const kCases[] = {
      {"S", "1",
       "'S' begins several names: 'Show Auto-Detect Usage', 'Start Minimized', 'Smart Check', "
       "'Shift Reminder'"},
      {"Smart Chek", "1",
       "there is no setting 'Smart Chek' (did you mean 'Smart Check'?); there are 'Show "
       "Auto-Detect Usage', 'Start Minimized', "
       "'Smart Check', 'Shift Reminder', 'Last Profile', 'No Device Error Msg', "
       "'Autodetect Device Plugin', 'Welcome Display', 'Last Device', 'Answer At Once', "
       "'Only For Kelvaro'"},
      {"smart check", "2", "'Smart Check' can't be '2': it is 0 or 1"},
      {"Smart Check", "", "'Smart Check' can't be '': it is 0 or 1"},
      {"Smart Check", "on", "'Smart Check' can't be 'on': it is 0 or 1"},
      {"Smart Check", "01", "'Smart Check' can't be '01': it is 0 or 1"},
      {"Welcome Display", "4294967296",
       "'Welcome Display' can't be '4294967296': it is a whole number from 0 to 4294967295"},
      {"Welcome Display", "-1",
       "'Welcome Display' can't be '-1': it is a whole number from 0 to 4294967295"},
  };
  for (const auto& c : kCases) {
    const Outcome outcome = Set(c.name, c.value);
    EXPECT_EQ(outcome.status, 1) << c.name << c.value;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, std::string("kelvaroctl: ") + c.error + "\n");
  }
  EXPECT_EQ(Set("Last Profile", std::string(16384, 'x')).status, 1);
  EXPECT_EQ(Run(&ShowSetting, {"Smarter", "", true}).status, 1);
  EXPECT_EQ(Stored(), before);
  EXPECT_EQ(Set("Last Profile", std::string(16383, 'x')).status, 0);
  EXPECT_EQ(Run(&ShowSetting, {"Last Profile", "", false}).out, std::string(16383, 'x') + "\n");
}

TEST_F(SettingsInMemory, TheBeginningOfOneNameOnlyIsEnough) {
  Preset("Smart Check", 0);
  EXPECT_EQ(Run(&ShowSetting, {"smart", "", false}).out, "0\n");
  EXPECT_EQ(Set("Smart", "1").status, 0);
  EXPECT_EQ(Stored(), "Smart Check=1\n");
  EXPECT_EQ(Run(&ShowSetting, {"", "", false}).status, 1);
}

TEST_F(SettingsInMemory, WhatTheWindowWritesIsNotChangedWhileItRuns) {
  Preset("Smart Check", 0);
  const std::string before = Stored();
  const Outcome outcome = Set("Smart Check", "1", {812, 4711});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "kelvaroctl: Kelvaro runs (process 812,4711) and writes 'Smart Check' itself when it "
            "ends; end it first\n");
  EXPECT_EQ(Set("Last Device", "Stick", {812}).status, 1);
  EXPECT_EQ(Stored(), before);
}

TEST_F(SettingsInMemory, WhatTheWindowOnlyReadsIsChangedAndARunningOneIsNamed) {
  const Outcome outcome = Set("Answer At Once", "1", {812, 4711});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.out,
            "Answer At Once = 1, from the window's next start on\n"
            "Kelvaro runs (process 812,4711): end it and start it again for this to count\n");
  EXPECT_EQ(Stored(), "Answer At Once=1\n");
  const std::string json = Set("Answer At Once", "0", {812, 4711}, true).out;
  EXPECT_NE(json.find(",\"startAgain\":[812,4711]}\n"), std::string::npos) << json;
}

// The window takes them over at its first start alone, which it knows by the missing key.
TEST_F(SettingsInMemory, TheFirstSettingTakesOverThoseOfTheProductBefore) {
  sim.Registry().PutDword(kSimulatedFormer, "Shift Reminder", 0);
  sim.Registry().PutDword(kSimulatedFormer, "Smart Check", 0);
  EXPECT_EQ(Set("Smart Check", "1").status, 0);
  EXPECT_EQ(Stored(), "Shift Reminder=0\nSmart Check=1\n");
}

TEST_F(SettingsInMemory, ARegistryThatRefusesIsNamed) {
  sim.Registry().PutKey(kSimulatedKey);
  sim.Registry().Protect("HKCU");
  const Outcome outcome = Set("Smart Check", "1");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "kelvaroctl: the file: the settings can't be written\n");
}

#ifndef _WIN32

// ---- In a home folder.

class SettingsCommand : public testing::Test {
 protected:
  // A value as the window finds it; -1 for none.
  std::int64_t Number(const char* name) {
    platform::SqliteRegistry registry(platform::RegistryPlaces{home.SettingsFile(), "", ""});
    platform::Platform groups;
    groups.registry = &registry;
    const platform::InstalledPlatform installed(groups);
    std::uint32_t number = 0;
    RegistryKey key(HKEY_CURRENT_USER, kKey, false);
    return key.GetDword(nullptr, name, &number) ? std::int64_t{number} : -1;
  }
  static std::unique_ptr<platform::InstanceSocket> Instance() {
    return platform::InstanceSocket::Open(
        platform::InstanceFolder(), [] { return std::vector<platform::OfferedWindow>{}; },
        [](platform::WindowHandle, std::uint32_t) { return false; });
  }

  const tests::Home home;
  const tests::Variable config{"XDG_CONFIG_HOME", home.In("config").c_str()};
  const tests::Variable runtime{"XDG_RUNTIME_DIR", home.In("runtime").c_str()};
};

TEST_F(SettingsCommand, WhatIsSetIsThereForTheWindowAndTheNextLook) {
  EXPECT_EQ(Kelvaroctl({"settings", "get", "Start Minimized"}).out, "0\n");
  EXPECT_FALSE(std::filesystem::exists(home.SettingsFile()));
  const Outcome set = Kelvaroctl({"settings", "set", "Start Minimized", "1"});
  EXPECT_EQ(set.status, 0) << set.err;
  EXPECT_EQ(set.out, "Start Minimized = 1, from the window's next start on\n");
  EXPECT_EQ(set.err, "");
  EXPECT_EQ(Number("Start Minimized"), 1);
  EXPECT_EQ(Kelvaroctl({"settings", "get", "Start Minimized"}).out, "1\n");
  EXPECT_NE(Kelvaroctl({"settings", "list"}).out.find("Start Minimized = 1\n"), std::string::npos);
  EXPECT_EQ(Kelvaroctl({"settings", "set", "--json", "Start Minimized", "0"}).status, 0);
  EXPECT_EQ(Number("Start Minimized"), 0);
}

TEST_F(SettingsCommand, AValueMayStartWithADash) {
  EXPECT_EQ(Kelvaroctl({"settings", "set", "--", "Last Profile", "--x"}).status, 0);
  EXPECT_EQ(Kelvaroctl({"settings", "get", "Last Profile"}).out, "--x\n");
}

TEST_F(SettingsCommand, ARunningInstanceIsSeenByItsSocket) {
  EXPECT_EQ(Kelvaroctl({"settings", "set", "Smart Check", "0"}).status, 0);
  auto instance = Instance();
  ASSERT_TRUE(instance);
  const Outcome outcome = Kelvaroctl({"settings", "set", "Smart Check", "1"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "kelvaroctl: Kelvaro runs (process " + std::to_string(getpid()) +
                             ") and writes 'Smart Check' itself when it ends; end it first\n");
  EXPECT_EQ(Number("Smart Check"), 0);
  instance.reset();
  EXPECT_EQ(Kelvaroctl({"settings", "set", "Smart Check", "1"}).status, 0);
}

// Its process id may be somebody else's by now.
TEST_F(SettingsCommand, TheSocketOfACrashedInstanceIsNone) {
  ASSERT_NE(platform::InstanceFolder(), "");
  tests::Put(platform::InstanceFolder() + "/" + std::to_string(getpid()) + ".socket", "");
  EXPECT_EQ(Kelvaroctl({"settings", "set", "Smart Check", "0"}).status, 0);
}

TEST_F(SettingsCommand, ADamagedFileIsSetAsideAndTold) {
  tests::Put(home.SettingsFile(), std::string(4096, 'x'));
  const Outcome outcome = Kelvaroctl({"settings", "list"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "kelvaroctl: The settings file " + home.SettingsFile() +
                             " is damaged. It has been renamed to " + home.SettingsFile() +
                             ".damaged, and the settings start afresh.\n");
  EXPECT_EQ(Kelvaroctl({"settings", "set", "Smart Check", "0"}).status, 0);
  EXPECT_EQ(Number("Smart Check"), 0);
}

TEST_F(SettingsCommand, AFileThatCannotBeReadOrWrittenIsNamed) {
  std::filesystem::create_directories(home.SettingsFile());
  for (const std::vector<std::string>& words : {std::vector<std::string>{"settings", "list"},
                                                {"settings", "get", "Smart Check"},
                                                {"settings", "set", "Smart Check", "0"}}) {
    const Outcome outcome = Kelvaroctl(words);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "kelvaroctl: " + home.SettingsFile() + ": the settings can't be read\n");
  }
  std::filesystem::remove(home.SettingsFile());
  ASSERT_EQ(Kelvaroctl({"settings", "set", "Smart Check", "0"}).status, 0);
  std::filesystem::permissions(home.SettingsFile(), std::filesystem::perms::owner_read);
  EXPECT_EQ(Kelvaroctl({"settings", "get", "Smart Check"}).out, "0\n");
  const Outcome outcome = Kelvaroctl({"settings", "set", "Smart Check", "1"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            "kelvaroctl: " + home.SettingsFile() + ": the settings can't be written\n");
  EXPECT_EQ(Number("Smart Check"), 0);
}

#endif

}  // namespace
}  // namespace kelvaro::console
