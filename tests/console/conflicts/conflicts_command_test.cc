#include "tests/console/console_run.h"

namespace kelvaro::console {
namespace {

std::string Conflicting(const std::string& members, std::vector<std::string> options = {}) {
  const TestFile profile("profile", "{\"profileName\":\"Two\"," + members + "}");
  options.insert(options.begin(), {"conflicts", profile.path});
  const Outcome outcome = Kelvaroctl(options);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  return outcome.out;
}

constexpr char kJumpAndDash[] =
    R"("controls":[{"description":"Jump","buttonMask":1},{"description":"Dash","buttonMask":3}])";

TEST(ConflictsCommand, TellsWhoIsKeptSilentAndInWhichOrder) {
  EXPECT_EQ(Conflicting(kJumpAndDash),
            "Two, 2 Controls\n"
            "  Kept silent   by               at once  first  last\n"
            "  1 'Jump', B1  2 'Dash', B1+B2  late     fires  late\n"
            "  What comes of it when its inputs are pressed at once with those that the other has\n"
            "  besides, first, or last:\n"
            "    late  it fires if it is still held when the other's own inputs are let go\n");
}

TEST(ConflictsCommand, OneThatFiresWhenLetGoIsSpoiledOrSilent) {
  const std::string out =
      Conflicting(R"("controls":[{"buttonMask":1,"activateOnPress":false},{"buttonMask":3}])");
  // B1 first: armed by B1, it would fire as B2 comes; Control 2 keeps it from that. Let go one by
  // one, it is armed anew. B2 first: B2 spoils it, with Control 2 or without.
  EXPECT_NE(out.find("1, B1        2, B1+B2  fires    late   rests\n"), std::string::npos) << out;
}

// The mouse controls take from the first two, the next two repeat, and the last has no chance.
constexpr char kMouseRepeatNever[] =
    R"("mouse":{"leftMask":1,"mouseX":{"kind":0,"index":0}},"controls":[{"buttonMask":3},)"
    R"({"triggerItems":[{"kind":0,"index":0,"value":1}],"buttonMask":4},)"
    R"({"buttonMask":16,"repeatEnabled":true},{"buttonMask":32,"repeatEnabled":true},)"
    R"({"buttonMask":32}])";

TEST(ConflictsCommand, TellsWhatTheMouseControlsTakeAndWhoseRepeatGoesWhere) {
  EXPECT_EQ(Conflicting(kMouseRepeatNever),
            "Two, 5 Controls\n"
            "  Silent while the mouse controls are on:\n"
            "  1, B1+B2            loses B1\n"
            "  2, B3+Axis_X0(neg)  loses Axis_X0(neg)\n"
            "\n"
            "  One Control repeats at a time. Held, these stop for another one that begins:\n"
            "  3, B5  for 4\n"
            "  4, B6  for 3\n"
            "\n"
            "  Can never fire:\n"
            "  5, B6  it has the same inputs as Control 4\n");
}

TEST(ConflictsCommand, ManyThatRepeatAreNotAllNamedEachTime) {
  std::string controls = R"("controls":[)";
  for (int button = 0; button < 4; ++button) {
    controls += "{\"repeatEnabled\":true,\"buttonMask\":" + std::to_string(1 << button) + "},";
  }
  for (const char* value : {"1", "4"}) {
    controls += std::string(*value == '1' ? "" : ",") +
                R"({"repeatEnabled":true,"triggerItems":[{"kind":8,"index":0,"value":)" + value +
                "}]}";
  }
  EXPECT_EQ(Conflicting(controls + "]"),
            "Two, 6 Controls\n"
            "  One Control repeats at a time. Held, these stop for another one that begins:\n"
            "  1, B1           for any other here\n"
            "  2, B2           for any other here\n"
            "  3, B3           for any other here\n"
            "  4, B4           for any other here\n"
            "  5, POV0(left)   for any other here but 6\n"
            "  6, POV0(right)  for any other here but 5\n");
}

TEST(ConflictsCommand, SaysSoWhereNobodyIsInTheWay) {
  EXPECT_EQ(Conflicting(R"("controls":[{"buttonMask":1},{"buttonMask":2}])"),
            "Two, 2 Controls\n  no Control is in another's way\n");
  // To the two sides of an axis: they are never held together.
  EXPECT_EQ(Conflicting(R"("controls":[{"triggerItems":[{"kind":0,"index":0,"value":1}]},)"
                        R"({"buttonMask":1,"triggerItems":[{"kind":0,"index":0,"value":2}]}])"),
            "Two, 2 Controls\n  no Control is in another's way\n");
}

TEST(ConflictsCommand, PrintsALineOfJsonForEachControl) {
  EXPECT_EQ(Conflicting(kJumpAndDash, {"--json"}),
            R"({"controlId":2,"description":"Dash","inputs":"B1+B2","silences":[{"controlId":1,)"
            R"("atOnce":"late","first":"fires","last":"late"}],"silencedBy":[],"mouseTakes":"",)"
            R"("repeatGoesTo":[],"neverFires":""})"
            "\n"
            R"({"controlId":1,"description":"Jump","inputs":"B1","silences":[],"silencedBy":[)"
            R"({"controlId":2,"atOnce":"late","first":"fires","last":"late"}],"mouseTakes":"",)"
            R"("repeatGoesTo":[],"neverFires":""})"
            "\n");
  // Nothing is pressed besides, where both want the same hat. The second one is late as the hat
  // turns from up to the right.
  const std::string hats =
      Conflicting(R"("controls":[{"triggerItems":[{"kind":8,"index":0,"value":2}]},)"
                  R"({"triggerItems":[{"kind":8,"index":0,"value":6}]}])",
                  {"--json"});
  EXPECT_NE(
      hats.find(R"("silencedBy":[{"controlId":1,"atOnce":"late","first":"fires","last":null}])"),
      std::string::npos)
      << hats;
}

TEST(ConflictsCommand, JsonAndGraphTellOfTheMouseOfRepeatsAndOfWhatNeverFires) {
  const auto line = [](const char* begin, const char* mouse, const char* repeat,
                       const char* never) {
    return std::string("{\"controlId\":") + begin +
           "\",\"silences\":[],\"silencedBy\":[],\"mouseTakes\":\"" + mouse +
           "\",\"repeatGoesTo\":[" + repeat + "],\"neverFires\":\"" + never + "\"}\n";
  };
  EXPECT_EQ(Conflicting(kMouseRepeatNever, {"--json"}),
            line(R"(1,"description":"","inputs":"B1+B2)", "B1", "", "") +
                line(R"(2,"description":"","inputs":"B3+Axis_X0(neg))", "Axis_X0(neg)", "", "") +
                line(R"(3,"description":"","inputs":"B5)", "", "4", "") +
                line(R"(4,"description":"","inputs":"B6)", "", "3", "") +
                line(R"(5,"description":"","inputs":"B6)", "", "",
                     "it has the same inputs as Control 4"));
  EXPECT_EQ(Conflicting(kMouseRepeatNever, {"--dot"}),
            "digraph \"Two\" {\n"
            "  node [shape=box];\n"
            "  c1 [label=\"Control 1\\nB1+B2\\nmouse: B1\"];\n"
            "  c2 [label=\"Control 2\\nB3+Axis_X0(neg)\\nmouse: Axis_X0(neg)\"];\n"
            "  c3 [label=\"Control 3\\nB5\\nrepeats\"];\n"
            "  c4 [label=\"Control 4\\nB6\\nrepeats\"];\n"
            "  c5 [label=\"Control 5\\nB6\\nnever: it has the same inputs as Control 4\"];\n"
            "}\n");
}

// A toggle of the mouse controls on the way would change what the next input does.
TEST(ConflictsCommand, AToggleOfTheMouseControlsChangesNothing) {
  const std::string mouse = R"("mouse":{"leftMask":2},)";
  const std::string out = Conflicting(
      mouse + R"("controls":[{"buttonMask":1,"toggleMouseControls":true},{"buttonMask":3}])");
  EXPECT_NE(out.find("1, B1        2, B1+B2  late     fires  late\n"), std::string::npos) << out;
}

TEST(ConflictsCommand, DrawsWhatItTells) {
  const std::string controls =
      R"("controls":[{"description":"a \"<b>\" \\","buttonMask":1},{"buttonMask":3},)"
      R"({"buttonMask":16,"repeatEnabled":true},{"buttonMask":32,"repeatEnabled":true},)"
      R"({"buttonMask":64,"repeatEnabled":true},{"buttonMask":192,"repeatEnabled":true},)"
      R"({"buttonMask":512}])";
  // 5 loses its repeat to 6, which has its inputs; all others that repeat take it from one another.
  EXPECT_EQ(Conflicting(controls, {"--dot"}),
            "digraph \"Two\" {\n"
            "  node [shape=box];\n"
            "  c1 [label=\"Control 2\\nB1+B2\"];\n"
            "  c2 [label=\"Control 6\\nB7+B8\\nrepeats\"];\n"
            "  c3 [label=\"Control 3\\nB5\\nrepeats\"];\n"
            "  c4 [label=\"Control 4\\nB6\\nrepeats\"];\n"
            "  c5 [label=\"Control 5\\nB7\\nrepeats\"];\n"
            "  c6 [label=\"Control 1 'a \\\"<b>\\\" \\\\'\\nB1\"];\n"
            "  c2 -> c5;\n"
            "  c1 -> c6;\n"
            "  c5 -> c2 [style=dashed, constraint=false];\n"
            "}\n");
  const std::string svg = Conflicting(controls, {"--svg"});
  EXPECT_TRUE(svg.starts_with("<svg xmlns=\"http://www.w3.org/2000/svg\"")) << svg;
  EXPECT_NE(svg.find(">Control 1 'a &quot;&lt;b&gt;&quot; \\'  B1</text>"), std::string::npos);
  std::size_t texts = 0;
  std::size_t arcs = 0;
  for (std::size_t at = 0; (at = svg.find("<text ", at)) != std::string::npos; ++at) ++texts;
  for (std::size_t at = 0; (at = svg.find("marker-end=", at)) != std::string::npos; ++at) ++arcs;
  EXPECT_EQ(texts, 6u);
  EXPECT_EQ(arcs, 3u);
}

TEST(ConflictsCommand, OneFormAtATime) {
  for (const char* other : {"--json", "--dot"}) {
    const Outcome outcome = Kelvaroctl({"conflicts", "--svg", other, "x"});
    EXPECT_EQ(outcome.status, 2) << other;
    EXPECT_NE(outcome.err.find("--svg"), std::string::npos) << outcome.err;
  }
  EXPECT_EQ(Kelvaroctl({"conflicts", "no such profile"}).status, 1);
}

}  // namespace
}  // namespace kelvaro::console
