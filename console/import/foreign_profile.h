// A profile that comes out of another program's file, with a list of what is different in it or
// isn't there at all. Readers of such files tell it what they find, in the file's order.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "console/import/gathered_keys.h"
#include "engine/profile.h"

namespace kelvaro::console {

constexpr std::uint32_t kMostButtons = 64;  // that a Trigger can ask for

// Where something stands in a file: line, and place in the line, both from 1.
struct Place {
  std::size_t line = 1;
  std::size_t column = 1;

  // clang-tidy 14 takes the comparison with 0 in it for a pointer's.
  friend auto operator<=>(const Place&, const Place&) = default;  // NOLINT(modernize-use-nullptr)
};

// What keeps a file from being read.
struct ForeignFault {
  Place place;
  std::string what;
};

// Of something in the file.
struct ForeignNote {
  Place place;
  bool leftOut = false;  // otherwise it is in the profile, but works otherwise
  std::string what;

  // As above.
  friend auto operator<=>(const ForeignNote&,
                          const ForeignNote&) = default;  // NOLINT(modernize-use-nullptr)
};

// What the file doesn't say.
struct ForeignChoice {
  std::uint32_t section = 0;        // which set or joystick of the file; 0 for the first
  std::vector<std::uint16_t> axes;  // kinds of the pad's axes in its order; empty for the usual
  bool playStation = false;         // the order of the pad's buttons; otherwise that of an Xbox's
};

// "X,Y,Z,RX" as kinds of axes; SliderA and SliderB are axes, too. False for any other text.
bool ParseAxes(const std::string& text, std::vector<std::uint16_t>* axes);

struct ForeignInput {
  std::uint64_t buttonMask = 0;
  std::vector<TriggerItem> items;
};
ForeignInput ButtonInput(std::uint32_t button);  // from 1 to 64
ForeignInput AxisInput(std::uint16_t kind, bool positive);
ForeignInput HatInput(std::uint16_t hat, std::uint16_t direction);
// Both at once.
ForeignInput operator+(const ForeignInput& a, const ForeignInput& b);

struct ForeignControl {
  Place place;
  ForeignInput input;
  std::string description;
  GatheredKeys keys;
  bool whenLetGo = false;
  std::uint32_t repeatEvery = 0;  // ms; 0 for none
  std::uint32_t keyHoldTime = 0;  // ms, of keys that are let go by themselves; 0 for the usual
};

// One direction of an axis or hat moves the pointer or turns the wheel one way.
enum class ForeignMotion { X, Y, Wheel };
struct ForeignMouseMove {
  Place place;
  ForeignInput input;
  ForeignMotion motion = ForeignMotion::X;
  bool positive = false;              // right, down, toward the user
  std::uint32_t pixelsPerSecond = 0;  // at the end of the way; 0 where the file doesn't say
  std::uint32_t deadZone = 0;         // about the middle, of 32767; 0 where the file doesn't say
};

class ForeignProfile {
 public:
  // A fresh one, borrowed.
  explicit ForeignProfile(Profile& profile) : profile(profile) {}

  void LeaveOut(Place place, const std::string& what) { Tell({place, true, what}); }
  void Change(Place place, const std::string& what) { Tell({place, false, what}); }

  void Add(const ForeignControl& control);
  void Add(const ForeignMouseMove& move) { moves.push_back(move); }

  // Makes the mouse settings of the moves and puts the notes in the order of the file. Last of all,
  // and once.
  void Finish();
  // Whether nothing of the file is in it.
  bool IsEmpty() const { return profile.controls.count == 0 && !movesMouse; }

  Profile& profile;
  std::vector<ForeignNote> notes;

 private:
  // Once: both directions of an input may tell the same.
  void Tell(const ForeignNote& note) {
    if (told.insert(note).second) notes.push_back(note);
  }
  void SetMotion(ForeignMotion motion, Relaxed<TriggerItem>* target);
  void SetSpeed(const ForeignMouseMove& move);
  void SetDeadZone(const ForeignMouseMove& move);
  void TellOfHats();

  // The directions of a hat that have Controls of their own.
  struct Hat {
    std::uint16_t directions = 0;
    Place first;
  };

  std::set<ForeignNote> told;
  std::vector<ForeignMouseMove> moves;
  std::set<std::string> triggers;     // of the Controls, as text
  std::map<std::uint16_t, Hat> hats;  // by number
  std::uint32_t speed = 0;            // of the first move that tells one, as is the dead zone
  std::uint32_t deadZone = 0;
  std::uint32_t controls = 0;
  bool movesMouse = false;
};

// Reads the whole of such a file, an .amgp or a .lyt by its content, into *profile, a fresh one.
// False, with *fault set, for any other and for a damaged one.
bool ReadForeignProfile(const std::string& bytes, const ForeignChoice& choice,
                        ForeignProfile* profile, ForeignFault* fault);

}  // namespace kelvaro::console
