// The real programs as a person meets them who can't see: all that is on a window has a role and a
// name, labels belong to their fields, tips are read aloud, boxes are spoken, and a Control can be
// made by what a screen reader does alone.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "app/resources/control_ids.h"
#include "app/resources/resources.h"
#include "app/window/tool_tips.h"
#include "rendlink/resources.h"
#include "tests/program/accessible/program_with_reader.h"

namespace kelvaro::tests {
namespace {

using platform::ControlKind;
using Tip = std::function<std::string(std::uint32_t)>;

// What it is, and what a person can do with it without a pointer.
struct Spoken {
  const char* role;
  const char* action = "";
  const char* interface = "";
};

Spoken SpokenOf(ControlKind kind) {
  using enum ControlKind;
  static const std::map<ControlKind, Spoken> kAll = {
      {Label, {"label"}},
      {Link, {"link", "Press"}},
      {Picture, {"graphic"}},
      {Rule, {"separator"}},
      {GroupBox, {"panel"}},
      {Edit, {"text", "", "EditableText"}},
      {TextArea, {"text", "", "Text"}},
      {Button, {"push button", "Press"}},
      {PictureButton, {"push button", "Press"}},
      {DrawnButton, {"push button", "Press"}},
      {CheckBox, {"check box", "Toggle"}},
      {RadioButton, {"radio button", "Toggle"}},
      {DropList, {"combo box", "ShowMenu"}},
      {ListView, {"tree", "", "Table"}},
      {TabControl, {"page tab list"}},
      {Slider, {"slider", "Increase", "Value"}},
  };
  return kAll.at(kind);
}

// A field, whose text is what is in it.
bool IsField(ControlKind kind) {
  using enum ControlKind;
  return kind == Edit || kind == TextArea || kind == DropList || kind == ListView;
}

bool Labels(const Accessible& object, const std::string& label) {
  return std::find(object.labels.begin(), object.labels.end(), label) != object.labels.end();
}

bool IsNamed(const Accessible& object, const ControlTemplate& row, const std::string& label,
             const std::string& tip) {
  if (row.kind == ControlKind::Rule) return true;
  // Its name is the open tab's.
  if (row.kind == ControlKind::TabControl) return !object.name.empty();
  // Its name is the chosen row.
  if (row.kind == ControlKind::DropList) return Labels(object, label);
  if (row.name) return object.name == row.name;
  // Qt tells of no relations of a list.
  if (row.kind == ControlKind::ListView) return object.name == label;
  if (IsField(row.kind)) return object.name == label && Labels(object, label);
  const std::string text = Plain(row.text);
  if (!text.empty()) return object.name.starts_with(text);  // some have a value behind it
  // A text that the program puts there.
  return row.kind == ControlKind::Label ? object.description == tip : object.name == label;
}

void ExpectSpoken(const Accessible& window, const Rows& rows, const Tip& tip) {
  std::set<const Accessible*> taken;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const ControlTemplate& row = rows[i];
    const Spoken spoken = SpokenOf(row.kind);
    const std::string label = LabelOf(rows, i);
    const std::string wanted = tip(row.id);
    const Accessible* found = nullptr;
    window.Visit([&](const Accessible& object) {
      if (!found && object.role == spoken.role && !taken.contains(&object) &&
          IsNamed(object, row, label, wanted))
        found = &object;
    });
    const std::string which = window.name + ", " + spoken.role + ' ' + std::to_string(row.id) +
                              " \"" + row.text + "\" of \"" + label + '"';
    EXPECT_TRUE(found) << which << " in\n" << window.Text();
    if (!found) continue;
    taken.insert(found);
    EXPECT_EQ(found->description, wanted) << which;
    EXPECT_EQ(found->Is("focusable"), TakesFocus(row.kind)) << which;
    EXPECT_TRUE(*spoken.interface == 0 || found->Has(spoken.interface)) << which;
    EXPECT_TRUE(*spoken.action == 0 || !found->Is("enabled") || found->Can(spoken.action)) << which;
  }
}

// What can have the focus can be told from the others.
void ExpectNamesThatTellApart(const Accessible& window) {
  std::set<std::string> seen;
  window.Visit([&](const Accessible& object) {
    if (!object.Is("focusable") || object.role == "tree item") return;
    EXPECT_TRUE(!object.name.empty() || !object.labels.empty())
        << window.name << ": a " << object.role << " without a name\n"
        << window.Text();
    std::string all = object.role + '/' + object.name + '/' + object.description;
    for (const std::string& label : object.labels) all += '/' + label;
    EXPECT_TRUE(seen.insert(all).second) << window.name << ": two of " << all;
  });
}

std::string NoTip(std::uint32_t) { return {}; }

std::string TipOf(std::uint32_t id) {
  const char* const text = resources::String(id);
  return text ? text : "";
}

class AccessibleTest : public ProgramWithReader {
 protected:
  void ExpectDialog(const DialogTemplate& dialog, const std::string& title, const Tip& tip) {
    const Accessible window = Await("dialog", title);
    EXPECT_TRUE(window.Is("modal")) << title;
    ExpectSpoken(window, OnPage(dialog, -1), tip);
    ExpectNamesThatTellApart(window);
  }
  std::string Stored() { return Console({"show", "Desktop", "--json"}); }
  // A box says its text, and is answered.
  void ExpectBox(const std::string& title, const std::string& text, const std::string& answer) {
    const Accessible box = Await("alert message", title);
    EXPECT_TRUE(box.Find("label", text)) << box.Text();
    ExpectNamesThatTellApart(box);
    Press(box, answer);
    AwaitEnd("alert message", title);
  }
};

TEST_F(AccessibleTest, EachControlOfEachTabSaysWhatItIs) {
  BeginQuietly();
  const char* const kTabs[] = {"Control", "Mouse", "Device", "Settings"};
  const std::uint32_t kTips[] = {tab_tip::kControl, tab_tip::kMouse, tab_tip::kDevice,
                                 tab_tip::kSettings};
  for (int page = 0; page < 4; ++page) {
    const Accessible window = Open(kTabs[page]);
    ExpectSpoken(window, OnPage(resources::kMainWindow, page), ToolTipOf);
    ExpectNamesThatTellApart(window);
    const Accessible* const tab = window.Find("page tab", kTabs[page]);
    ASSERT_TRUE(tab);
    EXPECT_EQ(tab->description, resources::String(kTips[page]));
  }
}

TEST_F(AccessibleTest, EachControlOfDefineControlSaysWhatItIsAndItsBoxesAreSpoken) {
  BeginQuietly();
  const Accessible window = OpenDefineControl();
  ExpectDialog(resources::kDefineControl, "Define Control", TipOf);
  Press(window, "OK");
  ExpectBox("Missing Description", "You must enter a description for this event", "OK");
  Type(window, "Description", "Shout");
  Type(window, "Key(s)", "A<Nothing>");
  Press(window, "OK");
  ExpectBox("Key Parsing Error",
            "There is an error in the key sequence. The '<' character must\n"
            "be followed by a recognized special key name and a '>'.\n"
            "To produce the '<' character itself, enter two of them together.\n\n"
            "The cursor will be placed at the start of the problem.",
            "OK");
  Type(window, "Key(s)", "A");
  Press(window, "OK");
  ExpectDialog(resources::kShiftKeyRequired, "Shift Key Required", NoTip);
}

TEST_F(AccessibleTest, EachControlOfTheSmallDialogsSaysWhatItIs) {
  ASSERT_TRUE(StoredSettings(home).Set("No Device Error Msg", 1u));
  Begin("kelvaro");
  ExpectDialog(resources::kWelcome, "Welcome to Kelvaro", NoTip);
  Press(Await("dialog", "Welcome to Kelvaro"), "Close");
  const Accessible main = Await("frame", "Kelvaro");
  const struct {
    const char* tip;  // of the button that opens it
    const DialogTemplate& dialog;
    const char* title;
    const char* end;
  } kRows[] = {
      {"Create a new profile.", resources::kNewProfile, "New Profile", "Cancel"},
      {"Delete the current profile.", resources::kDeleteProfile, "Delete Profile", "No!"},
      {"Copy the current profile to a new profile with a different name.", resources::kProfileName,
       "Copy Profile", "Cancel"},
      {"Rename the current profile.", resources::kProfileName, "Rename Profile", "Cancel"},
  };
  for (const auto& row : kRows) {
    PressDescribed(main, row.tip);
    ExpectDialog(row.dialog, row.title, NoTip);
    Press(Await("dialog", row.title), row.end);
    AwaitEnd("dialog", row.title);
  }
  Press(Open("Settings"), "Advanced...");
  ExpectDialog(resources::kAdvancedSettings, "Advanced Settings", [](std::uint32_t id) {
    return id == advanced_settings::kAutodetectDevicePlugin ? TipOf(id) : std::string();
  });
  Press(Await("dialog", "Advanced Settings"), "Cancel");
  AwaitEnd("dialog", "Advanced Settings");
  Do(Open("Mouse"), "check box", "Detect wheel", "Toggle");
  ExpectDialog(resources::kAutoDetectMode, "Auto-Detect Mode", NoTip);
}

TEST_F(AccessibleTest, EachControlOfRendlinkSaysWhatItIs) {
  Begin("rendlink");
  const Accessible window = Await("frame", "Rendlink");
  ExpectSpoken(window, OnPage(rendlink::kDialog, -1), rendlink::ToolTip);
  ExpectNamesThatTellApart(window);
}

TEST_F(AccessibleTest, AControlIsMadeAndChangedByAScreenReaderAlone) {
  BeginQuietly();
  const Accessible made = OpenDefineControl();
  Type(made, "Description", "Reload & wait");
  Type(made, "Key(s)", "r<P:50>e");
  Type(made, "Key hold time", "30");
  Do(made, "check box", "Enable Repeat", "Toggle");
  EXPECT_TRUE(Eventually(
      [&] { return reader.Look(made.Find("check box", "Enable Repeat")->place).Is("checked"); }));
  Press(made, "OK");
  AwaitEnd("dialog", "Define Control");
  // The dialog is gone before what it made is stored.
  for (const char* text : {"\"Reload & wait\"", "r<P:50>e", "\"keyHoldTime\":30"})
    EXPECT_TRUE(Eventually([&] { return Stored().find(text) != std::string::npos; })) << Stored();

  // Found in the list, chosen there and edited.
  const Accessible main = Await("frame", "Kelvaro");
  Do(main, "tree item", "Reload & wait", "Toggle");
  EXPECT_TRUE(Eventually([&] {
    const Accessible* const row = main.Find("tree item", "Reload & wait");
    return row && reader.Look(row->place).Is("selected");
  }));
  Press(main, "Edit...");
  const Accessible again = Await("dialog", "Define Control");
  ASSERT_TRUE(again.Find("text", "Description")) << again.Text();
  EXPECT_EQ(reader.Text(*again.Find("text", "Description")), "Reload & wait");
  Type(again, "Description", "Reload");
  Press(again, "OK");
  AwaitEnd("dialog", "Define Control");
  EXPECT_TRUE(Eventually([&] { return Stored().find("\"Reload\"") != std::string::npos; }))
      << Stored();
  EXPECT_EQ(Stored().find("Reload & wait"), std::string::npos) << Stored();
}

TEST_F(AccessibleTest, ASliderIsMovedByAScreenReaderAlone) {
  BeginQuietly();
  const Accessible mouse = Open("Mouse");
  const Accessible* const slider = mouse.Find("slider", "Movement Sensitivity");
  ASSERT_TRUE(slider);
  EXPECT_TRUE(reader.SetValue(*slider, 22));
  EXPECT_EQ(reader.Value(*slider), 22);
  EXPECT_TRUE(Eventually([&] {
    return Await("frame", "Kelvaro").Find("panel", "Movement Sensitivity (22)") != nullptr;
  })) << "the program wasn't told";
}

}  // namespace
}  // namespace kelvaro::tests
