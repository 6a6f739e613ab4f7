// Texts between the seam, where they are bytes, and Windows' wide characters. The wide operations
// are used for all that is seen: by the others typed letters beyond ASCII come in pieces, and bytes
// that aren't UTF-8 not at all.
#pragma once

#include <string>
#include <string_view>

namespace platform::ui {

// As UTF-8, or as Latin-1 where they aren't: every byte shows.
std::wstring Wide(std::string_view bytes);
std::string Bytes(std::wstring_view text);
// As Latin-1; false, with *bytes untouched, when a letter isn't of it.
bool Latin1Bytes(std::wstring_view text, std::string* bytes);

// Of a text without mnemonics, for what takes "&" for the mark of one: "a & b" is "a && b".
std::wstring Marked(std::wstring_view plain);
// The way back: "&Keys && more" is "Keys & more".
std::wstring WithoutMnemonic(std::wstring_view marked);

// With the line ends that a field of several lines takes.
std::wstring WithLineEnds(std::wstring_view text);

}  // namespace platform::ui
