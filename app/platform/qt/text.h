// Texts between the seam, where they are bytes, and Qt.
#pragma once

#include <QString>
#include <string>

namespace platform::qt {

// As UTF-8, or as Latin-1 where they aren't: every byte shows.
QString Shown(const std::string& bytes);
bool IsUtf8(const std::string& bytes);
std::string Bytes(const QString& text);

// Without the marks of a mnemonic: "&Keys && more" is "Keys & more".
QString WithoutMnemonic(const QString& marked);
// The way back, with no mnemonic: "Keys & more" is "Keys && more".
QString Marked(const QString& plain);

// With places to break a line in words that are too long for one: names that a person chose have
// blanks or not.
QString Breakable(const QString& text);

// For a tool tip or another place that takes rich text: shown as it stands, its own line ends
// alone.
QString AsRichText(const QString& plain);

}  // namespace platform::qt
