#include <algorithm>
#include <sstream>

#include "tests/console/console_run.h"
#include "tests/host/json.h"

namespace kelvaro::console {
namespace {

// One line of a recording for each text, such as R"("buttons":[1])", 100 ms apart from 100 on.
std::string Recorded(const std::vector<std::string>& changes) {
  std::string text = kPad;
  int t = 0;
  for (const std::string& change : changes) {
    text += "{\"t\":" + std::to_string(t += 100) + "," + change + "}\n";
  }
  return text;
}

Outcome Explained(const std::string& controls, const std::vector<std::string>& changes,
                  std::vector<std::string> options = {}, const std::string& command = "explain") {
  const TestFile profile("profile", "{" + controls + "}");
  const TestFile recording("recording", Recorded(changes));
  options.insert(options.begin(), {command, "--replay", recording.path, profile.path});
  const Outcome outcome = Kelvaroctl(options);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  return outcome;
}

// A centred hat isn't 0, so the first poll is a change.
constexpr char kAtRest[] = "       5 ms  (nothing)\n";

constexpr char kJumpAndRun[] =
    R"("controls":[{"description":"Jump","buttonMask":1,"actions":[{"text":"a"}]},)"
    R"({"buttonMask":3,"actions":[{"text":"b"}]}])";

TEST(ExplainCommand, TellsOfEachChangeWhatMatchesAndWhatComesOfIt) {
  EXPECT_EQ(
      Explained(kJumpAndRun, {R"("buttons":[1,2])", R"("buttons":[1])", R"("buttons":[])"}).out,
      std::string(kAtRest) +
          "     100 ms  B1+B2\n"
          "     100 ms    Control 2 fires: b\n"
          "     100 ms      b down\n"
          "     100 ms    Control 1 'Jump' matches, but is contained in Control 2\n"
          "     200 ms  B1\n"
          "     200 ms    Control 2 is let go\n"
          "     200 ms      b up\n"
          "     200 ms    Control 1 'Jump' fires: a\n"
          "     200 ms      a down\n"
          "     300 ms  (nothing)\n"
          "     300 ms    Control 1 'Jump' is let go\n"
          "     300 ms      a up\n");
}

TEST(ExplainCommand, PrintsJsonLines) {
  const std::string out =
      Explained(kJumpAndRun, {R"("buttons":[1,2])", R"("buttons":[])"}, {"--json"}).out;
  EXPECT_EQ(
      out,
      "{\"t\":5,\"event\":\"change\",\"inputs\":\"\"}\n"
      "{\"t\":100,\"event\":\"change\",\"inputs\":\"B1+B2\"}\n"
      "{\"t\":100,\"event\":\"control\",\"controlId\":2,\"verdict\":\"fires\",\"keys\":\"b\"}\n"
      "{\"t\":100,\"event\":\"key\",\"vk\":66,\"scan\":48,\"flags\":0}\n"
      "{\"t\":100,\"event\":\"control\",\"controlId\":1,\"verdict\":\"contained\",\"in\":2}\n"
      "{\"t\":200,\"event\":\"change\",\"inputs\":\"\"}\n"
      "{\"t\":200,\"event\":\"control\",\"controlId\":2,\"verdict\":\"ends\"}\n"
      "{\"t\":200,\"event\":\"key\",\"vk\":66,\"scan\":48,\"flags\":2}\n");
}

TEST(ExplainCommand, LeavesOutAChangeInWhichAllStaysAsItIs) {
  const std::string out = Explained(kJumpAndRun, {R"("buttons":[1])", R"("axes":{"Axis_X0":100})",
                                                  R"("axes":{"Axis_X0":200})", R"("buttons":[1,3])",
                                                  R"("buttons":[1])", R"("buttons":[])"})
                              .out;
  EXPECT_EQ(out, std::string(kAtRest) +
                     "     100 ms  B1\n"
                     "     100 ms    Control 1 'Jump' fires: a\n"
                     "     100 ms      a down\n"
                     "     200 ms  B1\n"
                     "     200 ms    Control 1 'Jump' is down already\n"
                     "     400 ms  B1+B3\n"
                     "     400 ms    Control 1 'Jump' is down already\n"
                     "     500 ms  B1\n"
                     "     500 ms    Control 1 'Jump' is down already\n"
                     "     600 ms  (nothing)\n"
                     "     600 ms    Control 1 'Jump' is let go\n"
                     "     600 ms      a up\n");
}

TEST(ExplainCommand, TellsWhatTheMouseControlsTake) {
  const std::string out =
      Explained(
          R"("mouse":{"leftButton":0,"leftMask":1,"mouseX":{"kind":0,"index":0}},"controls":[)"
          R"({"buttonMask":1,"actions":[{"text":"a"}]},)"
          R"({"triggerItems":[{"kind":0,"index":0,"value":2}],"actions":[{"text":"x"}]},)"
          R"({"buttonMask":4,"toggleMouseControls":true}])",
          {R"("buttons":[1],"axes":{"Axis_X0":32000})", R"("buttons":[3],"axes":{"Axis_X0":0})"},
          {"--mouse-active", "--until", "250"})
          .out;
  EXPECT_EQ(out,
            std::string(kAtRest) +
                "     100 ms  B1+Axis_X0(pos)\n"
                "     100 ms    the mouse controls take B1, which no Control sees\n"
                "     100 ms      left mouse button down\n"
                "     100 ms    Control 2 matches, but the mouse controls have an input of it\n"
                "     200 ms  B3\n"
                "     200 ms      left mouse button up\n"
                "     200 ms    Control 3 fires: -\n"
                "     200 ms    the mouse controls go off\n"
                "     250 ms    Control 3 is let go\n");
}

TEST(ExplainCommand, TellsOfAReleaseThatIsArmedAndOfOneThatIsSpoiled) {
  const std::string release =
      R"("controls":[{"buttonMask":3,"activateOnPress":false,"actions":[{"text":"a"}]}])";
  EXPECT_EQ(Explained(release, {R"("buttons":[1,2])", R"("buttons":[])"}).out,
            std::string(kAtRest) +
                "     100 ms  B1+B2\n"
                "     100 ms    Control 1 is armed: it fires when it is let go\n"
                "     200 ms  (nothing)\n"
                "     200 ms    Control 1 fires: a\n"
                "     200 ms      a down\n"
                "     200 ms      a up\n");
  EXPECT_EQ(Explained(release, {R"("buttons":[1,2])", R"("buttons":[1,3])", R"("buttons":[])"}).out,
            std::string(kAtRest) +
                "     100 ms  B1+B2\n"
                "     100 ms    Control 1 is armed: it fires when it is let go\n"
                "     200 ms  B1+B3\n"
                "     300 ms  (nothing)\n"
                "     300 ms    Control 1 doesn't fire, since another button was down while it was "
                "let go\n");
}

TEST(ExplainCommand, TellsWhoseRepeatIsLost) {
  const std::string out =
      Explained(R"("controls":[{"buttonMask":1,"repeatEnabled":true,"repeatDelay":40,)"
                R"("repeatSpeed":1000,"actions":[{"text":"a"}]},)"
                R"({"buttonMask":2,"repeatEnabled":true,"repeatDelay":5000,"actions":[]}])",
                {R"("buttons":[1])", R"("buttons":[1,2])", R"("buttons":[])"})
          .out;
  EXPECT_EQ(out, std::string(kAtRest) +
                     "     100 ms  B1\n"
                     "     100 ms    Control 1 fires: a\n"
                     "     100 ms      a down\n"
                     "     100 ms      a up\n"
                     "     140 ms    Control 1 repeats\n"
                     "     140 ms      a down\n"
                     "     140 ms      a up\n"
                     "     200 ms  B1+B2\n"
                     "     200 ms    Control 1 is down already\n"
                     "     200 ms    Control 2 fires: -\n"
                     "     200 ms    Control 1 repeats no more, since Control 2 does\n"
                     "     300 ms  (nothing)\n"
                     "     300 ms    Control 1 is let go\n"
                     "     300 ms    Control 2 is let go\n");
}

// The polls at 105 to 145 find the dispatch waiting; at 150 the timer comes before it goes on.
TEST(ExplainCommand, CountsThePollsThatASequenceKeepsOut) {
  const std::string controls = R"("controls":[{"buttonMask":1,"actions":[{"text":"a<P:50>b"}]}])";
  const std::string out = Explained(controls, {R"("buttons":[1])"}, {"--until", "160"}).out;
  EXPECT_EQ(out, std::string(kAtRest) +
                     "     100 ms  B1\n"
                     "     100 ms    Control 1 fires: a<P:50>b\n"
                     "     100 ms      a down\n"
                     "     100 ms      a up\n"
                     "     150 ms      b down\n"
                     "     150 ms    10 polls were left out while this went on\n"
                     "     160 ms    Control 1 is let go\n"
                     "     160 ms      b up\n");
  const std::string lines =
      Explained(controls, {R"("buttons":[1])"}, {"--until", "160", "--json"}).out;
  EXPECT_NE(lines.find("{\"t\":150,\"event\":\"lostPolls\",\"count\":10}\n"), std::string::npos)
      << lines;
}

// The sent events are those of a run, whoever listens.
TEST(ExplainCommand, ListeningChangesNothing) {
  const TestFile profile("profile", std::string("{") + kJumpAndRun + "}");
  const TestFile recording("recording",
                           Recorded({R"("buttons":[1])", R"("buttons":[1,2])", R"("buttons":[])"}));
  const std::string run =
      Kelvaroctl({"run", "--simulate", "--json", "--replay", recording.path, profile.path}).out;
  std::istringstream lines(
      Kelvaroctl({"explain", "--json", "--replay", recording.path, profile.path}).out);
  std::string sent;
  for (std::string line; std::getline(lines, line);) {
    if (tests::Parsed(line)["event"].Text() == "key") sent += line + "\n";
  }
  EXPECT_EQ(sent, run);
  EXPECT_EQ(std::count(run.begin(), run.end(), '\n'), 4);
}

TEST(TestCommand, TellsWhatWouldBeSentAndWhatIsSetForNothing) {
  const std::string out =
      Explained(kJumpAndRun,
                {R"("buttons":[1])", R"("buttons":[1,2])", R"("buttons":[])", R"("buttons":[4])"},
                {}, "test")
          .out;
  EXPECT_EQ(out, std::string(kAtRest) +
                     "     100 ms  B1\n"
                     "     100 ms    Control 1 'Jump' fires: a\n"
                     "     200 ms  B1+B2\n"
                     "     200 ms    Control 2 fires: b\n"
                     "     300 ms  (nothing)\n"
                     "     400 ms  B4\n"
                     "     400 ms    no Control has these inputs\n");
}

TEST(TestCommand, TellsWhatTheMouseControlsPress) {
  const std::string out =
      Explained(R"("mouse":{"leftMask":1,"mouseX":{"kind":0,"index":0},"mouseAlwaysActive":true},)"
                R"("controls":[{"buttonMask":4,"actions":[{"text":"<LMouse>"}]}])",
                {R"("buttons":[1])", R"("buttons":[])", R"("axes":{"Axis_X0":32000})",
                 R"("buttons":[3],"axes":{"Axis_X0":0})"},
                {}, "test")
          .out;
  EXPECT_EQ(out, std::string(kAtRest) +
                     "     100 ms  B1\n"
                     "     100 ms    the mouse controls take B1, which no Control sees\n"
                     "     100 ms      left mouse button down\n"
                     "     200 ms  (nothing)\n"
                     "     200 ms      left mouse button up\n"
                     "     300 ms  Axis_X0(pos)\n"
                     "     300 ms    no Control has these inputs; the mouse controls are on\n"
                     "     400 ms  B3\n"
                     "     400 ms    Control 1 fires: <LMouse>\n");
}

TEST(TestCommand, ADeviceThatIsNotThereIsNamed) {
  const TestFile profile("profile", std::string("{") + kJumpAndRun + "}");
  for (const char* command : {"test", "explain"}) {
    const Outcome outcome =
        Kelvaroctl({command, "--device", "A pad that nobody has", profile.path});
    EXPECT_EQ(outcome.status, 1) << command;
    EXPECT_EQ(outcome.out, "") << command;
    EXPECT_NE(outcome.err.find("there is no device 'A pad that nobody has'"), std::string::npos)
        << outcome.err;
  }
}

}  // namespace
}  // namespace kelvaro::console
