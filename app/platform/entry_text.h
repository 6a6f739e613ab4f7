// The text of desktop entries, the files by which desktops start programs: how their values
// are written and read. By freedesktop.org's standard of desktop entries, 1.5.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace platform {

// A word of an Exec with one of these is quoted; a backslash stands before these inside the quotes.
constexpr std::string_view kReservedInExec = " \t\n\r\"'\\><~|&;$*?#()`";
constexpr std::string_view kEscapedInQuotes = "\"`$\\";

// With the escapes that every value has, and back. An escape that isn't known stays.
std::string EscapedForEntry(std::string_view text);
std::string UnescapedFromEntry(std::string_view text);

// One word of an Exec: quoted where it must be, and without field codes. Still to be escaped.
std::string ExecWord(std::string_view word);

// The values of the group "Desktop Entry" by their keys, escapes undone; a key that comes twice has
// its first value.
std::map<std::string, std::string> ReadEntry(std::string_view text);

}  // namespace platform
