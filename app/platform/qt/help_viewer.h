// A window that shows help pages: HTML files in the folder beside a help file, named like it
// without its extension. A search goes through all of them. It has no owner, so that it stays of
// use while a dialog asks something. User interface's thread.
#pragma once

#include <QString>
#include <memory>

#include "app/platform/shell.h"

namespace platform::qt {

class HelpWindow;

class HelpViewer {
 public:
  HelpViewer();
  ~HelpViewer();
  HelpViewer(const HelpViewer&) = delete;
  HelpViewer& operator=(const HelpViewer&) = delete;

  // Brings the window up with that page, or with one that says where it was looked for.
  void Show(const QString& file, const QString& topic);
  void Close();

  // The help function of the seam, which goes to the newest viewer that there is.
  static std::uintptr_t HtmlHelp(WindowHandle caller, const char* file, std::uint32_t command,
                                 std::uintptr_t data);

 private:
  std::unique_ptr<HelpWindow> window;
};

// The folder of a help file's pages; either separator will do in the path.
QString PagesOf(const QString& file);

}  // namespace platform::qt
