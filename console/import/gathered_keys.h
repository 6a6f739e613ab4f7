// The keys of one Control as they come out of another program's file: keys that go down together
// and stay down until they are let go, waits, and typed text. What the key language can't say so is
// said as near as it can, with words for the difference.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "keys/key_action.h"

namespace kelvaro::console {

class GatheredKeys {
 public:
  static constexpr std::uint32_t kLongestPause = 65535;  // ms; a longer one counts as this

  // Together with those before it. `key` as foreign_keys.h gives it; a second time it does nothing.
  void Press(const std::string& key);
  // ms; what is down stays down.
  void Wait(std::uint32_t ms);
  // What is down goes up; then a wait, in ms.
  void LetGo(std::uint32_t ms);
  // One after the other, each let go. False, with nothing typed, when no key types one of them, and
  // for more than a thousand in all.
  bool Type(const std::string& text);

  bool IsEmpty() const { return steps.empty(); }
  // Whether keys are let go before the last one.
  bool HasTaps() const;
  // The action. `repeats`: it is for a Control that repeats, which holds nothing. *difference says
  // what comes out otherwise; it stays as it is when nothing does.
  std::unique_ptr<KeyAction> Make(bool repeats, std::string* difference) const;

 private:
  // Of keys that are down together, with waits between them.
  struct Step {
    std::vector<std::string> keys;  // a wait is "<P:50>"
    bool letGo = false;
    bool typed = false;
  };

  Step& Open();
  std::string Text(bool heldTogether, bool* oneByOne) const;

  std::vector<Step> steps;
  std::set<std::string> down;  // the keys of the last step
  std::size_t typed = 0;
};

}  // namespace kelvaro::console
