// What is Windows' own of calls; tests/platform/machine/calls_test.cc has the rest.
#include "app/platform/windows/windows_calls.h"

#include <gtest/gtest.h>

#include <string>

#include "app/platform/windows/program_file.h"
#include "tests/host/files.h"

// Last.
#include "tests/platform/machine/calls_by_hand.h"

#include <aclapi.h>
#include <sddl.h>

namespace platform {
namespace {

using namespace kelvaro::tests;

class Nobody final : public CallReceiver {
 public:
  void OnMessage(CallId, const std::string&) override {}
  void OnRoom(CallId) override {}
  void OnHungUp(CallId) override {}
  void OnWake() override {}
};

std::string TextOf(PSID who) {
  char* text = nullptr;
  if (!ConvertSidToStringSidA(who, &text)) return {};
  const std::string told = text;
  LocalFree(text);
  return told;
}

class WindowsCallsTest : public testing::Test, protected TemporaryFolder {
 protected:
  ~WindowsCallsTest() override { calls.StopAnswering(); }

  const std::string place = PlaceFor(folder);
  const std::string pipe = WindowsCalls::PipeOf(place, OwnProcess());
  WindowsCalls calls{place};
  Nobody receiver;
};

TEST_F(WindowsCallsTest, ThePipeIsTheUsersAlone) {
  ASSERT_TRUE(calls.Answer(&receiver));
  const OwnedHandle opened(CreateFileA(pipe.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                       OPEN_EXISTING, 0, nullptr));
  ASSERT_TRUE(opened);
  PSID owner = nullptr;
  PACL list = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  ASSERT_EQ(GetSecurityInfo(opened.Get(), SE_KERNEL_OBJECT,
                            OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION, &owner, nullptr,
                            &list, nullptr, &descriptor),
            DWORD{ERROR_SUCCESS});
  EXPECT_EQ(TextOf(owner), ThisUser());
  ASSERT_TRUE(list);
  ASSERT_EQ(list->AceCount, 1);
  void* entry = nullptr;
  ASSERT_TRUE(GetAce(list, 0, &entry));
  auto& allowed = *static_cast<ACCESS_ALLOWED_ACE*>(entry);
  EXPECT_EQ(allowed.Header.AceType, ACCESS_ALLOWED_ACE_TYPE);
  EXPECT_EQ(TextOf(&allowed.SidStart), ThisUser());
  LocalFree(descriptor);
}

}  // namespace
}  // namespace platform
