// Profiles on a real disk: what a load and a save of 1,000 Controls cost, and what listing and
// finding among 1,000 files does, with the files in the system's cache.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "keys/key_action.h"
#include "storage/profile_file.h"
#include "tests/storage/linux/program_elsewhere.h"

namespace kelvaro {
namespace {

void FillProfile(ProfileFile* profile, int controls) {
  profile->deviceName = "Game pad";
  for (int i = 0; i < controls; ++i) {
    Control control;
    control.actionsBorrowed = 1;
    control.description = "does one thing or another";
    control.controlId = profile->nextControlId++;
    control.SetButtonMask(std::uint64_t{1} << i % 32 | 1);
    control.triggerItems.AddTail({static_cast<std::uint16_t>(i % 8), 0, 1});
    auto* action = new KeyAction;
    action->ParseKeys("<Ctrl>c<P:20>hello");
    control.actions.AddTail(action);
    profile->controls.AddTail(control);
  }
  profile->RebuildDispatchList();
}

void Save(benchmark::State& state, bool flush) {
  ProgramElsewhere program(flush);
  ProfileFile profile;
  profile.profileName = "Large";
  FillProfile(&profile, static_cast<int>(state.range(0)));
  for (auto _ : state) {
    if (!profile.Save()) state.SkipWithError("not saved");
  }
}
BENCHMARK_CAPTURE(Save, unflushed, false)->Arg(10)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Save, flushed, true)
    ->Arg(10)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void Load(benchmark::State& state) {
  ProgramElsewhere program(false);
  ProfileFile profile;
  profile.profileName = "Large";
  FillProfile(&profile, static_cast<int>(state.range(0)));
  if (!profile.Save()) state.SkipWithError("not saved");
  const ByteString path = profile.FindProfileFile("Large");
  for (auto _ : state) {
    if (!profile.Load(path)) state.SkipWithError("not loaded");
  }
  if (profile.controls.count != state.range(0)) state.SkipWithError("not all of it");
}
BENCHMARK(Load)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

// A folder of that many small profiles.
class Library {
 public:
  explicit Library(int files) : program(false) {
    for (int i = 0; i < files; ++i) {
      ProfileFile profile;
      profile.profileName = ("Profile " + std::to_string(i)).c_str();
      FillProfile(&profile, 5);
      profile.Save();
    }
  }
  ProgramElsewhere program;
};

void ListNames(benchmark::State& state) {
  Library library(static_cast<int>(state.range(0)));
  ProfileFile profile;
  LinkedList<ByteString> names;
  for (auto _ : state) profile.ListProfileNames(&names);
  if (names.count != state.range(0)) state.SkipWithError("not all of them");
}
BENCHMARK(ListNames)->Arg(1000)->Unit(benchmark::kMillisecond);

// No file has the name, so that all of them are read.
void FindNone(benchmark::State& state) {
  Library library(static_cast<int>(state.range(0)));
  ProfileFile profile;
  for (auto _ : state) {
    if (!profile.FindProfileFile("Profile").IsEmpty()) state.SkipWithError("found");
  }
}
BENCHMARK(FindNone)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kelvaro
