// Whatever is chosen comes out again behind a launcher file and Kelvaro's command line, or is
// refused. The file is taken apart here by the words of freedesktop.org's standard, apart from
// the code that wrote it.
#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "app/layout/dialog.h"
#include "app/platform/entry_text.h"
#include "app/platform/qt/qt_shell.h"
#include "app/start/launch_request.h"
#include "rendlink/desktop_entry.h"
#include "rendlink/launch.h"

namespace kelvaro::rendlink {
namespace {

constexpr char kKelvaro[] = "/opt/my games/kelvaro";

std::string ValueOf(const std::string& file, const std::string& key) {
  const std::size_t at = file.find("\n" + key + "=");
  if (at == std::string::npos) return "no " + key;
  const std::size_t start = at + key.size() + 2;
  return file.substr(start, file.find('\n', start) - start);
}

// "The escape sequences \s, \n, \t, \r, and \\ are supported for values of type string".
std::string WithoutEscapes(const std::string& value) {
  std::string out;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] != '\\') {
      out += value[i];
      continue;
    }
    switch (i + 1 < value.size() ? value[++i] : '?') {
      case 's':
        out += ' ';
        break;
      case 'n':
        out += '\n';
        break;
      case 't':
        out += '\t';
        break;
      case 'r':
        out += '\r';
        break;
      case '\\':
        out += '\\';
        break;
      default:
        ADD_FAILURE() << "no escape: " << value;
    }
  }
  return out;
}

// Arguments are parted by a space and quoted in whole or not at all; in quotes a backslash stands
// before a double quote, backtick, dollar sign and backslash; "%%" is a percent sign.
Words Arguments(const std::string& exec) {
  const std::string reserved = "\t\n'\\><~|&;$*?#()`";
  Words words;
  std::size_t i = 0;
  while (i < exec.size()) {
    std::string word;
    if (exec[i] == '"') {
      for (++i; i < exec.size() && exec[i] != '"'; ++i) {
        if (exec[i] == '\\') {
          ++i;
          EXPECT_NE(std::string("\"`$\\").find(exec.at(i)), std::string::npos) << exec;
        } else {
          EXPECT_EQ(std::string("`$").find(exec[i]), std::string::npos) << exec;
        }
        word += exec.at(i);
      }
      EXPECT_LT(i, exec.size()) << "open: " << exec;
      ++i;
    } else {
      for (; i < exec.size() && exec[i] != ' '; ++i) {
        EXPECT_EQ(reserved.find(exec[i]), std::string::npos) << exec;
        EXPECT_NE(exec[i], '"') << exec;
        word += exec[i];
      }
    }
    std::string plain;
    for (std::size_t k = 0; k < word.size(); ++k) {
      plain += word[k];
      if (word[k] != '%') continue;
      EXPECT_EQ(k + 1 < word.size() ? word[k + 1] : '?', '%') << "a field code: " << exec;
      ++k;
    }
    words.push_back(plain);
    if (i < exec.size()) {
      EXPECT_EQ(exec[i], ' ') << exec;
      ++i;
    }
  }
  return words;
}

struct ReadBack {
  std::vector<std::string> profiles;
  std::string target, args, dir;
};

ReadBack ByKelvaro(const std::string& line, const QuoteChars& chars) {
  const LaunchRequest request = ReadCommandLine(TextOf(line), chars);
  ReadBack back;
  for (const ByteString& name : request.profiles) back.profiles.push_back(Bytes(name));
  back.target = Bytes(request.target);
  back.args = Bytes(request.args);
  back.dir = Bytes(request.dir);
  return back;
}

// As a program on Linux puts its words together again.
std::string Joined(const Words& words, const QuoteChars& chars) {
  return platform::qt::JoinCommandLine(words.at(0), Words(words.begin() + 1, words.end()),
                                       chars.quoteSub);
}

class Random {
 public:
  explicit Random(std::uint32_t seed) : engine(seed) {}
  std::size_t Below(std::size_t count) { return engine() % count; }
  std::string Text(std::size_t most, const std::vector<std::string>& pieces) {
    std::string text;
    for (std::size_t left = Below(most + 1); left > 0; --left) text += pieces[Below(pieces.size())];
    return text;
  }

 private:
  std::mt19937 engine;
};

std::vector<std::string> Pieces() {
  std::istringstream words(
      R"(' % %f %% $ $x \ \n \" ` = ~ # & ; ( ) * ? < > a Bc -x / . , @ ^ { ! profile= args=)"
      " \xC3\xA9 \xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x8E\xAE");
  std::vector<std::string> pieces{" ", " ", "\t", "k=v w"};
  pieces.insert(pieces.end(), std::istream_iterator<std::string>(words), {});
  return pieces;
}
const std::vector<std::string> kPieces = Pieces();

Launch RandomLaunch(Random& random, std::vector<std::string> pieces) {
  Launch launch;
  for (std::size_t i = random.Below(3); i < 3; ++i)
    launch.profiles.push_back(random.Text(6, pieces) + pieces[random.Below(pieces.size())]);
  launch.target = "/" + random.Text(8, pieces);
  launch.dir = random.Below(2) == 0 ? "" : "/" + random.Text(8, pieces);
  pieces.insert(pieces.end(), {"\"", "\"", "\"a b\""});
  launch.args = random.Text(12, pieces);
  return launch;
}

// The launch as it comes out.
void ExpectItComesBack(const Launch& launch, const Words& words, const QuoteChars& chars) {
  std::string file;
  std::string refusal;
  ASSERT_TRUE(DesktopEntryText({"n", "c", "i", words}, &file, &refusal)) << refusal;
  const Words read = Arguments(WithoutEscapes(ValueOf(file, "Exec")));
  EXPECT_EQ(read, words) << file;
  // The second line is a shortcut's on Windows.
  for (const std::string& line : {Joined(read, chars), ProcessLine(words)}) {
    const ReadBack back = ByKelvaro(line, chars);
    EXPECT_EQ(back.profiles, launch.profiles) << line;
    EXPECT_EQ(back.target, launch.target) << line;
    EXPECT_EQ(back.args, launch.args) << line;
    EXPECT_EQ(back.dir, launch.dir) << line;
  }
  // What this program reads of a launcher agrees.
  EXPECT_EQ(ExecWords(platform::ReadEntry(file).at("Exec")), words) << file;
}

bool Has(const std::string& text, const char* any) {
  return text.find_first_of(any) != std::string::npos;
}

// How many of 5000 launches of these pieces are refused: each that has a double quote or a mark
// where it can't be carried, and no other, which comes out again.
int Refused(std::uint32_t seed, const std::vector<std::string>& pieces) {
  Random random(seed);
  int refused = 0;
  for (int i = 0; i < 5000 && !testing::Test::HasFailure(); ++i) {
    const Launch launch = RandomLaunch(random, pieces);
    bool carried =
        !Has(launch.target, "\"|") && !Has(launch.dir, "\"|") && !Has(launch.args, "|[]");
    for (const std::string& profile : launch.profiles) carried = carried && !Has(profile, "\"|");
    Words words;
    std::string refusal;
    EXPECT_EQ(KelvaroWords(kKelvaro, launch, {}, &words, &refusal), carried) << refusal;
    if (carried && !words.empty()) ExpectItComesBack(launch, words, {});
    refused += carried ? 0 : 1;
  }
  return refused;
}

TEST(RoundTrip, WhatIsChosenComesOutAgain) {
  // An odd backslash before a quote is part of some texts.
  const int refused = Refused(20250101, kPieces);
  EXPECT_GT(refused, 0);
  EXPECT_LT(refused, 4500);
}

TEST(RoundTrip, WhatIsRefusedHasACharacterThatCantBeCarriedAndAllElseIsCarried) {
  std::vector<std::string> pieces = kPieces;
  pieces.insert(pieces.end(), {"|", "[", "]"});
  const int refused = Refused(7, pieces);
  EXPECT_GT(refused, 1000);
  EXPECT_LT(refused, 4500);
}

TEST(RoundTrip, WithAnyQuoteCharactersWhatIsNotRefusedComesOutAgain) {
  Random random(99);
  const std::string marks = "|[]{}^~!%\\'\"=,.-/ \tapk1\xC3\xA9";
  int carried = 0;
  for (int i = 0; i < 10000 && !testing::Test::HasFailure(); ++i) {
    const QuoteChars chars{marks[random.Below(marks.size())], marks[random.Below(marks.size())],
                           marks[random.Below(marks.size())]};
    Launch launch = RandomLaunch(random, kPieces);
    if (random.Below(2) == 0) launch = {{"Z"}, "/Z", launch.args, ""};
    Words words;
    std::string refusal;
    if (!KelvaroWords("/Z", launch, chars, &words, &refusal)) {
      EXPECT_FALSE(refusal.empty());
      continue;
    }
    ++carried;
    const ReadBack back = ByKelvaro(Joined(words, chars), chars);
    EXPECT_EQ(back.profiles, launch.profiles) << chars.quoteSub;
    EXPECT_EQ(back.target, launch.target) << chars.quoteSub;
    EXPECT_EQ(back.args, launch.args)
        << chars.quoteSub << chars.leftArgQuote << chars.rightArgQuote;
    EXPECT_EQ(back.dir, launch.dir) << chars.quoteSub;
  }
  EXPECT_GT(carried, 500);
}

}  // namespace
}  // namespace kelvaro::rendlink
