// Texts and numbers as they are spelled in the JSON that kelvaroctl prints.
#pragma once

#include <cstdint>
#include <string>

#include "app/platform/recording/recording.h"
#include "foundation/byte_string.h"
#include "keys/key_step.h"

namespace kelvaro::console {

using platform::JsonText;
std::string JsonText(const ByteString& text);
// [[65,30,0],[66,48,8]]
std::string JsonSteps(const KeySequence& steps);

}  // namespace kelvaro::console
