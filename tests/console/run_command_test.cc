#include "tests/console/console_run.h"

namespace kelvaro::console {
namespace {

constexpr char kJump[] = R"({"controls":[{"buttonMask":"0x1","actions":[{"text":"a"}]}]})";

// One profile and one recording, and what comes out.
Outcome Simulate(const std::string& profile, const std::string& changes,
                 std::vector<std::string> options = {}) {
  const TestFile profileFile("profile", profile);
  const TestFile recordingFile("recording", kPad + changes);
  options.insert(options.begin(),
                 {"run", "--simulate", "--replay", recordingFile.path, profileFile.path});
  return Kelvaroctl(options);
}

TEST(RunCommand, PollsAtItsIntervalFromTimeZero) {
  struct {
    const char* why;
    const char* profile;
    const char* changes;
    const char* lines;
  } const kCases[] = {
      {"the poll behind a change delivers it", kJump,
       "{\"t\":12,\"buttons\":[1]}\n{\"t\":31,\"buttons\":[]}\n",
       "      15 ms  a down\n      35 ms  a up\n"},
      {"a change at a poll's time is in force for it", kJump,
       "{\"t\":10,\"buttons\":[1]}\n{\"t\":30,\"buttons\":[]}\n",
       "      10 ms  a down\n      30 ms  a up\n"},
      {"a change at 0 comes with the first poll", kJump,
       "{\"t\":0,\"buttons\":[1]}\n{\"t\":6,\"buttons\":[]}\n",
       "       5 ms  a down\n      10 ms  a up\n"},
      {"a change between two polls that is taken back is never seen", kJump,
       "{\"t\":11,\"buttons\":[1]}\n{\"t\":14,\"buttons\":[]}\n", ""},
      {"the profile's interval", R"({"pollInterval":100,"controls":[{"buttonMask":1,
       "actions":[{"text":"a"}]}]})",
       "{\"t\":1,\"buttons\":[1]}\n{\"t\":101,\"buttons\":[]}\n",
       "     100 ms  a down\n     200 ms  a up\n"},
  };
  for (const auto& c : kCases) {
    const Outcome outcome = Simulate(c.profile, c.changes);
    EXPECT_EQ(outcome.out, c.lines) << c.why;
    EXPECT_EQ(outcome.err, "") << c.why;
    EXPECT_EQ(outcome.status, 0) << c.why;
  }
}

// The pad has been at rest for long when it moves.
TEST(RunCommand, WakeTakesAChangeInAtOnceAndTheNextAnIntervalLater) {
  const char* const buttons =
      R"({"controls":[{"buttonMask":1,"actions":[{"text":"a"}]},)"
      R"({"buttonMask":2,"actions":[{"text":"b"}]},{"buttonMask":3,"actions":[{"text":"c"}]}]})";
  struct {
    const char* why;
    const char* changes;
    const char* polled;
    const char* atOnce;
  } const kCases[] = {
      {"a press between two polls", "{\"t\":101,\"buttons\":[1]}\n{\"t\":133,\"buttons\":[]}\n",
       "     105 ms  a down\n     135 ms  a up\n", "     101 ms  a down\n     133 ms  a up\n"},
      {"a release within the interval that follows the press",
       "{\"t\":104,\"buttons\":[1]}\n{\"t\":108,\"buttons\":[]}\n",
       "     105 ms  a down\n     110 ms  a up\n", "     104 ms  a down\n     109 ms  a up\n"},
      {"two buttons a moment apart",
       "{\"t\":101,\"buttons\":[1]}\n{\"t\":102,\"buttons\":[1,2]}\n{\"t\":133,\"buttons\":[]}\n",
       "     105 ms  c down\n     135 ms  c up\n",
       "     101 ms  a down\n     106 ms  c down\n     133 ms  c up\n     133 ms  a up\n"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(Simulate(buttons, c.changes).out, c.polled) << c.why;
    EXPECT_EQ(Simulate(buttons, c.changes, {"--wake"}).out, c.atOnce) << c.why;
  }
}

TEST(RunCommand, WakeLosesNoTap) {
  std::string taps;
  for (int i = 0; i < 100; ++i) {
    const int press = 100 + 37 * i;  // at each phase of the interval
    taps += "{\"t\":" + std::to_string(press) + ",\"buttons\":[1]}\n";
    taps += "{\"t\":" + std::to_string(press + 1 + i % 4) + ",\"buttons\":[]}\n";
  }
  const std::string polled = Simulate(kJump, taps).out;
  const std::string atOnce = Simulate(kJump, taps, {"--wake"}).out;
  EXPECT_LT(std::count(polled.begin(), polled.end(), '\n'), 150) << "they were no short taps";
  EXPECT_EQ(std::count(atOnce.begin(), atOnce.end(), '\n'), 200) << atOnce;
}

TEST(RunCommand, PrintsJsonLines) {
  EXPECT_EQ(
      Simulate(kJump, "{\"t\":12,\"buttons\":[1]}\n{\"t\":31,\"buttons\":[]}\n", {"--json"}).out,
      "{\"t\":15,\"event\":\"key\",\"vk\":65,\"scan\":30,\"flags\":0}\n"
      "{\"t\":35,\"event\":\"key\",\"vk\":65,\"scan\":30,\"flags\":2}\n");
}

TEST(RunCommand, EndsASecondBehindTheRecording) {
  EXPECT_EQ(Simulate(kJump, "{\"t\":12,\"buttons\":[1]}\n").out,
            "      15 ms  a down\n    1012 ms  a up\n");
}

TEST(RunCommand, EndsAtUntil) {
  const char* const held = "{\"t\":12,\"buttons\":[1]}\n{\"t\":900,\"buttons\":[]}\n";
  EXPECT_EQ(Simulate(kJump, held, {"--until", "14"}).out, "");
  // What is due at that millisecond has run.
  EXPECT_EQ(Simulate(kJump, held, {"--until", "15"}).out,
            "      15 ms  a down\n      15 ms  a up\n");
  EXPECT_EQ(Simulate(kJump, held, {"--until", "600"}).out,
            "      15 ms  a down\n     600 ms  a up\n");
  EXPECT_EQ(Simulate(kJump, "{\"t\":12,\"buttons\":[1]}\n", {"--until", "5000"}).out,
            "      15 ms  a down\n    5000 ms  a up\n");
  EXPECT_EQ(Simulate(kJump, held, {"--until", "0"}).out, "");
}

TEST(RunCommand, TheRecordingIsTheDeviceWhateverTheProfileSays) {
  EXPECT_EQ(Simulate(R"({"deviceName":"Another","deviceGuid":"ffffffffffffffffffffffffffffffff",
      "controls":[{"buttonMask":1,"actions":[{"text":"a"}]}]})",
                     "{\"t\":5,\"buttons\":[1]}\n", {"--until", "5"})
                .out,
            "       5 ms  a down\n       5 ms  a up\n");
}

TEST(RunCommand, ADeviceThatIsNotThereListsThoseThatAre) {
  EXPECT_EQ(Simulate(kJump, "", {"--device", "Test Pad"}).status, 0);
  const TestFile profile("named", kJump);
  const TestFile recording("played", kPad);
  const Outcome outcome = Kelvaroctl(
      {"run", "--simulate", "--replay", recording.path, "--device", "Best Pad", profile.path});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(
      outcome.err,
      "kelvaroctl: " + profile.path +
          ": there is no device 'Best Pad' (did you mean 'Test Pad'?); there is: 'Test Pad'\n");
}

TEST(RunCommand, AFaultyFileIsNamedWithLineAndMember) {
  const TestFile good("good", kJump);
  const TestFile pad("pad", kPad);
  const std::string missing = testing::TempDir() + "kelvaro_no_such_file";
  const auto run = [&](const std::string& recording, const std::string& profile) {
    const Outcome outcome = Kelvaroctl({"run", "--simulate", "--replay", recording, profile});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    return outcome.err;
  };
  EXPECT_EQ(run(pad.path, missing), "kelvaroctl: " + missing + ": No such file or directory\n");
  EXPECT_EQ(run(missing, good.path), "kelvaroctl: " + missing + ": No such file or directory\n");
  EXPECT_EQ(run(testing::TempDir(), good.path),
            "kelvaroctl: " + testing::TempDir() + ": Is a directory\n");

  const TestFile badProfile("bad", "{\"controls\":[{},\n{\"buttonMask\":[]}]}");
  EXPECT_EQ(run(pad.path, badProfile.path),
            "kelvaroctl: " + badProfile.path + ":2:15: controls[1].buttonMask: not a number\n");
  const TestFile badRecording("broken",
                              std::string(kPad) + "{\"t\":1}\n{\"t\":2,\"povs\":{\"POV1\":0}}\n");
  EXPECT_EQ(run(badRecording.path, good.path),
            "kelvaroctl: " + badRecording.path + ":3:23: povs.POV1: no such hat\n");
  const TestFile huge("huge", std::string((8 << 20) + 1, ' '));
  EXPECT_EQ(run(pad.path, huge.path), "kelvaroctl: " + huge.path + ": larger than 8 MiB\n");
}

TEST(RunCommand, TakesADeviceNameLongerThanTheSystemKnows) {
  const std::string name(1000, 'n');
  const TestFile profile("profile", kJump);
  const TestFile recording("recording", R"({"recording":1,"device":")" + name +
                                            R"(","guid":"000102030405060708090a0b0c0d0e0f",)"
                                            R"("buttons":1,"axes":0,"povs":0})"
                                            "\n{\"t\":5,\"buttons\":[1]}\n");
  const Outcome outcome =
      Kelvaroctl({"run", "--simulate", "--replay", recording.path, "--until", "5", profile.path});
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.out, "       5 ms  a down\n       5 ms  a up\n");
}

}  // namespace
}  // namespace kelvaro::console
