// Files as kelvaroctl check and show take them, stored or in JSON. Checked: damage is found in a
// stored profile exactly when it doesn't load; each finding has its words on one line; and what is
// shown of a profile reads back as the same.
#include <cstddef>
#include <cstdint>
#include <string>

#include "console/profile_check.h"
#include "console/profile_json.h"
#include "console/profile_text.h"
#include "fuzz/check.h"

namespace {

using namespace kelvaro;
using namespace kelvaro::console;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Random bytes seldom begin with a magic, and all else is JSON, which has a target of its own.
  const std::string bytes =
      ProfileFile::kMagic + std::string(reinterpret_cast<const char*>(data), size);
  const ProfileReport report = CheckProfile(bytes, "f");
  bool damage = false;
  for (const Finding& finding : report.findings) {
    damage |= finding.kind == Finding::Kind::Damage;
    const std::string line = finding.where + ": " + finding.what;
    Check(!finding.where.empty() && !finding.what.empty(), "a finding without words", line);
    Check(line.find('\n') == std::string::npos, "a finding of several lines", line);
  }
  Check(damage == !report.loads, "damage and loading disagree", report.fault.message);
  if (!report.loads) return 0;

  ProfileFile profile;
  ProfileFault fault;
  Check(ReadProfileBytes(bytes, "f", &profile, &fault), "loads no more", fault.message);
  Check(!ProfileText(profile).empty(), "nothing to show", "");
  const std::string json = ProfileJson(profile);
  ProfileFile again;
  JsonFault problem;
  Check(ReadProfile(json, &again, &problem), "can't be read back", problem.Text("f"));
  Check(ProfileJson(again) == json, "reads back as something else", json);
  return 0;
}
