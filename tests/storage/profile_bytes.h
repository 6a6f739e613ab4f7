// Profile files put together by hand, and a disk with the folder that they go into.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "app/platform/simulation/simulation.h"
#include "storage/profile_file.h"
#include "tests/storage/chunks.h"

namespace kelvaro {

constexpr char kFolder[] = "/game/Profiles";

inline std::string TypeList() { return List(1, {Field("EventProfile")}); }
inline std::string RevisionList() { return List(2, {Field("\x01")}); }
inline std::string NameList(const std::string& name, std::uint32_t nextControlId = 1) {
  return List(3, {Field(name), Field(Big(nextControlId, 4))});
}
inline std::string SmallProfile(const std::string& name) {
  return ProfileBytes({TypeList(), RevisionList(), NameList(name)});
}

// The field of a Control's list 14, and that of a list 7.
inline std::string Timings(int repeat, std::uint32_t delay, std::uint32_t speed, std::uint32_t hold,
                           std::uint32_t releasePause) {
  return Big(static_cast<std::uint64_t>(repeat), 1) + Big(delay, 4) + Big(speed, 4) + Big(hold, 4) +
         Big(releasePause, 4);
}
inline std::string OldTimings(int repeat, std::uint32_t delay, std::uint32_t speed,
                              std::uint32_t hold) {
  return Timings(repeat, delay, speed, hold, 0).substr(0, 13);
}

inline std::string TriggerField(int onPress, std::uint64_t mask, int option) {
  return Big(static_cast<std::uint64_t>(onPress), 1) + Big(mask, 8) +
         Big(static_cast<std::uint64_t>(option), 1);
}
inline std::string TriggerList(std::uint64_t mask) {
  return List(6, {Field(TriggerField(1, mask, 1))});
}

class ProfileTest : public testing::Test {
 protected:
  using VirtualDisk = platform::simulation::VirtualDisk;

  VirtualDisk& Disk() { return sim.Disk(); }
  static std::string PathOf(const std::string& fileName) {
    return std::string(kFolder) + "/" + fileName;
  }
  // Puts a file at a place of no meaning and loads it.
  bool LoadBytes(ProfileFile* profile, const std::string& bytes) {
    Disk().PutFile("/data/p.idprof", bytes);
    return profile->Load("/data/p.idprof");
  }
  // A profile of name "P" and counter 9 with these children of list 4.
  bool LoadControls(ProfileFile* profile, const Chunks& children) {
    return LoadBytes(
        profile, ProfileBytes({TypeList(), RevisionList(), NameList("P", 9), List(4, children)}));
  }

  platform::simulation::Simulation sim;
};

}  // namespace kelvaro
