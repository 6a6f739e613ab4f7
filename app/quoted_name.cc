#include "app/quoted_name.h"

namespace kelvaro {

ByteString QuotedName(const ByteString& name) {
  ByteString shown = name;
  shown.ReplaceAll("&", "&&");
  return ByteString("\"").Concat(shown).Concat("\"");
}

}  // namespace kelvaro
