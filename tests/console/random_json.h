// Profiles at random, in JSON, on a pad of eight buttons, six axes and a hat. Every Control can be
// let go of by the rules: one that holds all its keys doesn't repeat, as its keys would stay down.
#pragma once

#include <string>

#include "tests/console/random.h"

namespace kelvaro {

class RandomJson {
 public:
  explicit RandomJson(Random& random) : random(random) {}

  std::string Profile() {
    std::string json = "{\"pollInterval\":" + Number(1, 12) + ",\"mouse\":" + Mouse() +
                       ",\"controls\":[" + Control();
    for (std::uint32_t more = random.Below(12); more > 0; --more) json += ",\n" + Control();
    return json + "]}";
  }

 private:
  std::string Number(std::uint32_t least, std::uint32_t most) {
    return std::to_string(random.Between(least, most));
  }
  std::string Truth(std::uint32_t oneIn) { return random.OneIn(oneIn) ? "true" : "false"; }

  // No, one, or now and then two buttons.
  std::string Mask() {
    std::uint32_t mask = random.OneIn(6) ? 0 : 1u << random.Below(8);
    if (random.OneIn(3)) mask |= 1u << random.Below(8);
    return std::to_string(mask);
  }

  std::string MouseInput() {
    return random.OneIn(3) ? R"({"kind":)" + Number(8, 9) + "}"
                           : R"({"kind":)" + Number(0, 5) + "}";
  }

  std::string Mouse() {
    std::string json = "{\"movementSensitivity\":" + Number(0, 50) +
                       ",\"movementDamper\":" + Number(0, 50) +
                       ",\"wheelDamper\":" + Number(0, 50) + ",\"mouseAlwaysActive\":" + Truth(4) +
                       ",\"mouseX\":" + MouseInput();
    if (random.OneIn(2)) json += ",\"mouseY\":" + MouseInput();
    if (random.OneIn(3)) json += ",\"mouseWheel\":" + MouseInput();
    if (random.OneIn(2)) json += ",\"leftMask\":" + Mask();
    if (random.OneIn(3)) json += ",\"middleMask\":" + Mask();
    if (random.OneIn(3)) json += ",\"rightMask\":\"0xffffffff80000001\"";
    return json + "}";
  }

  std::string Item() {
    if (random.OneIn(3)) return R"({"kind":8,"index":0,"value":)" + Number(1, 15) + "}";
    return R"({"kind":)" + Number(0, 7) + R"(,"index":0,"value":)" + Number(1, 2) + "}";
  }

  std::string Step() {
    // Flags of all kinds; a pause that lasts half a second at the most.
    const std::uint32_t flags = random.OneIn(2) ? 0 : random.Below(256);
    const std::uint32_t vk = flags & 0x80      ? random.Below(2)
                             : random.OneIn(5) ? 0
                                               : 65 + random.Below(6);
    return "[" + std::to_string(vk) + "," + Number(0, 255) + "," + std::to_string(flags) + "]";
  }

  std::string Action(bool repeats) {
    const bool holdAll = !repeats && random.OneIn(3);
    std::string list;
    const bool asText = !holdAll && random.OneIn(2);
    for (std::uint32_t count = random.Between(asText ? 1 : 0, 5); count > 0; --count) {
      if (asText) {
        list += random.OneOf({"a", "B", "7", "!", "<<", "<Up>", "<Del>", "<Ctrl>", "<LShift>",
                              "<RAlt>", "<LWin>", "<LMouse>", "<MMouse>", "<X1Mouse>", "<P:0>",
                              "<P:20>", "<P:300>"});
      } else {
        list += (list.empty() ? "" : ",") + Step();
      }
    }
    if (asText) return "{\"text\":\"" + list + "\"}";
    return "{\"actionFlags\":" + std::string(holdAll ? "1" : "0") + ",\"steps\":[" + list + "]}";
  }

  std::string Control() {
    const bool repeats = random.OneIn(4);
    std::string json = "{\"buttonMask\":" + Mask() +
                       ",\"activateOnPress\":" + (random.OneIn(4) ? "false" : "true") +
                       ",\"toggleMouseControls\":" + Truth(8) +
                       ",\"repeatEnabled\":" + (repeats ? "true" : "false") +
                       ",\"repeatDelay\":" + Number(0, 300) + ",\"repeatSpeed\":" + Number(0, 100);
    if (random.OneIn(2)) json += ",\"keyHoldTime\":" + Number(0, 40);
    if (random.OneIn(2)) json += ",\"keyReleasePause\":" + Number(0, 40);
    if (random.OneIn(3)) json += ",\"triggerItems\":[" + Item() + "]";
    json += ",\"actions\":[" + Action(repeats);
    if (random.OneIn(4)) json += "," + Action(repeats);
    return json + "]}";
  }

  Random& random;
};

}  // namespace kelvaro
