#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "app/resources/control_ids.h"
#include "app/resources/resources.h"
#include "tests/app/resources/dialog_tables.h"

namespace kelvaro::resources {
namespace {

TEST(String, GivesTheTextOfANumber) {
  std::vector<std::string> words;
  for (std::uint32_t id = 0; id < 2000; ++id) {
    const char* const text = String(id);
    if (!text || id == main_window::kWebLink || id == main_window::kMailLink)
      continue;  // the addresses are the build's
    words.insert(words.end(), {std::to_string(id), text});
  }
  EXPECT_EQ(words.size(), 2 * 69u);
  EXPECT_EQ(Fingerprint(words), 0x8E6A95412C59590Au);
  EXPECT_STREQ(String(main_window::kProfileList), "The list of available profiles for selection.");
  const bool web = *KELVARO_WEB_ADDRESS, mail = *KELVARO_SUPPORT_ADDRESS;
  EXPECT_STREQ(String(main_window::kWebLink), web ? "Open your browser to " KELVARO_WEB_ADDRESS "."
                                                  : "This build has no address.");
  EXPECT_STREQ(String(main_window::kMailLink),
               mail ? "Start a new email addressed to " KELVARO_SUPPORT_ADDRESS "."
                    : "This build has no address.");
}

TEST(String, HasATextForWhateverCanBeOperatedInDefineControl) {
  for (const ControlTemplate& control : kDefineControl.controls) {
    if (platform::TakesFocus(control.kind)) {
      EXPECT_NE(String(control.id), nullptr) << control.id;
    }
  }
}

TEST(String, EndsEachTextWithAFullStop) {
  for (std::uint32_t id = 0; id < 2000; ++id) {
    const char* const text = String(id);
    if (!text) continue;
    EXPECT_EQ(std::string(text).back(), '.') << text;
  }
}

}  // namespace
}  // namespace kelvaro::resources
