// A simulated machine with Kelvaro and Rendlink in /game, three profiles, and a game.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/layout/dialog.h"
#include "app/platform/simulation/simulation.h"
#include "rendlink/desktop_entries.h"
#include "rendlink/launcher.h"
#include "storage/profile_file.h"

namespace kelvaro::rendlink {

class TestSession final : public Session, public EntrySystem {
 public:
  std::string DesktopFolder() override { return desktop; }
  std::string MenuFolder() override { return "/home/player/applications"; }
  std::string FullPath(const std::string& typed) override {
    return typed.empty() || typed.front() == '/' ? typed : "/home/player/" + typed;
  }
  LauncherKind& Launchers() override { return entries; }
  std::vector<std::string> ApplicationsFolders() override {
    return {"/home/player/applications", "/usr/share/applications"};
  }
  bool AllowStart(const std::string& path) override {
    allowed.push_back(path);
    return allows;
  }

  std::string desktop = "/home/player/Desktop";
  bool allows = true;
  std::vector<std::string> allowed;
  DesktopEntries entries{*this};
};

// On a machine with windows, or without.
template <typename Machine>
class RendlinkTestOn : public testing::Test {
 protected:
  RendlinkTestOn() {
    sim.Disk().SetProgramPath("/game/rendlink");
    sim.Disk().PutFile("/game/kelvaro", "program");
    sim.Disk().PutFile("/games/race/race.sh", "game");
    sim.Disk().PutFolder("/games/saves");
    sim.Disk().PutFolder("/home/player/Desktop");
    for (const char* name : {"Race 2", "race", "Chess"}) StoreProfile(name);
  }

  void StoreProfile(const std::string& name) {
    ProfileFile made;
    made.profileName = TextOf(name);
    ASSERT_TRUE(made.Save()) << name;
  }

  std::string Refusal(const Launch& chosen) {
    Ready ready;
    std::string refusal;
    EXPECT_FALSE(MakeReady(chosen, session, &ready, &refusal));
    EXPECT_TRUE(ready.words.empty());
    return refusal;
  }
  Words WordsOf(const Launch& chosen) { return ReadyFor(chosen).words; }
  Ready ReadyFor(const Launch& chosen) {
    Ready ready;
    std::string refusal;
    EXPECT_TRUE(MakeReady(chosen, session, &ready, &refusal)) << refusal;
    return ready;
  }

  Machine sim;
  TestSession session;
};

using RendlinkTest = RendlinkTestOn<platform::simulation::Simulation>;

}  // namespace kelvaro::rendlink
