// The real programs by keyboard alone: every control is reached, the focus is seen wherever it
// stands, and a Control can be made.
#include <algorithm>
#include <set>

#include "app/resources/control_ids.h"
#include "app/resources/resources.h"
#include "rendlink/resources.h"
#include "tests/program/accessible/program_with_reader.h"

namespace kelvaro::tests {
namespace {

class KeyboardTest : public ProgramWithReader {
 protected:
  // What the Tab key has to come by: not the parts of a list or of a row of tabs, which the arrows
  // move among.
  static std::vector<Accessible> Stops(const Accessible& window) {
    static const std::set<std::string> kParts = {"tree item", "list item", "list",
                                                 "page tab",  "label",     "panel"};
    std::vector<Accessible> stops;
    window.Visit([&](const Accessible& object) {
      if (object.Is("focusable") && object.Is("enabled") && !kParts.contains(object.role))
        stops.push_back(object);
    });
    return stops;
  }
  const Accessible* Focused(const std::vector<Accessible>& stops) {
    for (const Accessible& stop : stops)
      if (reader.IsFocused(stop)) return &stop;
    return nullptr;
  }
  static std::string Say(const Accessible* object) {
    if (!object) return "nothing";
    return object->role + " \"" + object->name + "\" (" + object->description + ')';
  }

  // Goes around once.
  void ExpectTabComesBy(const std::string& role, const std::string& title,
                        const char* key = "Tab") {
    const Accessible window = Await(role, title);
    const std::vector<Accessible> stops = Stops(window);
    ASSERT_FALSE(stops.empty()) << window.Text();
    ASSERT_TRUE(Eventually([&] { return Focused(stops) != nullptr; })) << window.Text();
    std::set<const Accessible*> reached;
    for (std::size_t i = 0; i < stops.size(); ++i) reached.insert(Step(stops, key));
    for (const Accessible& stop : stops)
      EXPECT_TRUE(reached.contains(&stop)) << title << ": " << key << " passes " << Say(&stop);
  }
  // One step, behind which the control that has the focus looks otherwise than before.
  const Accessible* Step(const std::vector<Accessible>& stops, const char* key) {
    const Accessible* const before = Focused(stops);
    const std::vector<std::uint32_t> without = desktop.Pixels(0, 0, kWidth, kHeight);
    desktop.Type(key);
    const Accessible* now = nullptr;
    EXPECT_TRUE(Eventually([&] {
      now = Focused(stops);
      return now && (now != before || stops.size() == 1);
    })) << key
        << " stays on " << Say(before);
    if (!now || now == before) return now;
    const Extents where = reader.Where(*now);
    EXPECT_TRUE(Eventually([&] { return LooksOtherwise(where, without); }))
        << "the focus isn't seen on " << Say(now);
    return now;
  }
  bool LooksOtherwise(const Extents& where, const std::vector<std::uint32_t>& before) {
    const std::vector<std::uint32_t> now = desktop.Pixels(0, 0, kWidth, kHeight);
    int different = 0;
    for (int y = where.y; y < where.y + where.height; ++y)
      for (int x = where.x; x < where.x + where.width; ++x) {
        const auto at = static_cast<std::size_t>(y * kWidth + x);
        different += at < now.size() && at < before.size() && now[at] != before[at];
      }
    return different >= kLeast;
  }
  // A label's mnemonic leads to its field.
  void ExpectMnemonicsLead(const std::string& role, const std::string& title, const Rows& rows) {
    const Accessible window = Await(role, title);
    const std::vector<Accessible> stops = Stops(window);
    for (const ControlTemplate& row : rows) {
      const std::string text = row.text;
      const std::size_t mark = text.find('&');
      if (row.kind != ControlKind::Label || mark == std::string::npos) continue;
      const auto field = std::find_if(stops.begin(), stops.end(), [&](const Accessible& stop) {
        return (stop.name == Plain(text) && stop.role != "page tab list") ||
               std::find(stop.labels.begin(), stop.labels.end(), Plain(text)) != stop.labels.end();
      });
      if (field == stops.end()) continue;  // disabled, or a link with a text of its own
      const char key = static_cast<char>(std::tolower(text[mark + 1]));
      desktop.Type(std::string("Alt_L+") + key);
      EXPECT_TRUE(Eventually([&] { return reader.IsFocused(*field); })) << title << ": " << text;
    }
  }
  // The main window with that page open, by keyboard.
  void Turn(const std::string& tab) {
    for (std::string open = OpenTab(); open != tab; open = OpenTab()) {
      desktop.Type("Control_L+Next");
      ASSERT_TRUE(Eventually([&] { return OpenTab() != open; })) << open << " stays open";
    }
  }
  std::string OpenTab() {
    std::string open;
    Await("frame", "Kelvaro").Visit([&](const Accessible& object) {
      if (object.role == "page tab list") open = object.name;
    });
    return open;
  }
  void AwaitKeyboard(const std::string& title, bool transient) {
    EXPECT_TRUE(Eventually([&] {
      const XWindow window = desktop.Find(title, transient);
      return window.id != 0 && desktop.Active(window.id);
    })) << title;
  }

  static constexpr int kWidth = 1280, kHeight = 900;
  static constexpr int kLeast = 8;  // pixels: half of a cursor in a field
};

TEST_F(KeyboardTest, TabComesByAllOfEachTabAndTheFocusIsSeen) {
  BeginQuietly();
  AwaitKeyboard("Kelvaro", false);
  for (int page = 0; page < 4; ++page) {
    const char* const kTabs[] = {"Control", "Mouse", "Device", "Settings"};
    Turn(kTabs[page]);
    ExpectTabComesBy("frame", "Kelvaro");
    ExpectMnemonicsLead("frame", "Kelvaro", OnPage(resources::kMainWindow, page));
  }
}

TEST_F(KeyboardTest, TabComesByAllOfTheDialogsAndTheFocusIsSeen) {
  BeginQuietly();
  AwaitKeyboard("Kelvaro", false);
  Turn("Control");
  desktop.Type("Alt_L+w");
  AwaitKeyboard("Define Control", true);
  ExpectTabComesBy("dialog", "Define Control");
  ExpectTabComesBy("dialog", "Define Control", "Shift_L+Tab");
  ExpectMnemonicsLead("dialog", "Define Control", OnPage(resources::kDefineControl, -1));
  desktop.Type("Return");
  AwaitKeyboard("Missing Description", true);
  ExpectTabComesBy("alert message", "Missing Description");
  desktop.Type("Escape");
  AwaitEnd("alert message", "Missing Description");
  AwaitKeyboard("Define Control", true);
  desktop.Type("Escape");
  AwaitEnd("dialog", "Define Control");
  const struct {
    const char* key;
    const char* title;
  } kRows[] = {{"Alt_L+n", "New Profile"},
               {"Alt_L+d", "Delete Profile"},
               {"Alt_L+y", "Copy Profile"},
               {"Alt_L+r", "Rename Profile"}};
  for (const auto& row : kRows) {
    AwaitKeyboard("Kelvaro", false);
    desktop.Type(row.key);
    AwaitKeyboard(row.title, true);
    ExpectTabComesBy("dialog", row.title);
    desktop.Type("Escape");
    AwaitEnd("dialog", row.title);
  }
}

TEST_F(KeyboardTest, TabComesByAllOfRendlinkAndTheFocusIsSeen) {
  Begin("rendlink");
  Await("frame", "Rendlink");
  AwaitKeyboard("Rendlink", false);
  ExpectTabComesBy("frame", "Rendlink");
  ExpectMnemonicsLead("frame", "Rendlink", OnPage(rendlink::kDialog, -1));
}

TEST_F(KeyboardTest, AControlIsMadeAndChangedByKeyboardAlone) {
  BeginQuietly();
  AwaitKeyboard("Kelvaro", false);
  Turn("Control");
  desktop.Type("Alt_L+w");
  AwaitKeyboard("Define Control", true);
  desktop.Type("Alt_L+d d u c k Alt_L+k x y z Alt_L+b Return");
  AwaitEnd("dialog", "Define Control");
  const std::string made = Console({"show", "Desktop", "--json"});
  EXPECT_NE(made.find("\"duck\""), std::string::npos) << made;
  EXPECT_NE(made.find("xyz"), std::string::npos) << made;

  // The new one is the last of the list; Enter edits it.
  AwaitKeyboard("Kelvaro", false);
  const std::vector<Accessible> stops = Stops(Await("frame", "Kelvaro"));
  for (std::size_t i = 0; i < stops.size(); ++i) {
    const Accessible* const focused = Step(stops, "Tab");
    if (focused && focused->role == "tree") break;
  }
  desktop.Type("End Return");
  AwaitKeyboard("Define Control", true);
  desktop.Type("Alt_L+d End s Return");
  AwaitEnd("dialog", "Define Control");
  const std::string changed = Console({"show", "Desktop", "--json"});
  EXPECT_NE(changed.find("\"ducks\""), std::string::npos) << changed;
}

}  // namespace
}  // namespace kelvaro::tests
