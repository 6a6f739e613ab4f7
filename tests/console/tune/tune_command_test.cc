// Recordings of a minute each, with the numbers worked out by hand. A damper of d percent holds
// 320 d - 1 (0 for 0) of 32000, and a sensitivity of s makes an axis at r of its way move
// r + r r (s + 2) / 5 counts a poll.
#include <sstream>

#include "console/tune/pad_study.h"
#include "tests/console/stored_profiles.h"

namespace kelvaro::console {
namespace {

std::string At(int t, const std::string& members) {
  return "{\"t\":" + std::to_string(t) + "," + members + "}\n";
}
std::string Axis(int t, const std::string& name, int value) {
  return At(t, "\"axes\":{\"" + name + "\":" + std::to_string(value) + "}");
}
std::string Buttons(int t, const std::string& held) { return At(t, "\"buttons\":[" + held + "]"); }

// Both axes of a stick to their ends and back.
std::string Turns(int end, int back = 0) {
  return Axis(12000, "Axis_X0", end) + Axis(13000, "Axis_X0", -end) + Axis(14000, "Axis_X0", back) +
         Axis(15000, "Axis_Y0", end) + Axis(16000, "Axis_Y0", -end) + Axis(17000, "Axis_Y0", 0);
}
std::string Presses() {
  return Buttons(41000, "1") + Buttons(41100, "") + Buttons(42000, "1,2") + Buttons(42100, "");
}
const std::string kEnd = Buttons(60000, "");

Outcome Tuned(const std::string& lines, std::vector<std::string> options = {"--json"}) {
  const TestFile recording("recording", kPad + lines);
  options.insert(options.begin(), {"tune", "--replay", recording.path});
  return Kelvaroctl(options);
}

// The lines of that topic, without it.
std::vector<std::string> Of(const std::string& topic, const std::string& out) {
  const std::string begin = "{\"topic\":\"" + topic + "\",";
  std::vector<std::string> lines;
  std::istringstream in(out);
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with(begin)) lines.push_back("{" + line.substr(begin.size()));
  }
  return lines;
}

using Texts = std::vector<std::string>;

// A quarter more than 64 is 80, which 1 % holds. The ends are full ones, so that the present
// sensitivity will do.
std::string Clean() {
  std::string lines = Axis(5, "Axis_X0", 0);
  for (int t = 1000; t < 10000; t += 1000) {
    lines += Axis(t, "Axis_X0", 0) + Axis(t + 500, "Axis_X0", 64);
  }
  return lines + Axis(10000, "Axis_X0", 0) + Turns(32000) + Presses() + kEnd;
}

TEST(TuneCommand, OfACleanPadThereIsLittleToSay) {
  const Outcome outcome = Tuned(Clean());
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.out,
            R"({"topic":"pad","name":"Test Pad","buttons":11,"axes":6,"interval":null})"
            "\n"
            R"({"topic":"axis","axis":"Axis_X0","rest":32,"noise":64,"drift":0,"furthest":64,)"
            R"("returned":0,"from":-32000,"to":32000,"damper":1})"
            "\n"
            R"({"topic":"axis","axis":"Axis_Y0","rest":0,"noise":0,"drift":0,"furthest":0,)"
            R"("returned":0,"from":-32000,"to":32000,"damper":0})"
            "\n"
            R"({"topic":"button","button":1,"presses":2,"bounces":0})"
            "\n"
            R"({"topic":"button","button":2,"presses":1,"bounces":0})"
            "\n"
            R"({"topic":"proposal","setting":"movementDamper","value":1,"was":5,"lack":""})"
            "\n"
            R"({"topic":"proposal","setting":"movementSensitivity","value":15,"was":15,"lack":""})"
            "\n");
  EXPECT_EQ(Tuned(Clean(), {}).out,
            "Test Pad\n"
            "  Axis     at rest  noise  drift  from      to       damper\n"
            "  Axis_X0  0.1 %    0.2 %  0.0 %  -100.0 %  100.0 %  1 %\n"
            "  Axis_Y0  0.0 %    0.0 %  0.0 %  -100.0 %  100.0 %  0 %\n"
            "  Presses  B1: 2, B2: 1; 2 of 11 buttons, and 2 of 6 axes, were seen\n"
            "  Proposed                  now\n"
            "  Movement Axis Damper  1   5\n"
            "  Movement Sensitivity  15  15\n");
}

// At rest it goes from 100 to 900; once it was turned it stops at 2500, and 3125 take 10 %. What
// it does in a few seconds of many, as buttons are pressed, doesn't count: neither the most nor the
// least. Nor does the first second, in which the pad is put down.
TEST(TuneCommand, ADriftingPadNeedsADamperForWhereItStops) {
  std::string lines = Axis(5, "Axis_X0", -9000);
  for (int s = 1; s < 10; ++s) lines += Axis(s * 1000, "Axis_X0", s * 100);
  lines += Turns(32000, 2500) + Presses() + Axis(45000, "Axis_X0", 20000) +
           Axis(46000, "Axis_X0", 0) + Axis(47000, "Axis_X0", 2500) + kEnd;
  const std::string out = Tuned(lines).out;
  EXPECT_EQ(Of("axis", out).at(0),
            R"({"axis":"Axis_X0","rest":500,"noise":0,"drift":800,"furthest":900,)"
            R"("returned":2500,"from":-32000,"to":32000,"damper":10})");
  EXPECT_EQ(
      Of("note", out),
      Texts({R"({"what":"Axis_X0 drifts while nobody touches it, by 2.5 %"})",
             R"({"what":"Axis_X0 comes to rest elsewhere once it was moved, off by 6.3 %"})"}));
  EXPECT_EQ(Of("proposal", out).at(0),
            R"({"setting":"movementDamper","value":10,"was":5,"lack":""})");
}

TEST(TuneCommand, AnAxisThatRestsOffItsCentreIsTold) {
  const std::string out = Tuned(Axis(5, "Axis_X0", 4000) + Turns(32000, 4000) + kEnd).out;
  EXPECT_EQ(Of("note", out), Texts({R"({"what":"Axis_X0 rests off its centre, by 12.5 %"})"}));
  // 5000; 15 % are 4799, 16 % are 5119.
  EXPECT_EQ(Of("proposal", out).at(0),
            R"({"setting":"movementDamper","value":16,"was":5,"lack":""})");
  // 16250 is more than 50 %, 15999.
  const std::string far = Tuned(Axis(5, "Axis_X0", 13000) + Turns(32000, 13000) + kEnd).out;
  EXPECT_EQ(Of("proposal", far).at(0), R"({"setting":"movementDamper","value":50,"was":5,)"
                                       R"("lack":"Axis_X0 rests beyond what it holds"})");
}

// A trigger rests at an end, which isn't off its centre, and moves no pointer.
TEST(TuneCommand, AnAxisThatRestsAtAnEndIsATrigger) {
  const std::string out =
      Tuned(Axis(5, "Axis_Z0", -32000) + Turns(32000) + Axis(20000, "Axis_Z0", 32000) +
            Axis(21000, "Axis_Z0", -32000) + kEnd)
          .out;
  EXPECT_EQ(Of("note", out), Texts());
  EXPECT_EQ(Of("proposal", out).at(0),
            R"({"setting":"movementDamper","value":0,"was":5,"lack":""})");
}

TEST(TuneCommand, AStickThatStopsShortGetsMoreSensitivity) {
  // r = 3/4: 0.75 + 0.5625 g is 3.9 for g = 5.6, a sensitivity of 26, and 4.0125 for 27. A full
  // end moves 1 + 3.4, which is 4 counts.
  const std::string short1 = Tuned(Turns(24000) + kEnd).out;
  EXPECT_EQ(Of("proposal", short1).at(1),
            R"({"setting":"movementSensitivity","value":27,"was":15,"lack":""})");
  EXPECT_EQ(Of("note", short1), Texts({R"({"what":"Axis_X0 reaches -75.0 % to 75.0 % only"})",
                                       R"({"what":"Axis_Y0 reaches -75.0 % to 75.0 % only"})"}));
  // r = 1/2: 0.5 + 0.25 * 10.4 = 3.1 at the most.
  EXPECT_EQ(Of("proposal", Tuned(Turns(16000) + kEnd).out).at(1),
            R"({"setting":"movementSensitivity","value":50,"was":15,)"
            R"("lack":"the pad reaches 50.0 %, which moves 3 of 4 counts"})");
}

TEST(TuneCommand, AButtonThatBouncesIsTold) {
  const std::string out =
      Tuned(Turns(32000) + Buttons(41000, "3") + Buttons(41100, "") + Buttons(41110, "3") +
            Buttons(41120, "") + Buttons(41145, "3") + Buttons(41300, "") + Buttons(41326, "3") +
            Buttons(41400, "") + kEnd)
          .out;
  // 10 and 25 ms after it was let go, and 26.
  EXPECT_EQ(Of("button", out), Texts({R"({"button":3,"presses":4,"bounces":2})"}));
  EXPECT_EQ(Of("note", out), Texts({R"({"what":"B3 bounces: of 4 presses 2 came within 25 ms of )"
                                    R"(its being let go"})"}));
}

// 40 reports, 8 ms from one to the next, and a pause that is none.
TEST(TuneCommand, TellsHowOftenReportsCome) {
  std::string lines = Turns(32000);
  for (int i = 0; i < 20; ++i) lines += Axis(20000 + 8 * i, "Axis_X0", 1000 + i);
  for (int i = 0; i < 20; ++i) lines += Axis(21000 + 8 * i, "Axis_X0", 2000 + i);
  EXPECT_EQ(Of("pad", Tuned(lines + kEnd).out),
            Texts({R"({"name":"Test Pad","buttons":11,"axes":6,"interval":8.0})"}));
  EXPECT_TRUE(Tuned(lines + kEnd, {}).out.starts_with("Test Pad, a report each 8.0 ms\n"));
}

// While the device doesn't answer nothing is seen of it.
TEST(TuneCommand, WhatALostPadDoesIsNotSeen) {
  const std::string out = Tuned(Turns(32000) + At(50000, "\"lost\":true") + Buttons(51000, "5") +
                                At(52000, "\"buttons\":[],\"lost\":false") + kEnd)
                              .out;
  EXPECT_EQ(Of("button", out), Texts());
}

TEST(TuneCommand, ARecordingWithoutRestIsTooShort) {
  const Outcome outcome = Tuned(Axis(5, "Axis_X0", 0) + Axis(3999, "Axis_X0", 5));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("too short"), std::string::npos) << outcome.err;
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(Tuned(Axis(5, "Axis_X0", 0) + Axis(4000, "Axis_X0", 5)).status, 0);
}

class TuneProfile : public StoredProfiles {
 protected:
  const std::string path = Store(
      "Walk.idprof", R"({"profileName":"Walk","mouse":{"movementSensitivity":15,"wheelDamper":7,)"
                     R"("mouseX":{"kind":0,"index":0},"mouseWheel":{"kind":1,"index":0}},)"
                     R"("controls":[{"buttonMask":1,"actions":[{"text":"a"}]}]})");
  const std::string before = Shown();

  static std::string Shown() { return Kelvaroctl({"show", "--json", "Walk"}).out; }
  static Outcome Applied(std::vector<std::string> options) {
    options.insert(options.begin(), {"--apply", "Walk"});
    std::string lines = Axis(5, "Axis_X0", 4000) + Axis(5, "Axis_Y0", -400);
    return Tuned(lines + Turns(32000, 4000) + kEnd, options);
  }
};

// X alone moves the pointer, Y turns the wheel: 500 take 2 %.
TEST_F(TuneProfile, YesWritesWhatIsProposedForTheAxesOfTheProfile) {
  const Outcome outcome = Applied({"--yes"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_NE(outcome.out.find("Mouse Wheel Axis Damper  2   7\n"), std::string::npos) << outcome.out;
  EXPECT_NE(outcome.out.find("  Written into " + path + "\n"), std::string::npos) << outcome.out;
  std::string expected = before;
  const auto set = [&expected](const std::string& from, const std::string& to) {
    const std::size_t at = expected.find(from);
    ASSERT_NE(at, std::string::npos) << from;
    expected.replace(at, from.size(), to);
  };
  set("\"movementDamper\":5", "\"movementDamper\":16");
  set("\"wheelDamper\":7", "\"wheelDamper\":2");
  EXPECT_EQ(Shown(), expected);
}

TEST_F(TuneProfile, OnlyAYesWrites) {
  {
    const StandardInput answer("y\n");
    const Outcome outcome = Applied({});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "Write what is proposed into " + path + "? [y/N] ");
  }
  EXPECT_NE(Shown(), before);
}

TEST_F(TuneProfile, NothingIsWrittenWithoutAYes) {
  for (const char* no : {"n\n", "\n", "maybe y\n"}) {
    const StandardInput answer(no);
    const Outcome outcome = Applied({});
    EXPECT_EQ(outcome.status, 0) << no;
    EXPECT_TRUE(outcome.err.ends_with("Nothing was written.\n")) << outcome.err;
  }
  {
    const StandardInput answer("");
    const Outcome outcome = Applied({"--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find("--yes"), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.out.find("written"), std::string::npos) << outcome.out;
  }
  EXPECT_EQ(Shown(), before);
  EXPECT_FALSE(std::filesystem::exists(path + ".tmp"));
}

TEST_F(TuneProfile, WhatCantBeWrittenIsSaidBeforeThePadIsWatched) {
  const TestFile json("mine.json", "{}");
  const Outcome outcome = Kelvaroctl({"tune", "--apply", json.path, "--yes"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("kelvaroctl pack"), std::string::npos) << outcome.err;
  EXPECT_EQ(Kelvaroctl({"tune", "--apply", "no such profile"}).status, 1);
  EXPECT_EQ(Kelvaroctl({"tune", "--yes"}).status, 2);
  EXPECT_EQ(Kelvaroctl({"tune", "Pad", "--replay", "x"}).status, 2);
}

TEST_F(TuneProfile, AProfileWithoutAPointerIsLeftAlone) {
  const std::string plain = Store("Plain.idprof", R"({"profileName":"Plain"})");
  const Outcome outcome = Tuned(Clean(), {"--apply", "Plain", "--yes"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("nothing to write"), std::string::npos) << outcome.err;
}

}  // namespace
}  // namespace kelvaro::console
