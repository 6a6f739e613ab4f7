// Shortcuts by the shell's own interface. A thread that uses it has COM.
#pragma once

#include "rendlink/shortcuts.h"

namespace kelvaro::rendlink {

class ShellShortcuts final : public ShortcutMaker {
 public:
  bool Make(const Shortcut& shortcut, std::string* bytes, std::string* error) override;
};

}  // namespace kelvaro::rendlink
