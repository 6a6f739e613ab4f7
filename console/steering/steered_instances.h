// The programs of Kelvaro that run and can be asked: windows, and runs of kelvaroctl. Through
// platform::calls().
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/platform/calls.h"
#include "steering/message.h"

namespace kelvaro::console {

// Where there is none.
constexpr char kNobodyToAsk[] = "no Kelvaro is running that could be asked";

// One that was asked, and what it said.
struct InstanceAnswer {
  std::uint32_t process = 0;
  bool done = false;
  std::string error;                                     // why not
  SteeringMessage answer;                                // where it answered at all
  std::unique_ptr<platform::Conversation> conversation;  // the same; goes on if that is wanted
};

// Asks every one that runs, or only the one of that process, and waits for the answers, ten seconds
// at most. Empty when none runs; the one that is named is always there, with its error.
std::vector<InstanceAnswer> AskInstances(std::optional<std::uint32_t> instance,
                                         const SteeringMessage& request);

// Has them open that stored profile; one that has it open already goes on as it is.
std::vector<InstanceAnswer> SelectProfile(std::optional<std::uint32_t> instance,
                                          const std::string& name);

// A message as a JSON object on one line: process, then its fields.
std::string JsonLine(std::uint32_t process, const SteeringMessage& message);

}  // namespace kelvaro::console
