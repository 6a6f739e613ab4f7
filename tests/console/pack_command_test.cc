#ifndef _WIN32
#include <sys/resource.h>
#endif

#include <csignal>

#include "tests/console/stored_profiles.h"
#include "tests/storage/profile_bytes.h"

namespace kelvaro::console {
namespace {

namespace fs = std::filesystem;

// A path in a folder of its own, at which nothing lies.
struct OutFile {
  explicit OutFile(const std::string& name = "out.idprof") : path(folder.In(name)) {}

  const tests::TemporaryFolder folder;
  const std::string path;
};

// What lies in a file's folder under its name and with more behind it.
std::vector<std::string> Beside(const std::string& path) {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(path).parent_path())) {
    const std::string name = entry.path().filename().string();
    if (name.starts_with(fs::path(path).filename().string())) names.push_back(name);
  }
  return names;
}

TEST(PackCommand, WritesTheseBytes) {
  const TestFile in("in", R"({"profileName":"A","pollInterval":8,"controls":[
      {"description":"Go","buttonMask":"0x5","triggerItems":[{"kind":8,"index":0,"value":2}],
       "triggerText":"is ignored","actions":[{"text":"a"}]}]})");
  const OutFile out;
  const Outcome outcome = Kelvaroctl({"pack", in.path, out.path});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "");
  const std::string mouse = FromHex("00000000 0000000F 00000005 0000 0000 0000") +
                            std::string(24, '\0') +
                            FromHex("000B0000 000B0000 000B0000 00 0000000F 00000005");
  const std::string control =
      List(5, {Field("Go"), Field(Big(1, 4)), Field(Big(0, 1)),
               List(6, {Field(TriggerField(1, 5, 1)), Field(FromHex("0008 0000 0002"))}),
               List(7, {Field(OldTimings(0, 500, 50, 0)), Field(FromHex("4100")),
                        List(13, {Field(FromHex("1E"))}), NumberField(0)}),
               List(14, {Field(Timings(0, 500, 50, 0, 0))})});
  EXPECT_EQ(tests::Content(out.path),
            ProfileBytes({TypeList(), RevisionList(), NameList("A", 2),
                          List(11, {Field(""), Field(Big(8, 4)), Field(std::string(16, '\0'))}),
                          List(12, {Field(mouse)}), List(4, {control})}));
}

TEST(PackCommand, TakesWhatShowPrints) {
  const TestFile in("in", R"({"profileName":"F\u00fcr zwei","deviceName":{"bytes":"ff00fe"},
      "controls":[{"controlId":7,"actions":[{"actionFlags":5,"steps":[[1,2,3],[4,5,6]]}]},
                  {"activateOnPress":false,"triggerOption":false,"buttonMask":"0xffffffffffffffff"}]})");
  const OutFile first("first");
  const OutFile second("second");
  ASSERT_EQ(Kelvaroctl({"pack", in.path, first.path}).status, 0);
  const Outcome shown = Kelvaroctl({"show", "--json", first.path});
  ASSERT_EQ(shown.status, 0) << shown.err;
  const TestFile json("json", shown.out);
  ASSERT_EQ(Kelvaroctl({"pack", json.path, second.path}).status, 0);
  EXPECT_EQ(tests::Content(second.path), tests::Content(first.path));
  EXPECT_EQ(Kelvaroctl({"show", "--json", second.path}).out, shown.out);
}

TEST(PackCommand, ReadsStandardInput) {
  const OutFile out;
  const StandardInput input(R"({"profileName":"P"})");
  const Outcome outcome = Kelvaroctl({"pack", "-", out.path});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_NE(Kelvaroctl({"show", "--json", out.path}).out.find("{\"profileName\":\"P\","),
            std::string::npos);
}

TEST(PackCommand, AFaultIsNamedAndNothingIsWritten) {
  const struct {
    const char* json;
    const char* fault;  // behind the file's name
  } kCases[] = {
      {"{\n\"controls\":[{},{},\n{\"buttonMask\":true}]}",
       ":3:15: controls[2].buttonMask: not a number"},
      {"{\"profile\":1}", ":1:12: profile: unknown member"},
      {"[]", ":1:1: not an object"},
      {"XBF", ": a stored profile already; pack takes JSON"},
      {R"({"controls":[{"actions":[{"text":"a<Bogus>"}]}]})",
       ":1:34: controls[0].actions[0].text: there is no key <Bogus> (write << for the character "
       "itself)\n  a<Bogus>\n   ^"},
  };
  for (const auto& c : kCases) {
    const TestFile in("in", c.json);
    const OutFile out;
    const Outcome outcome = Kelvaroctl({"pack", in.path, out.path});
    EXPECT_EQ(outcome.status, 1) << c.json;
    EXPECT_EQ(outcome.err, "kelvaroctl: " + in.path + c.fault + "\n") << c.json;
    EXPECT_EQ(Beside(out.path), std::vector<std::string>{}) << c.json;
  }
}

TEST(PackCommand, AFailureLeavesWhatWasThere) {
  const TestFile good("good", "{}");
  const TestFile bad("bad", "{");
  const TestFile out("out", "before");
  EXPECT_EQ(Kelvaroctl({"pack", bad.path, out.path}).status, 1);
  EXPECT_EQ(tests::Content(out.path), "before");
  EXPECT_EQ(Kelvaroctl({"pack", out.path + "none", out.path}).status, 1);
  EXPECT_EQ(tests::Content(out.path), "before");
  ASSERT_EQ(Kelvaroctl({"pack", good.path, out.path}).status, 0);
  EXPECT_EQ(tests::Content(out.path).substr(0, 5), "XBF" + Big(1, 2));
  EXPECT_EQ(Beside(out.path).size(), 1U);
}

#ifndef _WIN32  // the system's words, and what it allows, are Linux's
TEST(PackCommand, AFolderThatCannotBeWrittenToIsAFault) {
  const TestFile in("in", "{}");
  const OutFile folder("folder");
  const std::string inside = folder.path + "/p.idprof";
  EXPECT_EQ(Kelvaroctl({"pack", in.path, inside}).err,
            "kelvaroctl: " + inside + ": there is no such folder\n");
  EXPECT_FALSE(fs::exists(folder.path));

  fs::create_directory(folder.path);
  const Outcome outcome = Kelvaroctl({"pack", in.path, folder.path});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "kelvaroctl: " + folder.path + ": Is a directory\n");
  EXPECT_EQ(Beside(folder.path).size(), 1U);

  // Something else lies where the temporary should.
  fs::create_directory(inside + ".tmp");
  EXPECT_EQ(Kelvaroctl({"pack", in.path, inside}).err,
            "kelvaroctl: " + inside + ": Is a directory\n");
  EXPECT_FALSE(fs::exists(inside));
}

// Files can't grow beyond some bytes while this lives.
class SmallFiles {
 public:
  explicit SmallFiles(rlim_t most) : handler(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit{most, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~SmallFiles() {
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
  }
  SmallFiles(const SmallFiles&) = delete;
  SmallFiles& operator=(const SmallFiles&) = delete;

 private:
  void (*const handler)(int);
  rlimit before;
};

// The temporary goes again, as a load would take it for a profile.
TEST(PackCommand, AWriteThatFailsLeavesNothing) {
  const TestFile in("in", "{}");
  for (const bool existed : {false, true}) {
    const OutFile out;
    if (existed) std::ofstream(out.path) << "before";
    Outcome outcome;
    {
      const SmallFiles small(100);
      outcome = Kelvaroctl({"pack", in.path, out.path});
    }
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "kelvaroctl: " + out.path + ": File too large\n");
    EXPECT_EQ(Beside(out.path).size(), existed ? 1U : 0U);
    EXPECT_EQ(tests::Content(out.path), existed ? "before" : "");
  }
}

TEST(PackCommand, PathsHaveAnyBytes) {
  const TestFile in("in f\xC3\xBCr \xFF", "{}");
  const OutFile out("out f\xC3\xBCr \xFF.idprof");
  EXPECT_EQ(Kelvaroctl({"pack", in.path, out.path}).status, 0);
  EXPECT_TRUE(fs::exists(out.path));
}
#endif

TEST(PackCommand, AFileInTheCurrentFolderNeedsNoPath) {
  const TestFile in("in", "{}");
  const OutFile folder("folder");
  fs::create_directory(folder.path);
  const fs::path before = fs::current_path();
  fs::current_path(folder.path);
  EXPECT_EQ(Kelvaroctl({"pack", in.path, "p.idprof"}).status, 0);
  EXPECT_TRUE(fs::exists("p.idprof"));
  fs::current_path(before);
}

}  // namespace
}  // namespace kelvaro::console
