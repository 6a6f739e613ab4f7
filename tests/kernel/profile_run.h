// `kelvaroctl run` at work on a pad, with a reader on its keyboard and one on its mouse.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tests/host/json.h"
#include "tests/kernel/child.h"
#include "tests/kernel/reader.h"

namespace kelvaro::kernel {

// Parts of a profile in its JSON form. `more` is put in as further members, such as
// "\"repeatEnabled\":true". `text` is the key text.
std::string ButtonControl(std::size_t button, const std::string& text,
                          const std::string& more = "");  // button from 0
std::string MaskControl(std::uint64_t buttons, const std::string& text,
                        const std::string& more = "");
std::string ItemControl(int kind, int index, int value, const std::string& text);
std::string ProfileOf(const std::vector<std::string>& controls, const std::string& more = "");

// Key texts of 64 different keys with the names that the kernel has for them behind "KEY_".
struct NamedKey {
  std::string text;
  std::string name;
};
std::vector<NamedKey> SixtyFourKeys();

// What `kelvaroctl devices` tells, a device an entry.
std::vector<tests::Json> Devices(const ChildOptions& options = {});
tests::Json OnlyDevice();

// Comes back once `child` has the node open. False, and a failure, if it doesn't.
bool Polls(const Child& child, const std::string& node);
// Reads the virtual keyboard of that run as soon as it is there; null, and a failure, without one.
std::unique_ptr<Reader> KeyboardOf(const Child& child);

class ProfileRun {
 public:
  // Starts it on the device called `device`, and comes back once the pad at `node` is being polled
  // and both virtual devices are being read. A start that fails is a failure of the test; Started()
  // is then false and nothing else may be used.
  ProfileRun(const std::string& profile, const std::string& device, const std::string& node,
             const std::vector<std::string>& options = {}, const ChildOptions& how = {});

  bool Started() const { return mouse != nullptr; }
  Child& Process() { return *child; }
  Reader& Keyboard() { return *keyboard; }
  Reader& Mouse() { return *mouse; }

 private:
  std::unique_ptr<Child> child;
  std::unique_ptr<Reader> keyboard;
  std::unique_ptr<Reader> mouse;
};

// Waits until as many events have come as are expected, and 40 ms more for what is too much; then
// compares. A difference prints both columns.
::testing::AssertionResult Sent(Reader& reader, const std::vector<std::string>& expected);

::testing::AssertionResult SameColumns(const std::vector<std::string>& expected,
                                       const std::vector<std::string>& actual);

}  // namespace kelvaro::kernel
