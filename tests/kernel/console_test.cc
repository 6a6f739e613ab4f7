// kelvaroctl as a person meets it on a real kernel: its start, its end, its complaints, and the
// commands that look at a pad.

#include <gtest/gtest.h>
#include <linux/input.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <map>

#include "tests/kernel/pad.h"
#include "tests/kernel/profile_run.h"
#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

class EndedBy : public ::testing::TestWithParam<int> {};

TEST_P(EndedBy, ASignalLetsGoOfEverything) {
  UinputPad pad(OrdinaryPad("Signal Pad"));
  ProfileRun run(
      ProfileOf({ButtonControl(0, "<Ctrl>a"), ButtonControl(1, "b")},
                "\"mouse\":{\"leftButton\":2,\"leftMask\":\"0x4\",\"mouseAlwaysActive\":true}"),
      "Signal Pad", pad.Node());
  ASSERT_TRUE(run.Started());
  pad.Press(0);
  WaitMs(30);
  pad.Press(1);
  WaitMs(30);
  pad.Press(2);
  EXPECT_TRUE(Sent(run.Mouse(), {"BTN_LEFT down"}));
  EXPECT_TRUE(Sent(run.Keyboard(), {"KEY_LEFTCTRL down", "KEY_A down", "KEY_B down"}));
  run.Process().Signal(GetParam());
  EXPECT_EQ(run.Process().WaitForEnd(5s), 0) << run.Process().Err();
  EXPECT_TRUE(Sent(run.Keyboard(), {"KEY_LEFTCTRL down", "KEY_A down", "KEY_B down",
                                    "KEY_LEFTCTRL up", "KEY_A up", "KEY_B up"}));
  EXPECT_TRUE(Sent(run.Mouse(), {"BTN_LEFT down", "BTN_LEFT up"}));
  // Nobody is left to send anything.
  EXPECT_EQ(FindInput([](const InputNode& node) { return node.name == kKeyboardName; }), "");
}

INSTANTIATE_TEST_SUITE_P(Signals, EndedBy, ::testing::Values(SIGINT, SIGTERM),
                         [](const testing::TestParamInfo<int>& info) {
                           return info.param == SIGINT ? "Interrupt" : "Terminate";
                         });

TEST(Runs, TwoAtOnceDontDisturbOneAnother) {
  UinputPad first(OrdinaryPad("First Pad", "test/port1"));
  UinputPad second(OrdinaryPad("Second Pad", "test/port2"));
  ProfileRun a(ProfileOf({ButtonControl(0, "a")}), "First Pad", first.Node());
  ASSERT_TRUE(a.Started());
  ProfileRun b(ProfileOf({ButtonControl(0, "b")}), "Second Pad", second.Node());
  ASSERT_TRUE(b.Started());
  first.Press(0);
  second.Press(0);
  EXPECT_TRUE(Sent(a.Keyboard(), {"KEY_A down"}));
  EXPECT_TRUE(Sent(b.Keyboard(), {"KEY_B down"}));
  b.Process().Signal(SIGTERM);
  EXPECT_EQ(b.Process().WaitForEnd(5s), 0);
  EXPECT_TRUE(Sent(b.Keyboard(), {"KEY_B down", "KEY_B up"}));
  first.Release(0);
  EXPECT_TRUE(Sent(a.Keyboard(), {"KEY_A down", "KEY_A up"}));
}

TEST(Runs, TwoOnOnePadBothGetIt) {
  UinputPad pad(OrdinaryPad("Shared Pad"));
  ProfileRun a(ProfileOf({ButtonControl(0, "a")}), "Shared Pad", pad.Node());
  ASSERT_TRUE(a.Started());
  ProfileRun b(ProfileOf({ButtonControl(0, "b")}), "Shared Pad", pad.Node());
  ASSERT_TRUE(b.Started());
  pad.Press(0);
  EXPECT_TRUE(Sent(a.Keyboard(), {"KEY_A down"}));
  EXPECT_TRUE(Sent(b.Keyboard(), {"KEY_B down"}));
}

// A run that fails at its start, and says all of that.
void ExpectRefused(const std::vector<std::string>& arguments, const std::vector<std::string>& said,
                   bool asNobody = false) {
  std::vector<std::string> command = {KelvaroctlPath(), "run"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  const Finished run = RunToEnd(command, {.asNobody = asNobody});
  EXPECT_EQ(run.status, 1) << run.out;
  EXPECT_EQ(run.err.rfind("kelvaroctl: ", 0), 0U) << run.err;
  for (const std::string& text : said) EXPECT_NE(run.err.find(text), std::string::npos) << run.err;
}

std::vector<std::string> OnDevice(const char* name) {
  return {"--device", name, WriteFile(ProfileOf({}))};
}

TEST(Runs, UnknownDeviceNameListsThoseThatAreThere) {
  UinputPad first(OrdinaryPad("First Pad", "test/port1"));
  UinputPad second(OrdinaryPad("Second Pad", "test/port2"));
  ExpectRefused(OnDevice("No Such Pad"), {"No Such Pad", "First Pad", "Second Pad"});
}

TEST(Runs, NoPadAtAllIsSaid) {
  ExpectRefused({WriteFile(ProfileOf({}))}, {"no game pad is plugged in"});
}

// Without the right to write to it, though the pad may be read.
TEST(Runs, ForbiddenUinputIsSaidWithWhatToDo) {
  UinputPad pad(OrdinaryPad("Open Pad"));
  ASSERT_EQ(chmod(pad.Node().c_str(), 0666), 0);
  ExpectRefused(OnDevice("Open Pad"), {"/dev/uinput", "60-kelvaro.rules"}, true);
}

TEST(Runs, MissingUinputIsSaidWithWhatToDo) {
  UinputPad pad(OrdinaryPad("Open Pad"));
  ASSERT_EQ(rename("/dev/uinput", "/dev/uinput.away"), 0);
  ExpectRefused(OnDevice("Open Pad"), {"uinput is not loaded", "modprobe uinput"});
  ASSERT_EQ(rename("/dev/uinput.away", "/dev/uinput"), 0);
}

TEST(Runs, UnreadablePadIsSaid) {
  UinputPad pad(OrdinaryPad("Closed Pad"));
  ASSERT_EQ(chmod(pad.Node().c_str(), 0600), 0);
  ASSERT_EQ(chmod("/dev/uinput", 0666), 0);
  ExpectRefused(OnDevice("Closed Pad"), {"Closed Pad"}, true);
  ASSERT_EQ(chmod("/dev/uinput", 0600), 0);
}

TEST(Runs, MalformedProfileNamesFileLineAndMember) {
  UinputPad pad(OrdinaryPad("Open Pad"));
  const std::string path =
      WriteFile("{\"controls\":[\n  {\"buttonMask\":\"0x1\"},\n  {\"buttonMask\":true}]}\n");
  ExpectRefused({path}, {path + ":3", "controls[1].buttonMask"});
}

TEST(Commands, DevicesListsNamesCountsAndIdentities) {
  PadShape box = OrdinaryPad("Second Pad", "test/port2");
  box.buttons = ManyButtons(24);
  box.axes.push_back({ABS_THROTTLE});
  box.hats = 0;
  UinputPad first(OrdinaryPad("First Pad", "test/port1"));
  UinputPad second(box);
  const std::vector<tests::Json> list = Devices();
  ASSERT_EQ(list.size(), 2U);
  const struct {
    const char* name;
    int buttons, axes, povs;
  } rows[] = {{"First Pad", 11, 6, 1}, {"Second Pad", 24, 7, 0}};
  for (int i = 0; i < 2; ++i) {
    const tests::Json& device = list[static_cast<std::size_t>(i)];
    EXPECT_EQ(device["index"].Signed(), i);
    EXPECT_EQ(device["name"].Text(), rows[i].name);
    EXPECT_EQ(device["buttons"].Signed(), rows[i].buttons);
    EXPECT_EQ(device["axes"].Signed(), rows[i].axes);
    EXPECT_EQ(device["povs"].Signed(), rows[i].povs);
    EXPECT_EQ(device["guid"].Text().size(), 32U);
  }
  EXPECT_NE(list[0]["guid"].Text(), list[1]["guid"].Text());
}

tests::Json DeviceAt(const std::string& node, const ChildOptions& options = {}) {
  for (const tests::Json& device : Devices(options)) {
    if (device["node"].Text() == node) return device;
  }
  ADD_FAILURE() << node << " isn't listed";
  return {};
}

TEST(Commands, DevicesTellsTwoEqualPadsApart) {
  UinputPad first(OrdinaryPad("Twin Pad", "test/port1"));
  UinputPad second(OrdinaryPad("Twin Pad", "test/port2"));
  ASSERT_NE(first.Node(), second.Node());
  EXPECT_EQ(DeviceAt(first.Node())["port"].Text(), "test/port1");
  EXPECT_EQ(DeviceAt(second.Node())["port"].Text(), "test/port2");
  const std::string text = RunToEnd({KelvaroctlPath(), "devices"}).out;
  EXPECT_NE(text.find("node " + first.Node() + ", port test/port1\n"), std::string::npos) << text;
  EXPECT_NE(text.find("node " + second.Node() + ", port test/port2\n"), std::string::npos) << text;
}

TEST(Commands, DevicesTellsTheSerialNumber) {
  UhidPad pad("Numbered Pad", "SN-0042");
  EXPECT_EQ(DeviceAt(pad.Node())["serial"].Text(), "SN-0042");
  const std::string text = RunToEnd({KelvaroctlPath(), "devices"}).out;
  EXPECT_NE(text.find(", serial SN-0042\n"), std::string::npos) << text;
}

TEST(Commands, DevicesMarksMirrors) {
  UinputPad pad(OrdinaryPad("Held Pad", "test/port1"));
  PadShape launchers = OrdinaryPad("Shown Pad", "test/port2");
  launchers.vendor = 0x28de;
  launchers.product = 0x11ff;
  UinputPad mirror(launchers);
  PadShape programs = OrdinaryPad("Made Pad", "test/port3");
  programs.bus = BUS_VIRTUAL;
  UinputPad made(programs);
  EXPECT_FALSE(DeviceAt(pad.Node())["mirror"].Bool());
  EXPECT_TRUE(DeviceAt(mirror.Node())["mirror"].Bool());
  EXPECT_TRUE(DeviceAt(made.Node())["mirror"].Bool());
  const std::vector<std::string> lines = Lines(RunToEnd({KelvaroctlPath(), "devices"}).out);
  ASSERT_EQ(lines.size(), 3U + 4U + 4U);
  EXPECT_EQ(lines[3 + 3].rfind("  mirror: ", 0), 0U) << lines[6];
  EXPECT_EQ(lines[7 + 3].rfind("  mirror: ", 0), 0U) << lines[10];
}

TEST(Commands, DevicesTellsWhoHasAPadOpen) {
  UinputPad pad(OrdinaryPad("Shared Pad"));
  EXPECT_EQ(DeviceAt(pad.Node())["openIn"].Elements().size(), 0U);
  ProfileRun run(ProfileOf({ButtonControl(0, "a")}), "Shared Pad", pad.Node());
  ASSERT_TRUE(run.Started());
  const tests::Json device = DeviceAt(pad.Node());
  EXPECT_FALSE(device["grabbed"].Bool());
  ASSERT_EQ(device["openIn"].Elements().size(), 1U);
  EXPECT_EQ(device["openIn"][0]["pid"].Signed(), run.Process().Id());
  const std::string name = tests::NameOf(run.Process().Id());  // that of the copy which runs here
  EXPECT_EQ(device["openIn"][0]["program"].Text(), name);
  const std::string text = RunToEnd({KelvaroctlPath(), "devices"}).out;
  EXPECT_NE(text.find("  also open in " + name + " (" + std::to_string(run.Process().Id()) + ")\n"),
            std::string::npos)
      << text;
  // Readers of the pad still get what it says.
  pad.Press(0);
  EXPECT_TRUE(Sent(run.Keyboard(), {"KEY_A down"}));
}

TEST(Commands, DevicesTellsOfAGrabAndOfWhoMayHaveDoneIt) {
  UinputPad pad(OrdinaryPad("Taken Pad"));
  ASSERT_EQ(chmod(pad.Node().c_str(), 0666), 0);
  const Reader grabs(pad.Node());
  const tests::Json device = DeviceAt(pad.Node());
  EXPECT_TRUE(device["grabbed"].Bool());
  ASSERT_EQ(device["openIn"].Elements().size(), 1U);
  EXPECT_EQ(device["openIn"][0]["pid"].Signed(), getpid());
  const std::string text = RunToEnd({KelvaroctlPath(), "devices"}).out;
  EXPECT_NE(text.find("  grabbed: only another program gets what it says; it is open in "),
            std::string::npos)
      << text;

  // Another user's programs can't be looked into.
  const tests::Json seen = DeviceAt(pad.Node(), {.asNobody = true});
  EXPECT_TRUE(seen["grabbed"].Bool());
  EXPECT_EQ(seen["openIn"].Elements().size(), 0U);
  const std::string unseen = RunToEnd({KelvaroctlPath(), "devices"}, {.asNobody = true}).out;
  EXPECT_NE(unseen.find("doesn't tell this user which one\n"), std::string::npos) << unseen;
}

// The virtual devices of a run are no game pads, and neither is anything else of the machine.
TEST(Commands, DevicesListsGamePadsOnly) {
  UinputPad pad(OrdinaryPad("Only Pad"));
  ProfileRun run(ProfileOf({}), "Only Pad", pad.Node());
  ASSERT_TRUE(run.Started());
  EXPECT_EQ(Devices().size(), 1U);
}

// What the doctor says of the pad at that node.
tests::Json DoctorsRemark(const std::string& node, const ChildOptions& options = {}) {
  const Finished doctor = RunToEnd({KelvaroctlPath(), "doctor", "--json"}, options);
  for (const std::string& line : Lines(doctor.out)) {
    const tests::Json remark = tests::Parsed(line);
    const std::string what = remark["what"].Text();
    if (remark["topic"].Text() == "pad" && what.find(node + " ") != std::string::npos)
      return remark;
  }
  ADD_FAILURE() << node << " isn't told of: " << doctor.out << doctor.err;
  return {};
}

TEST(Commands, DoctorTellsOfAPadThatCantBeRead) {
  UinputPad pad(OrdinaryPad("Closed Pad"));
  ASSERT_EQ(chmod(pad.Node().c_str(), 0600), 0);
  EXPECT_EQ(DoctorsRemark(pad.Node())["state"].Text(), "good");
  const tests::Json remark = DoctorsRemark(pad.Node(), {.asNobody = true});
  EXPECT_EQ(remark["state"].Text(), "bad");
  EXPECT_EQ(remark["what"].Text(),
            "'Closed Pad' at " + pad.Node() + " can't be read: Permission denied");
}

TEST(Commands, DoctorTellsOfAGrab) {
  UinputPad pad(OrdinaryPad("Taken Pad"));
  const Reader grabs(pad.Node());
  const tests::Json remark = DoctorsRemark(pad.Node());
  EXPECT_EQ(remark["state"].Text(), "bad");
  EXPECT_NE(remark["what"].Text().find("is grabbed; open in "), std::string::npos)
      << remark["what"].Text();
}

TEST(Commands, WatchPrintsWhatIsHeld) {
  UinputPad pad(OrdinaryPad("Watched Pad"));
  Child watch({KelvaroctlPath(), "watch", "--json", "Watched Pad"});
  ASSERT_TRUE(Polls(watch, pad.Node()));
  pad.Press(0);
  WaitMs(50);
  pad.Press(3);
  WaitMs(50);
  pad.TurnHat(0, 27000);
  WaitMs(50);
  pad.Move(ABS_Y, -32000);
  WaitMs(50);
  pad.Release(0);
  WaitMs(50);
  watch.Signal(SIGINT);
  EXPECT_EQ(watch.WaitForEnd(5s), 0) << watch.Err();
  std::vector<std::string> texts;
  for (const tests::Json& line : tests::ParsedLines(watch.Out())) {
    texts.push_back(line["text"].Text());
  }
  EXPECT_TRUE(SameColumns({"", "B1", "B1+B4", "B1+B4+POV0(left)", "B1+B4+POV0(left)+Axis_Y0(neg)",
                           "B4+POV0(left)+Axis_Y0(neg)"},
                          texts));
}

TEST(Commands, TestTellsWhatAPadWouldSendAndSendsNothing) {
  UinputPad pad(OrdinaryPad("Tried Pad"));
  Child test({KelvaroctlPath(), "test", "--device", "Tried",
              WriteFile(ProfileOf({ButtonControl(0, "a"), ButtonControl(1, "b")}))});
  ASSERT_TRUE(Polls(test, pad.Node()));
  pad.Press(0);
  WaitMs(50);
  EXPECT_EQ(FindInput([](const InputNode& node) { return node.name == kKeyboardName; }), "");
  pad.Release(0);
  WaitMs(50);
  pad.Press(5);
  WaitMs(50);
  test.Signal(SIGINT);
  EXPECT_EQ(test.WaitForEnd(5s), 0) << test.Err();
  std::vector<std::string> told;
  for (const std::string& line : Lines(test.Out())) {
    const std::size_t behindTime = line.find(" ms  ");
    ASSERT_NE(behindTime, std::string::npos) << line;
    told.push_back(line.substr(behindTime + 5));
  }
  EXPECT_TRUE(SameColumns({"(nothing)", "B1", "  Control 1 fires: a", "(nothing)", "B6",
                           "  no Control has these inputs"},
                          told));
}

TEST(Commands, ExplainTellsHowManyPollsOfAPadASequenceKeptOut) {
  UinputPad pad(OrdinaryPad("Slow Pad"));
  Child explain({KelvaroctlPath(), "explain", "--json",
                 WriteFile(ProfileOf({ButtonControl(0, "a<P:200>b")}))});
  ASSERT_TRUE(Polls(explain, pad.Node()));
  pad.Press(0);
  WaitMs(300);
  explain.Signal(SIGINT);
  EXPECT_EQ(explain.WaitForEnd(5s), 0) << explain.Err();
  std::vector<std::string> told;
  std::int64_t lost = 0;
  for (const tests::Json& line : tests::ParsedLines(explain.Out())) {
    const std::string event = line["event"].Text();
    told.push_back(event == "control" ? line["verdict"].Text() : event);
    if (event == "lostPolls") lost = line["count"].Signed().value();
  }
  EXPECT_TRUE(SameColumns(
      {"change", "change", "fires", "key", "key", "key", "lostPolls", "ends", "key"}, told));
  EXPECT_NEAR(lost, 40, 3);  // one each 5 ms
}

TEST(Commands, RecordWritesWhatHappensWithItsTimes) {
  UinputPad pad(OrdinaryPad("Recorded Pad"));
  Child record({KelvaroctlPath(), "record", "Recorded Pad"});
  ASSERT_TRUE(Polls(record, pad.Node()));
  pad.Press(0);
  WaitMs(100);
  pad.Press(3);
  WaitMs(100);
  pad.Move(ABS_X, 12345);
  WaitMs(100);
  pad.TurnHat(0, 9000);
  WaitMs(100);
  pad.Release(0);
  WaitMs(50);
  record.Signal(SIGINT);
  EXPECT_EQ(record.WaitForEnd(5s), 0) << record.Err();
  const std::vector<tests::Json> lines = tests::ParsedLines(record.Out());
  ASSERT_EQ(lines.size(), 6U) << record.Out();
  EXPECT_EQ(lines[0]["recording"].Signed(), 1);
  EXPECT_EQ(lines[0]["device"].Text(), "Recorded Pad");
  EXPECT_EQ(lines[0]["buttons"].Signed(), 11);
  EXPECT_EQ(lines[0]["axes"].Signed(), 6);
  EXPECT_EQ(lines[0]["povs"].Signed(), 1);
  EXPECT_TRUE(Lines(record.Out())[1].ends_with("\"buttons\":[1]}")) << record.Out();
  EXPECT_TRUE(Lines(record.Out())[2].ends_with("\"buttons\":[1,4]}")) << record.Out();
  EXPECT_EQ(lines[3]["axes"]["Axis_X0"].Signed(), 12345);
  EXPECT_EQ(lines[4]["povs"]["POV0"].Signed(), 9000);
  EXPECT_EQ(lines[5]["buttons"].Elements().size(), 1U);
  for (std::size_t i = 2; i < lines.size(); ++i) {
    EXPECT_NEAR(lines[i]["t"].Real() - lines[i - 1]["t"].Real(), 100, 7) << i;
  }

  // What was recorded can be played: B1 and then B4 come out as keys again.
  const Finished replay =
      RunToEnd({KelvaroctlPath(), "run", "--simulate", "--json", "--replay",
                WriteFile(record.Out()), WriteFile(ProfileOf({ButtonControl(3, "a")}))});
  EXPECT_EQ(replay.status, 0) << replay.err;
  const std::vector<tests::Json> sent = tests::ParsedLines(replay.out);
  ASSERT_EQ(sent.size(), 2U) << replay.out;
  EXPECT_EQ(sent[0]["vk"].Signed(), 'A');
}

// Whether the child comes to say this on its standard error.
bool Says(const Child& child, const std::string& text) {
  return Eventually([&] { return child.Err().find(text) != std::string::npos; }, 60000);
}

TEST(Commands, TuneWatchesAPadForAMinute) {
  UinputPad pad(OrdinaryPad("Tuned Pad"));
  Child tune({KelvaroctlPath(), "tune", "--json", "Tuned"});
  ASSERT_TRUE(Says(tune, "Put the pad down")) << tune.Err();
  pad.Move(ABS_X, 2000);
  ASSERT_TRUE(Says(tune, "Turn each stick")) << tune.Err();
  for (const unsigned int axis : {ABS_X, ABS_Y}) {
    pad.Move(axis, 32000);
    WaitMs(100);
    pad.Move(axis, -32000);
    WaitMs(100);
    pad.Move(axis, 2000);
    WaitMs(100);
  }
  for (int i = 0; i < 30; ++i) {
    pad.Move(ABS_X, 2000 + 100 * (i % 2));
    WaitMs(8);
  }
  ASSERT_TRUE(Says(tune, "Press each button")) << tune.Err();
  EXPECT_NE(tune.Err().find("2 axes moved, 0 buttons pressed"), std::string::npos) << tune.Err();
  for (const int pause : {10, 200}) {  // the first one is no finger's
    pad.Press(2);
    WaitMs(100);
    pad.Release(2);
    WaitMs(pause);
  }
  ASSERT_EQ(tune.WaitForEnd(60s), 0) << tune.Err();

  std::map<std::string, std::vector<tests::Json>> told;
  for (const tests::Json& line : tests::ParsedLines(tune.Out())) {
    told[line["topic"].Text()].push_back(line);
  }
  ASSERT_EQ(told["pad"].size(), 1U) << tune.Out();
  EXPECT_EQ(told["pad"][0]["name"].Text(), "Tuned Pad");
  EXPECT_NEAR(told["pad"][0]["interval"].Real(), 8, 2);
  ASSERT_EQ(told["axis"].size(), 2U) << tune.Out();
  const tests::Json& x = told["axis"][0];
  EXPECT_EQ(x["axis"].Text(), "Axis_X0");
  EXPECT_EQ(x["rest"].Signed(), 2000);
  EXPECT_EQ(x["from"].Signed(), -32000);
  EXPECT_EQ(x["to"].Signed(), 32000);
  ASSERT_EQ(told["button"].size(), 1U) << tune.Out();
  EXPECT_EQ(told["button"][0]["button"].Signed(), 3);
  EXPECT_EQ(told["button"][0]["presses"].Signed(), 2);
  EXPECT_EQ(told["button"][0]["bounces"].Signed(), 1);
  // X rests at 2000, and it came back to 2100: 2625 take 9 percent, which hold 2879.
  ASSERT_EQ(told["proposal"].size(), 2U) << tune.Out();
  EXPECT_EQ(told["proposal"][0]["value"].Signed(), 9);
}

TEST(Commands, TuneThatIsBrokenOffProposesNothing) {
  UinputPad pad(OrdinaryPad("Tuned Pad"));
  for (const int signal : {SIGINT, SIGKILL}) {
    Child tune({KelvaroctlPath(), "tune"});
    ASSERT_TRUE(Says(tune, "Put the pad down")) << tune.Err();
    tune.Signal(signal);
    EXPECT_EQ(tune.WaitForEnd(5s), 128 + signal) << tune.Err();
    EXPECT_EQ(tune.Out(), "");
  }
}

TEST(Commands, PlaySendsTheKeysOfATextAfterItsCountdown) {
  const std::int64_t begin = NowUs();
  Child play({KelvaroctlPath(), "play", "--json", "--release-after", "100", "<Shift>a<VolUp>"});
  const auto reader = KeyboardOf(play);
  ASSERT_NE(reader, nullptr);
  EXPECT_EQ(play.WaitForEnd(8s), 0) << play.Err();
  ASSERT_TRUE(Sent(*reader, {"KEY_LEFTSHIFT down", "KEY_A down", "KEY_A up", "KEY_LEFTSHIFT up",
                             "KEY_VOLUMEUP down", "KEY_VOLUMEUP up"}));
  const std::vector<KernelEvent> events = reader->Events();
  EXPECT_GE(events[0].us - begin, 3000000);
  EXPECT_NEAR(static_cast<double>(events[5].us - events[4].us), 100000, 10000);
  EXPECT_EQ(tests::ParsedLines(play.Out()).size(), 6U) << play.Out();
}

TEST(Commands, ASignalBreaksPlayOffAndLetsGo) {
  for (const int signal : {SIGINT, SIGTERM}) {
    Child play({KelvaroctlPath(), "play", "--hold-all", "<LShift>a<P:60000>b"});
    const auto reader = KeyboardOf(play);
    ASSERT_NE(reader, nullptr);
    ASSERT_TRUE(reader->WaitFor(2, 8000)) << play.Err();
    play.Signal(signal);
    EXPECT_EQ(play.WaitForEnd(5s), 128 + signal) << play.Err();
    EXPECT_TRUE(
        Sent(*reader, {"KEY_LEFTSHIFT down", "KEY_A down", "KEY_LEFTSHIFT up", "KEY_A up"}));
  }
}

TEST(Commands, RecordingPlayedForRealComesOutOfTheVirtualKeyboard) {
  const std::string recording = WriteFile(
      "{\"recording\":1,\"device\":\"Any\",\"guid\":\"000102030405060708090a0b0c0d0e0f\","
      "\"buttons\":11,\"axes\":2,\"povs\":1}\n"
      "{\"t\":400,\"buttons\":[1]}\n{\"t\":500,\"buttons\":[]}\n");
  Child run({KelvaroctlPath(), "run", "--replay", recording,
             WriteFile(ProfileOf({ButtonControl(0, "a")}))});
  const auto reader = KeyboardOf(run);
  ASSERT_NE(reader, nullptr);
  EXPECT_EQ(run.WaitForEnd(5s), 0) << run.Err();
  ASSERT_TRUE(Sent(*reader, {"KEY_A down", "KEY_A up"}));
  const std::vector<KernelEvent> events = reader->Events();
  EXPECT_NEAR(static_cast<double>(events[1].us - events[0].us), 100000, 10000);
}

}  // namespace
}  // namespace kelvaro::kernel
