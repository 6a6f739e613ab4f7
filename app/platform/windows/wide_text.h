// Texts between the seam, where they are UTF-8, and Windows' wide characters.
#pragma once

#include <string>
#include <string_view>

namespace platform {

// What isn't UTF-8, or no character, comes as the mark for that.
std::wstring Utf16Of(std::string_view bytes);
std::string Utf8Of(std::wstring_view text);

}  // namespace platform
