// Fields for text. What the person hasn't changed reads as the bytes that were set.
#pragma once

#include "app/platform/windows/ui/control.h"

namespace platform::ui {

class Edit final : public Control {
 public:
  Edit(ControlHost& host, const ControlTemplate& from, HWND handle);

  bool SetText(const std::string& bytes) override;
  std::string Text() const override;
  void SetCaret(std::uint32_t offset);
  void OnCommand(int code) override;

 protected:
  LRESULT Message(UINT message, WPARAM w, LPARAM l) override;

 private:
  bool edited = false;
  bool setting = false;
  bool latin1 = false;  // the text was set as bytes that aren't UTF-8
};

}  // namespace platform::ui
