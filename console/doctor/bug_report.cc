#include "console/doctor/bug_report.h"

#include "foundation/version.h"
#include "keys/key_action.h"

namespace kelvaro::console {
namespace {

constexpr std::size_t kColumns = 80;

// The folder has a person's name. "/" is nobody's.
void HideHome(const std::string& home, std::string* text) {
  if (home.size() < 2) return;
  for (std::size_t at = text->find(home); at != std::string::npos; at = text->find(home, at)) {
    text->replace(at, home.size(), "~");
  }
}

}  // namespace

void LeaveOutTypedTexts(Profile* profile) {
  profile->profileName.Empty();
  for (Control& control : profile->controls) {
    control.description.Empty();
    for (InputAction* each : control.actions) {
      auto* const action = dynamic_cast<KeyAction*>(each);
      if (!action) continue;
      for (KeyStep& step : action->steps) {
        if ((step.flags & KeyFlagPause) == 0) step = KeyStep();
      }
    }
  }
}

std::string ReportText(const std::string& system, const std::vector<Remark>& remarks,
                       const std::string& profile, const std::string& home) {
  std::string text = "Kelvaro " + std::string(VersionNumber().Text()) + " on " + system + "\n\n";
  for (Remark remark : remarks) {
    // Before a line is broken: the folder may have blanks.
    HideHome(home, &remark.what);
    HideHome(home, &remark.next);
    text += RemarkText(remark, {kColumns, false});
  }
  text += profile.empty() ? "\nNo profile.\n"
                          : "\nThe profile, without its name, its descriptions and its keys:\n" +
                                profile + "\n";
  return text;
}

}  // namespace kelvaro::console
