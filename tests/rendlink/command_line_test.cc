#include "rendlink/command_line.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kelvaro::rendlink {
namespace {

struct Read {
  std::optional<int> status;
  Options options;
  std::string out, err;
};

Read ReadWords(const Words& words) {
  std::ostringstream out, err;
  Read read;
  read.status = ReadOptions(words, &read.options, {out, err});
  read.out = out.str();
  read.err = err.str();
  return read;
}

TEST(ReadOptions, TakesEveryOption) {
  const Read read = ReadWords({"--profile", "A b", "--profile", "C", "--target", "/t", "--args",
                               "-x \"y\"", "--dir", "/d", "--save", "f.desktop"});
  EXPECT_EQ(read.status, std::nullopt) << read.err;
  EXPECT_EQ(read.options.launch.profiles, (std::vector<std::string>{"A b", "C"}));
  EXPECT_EQ(read.options.launch.target, "/t");
  EXPECT_EQ(read.options.launch.args, "-x \"y\"");
  EXPECT_EQ(read.options.launch.dir, "/d");
  EXPECT_EQ(read.options.save, "f.desktop");
  EXPECT_FALSE(read.options.start);
  EXPECT_FALSE(read.options.game);
}

TEST(ReadOptions, ValuesAreTakenAsTheyStand) {
  for (const std::string value :
       {"[x]", "[a,b]", "{}", "-x", "--start", "a,b", "\"q\"", "'q'", "`q`", "=", "a=b", "%", " ",
        "$x", "\\n", "b\"(x)\"", "#x", "\xFF"}) {
    const Read read = ReadWords(
        {"--profile", value, "--target", value, "--args", value, "--dir", value, "--save", value});
    EXPECT_EQ(read.status, std::nullopt) << value << ": " << read.err;
    EXPECT_EQ(read.options.launch.profiles, std::vector<std::string>{value});
    for (const std::string* text : {&read.options.launch.target, &read.options.launch.args,
                                    &read.options.launch.dir, &read.options.save})
      EXPECT_EQ(*text, value);
  }
}

TEST(ReadOptions, WhatStandsBehindTwoDashesIsTheGameToTheLastByte) {
  const Words game = {"/g/x", "--profile", "", "-h", "--", "\"a b\"", "\n\x01\xFF"};
  Words words = {"--profile", "A", "--"};
  words.insert(words.end(), game.begin(), game.end());
  const Read read = ReadWords(words);
  EXPECT_EQ(read.status, std::nullopt) << read.err;
  EXPECT_EQ(read.options.game, game);
  EXPECT_EQ(read.options.launch.profiles, std::vector<std::string>{"A"});
}

TEST(ReadOptions, TellsHelpAndVersion) {
  const Read help = ReadWords({"--help"});
  EXPECT_EQ(help.status, kDone);
  for (const char* word : {"--profile", "--target", "--args", "--dir", "--save", "--start", "--"})
    EXPECT_NE(help.out.find(word), std::string::npos) << word;
  const Read version = ReadWords({"--version"});
  EXPECT_EQ(version.status, kDone);
  EXPECT_EQ(version.out, "Rendlink, Version 3.5\n");
}

TEST(ReadOptions, RefusesWhatDoesntGoTogether) {
  const Words kRows[] = {
      {"--target", "/t"},
      {"--profile", "A"},
      {"--profile"},
      {"--profile", "A", "--target", "/t", "--save", "f", "--start"},
      {"--profile", "A", "--target", "/t", "--save", ""},
      {"--profile", "A", "--target", "/t", "more"},
      {"--profile", "A", "--target", "/t", "--none"},
      {"--profile", "A", "--"},
      {"--", "game"},
      {"--profile", "A", "--target", "/t", "--", "game"},
      {"--profile", "A", "--args", "x", "--", "game"},
      {"--profile", "A", "--save", "f", "--", "game"},
      {"--profile", "A", "--start", "--", "game"},
  };
  for (const Words& words : kRows) {
    const Read read = ReadWords(words);
    EXPECT_EQ(read.status, kRefused) << ShellLine(words);
    EXPECT_EQ(read.err.substr(0, 10), "rendlink: ") << read.err;
    EXPECT_NE(read.err.find("rendlink --help"), std::string::npos) << read.err;
    EXPECT_EQ(read.out, "");
  }
}

}  // namespace
}  // namespace kelvaro::rendlink
