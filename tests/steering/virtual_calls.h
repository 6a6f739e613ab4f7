// Callers in memory: what they say comes in when the test hands it over, and what they are told is
// kept. Wake is noted, and the receiver's thread is whoever calls Pump. Installs itself for its
// life beside the other groups.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/platform.h"

namespace kelvaro {

class VirtualCalls final : public platform::Calls {
 public:
  explicit VirtualCalls(platform::Platform groups) : installed(With(groups)) {}

  bool Answer(platform::CallReceiver* called) override {
    if (receiver) return false;
    receiver = called;
    if (!saidAtOnce.empty()) Say(1, saidAtOnce);
    return answers;
  }
  void StopAnswering() override { receiver = nullptr; }
  bool Send(platform::CallId call, const std::string& message) override {
    if (full[call]) {
      wantsRoom[call] = true;
      return false;
    }
    heard[call].push_back(message);
    return true;
  }
  void HangUp(platform::CallId call) override { hungUp.push_back(call); }
  void Wake() override { ++wakes; }
  std::vector<std::uint32_t> Answering() override { return {}; }
  std::unique_ptr<platform::Conversation> Call(std::uint32_t) override { return nullptr; }
  std::unique_ptr<platform::Arrivals> WatchArrivals() override { return nullptr; }

  bool IsAnswered() const { return receiver != nullptr; }
  // What woke the receiver's thread.
  void Pump() {
    if (wakes == pumped || !receiver) return;
    pumped = wakes;
    receiver->OnWake();
  }
  void Say(platform::CallId call, const std::string& message) {
    receiver->OnMessage(call, message);
  }
  void HangUpBy(platform::CallId call) { receiver->OnHungUp(call); }
  // Whether the caller reads nothing.
  void Fill(platform::CallId call, bool isFull) {
    full[call] = isFull;
    if (isFull || !wantsRoom[call]) return;
    wantsRoom[call] = false;
    receiver->OnRoom(call);
  }
  // All that the caller was told since the last call; the lines of a message joined by " | ", and
  // messages by ", ", without what they begin with.
  std::string Heard(platform::CallId call) {
    Pump();
    std::string all;
    for (std::string message : heard[call]) {
      message.erase(0, std::string("kelvaro 1 ").size());
      for (std::size_t at; (at = message.find('\n')) != std::string::npos;)
        message.replace(at, 1, " | ");
      all += (all.empty() ? "" : ", ") + message;
    }
    heard[call].clear();
    return all;
  }

  bool answers = true;
  std::string saidAtOnce;  // by caller 1, as soon as anybody answers
  std::uint32_t wakes = 0;
  std::vector<platform::CallId> hungUp;

 private:
  platform::Platform With(platform::Platform groups) {
    groups.calls = this;
    return groups;
  }

  platform::CallReceiver* receiver = nullptr;
  std::uint32_t pumped = 0;
  std::map<platform::CallId, std::vector<std::string>> heard;
  std::map<platform::CallId, bool> full;
  std::map<platform::CallId, bool> wantsRoom;
  const platform::InstalledPlatform installed;
};

}  // namespace kelvaro
