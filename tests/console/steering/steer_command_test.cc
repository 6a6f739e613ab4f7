// What is said to running programs, and what of their answers is printed.
#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "app/platform/machine/this_machine.h"
#include "console/steering/steered_instances.h"
#include "tests/console/console_run.h"

namespace kelvaro::console {
namespace {

// Answers as it is told, on the calls' thread.
class Answering final : public platform::CallReceiver {
 public:
  using Reply = std::function<std::vector<std::string>(const std::string& request)>;

  explicit Answering(Reply reply) : reply(std::move(reply)) { answers = calls.Answer(this); }
  ~Answering() override { calls.StopAnswering(); }

  void OnMessage(platform::CallId call, const std::string& message) override {
    for (const std::string& answer : reply(message)) {
      if (answer.empty()) return calls.HangUp(call);
      calls.Send(call, answer);
    }
  }
  void OnRoom(platform::CallId) override {}
  void OnHungUp(platform::CallId) override {}
  void OnWake() override {}

  bool answers = false;

 private:
  const Reply reply;
  platform::ThisCalls calls;
};

class SteerCommand : public testing::Test {
 protected:
  static std::vector<std::string> Done(const std::string&) { return {"kelvaro 1 done"}; }

  const tests::TemporaryFolder runtime;
  const tests::Variable variable{"XDG_RUNTIME_DIR", runtime.folder.c_str()};
  const std::string self = std::to_string(getpid());
};

TEST_F(SteerCommand, WithNothingRunningEachSaysSo) {
  for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
           {"status"}, {"select", "Game"}, {"pause"}, {"resume"}, {"release-all"}}) {
    const Outcome outcome = Kelvaroctl(words);
    EXPECT_EQ(outcome.status, 1) << words[0];
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "kelvaroctl: no Kelvaro is running that could be asked\n");
  }
  for (const char* word : {"pause", "follow-events"}) {
    const Outcome named = Kelvaroctl({word, "-i", "1"});
    EXPECT_EQ(named.status, 1) << word;
    EXPECT_EQ(named.err, "kelvaroctl: 1: no running Kelvaro answers there\n");
  }
}

TEST_F(SteerCommand, AProcessIsAWholeNumberAboveZero) {
  for (const char* instance : {"0", "-1", "x", "", "2147483648", "1.5"}) {
    const Outcome outcome = Kelvaroctl({"status", "--instance", instance});
    EXPECT_EQ(outcome.status, 2) << instance;
    EXPECT_TRUE(outcome.err.starts_with("kelvaroctl: --instance: ")) << outcome.err;
  }
}

TEST_F(SteerCommand, StatusTellsEachMember) {
  const Answering instance([](const std::string& request) {
    EXPECT_EQ(request, "kelvaro 1 status");
    return std::vector<std::string>{
        "kelvaro 1 status\nprogram window\nversion 3.5\nprofile My \\\\ \"Game\"\ndevice Pad\n"
        "deviceAnswers no\npaused yes\nmouseControls yes"};
  });
  ASSERT_TRUE(instance.answers);
  const Outcome text = Kelvaroctl({"status"});
  EXPECT_EQ(text.out, self +
                          ", window: profile 'My \\ \"Game\"', pad 'Pad' (gone), paused, mouse "
                          "controls on\n");
  EXPECT_EQ(text.status, 0) << text.err;
  const Outcome json = Kelvaroctl({"status", "--json", "-i", self});
  EXPECT_EQ(json.out, "{\"process\":" + self +
                          ",\"program\":\"window\",\"version\":\"3.5\",\"profile\":\"My \\\\ "
                          "\\\"Game\\\"\",\"device\":\"Pad\",\"deviceAnswers\":false,\"paused\":"
                          "true,\"mouseControls\":true}\n");
  EXPECT_EQ(json.status, 0) << json.err;
}

TEST_F(SteerCommand, StatusWithoutProfileAndPadSaysThat) {
  const Answering instance([](const std::string&) {
    return std::vector<std::string>{
        "kelvaro 1 status\nprogram run\nprofile \ndevice \ndeviceAnswers no\npaused "
        "no\nmouseControls no"};
  });
  EXPECT_EQ(Kelvaroctl({"status"}).out, self + ", run: no profile, no pad, mouse controls off\n");
}

TEST_F(SteerCommand, EachAsksForWhatItIsCalled) {
  const struct {
    std::vector<std::string> words;
    const char* request;
    const char* said;
  } kCases[] = {
      {{"select", "My \\ Game"}, "kelvaro 1 select\nname My \\\\ Game", "opened 'My \\ Game'"},
      {{"pause"}, "kelvaro 1 pause", "paused"},
      {{"resume"}, "kelvaro 1 resume", "goes on"},
      {{"release-all"}, "kelvaro 1 release-all", "has let go of all that it held"},
  };
  for (const auto& row : kCases) {
    const Answering instance([&](const std::string& request) {
      EXPECT_EQ(request, row.request);
      return Done(request);
    });
    const Outcome text = Kelvaroctl(row.words);
    EXPECT_EQ(text.out, self + ": " + row.said + "\n");
    EXPECT_EQ(text.status, 0) << text.err;
    std::vector<std::string> json = row.words;
    json.push_back("--json");
    EXPECT_EQ(Kelvaroctl(json).out, "{\"process\":" + self + ",\"done\":true}\n");
  }
}

TEST_F(SteerCommand, WhatTheProgramRefusesIsTheError) {
  const Answering instance([](const std::string&) {
    return std::vector<std::string>{"kelvaro 1 error\ntext the window\\nis\x1B busy"};
  });
  for (const bool json : {false, true}) {
    std::vector<std::string> words = {"select", "Game"};
    if (json) words.push_back("--json");
    const Outcome outcome = Kelvaroctl(words);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err.find("kelvaroctl: " + self + ": the window"), 0u) << outcome.err;
    EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << "one line";
    EXPECT_EQ(outcome.err.find('\x1B'), std::string::npos);
  }
}

TEST_F(SteerCommand, AnAnswerThatIsNoneIsAnError) {
  for (const char* answer : {"nonsense", "kelvaro 2 done", "kelvaro 1 done\nx", ""}) {
    const Answering instance([&](const std::string&) { return std::vector<std::string>{answer}; });
    const Outcome outcome = Kelvaroctl({"pause"});
    EXPECT_EQ(outcome.status, 1) << answer;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err.find("kelvaroctl: " + self + ": "), 0u) << outcome.err;
  }
}

TEST_F(SteerCommand, FollowedEventsAreLinesUntilTheProgramEnds) {
  const Answering instance([](const std::string& request) {
    EXPECT_EQ(request, "kelvaro 1 follow-events");
    return std::vector<std::string>{"kelvaro 1 done",
                                    "kelvaro 1 event\nevent controlFired\nt 20\ncontrolId 3",
                                    "kelvaro 1 event\nevent mouseControls\nt 25\non yes",
                                    "kelvaro 1 event\nevent profile\nt 30\nname \xFF",
                                    "kelvaro 1 event\nevent missed\ncount 2",
                                    ""};
  });
  const Outcome outcome = Kelvaroctl({"follow-events", "-i", self});
  const std::string begin = "{\"process\":" + self + ",\"event\":";
  EXPECT_EQ(outcome.out, begin + "\"following\"}\n" + begin +
                             "\"controlFired\",\"t\":20,\"controlId\":3}\n" + begin +
                             "\"mouseControls\",\"t\":25,\"on\":true}\n" + begin +
                             "\"profile\",\"t\":30,\"name\":{\"bytes\":\"ff\"}}\n" + begin +
                             "\"missed\",\"count\":2}\n" + begin + "\"ended\"}\n");
  EXPECT_EQ(outcome.status, 0) << outcome.err;
}

// A number that another program sends is printed as a number only if it is one.
TEST_F(SteerCommand, WhatIsPrintedIsJsonWhateverWasSent) {
  SteeringMessage message;
  message.Add("t", std::string("1,\"x\":2")).Add("paused", std::string("maybe"));
  EXPECT_EQ(JsonLine(7, message), R"({"process":7,"t":"1,\"x\":2","paused":false})");
}

}  // namespace
}  // namespace kelvaro::console
