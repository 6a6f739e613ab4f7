// What --help of a command prints, in lines that fit the terminal.
#pragma once

#include <cstddef>
#include <string>

namespace CLI {
class App;
}

namespace kelvaro::console {

// `text` in lines of at most `columns` characters, each ended by a line feed; a longer word has a
// line of its own. A line feed in `text` starts a new line. All lines but the first begin with
// `indent` blanks; the first begins behind `used` characters that stand already.
std::string Wrapped(const std::string& text, std::size_t columns, std::size_t indent = 0,
                    std::size_t used = 0);

// Of the command that is called by `path`, such as "kelvaroctl settings".
std::string HelpText(const CLI::App& command, const std::string& path, std::size_t columns);

}  // namespace kelvaro::console
