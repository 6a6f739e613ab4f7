// Random profiles, the same ones for the same seed on every machine, and their comparison member by
// member.
#pragma once

#include <gtest/gtest.h>

#include <concepts>
#include <cstdint>

#include "engine/members.h"
#include "keys/key_action.h"
#include "storage/profile_file.h"
#include "tests/keys/random_keys.h"
#include "tests/storage/members_text.h"

namespace kelvaro {

class RandomProfile {
 public:
  explicit RandomProfile(std::uint32_t seed) : random(seed) {}

  void Fill(ProfileFile* profile, std::uint32_t mostControls = 12) {
    FillMembers(*profile);
    profile->profileName = ByteString("p").Concat(Text());  // so that there is a file name in it
    for (std::uint32_t n = random.Below(mostControls + 1); n > 0; --n) AddControl(profile);
    profile->RebuildDispatchList();
  }

  void Fill(ProfileFile* profile, const char* name, int controls) {
    Fill(profile, 0);
    profile->profileName = name;
    for (int i = 0; i < controls; ++i) AddControl(profile);
    profile->RebuildDispatchList();
  }

  void AddControl(ProfileFile* profile) {
    profile->controls.AddTail(Control());
    Control& control = *profile->controls.tail->value;
    FillMembers(control);
    control.SetButtonMask(control.buttonMask);
  }

 private:
  template <typename T>
  void FillMembers(T& item) {
    VisitMembers(item, [this](const char*, auto& member) { this->Make(member); });
  }
  void Make(std::uint8_t& flag) { flag = random.OneIn(2) ? 1 : 0; }
  void Make(bool& flag) { flag = random.OneIn(2); }
  void Make(std::uint16_t& number) { number = static_cast<std::uint16_t>(random.Below(0x10000)); }
  // The ends of the range more often than by chance.
  void Make(std::uint32_t& number) {
    number = random.OneIn(8) ? (random.OneIn(2) ? 0 : 0xFFFFFFFF)
                             : random.Below(0x10000) << 16 | random.Below(0x10000);
  }
  void Make(std::int32_t& number) { number = static_cast<std::int32_t>(Any<std::uint32_t>()); }
  void Make(std::uint64_t& mask) {
    mask = std::uint64_t{Any<std::uint32_t>()} << 32 | Any<std::uint32_t>();
  }
  void Make(ByteString& text) { text = Text(); }
  void Make(platform::GUID& guid) {
    Make(guid.Data1);
    Make(guid.Data2);
    Make(guid.Data3);
    for (std::uint8_t& byte : guid.Data4) byte = random.Byte();
  }
  void Make(TriggerItem& mouseInput) {
    const auto kind = static_cast<std::uint16_t>(random.Below(14));
    mouseInput = MouseInput(kind, static_cast<std::uint16_t>(random.Below(6)));
  }
  template <typename T>
  void Make(Relaxed<T>& member) {
    member = Any<T>();
  }
  void Make(MouseSettings& mouse) { FillMembers(mouse); }
  void Make(Trigger&) {}  // made already, member by member
  void Make(LinkedList<TriggerItem>& items) {
    for (std::uint32_t n = random.Below(4); n > 0; --n) {
      items.AddTail({});
      FillMembers(*items.tail->value);
    }
  }
  void Make(LinkedList<InputAction*>& actions) {
    for (std::uint32_t n = random.Below(4); n > 0; --n) {
      auto* action = new KeyAction;
      action->actionFlags = random.OneIn(2) ? 1 : Any<std::uint32_t>();
      for (std::uint32_t steps = random.Below(20); steps > 0; --steps) {
        action->steps.AddTail(random.AnyStep());
      }
      actions.AddTail(action);
    }
  }
  void Make(LinkedList<Control>&) {}  // by AddControl

  template <typename T>
  T Any() {
    T made{};
    Make(made);
    return made;
  }
  ByteString Text() {
    ByteString text;
    for (std::uint32_t n = random.Below(30); n > 0; --n) {
      text.AppendChar(static_cast<char>(random.Byte()));
    }
    return text;
  }

  RandomKeys random;
};

// Of two Controls, or two lists of them.
template <typename T>
void ExpectSame(const T& a, const T& b) {
  EXPECT_EQ(MembersText::Of(a), MembersText::Of(b));
}

inline void ExpectSameProfile(const Profile& a, const Profile& b) {
  ExpectSame(a, b);
  ExpectSame(a.DispatchList, b.DispatchList);
}

}  // namespace kelvaro
