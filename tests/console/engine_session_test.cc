#include "console/engine_session.h"

#include <gtest/gtest.h>

#include <memory>

#include "app/platform/simulation/simulation.h"
#include "console/json_text.h"
#include "console/profile_json.h"

namespace kelvaro::console {
namespace {

using platform::SimulatedDevice;
using platform::simulation::Simulation;

struct EngineSessionTest : testing::Test {
  void Load(const std::string& json) {
    profile = std::make_unique<Profile>();
    JsonFault fault;
    ASSERT_TRUE(ReadProfile(json, profile.get(), &fault)) << fault.Text("profile");
    session = std::make_unique<EngineSession>(*profile);
  }
  // Empty, or the error.
  std::string Begin(bool mouseActive = false) {
    std::string error;
    const bool good = session->Begin({}, mouseActive, &error);
    EXPECT_EQ(good, error.empty()) << error;
    began = sim.Now();
    return error;
  }
  // What was sent since the last call, with times from the beginning.
  std::string Sent() {
    std::string text;
    for (auto event : sim.Events()) {
      event.t -= began;
      text += EventText(event) + "\n";
    }
    sim.ClearEvents();
    return text;
  }

  Simulation sim;
  std::uint64_t began = 0;
  std::unique_ptr<Profile> profile;
  std::unique_ptr<EngineSession> session;
};

constexpr char kJump[] = R"({"controls":[{"buttonMask":1,"actions":[{"text":"a"}]}]})";

TEST_F(EngineSessionTest, RunsFromBeginToEnd) {
  SimulatedDevice& pad = sim.AddDevice({});
  Load(kJump);
  ASSERT_EQ(Begin(), "");
  EXPECT_EQ(Bytes(session->DeviceName()), "Pad");
  sim.RunFor(7);
  pad.Press({1});
  sim.RunFor(10);
  EXPECT_EQ(Sent(), "10 key 41 1e 0\n");
  session->End();
  EXPECT_EQ(Sent(), "17 key 41 1e 2\n");
}

TEST_F(EngineSessionTest, ChangesBehindTheEndDoNothing) {
  SimulatedDevice& pad = sim.AddDevice({});
  Load(kJump);
  ASSERT_EQ(Begin(), "");
  session->End();
  pad.Press({1});
  sim.RunFor(100);
  EXPECT_EQ(Sent(), "");
  session->End();  // a second one
  EXPECT_EQ(Sent(), "");
}

TEST_F(EngineSessionTest, GivesEverythingBack) {
  SimulatedDevice& pad = sim.AddDevice({});
  Load(kJump);
  ASSERT_EQ(Begin(), "");
  pad.Press({1});
  sim.RunFor(20);
  session.reset();  // ends it
  EXPECT_EQ(Sent(), "5 key 41 1e 0\n20 key 41 1e 2\n");
  EXPECT_EQ(sim.LivingThreads(), 0U);
  EXPECT_EQ(sim.OpenHandles(), 0U);
  EXPECT_EQ(sim.OpenDeviceObjects(), 0U);
  EXPECT_EQ(sim.OpenTimerPeriods(), 0U);
}

TEST_F(EngineSessionTest, MayStartWithTheMouseOn) {
  const char* const look = R"({"mouse":{"mouseX":{"kind":8,"index":0}}})";
  SimulatedDevice& pad = sim.AddDevice({});
  pad.PointHat(0, 9000);
  Load(look);
  ASSERT_EQ(Begin(true), "");
  sim.RunFor(10);
  session->End();
  EXPECT_EQ(Sent(), "5 mouse 1 1 0 0\n10 mouse 1 1 0 0\n");
  Load(look);
  ASSERT_EQ(Begin(false), "");
  sim.RunFor(10);
  EXPECT_EQ(Sent(), "");
}

TEST_F(EngineSessionTest, AnIntervalThatTheTimerHasNotIsNamed) {
  sim.AddDevice({});
  sim.SetTimerLimits(2, 900);
  for (const char* interval : {"0", "1", "901", "4294967295"}) {
    Load(std::string("{\"pollInterval\":") + interval + "}");
    EXPECT_EQ(Begin(), std::string("pollInterval: ") + interval + " ms is not from 2 to 900");
  }
  for (const char* interval : {"2", "900"}) {
    Load(std::string("{\"pollInterval\":") + interval + "}");
    EXPECT_EQ(Begin(), "");
    session.reset();
  }
}

TEST_F(EngineSessionTest, WithoutADeviceItDoesNotBegin) {
  Load(kJump);
  EXPECT_EQ(Begin(), "no game pad is plugged in");
  session->End();
  EXPECT_EQ(sim.LivingThreads(), 0U);
}

TEST_F(EngineSessionTest, WithoutItsRepeatThreadItDoesNotBegin) {
  sim.AddDevice({});
  Load(kJump);
  sim.FailAlways("CreateThread");
  EXPECT_EQ(Begin(), "the thread that repeats keys can't be started");
  session.reset();
  EXPECT_EQ(sim.LivingThreads(), 0U);
  EXPECT_EQ(sim.OpenDeviceObjects(), 0U);
}

}  // namespace
}  // namespace kelvaro::console
