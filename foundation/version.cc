#include "foundation/version.h"

namespace kelvaro {

const Version kVersion{KELVARO_VERSION};

ByteString VersionNumber(const Version& version) {
  ByteString text = ToDecimal(version.major, false, 0);
  text.AppendChar('.');
  text.Append(ToDecimal(version.minor, false, 0));
  if (version.revision != 0) {
    text.AppendChar('.');
    text.Append(ToDecimal(version.revision, false, 0));
  }
  return text;
}

}  // namespace kelvaro
