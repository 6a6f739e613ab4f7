// Launchers as the shortcuts of Windows' shell, by their own rules: what is written into one, and
// which it can't hold.
#pragma once

#include <string>

#include "rendlink/launcher_kind.h"

namespace kelvaro::rendlink {

// Texts are UTF-8.
struct Shortcut {
  std::string program;
  std::string arguments;
  std::string comment;
  std::string icon;  // a file, whose first picture it is
};

// The shell, which alone knows the form of these files.
class ShortcutMaker {
 public:
  virtual ~ShortcutMaker() = default;

  // The bytes of its file. False, with the system's words for it in *error, where the shell makes
  // none, or one that holds something else.
  virtual bool Make(const Shortcut& shortcut, std::string* bytes, std::string* error) = 0;
};

class Shortcuts final : public LauncherKind {
 public:
  explicit Shortcuts(ShortcutMaker& maker) : maker(maker) {}

  const char* Ending() const override { return ".lnk"; }
  const char* MenuName() const override { return "Start menu"; }
  std::string CommandText(const Words& words) const override { return ProcessLine(words); }
  bool Save(const LauncherFacts& launcher, const std::string& path, std::string* refusal) override;

 private:
  ShortcutMaker& maker;
};

}  // namespace kelvaro::rendlink
