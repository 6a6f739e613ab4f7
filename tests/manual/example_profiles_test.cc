// The manual's page of the example profiles, held against the profiles.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "console/profile_source.h"
#include "engine/input_text.h"
#include "storage/profile_file.h"
#include "tests/host/files.h"
#include "tests/manual/page.h"

namespace kelvaro::manual {
namespace {

constexpr char kPage[] = "Example Profiles.htm";

void AddButtons(std::uint64_t mask, std::set<std::string>* inputs) {
  for (std::uint32_t bit = 0; bit < 64; ++bit) {
    if ((mask >> bit & 1) != 0) inputs->insert("B" + std::to_string(bit + 1));
  }
}

void AddItem(const TriggerItem& item, std::set<std::string>* inputs) {
  ByteString text;
  InputText(item, &text, true);
  inputs->insert(Bytes(text));
}

// Each by itself, an axis with its sides.
void AddInputs(const Profile& profile, std::set<std::string>* inputs) {
  for (const Control& control : profile.controls) {
    AddButtons(control.buttonMask, inputs);
    for (const TriggerItem& item : control.triggerItems) AddItem(item, inputs);
  }
  AddButtons(profile.leftMask | profile.middleMask | profile.rightMask, inputs);
  for (const auto axis :
       {&MouseSettings::mouseX, &MouseSettings::mouseY, &MouseSettings::mouseWheel}) {
    const TriggerItem item = profile.*axis;
    if (item.kind == input_kind::kNone) continue;
    for (const std::uint16_t side : {AxisNeg, AxisPos})
      AddItem({item.kind, item.index, side}, inputs);
  }
}

// Names of examples, with the inputs that each uses.
using Examples = std::map<std::string, std::set<std::string>>;

Examples AllExamples() {
  Examples all;
  for (const auto& entry : std::filesystem::directory_iterator(KELVARO_EXAMPLES)) {
    if (entry.path().extension() != ".json") continue;
    ProfileFile profile;
    console::ProfileFault fault;
    EXPECT_TRUE(
        console::ReadProfileBytes(tests::Content(entry.path()), entry.path(), &profile, &fault))
        << fault.message;
    AddInputs(profile, &all[Bytes(profile.profileName)]);
  }
  return all;
}

// "B1 to B4, B7"
void AddButtonWords(const std::set<std::string>& inputs, std::string* words) {
  const auto has = [&](int button) { return inputs.contains("B" + std::to_string(button)); };
  for (int first = 1; first <= 64; ++first) {
    if (!has(first)) continue;
    int last = first;
    while (has(last + 1)) ++last;
    *words += ", B" + std::to_string(first);
    if (last > first) *words += (last > first + 1 ? " to B" : ", B") + std::to_string(last);
    first = last;
  }
}

// As a player knows the parts of a pad: "Uses both sticks, the direction pad, B1 to B4."
std::string WordsFor(const std::set<std::string>& inputs) {
  const auto uses = [&](const char* axis) {
    return inputs.contains(std::string(axis) + "(neg)") ||
           inputs.contains(std::string(axis) + "(pos)");
  };
  const bool left = uses("Axis_X0") || uses("Axis_Y0");
  const bool right = uses("Axis_RX0") || uses("Axis_RY0");
  std::string words;
  if (left || right)
    words += left && right ? ", both sticks" : left ? ", the left stick" : ", the right stick";
  if (uses("Axis_Z0") || uses("Axis_RZ0")) words += ", both triggers";
  for (const std::string& input : inputs) {
    if (!input.starts_with("POV0")) continue;
    words += ", the direction pad";
    break;
  }
  AddButtonWords(inputs, &words);
  return "Uses" + words.substr(1) + ".";
}

TEST(ExampleProfilesPage, TellsOfEachOfThemWhatItUses) {
  const std::string html = PageNamed(kPage).html;
  for (const auto& [name, inputs] : AllExamples()) {
    const std::vector<std::string> told = Between(html, ">" + name + "</a></h2>", "<h2>");
    ASSERT_EQ(told.size(), 1u) << name;
    EXPECT_NE(OneLine(told[0]).find(WordsFor(inputs)), std::string::npos)
        << name << ": " << WordsFor(inputs);
  }
}

TEST(ExampleProfilesPage, ShowsWhereEachInputThatTheyUseIsOnAPadAndNoOther) {
  const std::vector<std::string> tables = OfClass(PageNamed(kPage), "table", "triggers");
  ASSERT_EQ(tables.size(), 1u);
  std::set<std::string> told;
  for (const std::string& name : Between(tables[0], "<tt>", "</tt>")) {
    EXPECT_TRUE(told.insert(PlainText(name)).second) << name;
  }
  std::set<std::string> used;
  for (const auto& [name, inputs] : AllExamples()) used.insert(inputs.begin(), inputs.end());
  EXPECT_EQ(told, used);
}

}  // namespace
}  // namespace kelvaro::manual
