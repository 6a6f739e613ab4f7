// The power fails at each operation of a save, a deletion, a rename and a first start, and the disk
// comes back with any of the states that what wasn't made lasting may be in: each profile is the
// old one or the new one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "app/platform/simulation/simulation.h"
#include "storage/profile_file.h"
#include "tests/foundation/texts.h"
#include "tests/storage/cut_everywhere.h"

namespace kelvaro {
namespace {

using platform::simulation::Simulation;
using Strings = std::vector<std::string>;

void Fill(ProfileFile* profile, const char* name, std::uint32_t interval) {
  profile->profileName = name;
  profile->pollInterval = interval;
  profile->controls.AddTail(Control());
  profile->RebuildDispatchList();
}

void Store(const char* name, std::uint32_t interval) {
  ProfileFile made;
  Fill(&made, name, interval);
  made.Save();
}

bool Delete(const char* name) {
  ProfileFile gone;
  gone.profileName = name;
  return gone.DeleteProfileFile();
}

// As the program comes upon them: each name with the interval by which a profile is known here, or
// 0 for one that can't be read whole.
std::map<std::string, std::uint32_t> Found() {
  std::map<std::string, std::uint32_t> found;
  ProfileFile reader;
  LinkedList<ByteString> names;
  reader.ListProfileNames(&names);
  for (const ByteString& name : names) {
    ProfileFile profile;
    const bool isWhole = profile.Load(profile.FindProfileFile(name)) &&
                         profile.DamagedFile().IsEmpty() && profile.controls.count == 1;
    found[Bytes(name)] = isWhole ? profile.pollInterval : 0;
  }
  return found;
}
using Profiles = std::map<std::string, std::uint32_t>;

TEST(ForgetfulDisk, LeavesTheOldOrTheNewProfileOfASave) {
  const std::uint32_t states = CutEverywhere(
      {[](Simulation&) { Store("P", 3); }, [] { Store("P", 5); },
       [](Simulation&, bool isDone) {
         const Profiles found = Found();
         EXPECT_TRUE(found == Profiles({{"P", 5}}) || (!isDone && found == Profiles({{"P", 3}})));
       }});
  EXPECT_GT(states, 30u);
}

TEST(ForgetfulDisk, LeavesNoneOrTheNewProfileOfAFirstSave) {
  CutEverywhere({[](Simulation&) {}, [] { Store("P", 5); },
                 [](Simulation&, bool isDone) {
                   const Profiles found = Found();
                   EXPECT_TRUE(found == Profiles({{"P", 5}}) || (!isDone && found.empty()));
                 }});
}

TEST(ForgetfulDisk, LeavesTheBytesOfADamagedFileThatIsSavedOver) {
  const std::string path = "/game/Profiles/P.idprof";
  std::string cut;
  CutEverywhere({[&](Simulation& sim) {
                   Store("P", 3);
                   const std::string whole = sim.Disk().FileBytes(path).value_or("");
                   cut = whole.substr(0, whole.size() / 2);
                   sim.Disk().PutFile(path, cut);
                 },
                 [&] {
                   ProfileFile profile;
                   profile.Load(TextOf(path));
                   profile.pollInterval = 5;
                   profile.Save();
                 },
                 [&](Simulation& sim, bool) {
                   const Strings names = sim.Disk().List("/game/Profiles");
                   EXPECT_TRUE(std::any_of(names.begin(), names.end(), [&](const auto& name) {
                     return sim.Disk().FileBytes("/game/Profiles/" + name) == cut;
                   }));
                 }});
}

TEST(ForgetfulDisk, BringsNothingBackOnceItIsDeleted) {
  CutEverywhere({[](Simulation&) {
                   Store("P", 3);
                   Store("Q", 4);
                 },
                 [] { Delete("P"); },
                 [](Simulation&, bool isDone) {
                   const Profiles found = Found();
                   EXPECT_TRUE(found == Profiles({{"Q", 4}}) ||
                               (!isDone && found == Profiles({{"P", 3}, {"Q", 4}})));
                 }});
}

TEST(ForgetfulDisk, LeavesAProfileUnderItsOldOrItsNewName) {
  CutEverywhere(
      {[](Simulation&) { Store("P", 3); },
       [] {
         ProfileFile profile;
         profile.Load(profile.FindProfileFile("P"));
         ProfileFile old;
         const bool isGoing = old.BeginRename("P", "Q");
         profile.profileName = "Q";
         profile.Save();
         if (isGoing) old.EndRename();
       },
       [](Simulation&, bool isDone) {
         const Profiles found = Found();
         EXPECT_TRUE(found == Profiles({{"Q", 3}}) || (!isDone && found == Profiles({{"P", 3}})));
       }});
}

// The examples that came with the program are copied once; one that the person deleted stays away.
TEST(ForgetfulDisk, LeavesEachExampleOfAFirstStartButTheDeletedOnes) {
  bool isGone = false;
  CutEverywhere({[&](Simulation& sim) {
                   Store("P", 3);
                   Store("Q", 4);
                   sim.Disk().PutFile("/game/PerUser", "");
                   isGone = false;
                 },
                 [&] {
                   Found();
                   isGone = Delete("P");
                 },
                 [&](Simulation&, bool) {
                   const Profiles found = Found();
                   EXPECT_TRUE(found == Profiles({{"Q", 4}}) ||
                               (!isGone && found == Profiles({{"P", 3}, {"Q", 4}})));
                   EXPECT_TRUE(Delete("Q"));
                   EXPECT_EQ(Found().count("Q"), 0u);
                 }});
}

}  // namespace
}  // namespace kelvaro
