// Looks at the dialogs' tables.
#pragma once

#include <cctype>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "app/platform/dialog_template.h"
#include "app/resources/resources.h"

namespace kelvaro::resources {

using platform::ControlKind;
using platform::ControlTemplate;
using platform::DialogTemplate;

inline const ControlTemplate* Find(const DialogTemplate& dialog, std::uint32_t id) {
  for (const ControlTemplate& control : dialog.controls) {
    if (control.id == id) return &control;
  }
  return nullptr;
}

// As it is shown: without the mnemonic mark.
inline std::string Shown(const char* text) {
  std::string shown;
  for (; *text; ++text) {
    if (*text == '&' && *++text == 0) break;
    shown += *text;
  }
  return shown;
}

// The letter of the mnemonic in upper case, 0 for none.
inline char Mnemonic(const char* text) {
  for (; *text; ++text) {
    if (*text != '&') continue;
    if (*++text != '&') {
      return static_cast<char>(std::toupper(static_cast<unsigned char>(*text)));
    }
  }
  return 0;
}

inline bool Overlap(const ControlTemplate& a, const ControlTemplate& b) {
  return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
}

inline bool Inside(const ControlTemplate& inner, const ControlTemplate& outer) {
  return inner.x >= outer.x && inner.y >= outer.y &&
         inner.x + inner.width <= outer.x + outer.width &&
         inner.y + inner.height <= outer.y + outer.height;
}

// One number for a table of words that people know and documents quote: a change of a word on
// purpose changes the number in its test, and nobody types the table again.
inline std::uint64_t Fingerprint(const std::vector<std::string>& words) {
  std::uint64_t hash = 0xCBF29CE484222325u;  // FNV-1a
  for (const std::string& word : words) {
    for (const char c : word + '\0') {
      hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
    }
  }
  return hash;
}

// What can be seen at one time: a dialog, or the main window with one of its pages.
struct View {
  std::string name;
  std::vector<ControlTemplate> controls;
};

inline std::ostream& operator<<(std::ostream& out, const View& view) { return out << view.name; }

// The pages of the main window, each beginning with its box; what is common to all is left out.
inline std::vector<View> Pages() {
  std::vector<View> pages;
  for (const ControlTemplate& control : kMainWindow.controls) {
    if (control.kind == ControlKind::Box) {
      pages.push_back({"page " + std::to_string(control.id), {}});
    }
    if (!pages.empty()) pages.back().controls.push_back(control);
  }
  return pages;
}

// All dialogs; the main window once with each page.
inline std::vector<View> Views() {
  std::vector<View> views = Pages();
  for (View& view : views) {
    std::vector<ControlTemplate> shared;
    for (const ControlTemplate& control : kMainWindow.controls) {
      if (control.kind == ControlKind::Box) break;
      shared.push_back(control);
    }
    view.controls.insert(view.controls.begin(), shared.begin(), shared.end());
  }
  for (const DialogTemplate* dialog : Dialogs()) {
    if (dialog != &kMainWindow) {
      views.push_back({dialog->title, {dialog->controls.begin(), dialog->controls.end()}});
    }
  }
  return views;
}

}  // namespace kelvaro::resources
