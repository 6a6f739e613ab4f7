// A simulated machine with Kelvaro and Rendlink in /game, three profiles, and a game.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/layout/dialog.h"
#include "rendlink/launcher.h"
#include "storage/profile_file.h"
#include "tests/person/desktop_simulation.h"
#include "tests/person/screen.h"

namespace kelvaro::rendlink {

class TestSession final : public Session {
 public:
  std::string DesktopFolder() override { return desktop; }
  std::string MenuFolder() override { return "/home/player/applications"; }
  std::vector<std::string> ApplicationsFolders() override {
    return {"/home/player/applications", "/usr/share/applications"};
  }
  std::string FullPath(const std::string& typed) override {
    return typed.empty() || typed.front() == '/' ? typed : "/home/player/" + typed;
  }
  bool AllowStart(const std::string& path) override {
    allowed.push_back(path);
    return allows;
  }

  std::string desktop = "/home/player/Desktop";
  bool allows = true;
  std::vector<std::string> allowed;
};

class RendlinkTest : public testing::Test {
 protected:
  RendlinkTest() {
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

  platform::simulation::DesktopSimulation sim;
  platform::simulation::Screen& screen = sim.Screen();
  TestSession session;
};

}  // namespace kelvaro::rendlink
