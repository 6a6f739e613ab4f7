// What the doctor says of this machine, whatever it is like.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <sstream>
#include <string>

#include "console/doctor/machine_facts.h"
#include "tests/console/console_run.h"
#include "tests/host/home.h"
#include "tests/host/json.h"

namespace kelvaro::console {
namespace {

TEST(DoctorCommand, SaysAllInBothForms) {
  const Outcome json = Kelvaroctl({"doctor", "--json"});
  EXPECT_EQ(json.err, "");
  std::istringstream lines(json.out);
  std::set<std::string> topics;
  bool bad = false;
  for (std::string line; std::getline(lines, line);) {
    const tests::Json remark = tests::Parsed(line);
    topics.insert(remark["topic"].Text());
    bad = bad || remark["state"].Text() == "bad";
    EXPECT_NE(remark["what"].Text(), "") << line;
    EXPECT_NE(remark["next"].Text(), "") << line;
  }
#ifdef _WIN32
  const std::vector<std::string> own{"DirectInput"};
#else
  const std::vector<std::string> own{"session", "/dev/uinput", "module", "udev rule",
                                     "real-time threads"};
#endif
  for (const std::string& topic : own) EXPECT_TRUE(topics.contains(topic)) << topic;
  for (const char* topic : {"output", "pad", "notification area", "folder of profiles",
                            "folder of settings", "running"}) {
    EXPECT_TRUE(topics.contains(topic)) << topic;
  }
  EXPECT_EQ(json.status, bad ? 1 : 0);
  const Outcome text = Kelvaroctl({"doctor"});
  EXPECT_EQ(text.status, json.status);
  for (const std::string& topic : topics) {
    EXPECT_NE(text.out.find(topic + ":"), std::string::npos) << topic;
  }
}

class DoctorReport : public testing::Test {
 protected:
  const tests::Home home;
  const tests::Variable place{"HOME", home.folder.c_str()};
  const tests::Variable config{"XDG_CONFIG_HOME", home.In("config").c_str()};
  const tests::Variable runtime{"XDG_RUNTIME_DIR", home.In("runtime").c_str()};
  const std::string path = home.In("report.txt");
};

TEST_F(DoctorReport, HasWhatIsPrintedAndTheProfileNamed) {
  const TestFile profile("profile", R"({"profileName":"Secret name","deviceName":"Pad",
      "controls":[{"description":"open my bank","buttonMask":"0x5","actions":[{"text":"secret"}]}]})");
  const Outcome outcome = Kelvaroctl({"doctor", "--report", path, "--profile", profile.path});
  EXPECT_EQ(outcome.err, "Wrote " + path + "; read it before you send it.\n");
  const std::string report = tests::Content(path);
  EXPECT_EQ(report.rfind("Kelvaro 3.5 on ", 0), 0u) << report;
  for (const char* told : {"output: ", "pad: ", "\"deviceName\":\"Pad\"", "\"0x5\""}) {
    EXPECT_NE(report.find(told), std::string::npos) << told << report;
  }
  for (const std::string& kept : {std::string("ecret"), std::string("my bank"), home.folder}) {
    EXPECT_EQ(report.find(kept), std::string::npos) << kept << report;
  }
}

#ifndef _WIN32
TEST_F(DoctorReport, TakesTheProfileThatTheWindowOpenedLast) {
  const TestFile profile("profile", R"({"deviceName":"Some pad"})");
  ASSERT_EQ(Kelvaroctl({"settings", "set", "Last Profile", profile.path}).status, 0);
  Kelvaroctl({"doctor", "--report", path});
  EXPECT_NE(tests::Content(path).find("Some pad"), std::string::npos);
}

#endif

TEST_F(DoctorReport, IsWrittenWithoutALastProfileButNotWithoutTheOneNamed) {
  Kelvaroctl({"doctor", "--report", path});
  EXPECT_NE(tests::Content(path).find("No profile."), std::string::npos);
  std::filesystem::remove(path);
  const Outcome outcome = Kelvaroctl({"doctor", "--report", path, "--profile", home.In("none")});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "kelvaroctl: " + home.In("none") + ": No such file or directory\n");
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(DoctorReport, ThatCantBeWrittenIsAnError) {
  const Outcome outcome = Kelvaroctl({"doctor", "--report", home.In("none/report")});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "kelvaroctl: " + home.In("none/report") + ": No such file or directory\n");
}

#ifndef _WIN32
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
#endif

}  // namespace
}  // namespace kelvaro::console
