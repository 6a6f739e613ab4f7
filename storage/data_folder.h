// Where what a person makes lies, for all programs: the folder of profiles and QuoteChars.txt.
#pragma once

#include "foundation/byte_string.h"

namespace kelvaro {

// The program's own folder, without a separator at its end. Where a package for all users of a
// machine has put a file `PerUser` beside the program, "kelvaro" in the folder of the user's data
// instead; it need not be there. The file alone decides, not whether the program's folder can be
// written, and the two are never mixed. Any thread.
ByteString DataFolder();

}  // namespace kelvaro
