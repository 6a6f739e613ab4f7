// What the person's session does for a program: opening an address, choosing files, a sound,
// libraries by name.
#pragma once

#include <cstdint>
#include <string>

#include "app/platform/desktop.h"

namespace platform {

// HtmlHelp
constexpr std::uint32_t HH_DISPLAY_TOPIC = 0x0;
constexpr std::uint32_t HH_CLOSE_ALL = 0x12;
constexpr std::uint32_t HH_INITIALIZE = 0x1C;
constexpr std::uint32_t HH_UNINITIALIZE = 0x1D;

// HH_INITIALIZE: `data` points to a std::uint32_t that takes the cookie. HH_UNINITIALIZE: `data` is
// the cookie. HH_DISPLAY_TOPIC: `file` is the help file's full path and `data` points to the
// topic's name, ended by a zero byte. Texts of the pages come from that file. 0 for a failure.
using HtmlHelpFunction = std::uintptr_t (*)(WindowHandle caller, const char* file,
                                            std::uint32_t command, std::uintptr_t data);

using LibraryHandle = std::uintptr_t;  // 0 for none

class Shell {
 public:
  virtual ~Shell() = default;

  // Opens an address ("https:", "mailto:") with the program that the person has chosen for it.
  // Above 32 on success.
  virtual std::intptr_t ShellExecuteA(const std::string& target) = 0;
  virtual bool MessageBeep(std::uint32_t type) = 0;

  // Libraries that a program can do without. Whatever a platform shows help pages with goes by the
  // name "hhctrl.ocx".
  virtual LibraryHandle LoadLibraryA(const std::string& name) = 0;
  // The help function, ordinal 14 of that library; null where it isn't there.
  virtual HtmlHelpFunction GetHelpFunction(LibraryHandle library, std::uint32_t ordinal) = 0;

  // The process's own command line: the program's path and its arguments in one text, each in
  // double quotes where it has blanks and brings no quotes of its own; the caller takes `quoteSub`
  // for one, too. Where the system keeps the line as it was typed, that line.
  virtual std::string GetCommandLineA(char quoteSub) = 0;

  // Ask modally in front of `owner` for a file to read or to save to (with a question where it is
  // there already), and for a folder, beginning at the path `suggested`, which may be empty. False,
  // with *path untouched, when none is chosen. User interface's thread.
  virtual bool ChooseFile(WindowHandle owner, const std::string& title, bool forSaving,
                          const std::string& suggested, std::string* path) = 0;
  virtual bool ChooseFolder(WindowHandle owner, const std::string& title,
                            const std::string& suggested, std::string* path) = 0;
};

// Of the installed platform; see platform.h.
Shell& shell();

}  // namespace platform
