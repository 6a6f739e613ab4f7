// What is wrong with a profile, or odd about it: whether it loads, what it lacks, what it holds
// that a reader passes over, which Controls can never fire, which keys may come out otherwise than
// written, and where a save would go.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "console/profile_source.h"
#include "engine/profile.h"

namespace kelvaro::console {

struct Finding {
  enum class Kind {
    Damage,          // keeps the profile from loading
    Lacks,           // missing or short; a reader does without
    PassedOver,      // there, and not read
    NotWhole,        // not all that the file claims to hold can be read, and it loads all the same
    NeverFires,      // a Control that nothing can make fire
    UnsureKey,       // one that the system may turn into something else, or into nothing
    OtherCharacter,  // one that the layout turns into another
    PauseLast,       // keys that end in a pause
    OtherFile,       // a save would not go to this file
  };
  Kind kind;
  std::string where;  // "list 12 (mouse settings)", "controls[2]"
  std::string what;
};

// In the order of Finding::Kind.
struct FindingKind {
  const char* name;     // in JSON
  const char* between;  // the words between where and what, for people
};
inline constexpr FindingKind kFindingKinds[] = {
    {"damage", ": damaged: "},
    {"lacks", ": lacks "},
    {"passedOver", ": passed over: "},
    {"notWhole", ": not whole: "},
    {"neverFires", " can never fire: "},
    {"unsureKey", ": "},
    {"otherCharacter", ": "},
    {"pauseLast", ": "},
    {"otherFile", ": "},
};

struct ProfileReport {
  bool loads = false;
  bool isWhole = true;  // false where it loads though not all of it can be read
  ProfileFault fault;   // when it doesn't load, or isn't whole
  ByteString profileName;
  std::int32_t controls = 0;  // that were read
  std::vector<Finding> findings;
};

// What the key of a kernel code types on the desktop, alone or with Shift: a character in UTF-8, or
// a name for something else; empty for nothing.
using Typing = std::function<std::string(std::uint16_t code, bool shift)>;

// Looks at the bytes of a file, in either form, as loading it would; `name` is the file's, for the
// message of a fault. Without `types` nothing is said of the layout.
ProfileReport CheckProfile(const std::string& bytes, const std::string& name,
                           const Typing& types = nullptr);

struct UnfitControl {
  const Control* control;  // of the DispatchList
  std::string why;         // in words
};

// The Controls that can't fire, in dispatch order. No state of a pad fits its inputs; or the mouse
// controls, always on, have one of them; or another with the same inputs, to the same sides, comes
// before it and fires at the same moments. `profile` has a DispatchList. Where the mouse controls
// are always on, the engine is asked (EngineTrial).
std::vector<UnfitControl> ControlsThatNeverFire(const Profile& profile);

// Appends a finding for each of these.
void FindControlsThatNeverFire(const Profile& profile, std::vector<Finding>* findings);

// Appends the Controls with characters that come out as others, a finding each.
void FindOtherCharacters(const Profile& profile, const Typing& types,
                         std::vector<Finding>* findings);

// Appends the Controls whose keys end in a pause.
void FindPausesAtTheEnd(const Profile& profile, std::vector<Finding>* findings);

// Appends the keys of each Control that this system can't send, that only a virtual keyboard can,
// or that depend on Num Lock, each once.
void FindUnsureKeys(const Profile& profile, std::vector<Finding>* findings);

}  // namespace kelvaro::console
