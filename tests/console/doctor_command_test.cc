// What the doctor says of this machine, whatever it is like.
#include <gtest/gtest.h>
#include <json/json.h>

#include <set>
#include <sstream>
#include <string>

#include "console/machine_facts.h"
#include "tests/console/console_run.h"

namespace kelvaro::console {
namespace {

TEST(DoctorCommand, SaysAllInBothForms) {
  const Outcome json = Kelvaroctl({"doctor", "--json"});
  EXPECT_EQ(json.err, "");
  std::istringstream lines(json.out);
  std::set<std::string> topics;
  bool bad = false;
  for (std::string line; std::getline(lines, line);) {
    Json::Value remark;
    ASSERT_TRUE(Json::Reader().parse(line, remark)) << line;
    topics.insert(remark["topic"].asString());
    bad = bad || remark["state"].asString() == "bad";
    EXPECT_NE(remark["what"].asString(), "") << line;
    EXPECT_NE(remark["next"].asString(), "") << line;
  }
  for (const char* topic :
       {"session", "/dev/uinput", "module", "udev rule", "output", "pad", "notification area",
        "real-time threads", "folder of profiles", "folder of settings", "running"}) {
    EXPECT_TRUE(topics.contains(topic)) << topic;
  }
  EXPECT_EQ(json.status, bad ? 1 : 0);
  const Outcome text = Kelvaroctl({"doctor"});
  EXPECT_EQ(text.status, json.status);
  for (const std::string& topic : topics) {
    EXPECT_NE(text.out.find(topic + ": "), std::string::npos) << topic;
  }
}

TEST(FileWith, IsTheFirstWithTheWordOutsideOfComments) {
  const tests::TemporaryFolder folder;
  tests::Put(folder.In("a/1.rules"), "# uinput\n  ; uinput\nother\n");
  tests::Put(folder.In("a/2.conf"), "uinput\n");
  const std::vector<std::string> folders = {folder.In("none"), folder.In("a"), folder.In("b")};
  EXPECT_EQ(FileWith(folders, ".rules", "uinput"), "");
  const std::string rule = tests::Put(folder.In("b/3.rules"), "KERNEL==\"uinput\"\n");
  EXPECT_EQ(FileWith(folders, ".rules", "uinput"), rule);
  const std::string first = tests::Put(folder.In("a/4.rules"), "uinput\n");
  EXPECT_EQ(FileWith(folders, ".rules", "uinput"), first);
}

TEST(CanWriteInto, AFolderThatIsThereOrThatCanBeMade) {
  const tests::TemporaryFolder folder;
  EXPECT_TRUE(CanWriteInto(folder.In("")));
  EXPECT_TRUE(CanWriteInto(folder.In("new/and/deeper")));
  tests::Put(folder.In("file"), "");
  EXPECT_FALSE(CanWriteInto(folder.In("file")));
  EXPECT_FALSE(CanWriteInto(folder.In("file/below")));
  EXPECT_FALSE(CanWriteInto(""));
}

}  // namespace
}  // namespace kelvaro::console
