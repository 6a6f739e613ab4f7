// What a program without a console of its own has to say. Include last: it brings Windows' header.
#pragma once

#include <string>

#include "app/platform/windows/win32.h"

namespace kelvaro::rendlink {

// STD_OUTPUT_HANDLE or STD_ERROR_HANDLE; null where there is none.
HANDLE StandardStream(DWORD which);

// To the standard streams; where there is none, to the console from which the program was started;
// where there is none either, in a box.
void Say(const std::string& out, const std::string& err);

}  // namespace kelvaro::rendlink
