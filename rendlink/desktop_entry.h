// Desktop entries, the files by which desktops start programs: how one is written, and what its
// Exec says. By freedesktop.org's standard of desktop entries, 1.5.
#pragma once

#include <string>
#include <string_view>

#include "rendlink/launch.h"

namespace kelvaro::rendlink {

struct DesktopEntry {
  std::string name;
  std::string comment;
  std::string icon;  // a name, or the full path of a file
  Words exec;
};

// The whole file. False, with a sentence in *refusal, for what such a file can't hold.
bool DesktopEntryText(const DesktopEntry& entry, std::string* text, std::string* refusal);

// The words of a value of "Exec". Field codes but "%%" are taken out.
Words ExecWords(std::string_view exec);

}  // namespace kelvaro::rendlink
