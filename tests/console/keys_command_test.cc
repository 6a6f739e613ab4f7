#include "tests/console/console_run.h"

namespace kelvaro::console {
namespace {

TEST(KeysCommand, PrintsResultStepsAndCanonicalTextAsJson) {
  struct {
    std::vector<std::string> words;
    int status;
    const char* line;
  } const kCases[] = {
      {{"a"}, 0, R"({"result":-1,"duplicateKey":false,"steps":[[65,30,0]],"text":"a"})"},
      {{""}, 0, R"({"result":-1,"duplicateKey":false,"steps":[],"text":""})"},
      {{"<ctrl>c"},
       0,
       R"({"result":-1,"duplicateKey":false,"steps":[[67,46,2]],"text":"<Ctrl>c"})"},
      {{"aB"},
       0,
       R"({"result":-2,"duplicateKey":false,"steps":[[65,30,0],[66,48,8]],"text":"aB"})"},
      {{"a<p:500>\""},
       0,
       R"({"result":-1,"duplicateKey":false,"steps":[[65,30,0],[1,244,128],[222,40,8]],)"
       R"("text":"a<P:500>\""})"},
      {{"a<foo>b"}, 1, R"({"result":1,"duplicateKey":false,"steps":[[65,30,0]],"text":"a"})"},
      {{"--hold-all", "ab"},
       0,
       R"({"result":-1,"duplicateKey":false,"steps":[[65,30,0],[66,48,0]],"text":"ab"})"},
      {{"--hold-all", "aba"},
       1,
       R"({"result":2,"duplicateKey":true,"steps":[[65,30,0],[66,48,0]],"text":"ab"})"},
      {{"--steps", "41 1e 00, 42 30 08"}, 0, R"({"steps":[[65,30,0],[66,48,8]],"text":"aB"})"},
      {{"--steps", "0 0 1"}, 0, R"({"steps":[[0,0,1]],"text":"<Shift>"})"},
      {{"--steps", "  41\t1E 0 ,42 30 8"}, 0, R"({"steps":[[65,30,0],[66,48,8]],"text":"aB"})"},
      {{"--steps", ""}, 0, R"({"steps":[],"text":""})"},
  };
  for (const auto& c : kCases) {
    std::vector<std::string> words{"keys", "--json"};
    words.insert(words.end(), c.words.begin(), c.words.end());
    const Outcome outcome = Kelvaroctl(words);
    EXPECT_EQ(outcome.out, std::string(c.line) + "\n");
    EXPECT_EQ(outcome.status, c.status) << c.line;
    EXPECT_EQ(outcome.err, "") << c.line;
  }
}

TEST(KeysCommand, ShowsPeopleTheStepsOneByOne) {
  const Outcome outcome = Kelvaroctl({"keys", "<LShift><Del>a<P:500>"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out,
            "<LShift><Del>a<P:500>\n"
            "  vk 2e  scan d3  flags 21  <LShift><Del>\n"
            "  vk 41  scan 1e  flags 00  a\n"
            "  vk 01  scan f4  flags 80  <P:500>\n");
  EXPECT_EQ(outcome.err, "");
}

TEST(KeysCommand, RemindsOfTheShiftOfUpperCase) {
  EXPECT_EQ(Kelvaroctl({"keys", "A"}).out,
            "A\n"
            "  vk 41  scan 1e  flags 08  A\n"
            "  note: upper case letters are replayed with a shift key press\n");
  EXPECT_EQ(Kelvaroctl({"keys", "!"}).out, "!\n  vk 31  scan 02  flags 08  !\n");
}

TEST(KeysCommand, ShowsAFaultWithACaret) {
  const Outcome outcome = Kelvaroctl({"keys", "ab<foo>"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "kelvaroctl: there is no key <foo> (write << for the character itself)\n"
            "  ab<foo>\n"
            "    ^\n");
}

TEST(KeysCommand, WritesStepsAsText) {
  const Outcome outcome = Kelvaroctl({"keys", "--steps", "41 1e 00, 42 30 08"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "aB\n");
}

TEST(KeysCommand, NamesTheStepThatIsWrong) {
  struct {
    const char* steps;
    const char* fault;
  } const kCases[] = {
      {"41 1e", "step 1: a step is three bytes, vk scan flags"},
      {"41 1e 00 00", "step 1: a step is three bytes, vk scan flags"},
      {"41 1e 00,", "step 2: a step is three bytes, vk scan flags"},
      {",41 1e 00", "step 1: a step is three bytes, vk scan flags"},
      {"41 1e 00,,42 30 08", "step 2: a step is three bytes, vk scan flags"},
      {"41 1e 00, 42 30 xx", "step 2: 'xx' is not a byte in hexadecimal"},
      {"41 1e 100", "step 1: '100' is not a byte in hexadecimal"},
      {"41 1e 0x0", "step 1: '0x0' is not a byte in hexadecimal"},
      {"41 1e -1", "step 1: '-1' is not a byte in hexadecimal"},
      {"411e00", "step 1: '411e00' is not a byte in hexadecimal"},
  };
  for (const auto& c : kCases) {
    const Outcome outcome = Kelvaroctl({"keys", "--json", "--steps", c.steps});
    EXPECT_EQ(outcome.status, 1) << c.steps;
    EXPECT_EQ(outcome.out, "") << c.steps;
    EXPECT_EQ(outcome.err, "kelvaroctl: " + std::string(c.fault) + "\n") << c.steps;
  }
}

}  // namespace
}  // namespace kelvaro::console
