// A window in front of all others that prints what is typed and clicked in it, a line each behind
// the time in microseconds: "81234567 down 65 scan 30". The first line is "ready".

#include <cstdio>

// Last.
#include "tests/windows/focused_window.h"

namespace {

long long NowUs() {
  LARGE_INTEGER now;
  LARGE_INTEGER perSecond;
  QueryPerformanceCounter(&now);
  QueryPerformanceFrequency(&perSecond);
  return now.QuadPart * 1000000 / perSecond.QuadPart;
}

}  // namespace

int main() {
  kelvaro::tests::ShowFocusedWindow([](const std::string& text) {
    std::printf("%lld %s\n", NowUs(), text.c_str());
    std::fflush(stdout);
  });
  std::printf("ready\n");
  std::fflush(stdout);
  for (MSG message; GetMessageA(&message, nullptr, 0, 0) > 0;) DispatchMessageA(&message);
  return 0;
}
