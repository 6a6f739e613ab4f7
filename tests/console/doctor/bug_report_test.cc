#include "console/doctor/bug_report.h"

#include <gtest/gtest.h>

#include "console/profile_json.h"
#include "foundation/version.h"
#include "tests/host/json.h"

namespace kelvaro::console {
namespace {

const std::vector<Remark> kRemarks = {
    {Remark::State::Note, "folder of profiles", "/home/an other/Profiles can't be written", "see"}};

TEST(LeaveOutTypedTexts, TakesKeysNamesAndDescriptionsButNotTheirNumber) {
  Profile profile;
  JsonFault fault;
  ASSERT_TRUE(ReadProfile(R"({"profileName":"My bank","deviceName":"Pad","controls":[
      {"description":"log in","buttonMask":"0x5","repeatDelay":70,
       "actions":[{"actionFlags":1,"text":"<Ctrl>s<P:500>E"}]}]})",
                          &profile, &fault))
      << fault.Text("f");
  LeaveOutTypedTexts(&profile);
  const std::string json = ProfileJson(profile);
  const tests::Json value = tests::Parsed(json);
  EXPECT_EQ(value["profileName"].Text(), "");
  EXPECT_EQ(value["deviceName"].Text(), "Pad");
  const tests::Json& control = value["controls"][0];
  EXPECT_EQ(control["description"].Text(), "");
  EXPECT_EQ(control["buttonMask"].Text(), "0x5");
  EXPECT_EQ(control["repeatDelay"].Signed(), 70);
  const tests::Json& action = control["actions"][0];
  EXPECT_EQ(action["actionFlags"].Signed(), 1);
  EXPECT_NE(json.find("\"steps\":[[0,0,0],[1,244,128],[0,0,0]]"), std::string::npos) << json;
  EXPECT_EQ(action["text"].Text(), "<P:500>");
}

TEST(ReportText, HasTheVersionTheSystemTheRemarksAndTheProfile) {
  EXPECT_EQ(ReportText("Some Linux", kRemarks, "{\"pollInterval\":5}", "/home/an other"),
            "Kelvaro " + std::string(VersionNumber().Text()) +
                " on Some Linux\n"
                "\n"
                "note  folder of profiles: ~/Profiles can't be written; see.\n"
                "\n"
                "The profile, without its name, its descriptions and its keys:\n"
                "{\"pollInterval\":5}\n");
  const std::string without = ReportText("Some Linux", kRemarks, "", "");
  EXPECT_NE(without.find("/home/an other/Profiles"), std::string::npos);
  EXPECT_TRUE(without.ends_with("\nNo profile.\n")) << without;
  EXPECT_EQ(ReportText("Some Linux", kRemarks, "", "/"), without) << "no home of a person";
}

}  // namespace
}  // namespace kelvaro::console
