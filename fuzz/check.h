// What a fuzz target finds out by itself.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

// Ends the program, with what doesn't hold and the text that it is about, where it doesn't.
inline void Check(bool holds, const char* what, const std::string& text = {}) {
  if (holds) return;
  std::fprintf(stderr, "%s:\n%s\n", what, text.c_str());
  std::abort();
}
