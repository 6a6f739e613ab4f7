#include "tests/console/console_run.h"

namespace kelvaro::console {
namespace {

Outcome Simulate(std::vector<std::string> words) {
  words.insert(words.begin(), {"play", "--simulate"});
  return Kelvaroctl(words);
}

TEST(PlayCommand, PressesAndReleasesAsAControlWould) {
  struct {
    const char* why;
    std::vector<std::string> words;
    const char* lines;
  } const kCases[] = {
      {"no times: all at once",
       {"ab"},
       "       0 ms  a down\n"
       "       0 ms  a up\n"
       "       0 ms  b down\n"
       "       0 ms  b up\n"},
      {"each key is held, with a pause between",
       {"ab", "--hold-time", "20", "--release-pause", "10", "--release-after", "100"},
       "       0 ms  a down\n"
       "      20 ms  a up\n"
       "      30 ms  b down\n"
       "     150 ms  b up\n"},
      {"a repeating one lets go by itself",
       {"--repeat", "ab", "--hold-time", "20", "--release-pause", "10", "--release-after", "100"},
       "       0 ms  a down\n"
       "      20 ms  a up\n"
       "      30 ms  b down\n"
       "      50 ms  b up\n"},
      {"a release lets the modifier go first",
       {"<Ctrl>c", "--release-after", "5"},
       "       0 ms  <Ctrl> down\n"
       "       0 ms  c down\n"
       "       5 ms  <Ctrl> up\n"
       "       5 ms  c up\n"},
      {"a repeat lets the key go first",
       {"--repeat", "<Ctrl>c", "--hold-time", "5"},
       "       0 ms  <Ctrl> down\n"
       "       0 ms  c down\n"
       "       5 ms  c up\n"
       "       5 ms  <Ctrl> up\n"},
      {"holding all knows no times",
       {"--hold-all", "<Ctrl>a<Shift>b", "--hold-time", "20", "--release-pause", "10",
        "--release-after", "7"},
       "       0 ms  <Ctrl> down\n"
       "       0 ms  a down\n"
       "       0 ms  <Shift> down\n"
       "       0 ms  b down\n"
       "       7 ms  <Ctrl> up\n"
       "       7 ms  a up\n"
       "       7 ms  <Shift> up\n"
       "       7 ms  b up\n"},
      {"a long pause sends its stray release and takes the place of the release pause",
       {"a<P:500>b", "--release-pause", "10"},
       "       0 ms  a down\n"
       "       0 ms  a up\n"
       "     500 ms  key 1 scan 244 up (stray, of the pause of 500 ms)\n"
       "     500 ms  b down\n"
       "     500 ms  b up\n"},
      {"a mouse button",
       {"<LMouse>", "--release-after", "3"},
       "       0 ms  left mouse button down\n"
       "       3 ms  left mouse button up\n"},
      {"the longest times there are",
       {"a", "--hold-time", "4294967295", "--release-after", "4294967295"},
       "       0 ms  a down\n"
       "8589934590 ms  a up\n"},
      {"nothing", {""}, ""},
  };
  for (const auto& c : kCases) {
    const Outcome outcome = Simulate(c.words);
    EXPECT_EQ(outcome.out, c.lines) << c.why;
    EXPECT_EQ(outcome.err, "") << c.why;
    EXPECT_EQ(outcome.status, 0) << c.why;
  }
}

TEST(PlayCommand, PrintsJsonLines) {
  EXPECT_EQ(Simulate({"--json", "<Del>", "--hold-time", "8"}).out,
            "{\"t\":0,\"event\":\"key\",\"vk\":46,\"scan\":211,\"flags\":1}\n"
            "{\"t\":8,\"event\":\"key\",\"vk\":46,\"scan\":211,\"flags\":3}\n");
  EXPECT_EQ(Simulate({"--json", "<RMouse>"}).out,
            "{\"t\":0,\"event\":\"mouse\",\"flags\":8,\"dx\":0,\"dy\":0,\"data\":0}\n"
            "{\"t\":0,\"event\":\"mouse\",\"flags\":16,\"dx\":0,\"dy\":0,\"data\":0}\n");
}

TEST(PlayCommand, SendsNothingOfAFaultyText) {
  for (const bool simulate : {true, false}) {
    std::vector<std::string> words{"play", "ab<foo>"};
    if (simulate) words.push_back("--simulate");
    const Outcome outcome = Kelvaroctl(words);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err,
              "kelvaroctl: there is no key <foo> (write << for the character itself)\n"
              "  ab<foo>\n"
              "    ^\n");
  }
  EXPECT_EQ(Simulate({"--hold-all", "aa"}).err,
            "kelvaroctl: a key can't be there twice when all keys are held down\n  aa\n   ^\n");
}

}  // namespace
}  // namespace kelvaro::console
