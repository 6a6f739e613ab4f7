// The manual's page of the example profiles, held against the profiles.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
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

struct Examples {
  std::set<std::string> names;
  std::set<std::string> inputs;
};

Examples AllExamples() {
  Examples all;
  for (const auto& entry : std::filesystem::directory_iterator(KELVARO_EXAMPLES)) {
    if (entry.path().extension() != ".json") continue;
    ProfileFile profile;
    console::ProfileFault fault;
    EXPECT_TRUE(
        console::ReadProfileBytes(tests::Content(entry.path()), entry.path(), &profile, &fault))
        << fault.message;
    all.names.insert(Bytes(profile.profileName));
    AddInputs(profile, &all.inputs);
  }
  return all;
}

TEST(ExampleProfilesPage, TellsOfEachOfThem) {
  std::set<std::string> told;
  for (const std::string& heading : Between(PageNamed(kPage).html, "<h2>", "</h2>")) {
    told.insert(OneLine(heading));
  }
  for (const std::string& name : AllExamples().names) EXPECT_TRUE(told.contains(name)) << name;
}

TEST(ExampleProfilesPage, ShowsWhereEachInputThatTheyUseIsOnAPadAndNoOther) {
  const std::vector<std::string> tables = OfClass(PageNamed(kPage), "table", "triggers");
  ASSERT_EQ(tables.size(), 1u);
  std::set<std::string> told;
  for (const std::string& name : Between(tables[0], "<tt>", "</tt>")) {
    EXPECT_TRUE(told.insert(PlainText(name)).second) << name;
  }
  EXPECT_EQ(told, AllExamples().inputs);
}

}  // namespace
}  // namespace kelvaro::manual
