// The machine stops, or an operation fails, at each place of a save and of a restore in turn: what
// is found afterwards is the old profile or the new one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "app/platform/simulation/simulation.h"
#include "tests/foundation/allocations.h"
#include "tests/storage/chunks.h"
#include "tests/storage/random_profile.h"

namespace kelvaro {
namespace {

using platform::FILE_ATTRIBUTE_NORMAL;
using platform::FILE_ATTRIBUTE_READONLY;
using platform::simulation::DiskOperation;
using platform::simulation::Simulation;
using platform::simulation::VirtualDisk;

constexpr std::uint32_t kOldSeed = 3;
constexpr std::uint32_t kNewSeed = 5;

// What a save starts from.
struct Setting {
  const char* name;
  char separator = '/';
  bool hasOld = true;
  bool isReadOnly = false;
  bool hasStaleTemporary = false;
  std::uint32_t copyStep = 0;  // 0: the copy is there at once
};

const Setting kSettings[] = {
    {"over a profile"},
    {"over a profile, copied in steps", '/', true, false, false, 200},
    {"over a read-only profile", '/', true, true},
    {"over a read-only profile, copied in steps", '/', true, true, false, 200},
    {"with a temporary left over", '/', true, false, true},
    {"with a temporary left over, copied in steps", '/', true, false, true, 200},
    {"a first time", '/', false},
    {"a first time, copied in steps", '/', false, false, false, 200},
    {"on drives", '\\', true, false, false, 0},
    {"on drives, copied in steps", '\\', true, false, true, 200},
};

void Fill(ProfileFile* profile, std::uint32_t seed) {
  RandomProfile(seed).Fill(profile, "P", 2);  // the old and the new one have the same file
}

// The bytes that a profile is saved to where nothing disturbs.
std::string BytesOf(const std::function<void(ProfileFile*)>& fill) {
  Simulation sim;
  ProfileFile profile;
  fill(&profile);
  EXPECT_TRUE(profile.Save());
  return sim.Disk().FileBytes("/game/Profiles/P.idprof").value_or("");
}

const std::string& OldBytes() {
  static const std::string bytes = BytesOf([](ProfileFile* profile) { Fill(profile, kOldSeed); });
  return bytes;
}
const std::string& NewBytes() {
  static const std::string bytes = BytesOf([](ProfileFile* profile) { Fill(profile, kNewSeed); });
  return bytes;
}

// One machine with the setting on its disk.
class Machine {
 public:
  explicit Machine(const Setting& setting) : setting(setting) {
    Disk().Format(setting.separator);
    Disk().CopyInSteps(setting.copyStep);
    if (setting.hasOld) {
      Disk().PutFile(Path(), oldBytes,
                     setting.isReadOnly ? FILE_ATTRIBUTE_READONLY : FILE_ATTRIBUTE_NORMAL);
    }
    if (setting.hasStaleTemporary) Disk().PutFile(Path() + ".tmp", oldBytes.substr(0, 100));
  }

  VirtualDisk& Disk() { return sim.Disk(); }
  std::string Path() const {
    return setting.separator == '/' ? "/game/Profiles/P.idprof" : "C:\\game\\Profiles\\P.idprof";
  }

  // "old", "new", "nothing" or what went wrong. Looked for as the program does, by its name.
  std::string WhatIsFound() {
    ProfileFile found;
    const ByteString path = found.FindProfileFile("P");
    if (path.IsEmpty()) return "nothing";
    if (!found.Load(path)) return "a profile that doesn't load";
    // By its bytes as it would be saved, on a disk that lets it.
    Disk().Remove(Path());
    Disk().CopyInSteps(0);
    if (!found.Save()) return "a profile that can't be saved again";
    const std::string bytes = Disk().FileBytes(Path()).value_or("");
    return bytes == oldBytes ? "old" : bytes == newBytes ? "new" : "neither";
  }

  void ExpectOldOrNew() {
    const std::string found = WhatIsFound();
    if (setting.hasOld) {
      EXPECT_TRUE(found == "old" || found == "new") << found;
    } else {
      EXPECT_TRUE(found == "nothing" || found == "new") << found;
    }
  }

 private:
  const Setting setting;
  // Made before this machine is: there is one at a time.
  const std::string& oldBytes = OldBytes();
  const std::string& newBytes = NewBytes();
  Simulation sim;
};

std::vector<DiskOperation> OperationsOfASave(const Setting& setting) {
  Machine machine(setting);
  ProfileFile profile;
  Fill(&profile, kNewSeed);
  machine.Disk().ClearLog();
  EXPECT_TRUE(profile.Save());
  return machine.Disk().Log();
}

using Plan = std::function<void(VirtualDisk&)>;
using Plans = std::vector<Plan>;

// Places within a write: all of them for a short one.
std::vector<std::uint32_t> PlacesWithin(std::uint32_t size) {
  std::vector<std::uint32_t> places;
  for (std::uint32_t at = 1; at < size; at += std::max(1u, size / 64)) places.push_back(at);
  return places;
}

// The ways in which the machine stops at its n-th operation, one of `size` bytes.
Plans Stops(std::uint64_t n, std::uint32_t size) {
  Plans plans = {[n](VirtualDisk& disk) { disk.StopBefore(n); },
                 [n](VirtualDisk& disk) { disk.StopAfter(n); }};
  for (const std::uint32_t at : PlacesWithin(size)) {
    plans.push_back([n, at](VirtualDisk& disk) { disk.StopInside(n, at); });
  }
  return plans;
}

// The ways in which that operation fails.
Plans Failures(std::uint64_t n, std::uint32_t size) {
  Plans plans = {[n](VirtualDisk& disk) { disk.FailOperation(n); }};
  for (const std::uint32_t at : PlacesWithin(size)) {
    plans.push_back([n, at](VirtualDisk& disk) { disk.FailInside(n, at); });
  }
  return plans;
}

Plans StopsAndFailures(std::uint64_t n, std::uint32_t size) {
  Plans plans = Stops(n, size);
  for (Plan& plan : Failures(n, size)) plans.push_back(plan);
  return plans;
}

// run(plan, operation) with each plan for each operation, up to the first that goes wrong.
template <typename Run>
void AtEach(const std::vector<DiskOperation>& operations, const std::string& setting,
            Plans (*plansOf)(std::uint64_t n, std::uint32_t size), Run run) {
  for (std::uint64_t n = 1; n <= operations.size(); ++n) {
    const DiskOperation& operation = operations[n - 1];
    SCOPED_TRACE(testing::Message() << setting << ", operation " << n << ", " << operation.name
                                    << " " << operation.path);
    for (const Plan& plan : plansOf(n, operation.size)) run(plan, operation);
    if (testing::Test::HasFailure()) return;
  }
}

// Saves the new profile under a fault; the restart is the caller's.
void SaveUnder(Machine* machine, const Plan& plan) {
  ProfileFile profile;
  Fill(&profile, kNewSeed);
  plan(machine->Disk());
  profile.Save();
}

TEST(PowerCut, AtEachOperationOfASaveTheOldOrTheNewProfileIsFound) {
  for (const Setting& setting : kSettings) {
    const std::vector<DiskOperation> operations = OperationsOfASave(setting);
    ASSERT_GE(operations.size(), 8u) << setting.name;
    AtEach(operations, setting.name, Stops, [&](const Plan& plan, const DiskOperation&) {
      Machine machine(setting);
      SaveUnder(&machine, plan);
      EXPECT_TRUE(machine.Disk().IsStopped());
      machine.Disk().Restart();
      machine.ExpectOldOrNew();
    });
  }
}

TEST(PowerCut, TheSaveAfterTheRestartWorks) {
  const Setting& setting = kSettings[1];
  const std::size_t count = OperationsOfASave(setting).size();
  for (std::uint64_t n = 1; n <= count; ++n) {
    Machine machine(setting);
    SaveUnder(&machine, [n](VirtualDisk& disk) { disk.StopAfter(n); });
    machine.Disk().Restart();
    ProfileFile profile;
    Fill(&profile, kNewSeed);
    EXPECT_TRUE(profile.Save()) << n;
    EXPECT_EQ(machine.WhatIsFound(), "new") << n;
  }
}

// Whether the save is to be told as failed when this operation does.
bool IsToldWhenItFails(const DiskOperation& operation, const Setting& setting,
                       const std::string& target) {
  if (operation.name == "DeleteFileA") return false;
  // The mark of a folder for each user, taken for missing, as it is.
  if (operation.path.ends_with("PerUser")) return false;
  // The attribute is cleared for the copy's sake: where there was none, nothing is lost.
  if (operation.path == target &&
      (operation.name == "GetFileAttributesA" || operation.name == "SetFileAttributesA")) {
    return setting.isReadOnly;
  }
  // Also the look at the folders: a level taken for missing can't be made.
  return true;
}

TEST(FailedOperation, OfASaveIsToldAndLeavesTheOldOrTheNewProfile) {
  for (const Setting& setting : kSettings) {
    const auto fail = [&](const Plan& plan, const DiskOperation& operation) {
      Machine machine(setting);
      ProfileFile profile;
      Fill(&profile, kNewSeed);
      plan(machine.Disk());
      const bool saved = profile.Save();
      // A folder that isn't there yet may as well be looked at in vain.
      const bool isLookAtFolder = operation.name == "GetFileAttributesA" && !setting.hasOld;
      if (!isLookAtFolder) {
        EXPECT_EQ(saved, !IsToldWhenItFails(operation, setting, machine.Path()));
      }
      EXPECT_EQ(machine.Disk().OpenHandles(), 0u);

      ProfileFile twin;
      Fill(&twin, kNewSeed);
      ExpectSameProfile(profile, twin);

      machine.Disk().Restart();
      const std::string found = machine.WhatIsFound();
      if (saved) {
        EXPECT_EQ(found, "new");
      } else {
        EXPECT_TRUE(found == "new" || found == (setting.hasOld ? "old" : "nothing")) << found;
      }
      machine.Disk().Restart();
      EXPECT_TRUE(profile.Save()) << "the next one works";
    };
    AtEach(OperationsOfASave(setting), setting.name, Failures, fail);
  }
}

// One element of a list alone, and all from there on. A list that can't be begun ends the file
// where it is, so that the old profile may be gone; the window still has the new one.
TEST(OutOfMemory, AnywhereInASaveIsToldAndTheNextSaveWorks) {
  for (const Setting& setting : kSettings) {
    for (const bool onwards : {false, true}) {
      bool untouched = false;
      for (std::uint32_t nth = 1; !untouched; ++nth) {
        SCOPED_TRACE(testing::Message() << setting.name << ", allocation " << nth);
        Machine machine(setting);
        ProfileFile profile;
        Fill(&profile, kNewSeed);
        bool saved = false;
        {
          const FailingAllocation failing(nth, onwards);
          saved = profile.Save();
          untouched = failing.Failed() == 0;
        }
        EXPECT_EQ(saved, untouched);
        EXPECT_EQ(machine.Disk().OpenHandles(), 0u);
        EXPECT_TRUE(profile.Save());
        EXPECT_EQ(machine.WhatIsFound(), "new");
        if (testing::Test::HasFailure()) return;
      }
    }
  }
}

// Whatever a save takes, such as the text of a path. What it lacks for the temporary's end does no
// harm, and isn't told.
TEST(OutOfMemory, FromAnyPlaceOnIsToldUnlessAllIsSaved) {
  bool untouched = false;
  for (std::int32_t good = 0; !untouched; ++good) {
    SCOPED_TRACE(good);
    Machine machine(kSettings[0]);
    ProfileFile profile;
    Fill(&profile, kNewSeed);
    bool saved = false;
    {
      const FailingAllocations failing(good);
      saved = profile.Save();
      untouched = failing.Failed() == 0;
    }
    EXPECT_TRUE(saved || !untouched);
    if (!saved) {
      EXPECT_TRUE(profile.Save());
    }
    EXPECT_EQ(machine.WhatIsFound(), "new");
    if (testing::Test::HasFailure()) return;
  }
}

// ---- A save over a file that was cut

TEST(PowerCut, AtEachOperationOfASaveOverACutFileItsBytesAreStillThere) {
  for (const std::uint32_t copyStep : {0u, 200u}) {
    const Setting setting = {"cut", '/', true, false, false, copyStep};
    const std::string cut = OldBytes().substr(0, OldBytes().size() / 2);
    std::vector<DiskOperation> operations;
    const auto save = [&](const Plan& plan, const DiskOperation&) {
      Machine machine(setting);
      machine.Disk().PutFile(machine.Path(), cut);
      ProfileFile profile;
      ASSERT_TRUE(profile.Load(TextOf(machine.Path())));
      machine.Disk().ClearLog();
      plan(machine.Disk());
      profile.Save();
      operations = machine.Disk().Log();
      machine.Disk().Restart();
      bool isThere = false;
      for (const std::string& name : machine.Disk().List("/game/Profiles")) {
        isThere |= machine.Disk().FileBytes("/game/Profiles/" + name) == cut;
      }
      EXPECT_TRUE(isThere);
    };
    save([](VirtualDisk&) {}, {});
    const std::vector<DiskOperation> whole = operations;
    ASSERT_GE(whole.size(), 10u);
    AtEach(whole, "steps of " + std::to_string(copyStep), StopsAndFailures, save);
  }
}

// ---- The restore of a target that a copy in steps left half done

TEST(PowerCut, AtEachOperationOfARestoreTheProfileIsStillFound) {
  const Setting setting = {"restore", '/', true, true, false, 100};
  const auto breakTarget = [](Machine* machine, std::size_t kept) {
    machine->Disk().PutFile(machine->Path(), NewBytes().substr(0, kept), FILE_ATTRIBUTE_READONLY);
    machine->Disk().PutFile(machine->Path() + ".tmp", NewBytes());
  };
  for (const std::size_t kept :
       {std::size_t{0}, std::size_t{15}, std::size_t{300}, NewBytes().size() - 1}) {
    std::vector<DiskOperation> operations;
    {
      Machine machine(setting);
      breakTarget(&machine, kept);
      machine.Disk().ClearLog();
      ProfileFile profile;
      ASSERT_TRUE(profile.Load(TextOf(machine.Path()))) << kept;
      operations = machine.Disk().Log();
    }
    const auto disturb = [&](const Plan& plan, const DiskOperation&) {
      Machine machine(setting);
      breakTarget(&machine, kept);
      plan(machine.Disk());
      {
        ProfileFile profile;
        profile.Load(TextOf(machine.Path()));
      }
      EXPECT_EQ(machine.Disk().OpenHandles(), 0u);
      machine.Disk().Restart();
      EXPECT_EQ(machine.WhatIsFound(), "new");
    };
    AtEach(operations, std::to_string(kept) + " bytes left", StopsAndFailures, disturb);
  }
}

// Accepted: it takes two power cuts without a load between them, on a platform whose copy isn't
// there at once.
TEST(PowerCut, InTheCopyAndThenInTheNextSaveMayCostTheProfile) {
  const Setting setting = {"twice", '/', true, false, false, 200};
  const std::vector<DiskOperation> operations = OperationsOfASave(setting);
  std::uint64_t copy = 0;
  std::uint64_t write = 0;
  for (std::uint64_t n = 1; n <= operations.size(); ++n) {
    if (operations[n - 1].name == "CopyFileA" && operations[n - 1].size > 0 && copy == 0) copy = n;
    if (operations[n - 1].name == "WriteFile") write = n;
  }
  ASSERT_GT(write, 0u);
  ASSERT_GT(copy, write);

  Machine machine(setting);
  SaveUnder(&machine, [copy](VirtualDisk& disk) { disk.StopInside(copy, 10); });
  machine.Disk().Restart();
  EXPECT_EQ(machine.Disk().FileBytes(machine.Path())->size(), 10u);
  EXPECT_EQ(*machine.Disk().FileBytes(machine.Path() + ".tmp"), NewBytes()) << "still whole";

  SaveUnder(&machine, [write](VirtualDisk& disk) { disk.StopInside(write, 10); });
  machine.Disk().Restart();
  ProfileFile profile;
  EXPECT_FALSE(profile.Load(TextOf(machine.Path())));
  EXPECT_EQ(profile.controls.count, 0);
  EXPECT_FALSE(machine.Disk().Exists(machine.Path() + ".tmp"));
}

}  // namespace
}  // namespace kelvaro
