// A name that somebody typed, in a label that shows it.
#pragma once

#include "foundation/byte_string.h"

namespace kelvaro {

// In double quotes, and with each '&' doubled: a label takes a single one as the mark of a
// mnemonic.
ByteString QuotedName(const ByteString& name);

}  // namespace kelvaro
