
#include <memory>
#include <regex>

#include "tests/console/stored_profiles.h"
#include "tests/host/json.h"

namespace kelvaro::console {
namespace {

namespace fs = std::filesystem;

// A whole number, as it is written.
std::string Digits(const tests::Json& number) { return std::to_string(number.Signed().value()); }

// "B1 = a, held" and what else isn't as usual.
std::string LineOf(const tests::Json& control) {
  std::string line = control["triggerText"].Text() + " =";
  for (const tests::Json& action : control["actions"].Elements()) {
    line += " " + action["text"].Text();
    if (action["actionFlags"].Unsigned() == 1) line += ", held";
  }
  if (control["repeatEnabled"].Bool()) {
    line += ", every " + Digits(control["repeatDelay"]) + "/" + Digits(control["repeatSpeed"]);
  }
  if (control["keyHoldTime"].Unsigned() != 0) line += ", taps " + Digits(control["keyHoldTime"]);
  if (!control["activateOnPress"].Bool()) line += ", let go";
  if (!control["description"].Text().empty()) line += ", " + control["description"].Text();
  return line + "\n";
}

// What becomes of a file: its Controls, mouse settings, and the notes.
struct Imported {
  Outcome outcome;
  tests::Json profile;
  std::string controls;  // a line each
  std::string notes;     // "line:column kind what", a line each

  std::string Mouse(const char* name) const {
    const tests::Json& input = profile["mouse"][name];
    return Digits(input["kind"]) + "," + Digits(input["index"]);
  }
};

Imported Import(const std::string& content, std::vector<std::string> options = {},
                const std::string& fileName = "in") {
  const TestFile in(fileName, content);
  const tests::TemporaryFolder folder;
  const std::string out = folder.In("out.idprof");
  options.insert(options.begin(), {"import", "--json", in.path, out});
  Imported imported;
  imported.outcome = Kelvaroctl(options);
  if (imported.outcome.status != 0) {
    EXPECT_FALSE(fs::exists(out)) << content;
    return imported;
  }
  const tests::Json report = tests::Parsed(imported.outcome.out);
  EXPECT_EQ(report["file"].Text(), in.path);
  EXPECT_EQ(report["profile"].Text(), out);
  for (const tests::Json& note : report["notes"].Elements()) {
    imported.notes += Digits(note["line"]) + ":" + Digits(note["column"]) + " " +
                      note["kind"].Text() + " " + note["what"].Text() + "\n";
  }
  imported.profile = tests::Parsed(Kelvaroctl({"show", "--json", out}).out);
  EXPECT_EQ(report["profileName"].Text(), imported.profile["profileName"].Text());
  EXPECT_EQ(report["controls"].Unsigned(), imported.profile["controls"].Elements().size());
  for (const tests::Json& control : imported.profile["controls"].Elements()) {
    imported.controls += LineOf(control);
  }
  return imported;
}

// A layout whose entries begin on its second line.
std::string Layout(const std::string& entries) { return "Joystick 1 {\n" + entries + "\n}\n"; }

// A profile whose inputs begin on its fourth line.
std::string Set(const std::string& inputs, const std::string& root = "joystick") {
  return "<" + root + ">\n<sets>\n<set index=\"1\">\n" + inputs + "\n</set>\n</sets>\n</" + root +
         ">\n";
}
std::string Slot(const std::string& mode, const std::string& code) {
  return "<slot><code>" + code + "</code><mode>" + mode + "</mode></slot>";
}
std::string Key(const std::string& code) { return Slot("keyboard", code); }
std::string Slots(const std::string& slots) { return "<slots>" + slots + "</slots>"; }
// Button 1 of a joystick.
std::string Button(const std::string& inside) {
  return Set("<button index=\"1\">" + inside + "</button>");
}

struct Case {
  const char* why;
  std::string content;
  const char* controls;
  const char* notes = "";
};

void Expect(const std::vector<Case>& cases, const std::vector<std::string>& options = {}) {
  for (const Case& c : cases) {
    const Imported imported = Import(c.content, options);
    EXPECT_EQ(imported.outcome.status, 0) << c.why << ": " << imported.outcome.err;
    EXPECT_EQ(imported.outcome.err, "") << c.why;
    EXPECT_EQ(imported.controls, c.controls) << c.why;
    EXPECT_EQ(imported.notes, c.notes) << c.why;
  }
}

TEST(ImportLyt, KeysOfButtonsAndAxes) {
  Expect({
      {"a button", Layout("Button 1: key 38"), "B1 = a\n"},
      {"capitals, comments, blanks and other line ends",
       "# head\r\n\r\n  Joystick 1 {  # of one pad\r\n\tBUTTON 2 :Key 9#Esc\r\n}\r\n",
       "B2 = <Esc>\n"},
      {"a mouse button", Layout("Button 3: mouse 3"), "B3 = <RMouse>\n"},
      {"keys together", Layout("Button 4: key 37 31\nButton 5: key 40 38 39"),
       "B4 = <Ctrl>i\nB5 = das, held\n"},
      {"an axis", Layout("Axis 1: +key 40, -key 38"), "Axis_X0(neg) = a\nAxis_X0(pos) = d\n"},
      {"one side of an axis, and a mouse button", Layout("Axis 2: +mouse 1, -key 0"),
       "Axis_Y0(pos) = <LMouse>\n"},
      {"the last button", Layout("Button 64: key 38"), "B64 = a\n"},
      {"nothing behind the colon", Layout("Button 1:\nButton 2: key 38"), "B2 = a\n"},
      {"the same key twice", Layout("Button 1: key 38 38"), "B1 = a\n"},
  });
}

TEST(ImportLyt, BehindTheAxesComeTheHats) {
  const std::string hats = Layout(
      "Axis 6: +key 38\nAxis 7: +key 40\nAxis 8: -key 41\nAxis 9: -key 42\nAxis 15: +key 43");
  Expect({{"six axes", hats, "Axis_RZ0(pos) = a\nPOV0(right) = d\nPOV0(up) = f\nPOV1(left) = g\n",
           "3:1 different between two directions of a hat only one Control starts\n"
           "6:1 left-out axis 15: no pad has so many\n"}});
  Expect({{"the axes that are told", Layout("Axis 3: +key 38\nAxis 4: +key 40"),
           "Axis_RX0(pos) = a\nSliderB0(pos) = d\n"}},
         {"--axes", "X,Y,RX,SliderB"});
  Expect({{"a hat behind them", Layout("Axis 3: -key 38"), "POV0(left) = a\n"}}, {"--axes", "X,Y"});
}

TEST(ImportLyt, WhatWorksOtherwiseOrNotAtAllIsListed) {
  Expect({
      {"rapid fire", Layout("Button 1: rapidfire, key 38"), "B1 = a, every 100/100, taps 20\n"},
      {"sticky", Layout("Button 1: sticky, rapidfire, key 38"), "B1 = a, every 100/100, taps 20\n",
       "2:11 different button 1: sticky: the keys are down only while it is held\n"},
      {"the zones of an axis", Layout("Axis 1: gradient, dZone 5000, xZone 9000, +key 38"),
       "Axis_X0(pos) = a\n",
       "2:1 different axis 1: a key is held past half of the way, not for a share of the time\n"
       "2:19 left-out axis 1: dZone 5000\n"
       "2:31 left-out axis 1: xZone 9000\n"},
      {"a throttle", Layout("Axis 3: throttle+, +key 38"), "Axis_Z0(pos) = a\n",
       "2:1 different axis 3: throttle+: a key counts from half of the way on\n"},
      {"an unknown word", Layout("Button 1: key 38, wobble 3"), "B1 = a\n",
       "2:19 left-out button 1: wobble 3\n"},
      {"an unknown key", Layout("Button 1: key 38 300"), "B1 = a\n",
       "2:18 left-out button 1: no key for key 300\n"},
      {"too many buttons", Layout("Button 1: key 38\nButton 65: key 38\nButton 0: key 38"),
       "B1 = a\n",
       "3:1 left-out button 65: a Trigger takes the buttons 1 to 64\n"
       "4:1 left-out button 0: a Trigger takes the buttons 1 to 64\n"},
      {"the wheel on a button", Layout("Button 1: key 38\nButton 2: mouse 4"), "B1 = a\n",
       "3:17 left-out only an axis or a hat can move the wheel\n"},
      {"an input twice", Layout("Button 1: key 38\nButton 1: key 40"), "B1 = a\nB1 = d\n",
       "3:1 different another Control has the same inputs, B1; only one of the two acts\n"},
      {"turbo of keys that can't come at once", Layout("Button 1: rapidfire, key 38 40"),
       "B1 = ad, every 100/100, taps 20\n",
       "2:1 different keys that were down together come one after the other\n"},
  });
}

TEST(ImportLyt, AnAxisMovesThePointer) {
  const Imported imported = Import(
      Layout("Axis 4: gradient, dZone 3277, maxSpeed 15, mouse+h\nAxis 5: gradient, mouse+v"));
  EXPECT_EQ(imported.notes, "");
  EXPECT_EQ(imported.controls, "");
  EXPECT_EQ(imported.Mouse("mouseX"), "3,0");
  EXPECT_EQ(imported.Mouse("mouseY"), "4,0");
  EXPECT_EQ(imported.Mouse("mouseWheel"), "11,0");
  const tests::Json& mouse = imported.profile["mouse"];
  EXPECT_TRUE(mouse["mouseAlwaysActive"].Bool());
  EXPECT_EQ(mouse["movementDamper"].Signed(), 10);
  // 15 pixels in 10 ms are 7.5 a poll: 1 + (31 + 2) / 5 is 7.6.
  EXPECT_EQ(mouse["movementSensitivity"].Signed(), 31);
}

TEST(ImportLyt, TheMouseHasOneInputForEachMotion) {
  const Imported two =
      Import(Layout("Axis 1: gradient, maxSpeed 10, dZone 1000, mouse+h\n"
                    "Axis 2: gradient, maxSpeed 20, dZone 2000, mouse+v\n"
                    "Axis 4: gradient, mouse+h"));
  EXPECT_EQ(two.Mouse("mouseX"), "0,0");
  EXPECT_EQ(two.notes,
            "3:1 different the pointer has one speed, that of its first input\n"
            "3:1 different the pointer has one dead zone, that of its first input\n"
            "4:1 left-out only one input can move the pointer from side to side\n");
  const Imported reversed = Import(Layout("Axis 1: gradient, mouse+h\nAxis 2: mouse-v"));
  EXPECT_EQ(reversed.Mouse("mouseY"), "11,0");
  EXPECT_EQ(reversed.notes,
            "3:1 different axis 2: the further it is pushed, the faster the pointer moves\n"
            "3:1 left-out no input moves the pointer up and down the other way round\n");
  const Imported hat = Import(Layout("Axis 7: gradient, mouse+h\nAxis 8: +mouse 5, -mouse 4"));
  EXPECT_EQ(hat.Mouse("mouseX"), "8,0");
  EXPECT_EQ(hat.Mouse("mouseWheel"), "9,0");
  EXPECT_EQ(hat.notes, "");
  const Imported half = Import(Layout("Axis 3: +mouse 5"));
  EXPECT_EQ(half.Mouse("mouseWheel"), "2,0");
  EXPECT_EQ(half.notes, "2:16 different both directions of this input move the wheel\n");
}

TEST(ImportLyt, OneJoystickIsTaken) {
  const std::string two =
      "Joystick 2 {\nButton 1: key 38\n}\nJoystick 3 {\n}\nJoystick 4 {\nButton 1: key 40\n"
      "Button 2: key 40\n}\n";
  Expect({{"the first", two, "B1 = a\n",
           "6:1 left-out joystick 4: a profile is for one pad; --set 4 takes this one\n"}});
  Expect({{"the one told", two, "B1 = d\nB2 = d\n",
           "1:1 left-out joystick 2: a profile is for one pad; --set 2 takes this one\n"}},
         {"--set", "4"});
}

TEST(ImportAmgp, KeysOfButtons) {
  Expect({
      {"a key", Button(Slots(Key("0x41"))), "B1 = a\n"},
      {"a decimal code", Button(Slots(Key("65"))), "B1 = a\n"},
      {"a key without a letter", Button(Slots(Key("0x1000013"))), "B1 = <Up>\n"},
      {"keys together", Button(Slots(Key("0x1000021") + Key("0x43"))), "B1 = <Ctrl>c\n"},
      {"a modifier behind its key", Button(Slots(Key("0x43") + Key("0x1000021"))),
       "B1 = <Ctrl>c\n"},
      {"letters together", Button(Slots(Key("0x57") + Key("0x44"))), "B1 = wd, held\n"},
      {"a modifier and a mouse button", Button(Slots(Key("0x1000023") + Slot("mousebutton", "1"))),
       "B1 = <Alt><LMouse>, held\n"},
      {"two modifiers", Button(Slots(Key("0x1000021") + Key("0x1000023"))),
       "B1 = <Ctrl><Alt>, held\n"},
      {"mouse buttons", Button(Slots(Slot("mousebutton", "3"))), "B1 = <RMouse>\n"},
      {"a side button of the mouse", Button(Slots(Slot("mousebutton", "8"))), "B1 = <X1Mouse>\n"},
      {"an action's name", Button("<actionname>Jump &amp; run</actionname>" + Slots(Key("0x20"))),
       "B1 = <Space>, Jump & run\n"},
      {"nothing but settings",
       Set("<button index=\"2\"><toggle>true</toggle></button>"
           "<button index=\"1\">" +
           Slots(Key("0x41")) + "</button>"),
       "B1 = a\n"},
  });
}

TEST(ImportAmgp, PausesTurboAndTime) {
  Expect({
      {"a pause lets go", Button(Slots(Key("0x41") + Slot("pause", "300") + Key("0x42"))),
       "B1 = a<P:300>b, taps 50\n"},
      {"a pause at the end", Button(Slots(Key("0x1000021") + Key("0x43") + Slot("pause", "0"))),
       "B1 = <Ctrl>c<P:0>, taps 50\n"},
      {"letters before a pause",
       Button(Slots(Key("0x41") + Key("0x42") + Slot("pause", "300") + Key("0x43"))),
       "B1 = ab<P:300>c, taps 50\n",
       "4:1 different keys that were down together come one after the other\n"},
      {"a delay lets nothing go",
       Button(Slots(Key("0x1000020") + Slot("delay", "50") + Key("0x42"))),
       "B1 = <Shift><P:50>b, held\n"},
      {"a press time",
       Button(Slots(Slot("keypress", "200") + Key("0x41") + Slot("pause", "1") + Key("0x42"))),
       "B1 = a<P:1>b, taps 200\n"},
      {"the longest pause", Button(Slots(Key("0x41") + Slot("pause", "4000000000") + Key("0x42"))),
       "B1 = a<P:65535>b, taps 50\n",
       "4:77 different button 1: pause 4000000000: the longest pause is 65535 ms\n"},
      {"turbo",
       Button("<turbointerval>80</turbointerval><useturbo>true</useturbo>" + Slots(Key("0x41"))),
       "B1 = a, every 80/80, taps 20\n"},
      {"turbo of no interval", Button("<useturbo>true</useturbo>" + Slots(Key("0x41"))),
       "B1 = a, every 100/100, taps 20\n"},
      {"fast turbo",
       Button("<turbointerval>20</turbointerval><turbomode>normal</turbomode>"
              "<useturbo>true</useturbo>" +
              Slots(Key("0x41"))),
       "B1 = a, every 20/20, taps 10\n"},
      {"an interval without turbo",
       Button("<turbointerval>80</turbointerval><turbomode>pulse</turbomode>" + Slots(Key("0x41"))),
       "B1 = a\n"},
      {"typed text", Button(Slots("<slot><text>Go</text><mode>textentry</mode></slot>")),
       "B1 = Go<P:1>, taps 50\n"},
      {"what comes on letting go", Button(Slots(Slot("release", "0") + Key("0x41"))),
       "B1 = a, let go\n"},
  });
  Expect({{"the press time of all",
           "<joystick><keyPressTime>120</keyPressTime><sets><set index='1'><button index='1'>" +
               Slots(Key("0x41") + Slot("pause", "1") + Key("0x42")) +
               "</button></set></sets></joystick>",
           "B1 = a<P:1>b, taps 120\n"}});
}

TEST(ImportAmgp, WhatWorksOtherwiseOrNotAtAllIsListed) {
  Expect({
      {"toggle", Button("<toggle>true</toggle>" + Slots(Key("0x41"))), "B1 = a\n",
       "4:19 different button 1: toggle: the keys are down only while it is held\n"},
      {"turbo by share",
       Button("<useturbo>true</useturbo><turbomode>gradient</turbomode>" + Slots(Key("0x41"))),
       "B1 = a, every 100/100, taps 20\n", "4:44 left-out button 1: <turbomode> gradient\n"},
      {"hold", Button("\n" + Slots(Slot("hold", "250") + Key("0x41"))), "B1 = <P:250>a\n",
       "5:8 different button 1: hold 250: the keys behind it come even when it was let go by "
       "then\n"},
      {"release behind keys",
       Button("\n" + Slots(Key("0x41") + "\n" + Slot("release", "10") + "\n" + Key("0x42"))),
       "B1 = a\n", "6:1 left-out button 1: release 10\n7:1 left-out button 1: keyboard 0x42\n"},
      {"a release after a time", Button("\n" + Slots(Slot("release", "10") + Key("0x41"))),
       "B1 = a, let go\n",
       "5:8 different button 1: release 10: it acts however short the button was held\n"},
      {"cycle and distance",
       Button("\n" + Slots(Key("0x41") + "\n" + Slot("cycle", "1") + "\n" + Key("0x42") + "\n" +
                           Slot("distance", "50"))),
       "B1 = a\n",
       "6:1 left-out button 1: cycle 1\n7:1 left-out button 1: keyboard 0x42\n"
       "8:1 left-out button 1: distance 50\n"},
      {"slots for which there is nothing",
       Button(Slots(Key("0x41") + "\n" + Slot("mousespeedmod", "10") + "\n" +
                    Slot("loadprofile", "3") + "\n" + Slot("setchange", "1") +
                    "\n<slot><path>/bin/x</path><arguments>-l</arguments><mode>execute</mode>"
                    "</slot>\n<slot><text>\xC3\xA4</text><mode>textentry</mode></slot>\n"
                    "<slot><code>1</code></slot>")),
       "B1 = a\n",
       "5:1 left-out button 1: mousespeedmod 10\n6:1 left-out button 1: loadprofile 3\n"
       "7:1 left-out button 1: setchange 1\n8:1 left-out button 1: execute /bin/x -l\n"
       "9:1 left-out button 1: textentry \xC3\xA4\n10:1 left-out button 1: <slot> 1\n"},
      {"an unknown key", Button(Slots(Key("0x41") + "\n" + Key("0x100003c"))), "B1 = a\n",
       "5:1 left-out button 1: no key for keyboard 0x100003c\n"},
      {"the change to another set",
       Button("<setselect>2</setselect><setselectcondition>one-way</setselectcondition>" +
              Slots(Key("0x41"))),
       "B1 = a\n", "4:19 left-out button 1: the change to set 2\n"},
      {"another setting", Button("<extra>7</extra>" + Slots(Key("0x41"))), "B1 = a\n",
       "4:19 left-out button 1: <extra> 7\n"},
      {"pointer and wheel of a button",
       Button(Slots(Key("0x41") + "\n" + Slot("mousemovement", "1") + "\n" +
                    Slot("mousebutton", "4") + "\n" + Slot("mousebutton", "6"))),
       "B1 = a\n",
       "5:1 left-out only an axis or a hat can move the pointer up and down\n"
       "6:1 left-out only an axis or a hat can move the wheel\n"
       "7:1 left-out button 1: no key for mousebutton 6\n"},
      {"the pointer in no direction",
       Button(Slots(Key("0x41") + "\n" + Slot("mousemovement", "5"))), "B1 = a\n",
       "5:1 left-out button 1: mousemovement 5\n"},
      {"motion",
       Set("<button index='1'>" + Slots(Key("0x41")) +
           "</button>\n<sensor type='1'><sensorbutton>" + Slots(Key("0x41")) +
           "</sensorbutton></sensor>\n<button index='65'>" + Slots(Key("0x41")) + "</button>"),
       "B1 = a\n",
       "5:1 left-out sensor 0: there is no such input\n"
       "6:1 left-out button 65: this pad has no certain input for it\n"},
  });
}

TEST(ImportAmgp, AxesHatsAndSticksOfAJoystick) {
  Expect({
      {"an axis",
       Set("<axis index='2'><axisbutton index='1'>" + Slots(Key("0x57")) +
           "</axisbutton><axisbutton index='2'>" + Slots(Key("0x53")) + "</axisbutton></axis>"),
       "Axis_Y0(neg) = w\nAxis_Y0(pos) = s\n"},
      {"the zones of an axis",
       Set("<axis index='7'><deadZone>9</deadZone><throttle>normal</throttle>"
           "<axisbutton index='2'>" +
           Slots(Key("0x53")) + "</axisbutton></axis>"),
       "SliderA0(pos) = s\n", "4:17 left-out axis 7: <deadZone> 9\n"},
      {"a throttle",
       Set("<axis index='8'><throttle>positive</throttle><axisbutton index='2'>" +
           Slots(Key("0x53")) + "</axisbutton></axis>"),
       "SliderB0(pos) = s\n",
       "4:17 different axis 8: throttle positive: a key counts from half of the way on\n"},
      {"a hat",
       Set("<dpad index='2'><dpadbutton index='1'>" + Slots(Key("0x57")) +
           "</dpadbutton><dpadbutton index='8'>" + Slots(Key("0x41")) + "</dpadbutton></dpad>"),
       "POV1(up) = w\nPOV1(left) = a\n",
       "4:17 different between two directions of a hat only one Control starts\n"},
      {"the corner of a hat",
       Set("<dpad index='1'><mode>eight-way</mode>\n<dpadbutton index='3'>" + Slots(Key("0x57")) +
           "</dpadbutton>\n<dpadbutton index='5'>" + Slots(Key("0x57")) + "</dpadbutton></dpad>"),
       "POV0(up)+POV0(right) = w\n",
       "4:17 left-out dpad 1: <mode> eight-way\n"
       "5:1 different a key of one of the two directions may stay down, too\n"
       "6:1 left-out dpad 1: there is no such direction\n"},
      {"a stick without its axes",
       Set("<button index='1'>" + Slots(Key("0x41")) +
           "</button>\n<stick index='1'><stickbutton index='1'>" + Slots(Key("0x57")) +
           "</stickbutton></stick>"),
       "B1 = a\n", "5:1 left-out stick 1: the file doesn't say which axes it has\n"},
      {"a stick",
       "<joystick><stickAxisAssociation index='1' xAxis='1' yAxis='2'/><sets><set index='1'>"
       "<stick index='1'>\n<stickbutton index='1'>" +
           Slots(Key("0x57")) + "</stickbutton>\n<stickbutton index='4'>" + Slots(Key("0x31")) +
           "</stickbutton>\n<stickbutton index='9'>" + Slots(Key("0x31")) +
           "</stickbutton></stick></set></sets></joystick>",
       "Axis_Y0(neg) = w\nAxis_X0(pos)+Axis_Y0(pos) = 1\n",
       "3:1 different a key of one of the two directions may stay down, too\n"
       "4:1 left-out stick 1: there is no such direction\n"},
      {"a direction pad of buttons and an axis",
       "<joystick><vdpadButtonAssociations index='1'>"
       "<vdpadButtonAssociation axis='0' button='12' direction='1'/>"
       "<vdpadButtonAssociation axis='1' button='1' direction='8'/></vdpadButtonAssociations>"
       "<sets><set index='1'><vdpad index='1'><vdpadbutton index='1'>" +
           Slots(Key("0x57")) + "</vdpadbutton><vdpadbutton index='8'>" + Slots(Key("0x41")) +
           "</vdpadbutton>\n<vdpadbutton index='4'>" + Slots(Key("0x41")) +
           "</vdpadbutton></vdpad></set></sets></joystick>",
       "B12 = w\nAxis_X0(neg) = a\n",
       "2:1 left-out vdpad 1 down: this pad has no certain input for it\n"},
  });
  Expect(
      {{"the axes that are told",
        Set("<axis index='3'><axisbutton index='2'>" + Slots(Key("0x57")) + "</axisbutton></axis>"),
        "Axis_RX0(pos) = w\n"}},
      {"--axes", "X,Y,RX"});
}

TEST(ImportAmgp, AStandardPadGoesByPlace) {
  std::string buttons;
  for (int i = 1; i <= 16; ++i) {
    buttons += "<button index='" + std::to_string(i) + "'>" +
               Slots(Key(std::to_string('A' + i - 1))) + "</button>\n";
  }
  const std::string pad = Set(buttons, "gamecontroller");
  const char* const notes =
      "15:1 different between two directions of a hat only one Control starts\n"
      "19:1 left-out button 16: this pad has no certain input for it\n";
  Expect({{"as the drivers number an Xbox pad", pad,
           "B1 = a\nB2 = b\nB3 = c\nB4 = d\nB7 = e\nB9 = f\nB8 = g\nB10 = h\nB11 = i\nB5 = j\n"
           "B6 = k\nPOV0(up) = l\nPOV0(down) = m\nPOV0(left) = n\nPOV0(right) = o\n",
           notes}},
         {"--pad", "xbox"});
  Expect({{"as the drivers number a PlayStation pad", pad,
           "B1 = a\nB2 = b\nB4 = c\nB3 = d\nB9 = e\nB11 = f\nB10 = g\nB12 = h\nB13 = i\nB5 = j\n"
           "B6 = k\nPOV0(up) = l\nPOV0(down) = m\nPOV0(left) = n\nPOV0(right) = o\n",
           notes}},
         {"--pad", "playstation"});
  const std::string trigger = "<triggerbutton index='2'>" + Slots(Key("0x41")) + "</triggerbutton>";
  for (const auto& [left, right] : {std::pair("1", "2"), std::pair("5", "6")}) {
    Expect({{"the triggers, in both numberings",
             Set("<trigger index='" + std::string(left) + "'><throttle>positivehalf</throttle>" +
                     trigger + "</trigger><trigger index='" + right + "'>" + trigger + "</trigger>",
                 "gamecontroller"),
             "Axis_Z0(pos) = a\nAxis_RZ0(pos) = a\n"}});
  }
  const std::string up = "<stickbutton index='1'>" + Slots(Key("0x41")) + "</stickbutton>";
  Expect({{"the sticks",
           Set("<stick index='1'>" + up + "</stick><stick index='2'>" + up + "</stick>",
               "gamecontroller"),
           "Axis_Y0(neg) = a\nAxis_RY0(neg) = a\n"}});
}

std::string MouseStick(const std::string& settings) {
  std::string stick = "<stick index='2'><deadZone>3277</deadZone>\n";
  const char* const directions[][2] = {{"1", "1"}, {"3", "4"}, {"5", "2"}, {"7", "3"}};
  for (const auto& [index, code] : directions) {
    stick += "<stickbutton index='" + std::string(index) + "'>" + settings +
             Slots(Slot("mousemovement", code)) + "</stickbutton>\n";
  }
  return Set(stick + "</stick>", "gamecontroller");
}

TEST(ImportAmgp, AStickMovesThePointer) {
  const Imported imported =
      Import(MouseStick("<mousespeedx>30</mousespeedx><mousespeedy>30</mousespeedy>"
                        "<mousemode>cursor</mousemode>"));
  EXPECT_EQ(imported.notes, "");
  EXPECT_EQ(imported.Mouse("mouseX"), "3,0");
  EXPECT_EQ(imported.Mouse("mouseY"), "4,0");
  const tests::Json& mouse = imported.profile["mouse"];
  EXPECT_TRUE(mouse["mouseAlwaysActive"].Bool());
  EXPECT_EQ(mouse["movementDamper"].Signed(), 10);
  // 600 pixels a second are 3 a poll: 1 + (8 + 2) / 5.
  EXPECT_EQ(mouse["movementSensitivity"].Signed(), 8);

  const Imported fast = Import(MouseStick("<mousespeedx>300</mousespeedx>"));
  EXPECT_EQ(fast.profile["mouse"]["movementSensitivity"].Signed(), 50);
  const Imported spring = Import(MouseStick("<mousemode>spring</mousemode>"));
  EXPECT_EQ(spring.profile["mouse"]["movementSensitivity"].Signed(), 18);
  EXPECT_EQ(spring.notes.substr(0, 57),
            "5:24 left-out stick 2 up: <mousemode> spring\n6:24 left-ou");
}

TEST(ImportAmgp, AHatMovesThePointer) {
  const char* const directions[][2] = {{"1", "1"}, {"4", "2"}, {"8", "3"}, {"2", "4"}};
  std::string hat = "<dpad index='2'>";
  for (const auto& [direction, code] : directions) {
    hat += "<dpadbutton index='" + std::string(direction) + "'>" +
           Slots(Slot("mousemovement", code)) + "</dpadbutton>";
  }
  const Imported imported = Import(Set(hat + "</dpad>"));
  EXPECT_EQ(imported.Mouse("mouseX"), "8,1");
  EXPECT_EQ(imported.Mouse("mouseY"), "9,1");
  EXPECT_EQ(imported.notes, "");
  EXPECT_EQ(imported.controls, "");
}

TEST(ImportAmgp, AStickTurnsTheWheel) {
  const Imported imported =
      Import(Set("<stick index='1'><stickbutton index='1'>" + Slots(Slot("mousebutton", "4")) +
                     "</stickbutton><stickbutton index='5'>" + Slots(Slot("mousebutton", "5")) +
                     "</stickbutton></stick>",
                 "gamecontroller"));
  EXPECT_EQ(imported.Mouse("mouseWheel"), "1,0");
  EXPECT_EQ(imported.notes, "");
  EXPECT_EQ(imported.controls, "");
}

TEST(ImportAmgp, OneSetIsTaken) {
  const std::string button = "<button index='1'>" + Slots(Key("0x41")) + "</button>";
  const std::string sets = "<joystick>\n<sets>\n<set index='1'>" + button +
                           "</set>\n<set index='2'><name>Two</name></set>\n<set index='3'>" +
                           button + button + "</set>\n</sets>\n</joystick>";
  Expect({{"the first", sets, "B1 = a\n",
           "5:1 left-out set 3: a profile has one; --set 3 takes this one\n"}});
  EXPECT_EQ(Import(sets, {"--set", "3"}).controls, "B1 = a\nB1 = a\n");
}

TEST(ImportAmgp, NamesComeAlong) {
  const std::string head =
      "<joystick configversion='19'><!-- made --><sdlname>My Pad</sdlname><guid>03</guid>\n"
      "<uniqueID>03</uniqueID><profilename>Walk</profilename><names>"
      "<buttonname index='1'>Jump</buttonname><dpadbuttonname index='1' button='1'>Look"
      "</dpadbuttonname></names>\n<future/><sets><set index='1'><name>One</name><button index='1'>";
  const Imported imported =
      Import(head + Slots(Key("0x41")) + "</button><dpad index='1'><dpadbutton index='1'>" +
             Slots(Key("0x42")) + "</dpadbutton></dpad></set></sets></joystick>");
  EXPECT_EQ(imported.profile["profileName"].Text(), "Walk");
  EXPECT_EQ(imported.profile["deviceName"].Text(), "");
  EXPECT_EQ(imported.controls, "B1 = a, Jump\nPOV0(up) = b, Look\n");
  EXPECT_EQ(imported.notes,
            "1:43 left-out the device 'My Pad': choose yours on the tab Device\n"
            "3:1 left-out <future>\n");
}

// Windows' parser of XML stands in another column of the line when it finds out a fault.
std::string WithoutColumn(const std::string& message, [[maybe_unused]] bool byParser) {
#ifdef _WIN32
  if (byParser) return std::regex_replace(message, std::regex(":(\\d+):\\d+: "), ":$1: ");
#endif
  return message;
}

TEST(ImportCommand, AFaultHasItsPlaceAndNothingIsWritten) {
  std::string deep;
  for (int i = 0; i < 100'000; ++i) deep += "<a>";
  const struct {
    const char* why;
    std::string content;
    const char* fault;  // behind the file's name
    bool byParser = false;
  } kCases[] = {
      {"nothing", "", ":1:1: neither an .amgp nor a .lyt: it has no 'Joystick 1 {'"},
      {"a foreign text", "# x\nhello",
       ":2:1: neither an .amgp nor a .lyt: 'Joystick 1 {' is missing"},
      {"JSON", "{}", ":1:1: neither an .amgp nor a .lyt: 'Joystick 1 {' is missing"},
      {"zero bytes", std::string("\0\0", 2),
       ":1:1: neither an .amgp nor a .lyt: 'Joystick 1 {' is missing"},
      {"a word between joysticks", "Joystick 1 {\n}\nfoo", ":3:1: not 'Joystick 2 {'"},
      {"an entry that is none", Layout("\tPedal 1: key 38"),
       ":2:2: not an axis, a button or a '}'"},
      {"a joystick without an end", "\nJoystick 1 {\nButton 1: key 38\n",
       ":2:1: this joystick has no '}'"},
      {"a word for a number", Layout("Button 1: key x"), ":2:15: not a number"},
      {"a number too large", Layout("Button 1: key 4294967296"), ":2:15: not a number"},
      {"a number too few", Layout("Axis 1: dZone, +key 38"), ":2:9: one number belongs here"},
      {"a key without a number", Layout("Axis 1: +key"), ":2:9: a number belongs behind it"},
      {"foreign XML", "<svg>\n</svg>", ":1:1: not an .amgp: it begins with <svg>"},
      {"cut XML", "<joystick>\n<sets>", ":2:7: no element found", true},
      {"crossed elements", "<joystick>\n <sets></joystick>", ":2:10: mismatched tag", true},
      {"no set", "<joystick>\n</joystick>", ":1:1: it has no set"},
      {"a code that is none", Button("\n" + Slots(Key("x1"))), ":5:14: not a number"},
      {"a code too large", Button("\n" + Slots(Key("0x100000000"))), ":5:14: not a number"},
      {"a slot without a code", Button("\n" + Slots("<slot><mode>keyboard</mode></slot>")),
       ":5:8: this slot has no code"},
      {"entities", "<!DOCTYPE a [\n<!ENTITY x \"xxxxxxxx\">]>\n<joystick>&x;</joystick>",
       ":1:13: a document type isn't taken", true},
      {"a file from elsewhere", "<!DOCTYPE a SYSTEM \"/etc/passwd\">\n<joystick/>",
       ":1:33: a document type isn't taken", true},
      {"an attribute twice", "<joystick a='1'\n a='2'/>", ":2:2: duplicate attribute", true},
      {"text alone", "<!-- x -->", ":1:11: no element found", true},
      {"depth", deep, ":1:97: elements are nested too deeply"},
  };
  for (const auto& c : kCases) {
    const TestFile in("in", c.content);
    const std::string out = in.path + ".idprof";
    const Outcome outcome = Kelvaroctl({"import", in.path, out});
    EXPECT_EQ(outcome.status, 1) << c.why;
    EXPECT_EQ(outcome.out, "") << c.why;
    EXPECT_EQ(WithoutColumn(outcome.err, c.byParser),
              WithoutColumn("kelvaroctl: " + in.path + c.fault + "\n", c.byParser))
        << c.why;
    EXPECT_FALSE(fs::exists(out)) << c.why;
  }
}

TEST(ImportCommand, ASetThatIsNotThereIsAFault) {
  const TestFile layout("layout", Layout("Button 1: key 38"));
  const TestFile profile("profile", Button(Slots(Key("0x41"))));
  EXPECT_EQ(Kelvaroctl({"import", "--set", "2", layout.path, layout.path + ".x"}).err,
            "kelvaroctl: " + layout.path + ":1:1: it has no joystick 2\n");
  EXPECT_EQ(Kelvaroctl({"import", "--set", "2", profile.path, profile.path + ".x"}).err,
            "kelvaroctl: " + profile.path + ":1:1: it has no set 2\n");
}

TEST(ImportCommand, TooManyElementsAreAFault) {
  std::string many = "<joystick>";
  for (int i = 0; i < 200'000; ++i) many += "<a/>";
  const Imported imported = Import(many + "</joystick>");
  EXPECT_NE(imported.outcome.err.find(":1:800007: too many elements\n"), std::string::npos)
      << imported.outcome.err;
}

// None of them keeps the command busy for long, or takes much memory.
TEST(ImportCommand, SizesAreBounded) {
  std::string lines;
  for (int i = 0; i < 10'001; ++i) lines += "Button 1: key 38\n";
  const Imported controls = Import(Layout(lines));
  EXPECT_EQ(controls.profile["controls"].Elements().size(), 10'000u);
  EXPECT_TRUE(controls.notes.ends_with("10002:1 left-out more than 10000 Controls\n"));

  std::string words = "Axis 1:";
  for (int i = 0; i < 1000; ++i) words += " 1";
  EXPECT_NE(Import(Layout(words)).outcome.err.find(":2:2003: this line has too many words\n"),
            std::string::npos);

  std::string slots;
  for (int i = 0; i < 1001; ++i) slots += Key("0x41");
  EXPECT_NE(Import(Button("\n" + Slots(slots))).outcome.err.find(":5:1: too many slots\n"),
            std::string::npos);

  const std::string text = "<slot><text>" + std::string(600, 'a') + "</text>";
  const Imported typed = Import(Button(
      Slots(text + "<mode>textentry</mode></slot>\n" + text + "<mode>textentry</mode></slot>")));
  EXPECT_EQ(typed.controls, "B1 = " + std::string(600, 'a') + "<P:1>, taps 50\n");
  EXPECT_EQ(typed.notes.substr(0, 38), "5:1 left-out button 1: textentry aaaaa");
}

TEST(ImportCommand, AHugeFileIsAFault) {
  const Imported imported = Import(std::string((8 << 20) + 1, '<'));
  EXPECT_NE(imported.outcome.err.find(": larger than 8 MiB\n"), std::string::npos);
}

TEST(ImportCommand, AStoredProfileIsNotTaken) {
  const TestFile json("json", R"({"profileName":"P"})");
  const std::string stored = json.path + ".idprof";
  ASSERT_EQ(Kelvaroctl({"pack", json.path, stored}).status, 0);
  EXPECT_EQ(Kelvaroctl({"import", stored, json.path + ".x"}).err,
            "kelvaroctl: " + stored + ": a profile of Kelvaro already\n");
}

TEST(ImportCommand, WhatHasNoCounterpartAtAllIsListedAndNotWritten) {
  const TestFile in("in", Layout("Button 2: mouse 4"));
  const std::string out = in.path + ".idprof";
  const Outcome outcome = Kelvaroctl({"import", "--json", in.path, out});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "kelvaroctl: " + in.path + ": nothing of it can be brought over\n" +
                             in.path +
                             ":2:17: left out: only an axis or a hat can move the wheel\n");
  EXPECT_FALSE(fs::exists(out));
}

TEST(ImportCommand, PeopleReadWhatBecameOfIt) {
  const TestFile in("Walk.lyt", Layout("Button 1: key 38\nButton 2: sticky, key 40, odd\033[2J"));
  const std::string out = in.path + ".idprof";
  EXPECT_EQ(Kelvaroctl({"import", in.path, out}).out,
            out + ": 'Walk', 2 Controls\n" + in.path +
                ":3:11: different: button 2: sticky: the keys are down only while it is held\n" +
                in.path + ":3:27: left out: button 2: odd?[2J\n");
}

TEST(ImportCommand, NoFileIsOverwritten) {
  const TestFile in("in", Layout("Button 1: key 38"));
  const TestFile out("out", "before");
  const Outcome outcome = Kelvaroctl({"import", in.path, out.path});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "kelvaroctl: " + out.path + ": there is such a file already\n");
  EXPECT_EQ(tests::Content(out.path), "before");
}

TEST(ImportCommand, AnOptionOfAnotherKindIsAUsageFault) {
  const TestFile in("in", Layout("Button 1: key 38"));
  const std::pair<const char*, const char*> kWrong[] = {
      {"--set", "0"},  {"--set", "one"},      {"--axes", ""},     {"--axes", "X,"},
      {"--axes", "W"}, {"--pad", "nintendo"}, {"--axes", "X,,Y"}, {"--axes", "x"}};
  for (const auto& [option, value] : kWrong) {
    const Outcome outcome = Kelvaroctl({"import", option, value, in.path, in.path + ".idprof"});
    EXPECT_EQ(outcome.status, 2) << option << " " << value;
    EXPECT_NE(outcome.err.find(option), std::string::npos) << outcome.err;
    EXPECT_FALSE(fs::exists(in.path + ".idprof"));
  }
}

class ImportStored : public StoredProfiles {};

TEST_F(ImportStored, WithoutAFileToMakeItIsStoredUnderItsName) {
  const TestFile in("Walk about.lyt", Layout("Button 1: key 38"));
  const Outcome first = Kelvaroctl({"import", in.path});
  EXPECT_EQ(first.status, 0) << first.err;
  EXPECT_EQ(first.out, (folder / "Walk about.idprof").string() + ": 'Walk about', 1 Control\n");
  EXPECT_NE(Kelvaroctl({"show", "Walk about"}).out.find("1  B1  a"), std::string::npos);

  const Outcome second = Kelvaroctl({"import", in.path});
  EXPECT_EQ(second.status, 1);
  EXPECT_EQ(second.err, "kelvaroctl: " + (folder / "Walk about.idprof").string() +
                            ": there is a profile 'Walk about' already (--name gives it another "
                            "name)\n");

  EXPECT_EQ(Kelvaroctl({"import", "--name", "Race", in.path}).status, 0);
  EXPECT_NE(Kelvaroctl({"show", "Race"}).out.find("1  B1  a"), std::string::npos);
}

TEST_F(ImportStored, TheNameOfAFileLosesItsEndings) {
  const std::pair<const char*, const char*> kNames[] = {
      {"a.amgp", "a"}, {"b.gamecontroller.amgp", "b"}, {"c.joystick.amgp", "c"}, {"d", "d"}};
  for (const auto& [file, name] : kNames) {
    const TestFile in(file, Button(Slots(Key("0x41"))));
    EXPECT_EQ(Kelvaroctl({"import", in.path}).status, 0) << file;
    EXPECT_EQ(Kelvaroctl({"show", name}).status, 0) << file;
  }
  const StandardInput input(Layout("Button 1: key 38"));
  EXPECT_EQ(Kelvaroctl({"import", "-"}).status, 0);
  EXPECT_EQ(Kelvaroctl({"show", "Imported"}).status, 0);
}

TEST_F(ImportStored, ANameWithoutAFileNameIsAFault) {
  const TestFile in("in", Layout("Button 1: key 38"));
  EXPECT_EQ(Kelvaroctl({"import", "--name", "\xC3\xA4", in.path}).err,
            "kelvaroctl: no file name can be made of '\xC3\xA4' (--name gives it another name)\n");
}

// The events of a recording on what was imported.
std::string Play(const std::string& content, const std::string& changes) {
  const TestFile in("in", content);
  const std::string out = in.path + ".idprof";
  EXPECT_EQ(Kelvaroctl({"import", in.path, out}).status, 0);
  const TestFile recording(
      "recording",
      R"({"recording":1,"device":"Pad","guid":"000102030405060708090a0b0c0d0e0f","buttons":11,)"
      R"("axes":6,"povs":1})"
      "\n" +
          changes);
  return Kelvaroctl({"run", "--simulate", "--replay", recording.path, out}).out;
}

TEST(ImportedProfile, SendsWhatTheFileSays) {
  const std::string press = "{\"t\":100,\"buttons\":[1]}\n{\"t\":300,\"buttons\":[]}\n";
  EXPECT_EQ(Play(Layout("Button 1: key 38"), press), "     100 ms  a down\n     300 ms  a up\n");
  EXPECT_EQ(Play(Layout("Button 1: key 37 54"), press),
            "     100 ms  <Ctrl> down\n     100 ms  c down\n"
            "     300 ms  <Ctrl> up\n     300 ms  c up\n");
  EXPECT_EQ(Play(Button(Slots(Key("0x41") + Key("0x42"))), press),
            "     100 ms  a down\n     100 ms  b down\n     300 ms  a up\n     300 ms  b up\n");
  EXPECT_EQ(Play(Button(Slots(Key("0x41") + Slot("pause", "20") + Key("0x42"))), press),
            "     100 ms  a down\n     150 ms  a up\n     170 ms  b down\n     300 ms  b up\n");
  EXPECT_EQ(Play(Button(Slots(Slot("release", "0") + Key("0x41"))), press),
            "     300 ms  a down\n     300 ms  a up\n");
  EXPECT_EQ(Play(Button("<useturbo>true</useturbo>" + Slots(Key("0x41"))), press),
            "     100 ms  a down\n     120 ms  a up\n     220 ms  a down\n     240 ms  a up\n");
  EXPECT_EQ(Play(Layout("Axis 7: +key 114, -key 113"),
                 "{\"t\":100,\"povs\":{\"POV0\":9000}}\n{\"t\":300,\"povs\":{\"POV0\":-1}}\n"),
            "     100 ms  <Right> down\n     300 ms  <Right> up\n");
}

TEST(ImportedProfile, MovesThePointerAndTurnsTheWheelTheSameWay) {
  const std::string moved =
      Play(Layout("Axis 1: gradient, mouse+h\nAxis 2: +mouse 5, -mouse 4"),
           "{\"t\":99,\"axes\":{\"Axis_X0\":32000}}\n{\"t\":104,\"axes\":{\"Axis_X0\":0,"
           "\"Axis_Y0\":32000}}\n{\"t\":109,\"axes\":{\"Axis_Y0\":0}}\n");
  EXPECT_EQ(moved, "     100 ms  pointer +4 0\n     105 ms  wheel -4\n");
}

}  // namespace
}  // namespace kelvaro::console
