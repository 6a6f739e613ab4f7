// What text is typed into, or read in many lines.
#pragma once

#include <QLineEdit>
#include <memory>

#include "app/platform/qt/control.h"

namespace platform::qt {

class Edit final : public Control {
 public:
  Edit(ControlHost& host, const ControlTemplate& from);

  bool HasText() const override { return true; }
  std::string Text() const override;
  void SetCaret(std::uint32_t offset);
  void SelectAll() { line->selectAll(); }

 private:
  class Widget;
  void ShowText(const QString& shown) override;

  QLineEdit* const line;
  bool edited = false;  // by the person, since the text was set
  bool latin1 = false;  // as which it was shown
};

std::unique_ptr<Control> MakeTextArea(ControlHost& host, const ControlTemplate& from);

}  // namespace platform::qt
