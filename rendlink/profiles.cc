#include "rendlink/profiles.h"

#include <algorithm>

#include "app/platform/file_pattern.h"
#include "storage/profile_file.h"

namespace kelvaro::rendlink {
// As a sorted list of the seam does.
using platform::Folded;

std::vector<std::string> StoredProfiles() {
  ProfileFile file;
  LinkedList<ByteString> list;
  file.ListProfileNames(&list);
  std::vector<std::string> names;
  for (const ByteString& name : list) names.push_back(Bytes(name));
  std::stable_sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    return Folded(a) < Folded(b);
  });
  return names;
}

bool FindProfiles(const std::vector<std::string>& stored, std::vector<std::string>* names,
                  std::string* refusal) {
  std::vector<std::string> found;
  for (const std::string& name : *names) {
    const auto taken = std::find_if(stored.begin(), stored.end(), [&](const std::string& other) {
      return Folded(other).starts_with(Folded(name));
    });
    if (name.empty() || taken == stored.end()) {
      *refusal = "There is no profile whose name begins with \"" + name + "\".";
      return false;
    }
    if (*taken != name && std::find(stored.begin(), stored.end(), name) != stored.end()) {
      *refusal = "Kelvaro would take the profile \"" + *taken + "\" for \"" + name +
                 "\", since letter case is all in which they differ.";
      return false;
    }
    found.push_back(*taken);
  }
  *names = found;
  return true;
}

}  // namespace kelvaro::rendlink
