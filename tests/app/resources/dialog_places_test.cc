// What holds for every dialog, and for the main window with each of its pages.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "tests/app/resources/dialog_tables.h"

namespace kelvaro::resources {
namespace {

using enum ControlKind;

// What others may lie in, or in front of.
bool Frame(ControlKind kind) { return kind == GroupBox || kind == Box || kind == TabControl; }

bool Field(ControlKind kind) { return kind == Edit || kind == DropList; }

class EveryView : public testing::TestWithParam<View> {};

TEST(EveryDialog, UsesEachNumberOnce) {
  for (const DialogTemplate* dialog : Dialogs()) {
    std::set<std::uint32_t> seen;
    for (const ControlTemplate& control : dialog->controls) {
      EXPECT_TRUE(seen.insert(control.id).second) << dialog->title << ", " << control.id;
      EXPECT_NE(control.id, 0u) << dialog->title;
    }
  }
}

TEST(EveryDialog, HoldsItsControlsWithAMargin) {
  for (const DialogTemplate* dialog : Dialogs()) {
    const int margin = dialog == &kMainWindow ? 5 : 7;
    for (const ControlTemplate& control : dialog->controls) {
      SCOPED_TRACE(std::string(dialog->title) + ", " + std::to_string(control.id));
      EXPECT_GT(control.width, 0);
      EXPECT_GT(control.height, 0);
      EXPECT_GE(control.x, control.kind == TabControl ? 0 : margin);
      EXPECT_GE(control.y, 7);
      EXPECT_LE(control.x + control.width, dialog->width - margin);
      EXPECT_LE(control.y + control.height, dialog->height - margin);
    }
  }
}

TEST(EveryPage, LiesInItsBox) {
  for (const View& page : Pages()) {
    for (const ControlTemplate& control : page.controls) {
      EXPECT_TRUE(Inside(control, page.controls.front())) << control.id;
    }
  }
}

// The box ends 10 pixels inside the tab control, which ends 8 inside the window: at the smallest
// usual font, 6 by 13 pixels, that is 12 units across and 12 down.
TEST(EveryPage, FitsWhereTheLayoutPutsIt) {
  for (const View& page : Pages()) {
    for (const ControlTemplate& control : page.controls) {
      if (control.kind == Box || control.kind == ListView) continue;  // the layout ends these
      EXPECT_LE(control.x + control.width, kMainWindow.width - 12) << control.id;
      EXPECT_LE(control.y + control.height, kMainWindow.height - 12 - 4) << control.id;
    }
  }
}

TEST_P(EveryView, KeepsItsControlsApart) {
  const auto& controls = GetParam().controls;
  for (const ControlTemplate& a : controls) {
    for (const ControlTemplate& b : controls) {
      if (&a >= &b || !Overlap(a, b)) continue;
      EXPECT_TRUE((Frame(a.kind) && Inside(b, a)) || (Frame(b.kind) && Inside(a, b)))
          << a.id << " and " << b.id;
    }
  }
}

TEST_P(EveryView, UsesEachMnemonicOnce) {
  std::map<char, std::uint32_t> taken;
  for (const ControlTemplate& control : GetParam().controls) {
    const char mnemonic = Mnemonic(control.text);
    if (mnemonic == 0) continue;
    EXPECT_TRUE(std::isalnum(static_cast<unsigned char>(mnemonic))) << control.id;
    const auto [before, fresh] = taken.emplace(mnemonic, control.id);
    EXPECT_TRUE(fresh) << mnemonic << " of " << control.id << " and " << before->second;
  }
}

TEST_P(EveryView, NamesWhateverCanBeOperated) {
  const auto& controls = GetParam().controls;
  for (std::size_t i = 0; i < controls.size(); ++i) {
    const ControlTemplate& control = controls[i];
    if (!platform::TakesFocus(control.kind)) continue;
    const bool labelled = i > 0 && controls[i - 1].kind == Label && *controls[i - 1].text;
    EXPECT_TRUE(*control.text || control.name || labelled) << control.id;
  }
}

TEST_P(EveryView, TellsTwoControlsOfOneTextApartByName) {
  std::map<std::string, std::uint32_t> names;
  for (const ControlTemplate& control : GetParam().controls) {
    if (control.kind != CheckBox && control.kind != RadioButton) continue;
    const std::string name = control.name ? control.name : Shown(control.text);
    if (name.empty()) continue;
    EXPECT_TRUE(names.emplace(name, control.id).second) << control.id << " " << name;
  }
}

TEST_P(EveryView, HasOneDefaultButtonAtMost) {
  const auto& controls = GetParam().controls;
  const auto isDefault = [](const ControlTemplate& control) {
    return (control.style & platform::kStyleDefault) != 0;
  };
  EXPECT_LE(std::ranges::count_if(controls, isDefault), 1);
}

TEST_P(EveryView, GivesControlsOfAKindOneHeight) {
  for (const ControlTemplate& control : GetParam().controls) {
    SCOPED_TRACE(control.id);
    switch (control.kind) {
      case Button:
      case PictureButton:
      case DrawnButton:
      case Edit:
      case DropList:
        EXPECT_EQ(control.height, 14);
        break;
      case CheckBox:
      case RadioButton:
        EXPECT_EQ(control.height, 12);
        break;
      case Label:
      case Link:
        if (!(control.style & platform::kStyleWrap)) {
          EXPECT_EQ(control.height, 9);  // the font takes 8 and a part of a pixel
        }
        break;
      default:
        break;
    }
  }
}

TEST_P(EveryView, PutsALabelOnTheLineOfItsField) {
  const auto& controls = GetParam().controls;
  for (std::size_t i = 1; i < controls.size(); ++i) {
    const ControlTemplate& label = controls[i - 1];
    const ControlTemplate& field = controls[i];
    if (label.kind != Label || !Field(field.kind)) continue;
    if (label.y + label.height <= field.y) {
      EXPECT_EQ(label.x, field.x) << field.id;  // above it
    } else {
      EXPECT_EQ(label.y, field.y + 3) << field.id;
      EXPECT_LT(label.x, field.x) << field.id;
    }
  }
}

// A unit across is a quarter of the mean character: four a character hold any usual font, and a box
// to check needs some more.
TEST_P(EveryView, LeavesRoomForItsTexts) {
  for (const ControlTemplate& control : GetParam().controls) {
    SCOPED_TRACE(control.id);
    const int text = 4 * static_cast<int>(Shown(control.text).size());
    switch (control.kind) {
      case Label:
        if (control.style & platform::kStyleWrap) {
          const int lines = text / control.width + 1;
          EXPECT_GE(control.height, 8 * lines);
          break;
        }
        [[fallthrough]];
      case Link:
        EXPECT_GE(control.width, text);
        break;
      case Button:
      case DrawnButton:
      case GroupBox:
        EXPECT_GE(control.width, text + 8);
        break;
      case CheckBox:
      case RadioButton:
        EXPECT_GE(control.width, text + 12);
        break;
      default:
        break;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Dialogs, EveryView, testing::ValuesIn(Views()), [](const auto& view) {
  std::string name;
  for (const char c : view.param.name) {
    if (std::isalnum(static_cast<unsigned char>(c))) name += c;
  }
  return name;
});

}  // namespace
}  // namespace kelvaro::resources
