// Another program's window on an X server: what is typed while it has the keyboard.
#pragma once

#include <string>
#include <utility>
#include <vector>

struct _XDisplay;

namespace kelvaro::kernel {

class XClient {
 public:
  // Shows the window. Exits the program with a message where the server doesn't answer.
  XClient(const std::string& display, const std::string& title);
  ~XClient();
  XClient(const XClient&) = delete;
  XClient& operator=(const XClient&) = delete;

  unsigned long Window() const { return window; }

  // Everything since the start, without the server's own key repeat: "x down", "x up".
  const std::vector<std::string>& Texts();

 private:
  _XDisplay* display = nullptr;
  unsigned long window = 0;
  std::vector<std::string> texts;
};

// Where the pointer is on that display.
std::pair<int, int> PointerOn(const std::string& display);

}  // namespace kelvaro::kernel
