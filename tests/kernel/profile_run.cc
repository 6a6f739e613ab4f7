#include "tests/kernel/profile_run.h"

#include <algorithm>
#include <set>
#include <sstream>

#include "tests/cases/case_file.h"
#include "tests/kernel/trace.h"
#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

std::string Joined(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) {
    if (!text.empty()) {
      text += ',';
    }
    text += part;
  }
  return text;
}

std::string ActionsOf(const std::string& text) {
  std::string escaped;
  for (char c : text) {
    if (c == '"' || c == '\\') {
      escaped += '\\';
    }
    escaped += c;
  }
  return "\"actions\":[{\"text\":\"" + escaped + "\"}]";
}

std::string With(const std::string& more) { return more.empty() ? "" : "," + more; }

}  // namespace

std::string ButtonControl(std::size_t button, const std::string& text, const std::string& more) {
  return MaskControl(1ULL << button, text, more);
}

std::string MaskControl(std::uint64_t buttons, const std::string& text, const std::string& more) {
  std::ostringstream mask;
  mask << "0x" << std::hex << buttons;
  return "{\"buttonMask\":\"" + mask.str() + "\"," + ActionsOf(text) + With(more) + "}";
}

std::string ItemControl(int kind, int index, int value, const std::string& text) {
  return "{\"triggerItems\":[{\"kind\":" + std::to_string(kind) +
         ",\"index\":" + std::to_string(index) + ",\"value\":" + std::to_string(value) + "}]," +
         ActionsOf(text) + "}";
}

std::string ProfileOf(const std::vector<std::string>& controls, const std::string& more) {
  return "{\"controls\":[" + Joined(controls) + "]" + With(more) + "}\n";
}

std::vector<NamedKey> SixtyFourKeys() {
  std::vector<NamedKey> keys;
  for (char c = 'a'; c <= 'z'; ++c) {
    keys.push_back({std::string(1, c), std::string(1, static_cast<char>(c - 'a' + 'A'))});
  }
  for (char c = '0'; c <= '9'; ++c) {
    keys.push_back({std::string(1, c), std::string(1, c)});
    keys.push_back({std::string("<NP") + c + ">", std::string("KP") + c});
  }
  for (int i = 1; i <= 12; ++i) {
    const std::string name = "F" + std::to_string(i);
    keys.push_back({"<" + name + ">", name});
  }
  keys.insert(keys.end(), {{"-", "MINUS"},
                           {"=", "EQUAL"},
                           {";", "SEMICOLON"},
                           {",", "COMMA"},
                           {".", "DOT"},
                           {"/", "SLASH"}});
  return keys;
}

std::vector<tests::Json> Devices(const ChildOptions& options) {
  const Finished devices = RunToEnd({KelvaroctlPath(), "devices", "--json"}, options);
  EXPECT_EQ(devices.status, 0) << devices.err;
  return tests::ParsedLines(devices.out);
}

tests::Json OnlyDevice() {
  const std::vector<tests::Json> devices = Devices();
  EXPECT_EQ(devices.size(), 1U);
  return devices.empty() ? tests::Json() : devices[0];
}

bool Polls(const Child& child, const std::string& node) {
  const bool polls = Eventually([&] { return DescriptorOf(child.Id(), node) >= 0; }, 10000);
  EXPECT_TRUE(polls) << child.Err();
  WaitMs(300);  // its first polls
  return polls;
}

std::unique_ptr<Reader> KeyboardOf(const Child& child) {
  std::string keys;
  Eventually(
      [&] {
        keys = FindInput([](const InputNode& node) { return node.name == kKeyboardName; });
        return !keys.empty();
      },
      5000);
  EXPECT_FALSE(keys.empty()) << child.Err();
  return keys.empty() ? nullptr : std::make_unique<Reader>(keys);
}

ProfileRun::ProfileRun(const std::string& profile, const std::string& device,
                       const std::string& node, const std::vector<std::string>& options,
                       const ChildOptions& how) {
  std::set<std::string> before;
  for (const InputNode& input : InputNodes()) {
    before.insert(input.path);
  }
  std::vector<std::string> arguments = {KelvaroctlPath(), "run", "--json"};
  if (!device.empty()) {
    arguments.insert(arguments.end(), {"--device", device});
  }
  arguments.insert(arguments.end(), options.begin(), options.end());
  arguments.push_back(WriteFile(profile));
  child = std::make_unique<Child>(arguments, how);
  const auto fresh = [&](const char* name) {
    return FindInput(
        [&](const InputNode& input) { return input.name == name && !before.contains(input.path); });
  };
  std::string keys;
  std::string pointer;
  const bool ready = Eventually(
      [&] {
        keys = fresh(kKeyboardName);
        pointer = fresh(kMouseName);
        return !child->Running() ||
               (!keys.empty() && !pointer.empty() && DescriptorOf(child->Id(), node) >= 0);
      },
      20000);
  if (!ready || !child->Running()) {
    ADD_FAILURE() << "kelvaroctl run didn't start: keyboard '" << keys << "', mouse '" << pointer
                  << "', pad " << (DescriptorOf(child->Id(), node) >= 0 ? "open" : "not open")
                  << "\n"
                  << child->Err() << child->Out();
    return;
  }
  keyboard = std::make_unique<Reader>(keys);
  mouse = std::make_unique<Reader>(pointer);
  WaitMs(50);  // its first polls
}

::testing::AssertionResult SameColumns(const std::vector<std::string>& expected,
                                       const std::vector<std::string>& actual) {
  if (expected == actual) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << "\n" << cases::SideBySide(expected, actual);
}

::testing::AssertionResult Sent(Reader& reader, const std::vector<std::string>& expected) {
  reader.WaitFor(expected.size(), 2000);
  WaitMs(40);
  return SameColumns(expected, reader.Texts());
}

}  // namespace kelvaro::kernel
