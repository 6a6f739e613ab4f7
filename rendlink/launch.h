// What is to be started, and the words of Kelvaro's command line that say so. Kelvaro takes its
// command line apart by blanks and double quotes and has no way to write a double quote but
// inside of "args=", so some texts can't be carried: those are refused, never changed.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "app/start/quote_chars.h"

namespace kelvaro::rendlink {

using Words = std::vector<std::string>;

// Texts are bytes.
struct Launch {
  std::vector<std::string> profiles;  // the first is for the instance that starts the target
  std::string target;
  std::string args;
  std::string dir;
  friend bool operator==(const Launch&, const Launch&) = default;
};

// The program's path `kelvaro` and its arguments, for a Kelvaro that reads its command line by
// `chars`. False, with *words untouched and a sentence for the person in *refusal, when something
// is missing or can't be carried.
bool KelvaroWords(const std::string& kelvaro, const Launch& launch, const QuoteChars& chars,
                  Words* words, std::string* refusal);

// The words as one line for a POSIX shell.
std::string ShellLine(const Words& words);

// The words as one line for CreateProcessA; none of them may have a double quote.
std::string ProcessLine(const Words& words);

// What stands in a process's line on Windows behind that many words, to the last byte: each program
// takes its line apart in its own way. By the rules of Microsoft's compilers, as main's words are.
std::string LineBehind(std::string_view line, std::size_t words);

}  // namespace kelvaro::rendlink
