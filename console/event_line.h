// Sent events as lines: JSON for programs, words for people.
#pragma once

#include <cstdint>
#include <string>

#include "app/platform/simulation/sent_event.h"

namespace kelvaro::console {

using platform::simulation::SentEvent;

// The key as the key language writes it, such as "<Ctrl>", or "key 3 scan 32" where it has none.
std::string KeyName(std::uint8_t vk, std::uint8_t scan);

// All of the next but t: "event":"key","vk":65,"scan":30,"flags":0
std::string EventMembers(const SentEvent& event);
// {"t":120,"event":"key","vk":65,"scan":30,"flags":0}
std::string JsonEventLine(const SentEvent& event);
// "a down", "left mouse button down"
std::string EventWords(const SentEvent& event);
// "     120 ms  "
std::string TimeText(std::uint64_t ms);
// "     120 ms  a down"
std::string TextEventLine(const SentEvent& event);

}  // namespace kelvaro::console
