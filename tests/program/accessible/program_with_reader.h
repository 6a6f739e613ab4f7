// A real program on a display of its own and on the accessibility bus, and what its dialogs' tables
// say of it.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/dialog_template.h"
#include "tests/program/accessible/screen_reader.h"
#include "tests/program/machine.h"
#include "tests/program/stored_settings.h"

namespace kelvaro::tests {

using platform::ControlKind;
using platform::ControlTemplate;
using platform::DialogTemplate;
using Rows = std::vector<ControlTemplate>;

// Of a text with mnemonic marks; none of ours has a "&" of its own.
inline std::string Plain(std::string text) {
  std::erase(text, '&');
  return text;
}

// The label that stands before a field in its dialog's table; empty for none.
inline std::string LabelOf(const Rows& rows, std::size_t field) {
  while (field > 0 && !TakesFocus(rows[field - 1].kind)) {
    const ControlTemplate& before = rows[--field];
    if (before.kind == ControlKind::Label) return Plain(before.text);
  }
  return {};
}

// The rows that are seen while a page is open, -1 for a dialog without pages.
inline Rows OnPage(const DialogTemplate& dialog, int page) {
  Rows rows;
  int at = -1;
  for (const ControlTemplate& row : dialog.controls) {
    if (row.kind == ControlKind::Box) ++at;
    const bool hidden = row.style & platform::kStyleHidden;
    if (!hidden && row.kind != ControlKind::Box && (at == -1 || at == page)) rows.push_back(row);
  }
  return rows;
}

class ProgramWithReader : public testing::Test {
 protected:
  void SetUp() override {
    SKIP_UNLESS(desktop.Works(), "xvfb", "Xvfb and icewm can't be started");
    SKIP_UNLESS(reader.Works(), "atspi", "no accessibility bus can be started");
    // With a folder of profiles that no other test looks at.
    std::filesystem::create_directory(home.In("installed"));
    for (const char* name : {"kelvaro", "kelvaroctl", "rendlink", "Profiles"})
      std::filesystem::copy(Program(name), home.In("installed/") + name,
                            std::filesystem::copy_options::recursive);
  }

  void Begin(const std::string& name) {
    running = name;
    auto variables = home.Environment();
    variables["DISPLAY"] = desktop.Name();
    variables["DBUS_SESSION_BUS_ADDRESS"] = reader.BusAddress();
    program = std::make_unique<Child>(std::vector<std::string>{home.In("installed/") + name},
                                      ChildOptions{variables});
  }
  // The main window, alone, with the profile "Desktop".
  void BeginQuietly() {
    ASSERT_TRUE(StoredSettings(home).SetQuiet());
    ASSERT_TRUE(StoredSettings(home).Set("Last Profile", std::string("Desktop")));
    Begin("kelvaro");
    Await("frame", "Kelvaro");
    // The profiles that come with the program have no device.
    Press(Await("alert message", "Kelvaro"), "OK");
    AwaitEnd("alert message", "Kelvaro");
  }

  // The window of that role and title, as soon as it is on the screen.
  Accessible Await(const std::string& role, const std::string& title) {
    Accessible found;
    EXPECT_TRUE(Eventually([&] {
      auto window = reader.Window(running, role, title);
      if (window) found = std::move(*window);
      return window.has_value();
    })) << "no "
        << role << " \"" << title << "\"\n"
        << program->Log();
    return found;
  }
  void AwaitEnd(const std::string& role, const std::string& title) {
    EXPECT_TRUE(Eventually([&] { return !reader.Window(running, role, title); }))
        << role << " \"" << title << "\" stays";
  }
  void Do(const Accessible& window, const std::string& role, const std::string& name,
          const std::string& action) {
    const Accessible* const object = window.Find(role, name);
    ASSERT_TRUE(object) << role << " \"" << name << "\" in\n" << window.Text();
    EXPECT_TRUE(reader.Do(*object, action)) << name << ": " << action;
  }
  void Press(const Accessible& window, const std::string& button) {
    Do(window, "push button", button, "Press");
  }
  void Type(const Accessible& window, const std::string& field, const std::string& text) {
    const Accessible* const object = window.Find("text", field);
    ASSERT_TRUE(object) << field << " in\n" << window.Text();
    EXPECT_TRUE(reader.SetText(*object, text)) << field;
    EXPECT_EQ(reader.Text(*object), text);
  }
  // The main window with that page open.
  Accessible Open(const std::string& tab) {
    Do(Await("frame", "Kelvaro"), "page tab", tab, "Press");
    Accessible window;
    EXPECT_TRUE(Eventually([&] {
      window = Await("frame", "Kelvaro");
      return window.Find("page tab list", tab) != nullptr;
    }));
    return window;
  }
  // The button of a page, of which the row of profiles has one of the same name.
  void PressDescribed(const Accessible& window, const std::string& description) {
    bool pressed = false;
    window.Visit([&](const Accessible& object) {
      if (!pressed && object.description == description) pressed = reader.Do(object, "Press");
    });
    EXPECT_TRUE(pressed) << description;
  }
  Accessible OpenDefineControl() {
    PressDescribed(Open("Control"), "Create a new control.");
    return Await("dialog", "Define Control");
  }
  std::string Console(const std::vector<std::string>& words) {
    std::vector<std::string> command = {home.In("installed/kelvaroctl")};
    command.insert(command.end(), words.begin(), words.end());
    Child console(command, {home.Environment()});
    EXPECT_EQ(console.WaitForEnd(), 0) << console.Log();
    return console.Log();
  }

  Home home;
  XDesktop desktop{false};
  ScreenReader reader{home, desktop.Name()};
  std::string running;
  std::unique_ptr<Child> program;
};

}  // namespace kelvaro::tests
