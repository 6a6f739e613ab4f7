// One control of a dialog: the system's own window, and what the seam has beside it. A class a kind
// derives from it and says what the person does to the host. User interface's thread alone.
// Its many methods are the operations on any control, of which a kind overrides those that it has.
#pragma once

#include <optional>
#include <string>

#include "app/platform/windows/ui/pictures.h"
#include "app/platform/windows/ui/system.h"

namespace platform::ui {

class Control;

// The window, as its controls see it.
class ControlHost {
 public:
  virtual ~ControlHost() = default;
  virtual const Icons& AllIcons() const = 0;
  // The person did something.
  virtual void Notify(std::uint32_t id, Notice notice, std::int32_t value = 0) = 0;
  // The same, in its turn: for what happens in the middle of a change of the focus.
  virtual void NotifyInTurn(std::uint32_t id, Notice notice) = 0;
  // Calls the control's InTurn later, in the order of the posts.
  virtual void PostInTurn(std::uint32_t id) = 0;
  // Tells first what is in turn. False when that keeps what the person just did from counting: a
  // box came up, or the focus was put elsewhere.
  virtual bool GoesOn() = 0;
  virtual void Draw(const DrawItem& item, Canvas& canvas) = 0;
  virtual void FocusCame(Control& control) = 0;
};

class Control {
 public:
  // The template's control has been made by the system as `handle`.
  Control(ControlHost& host, const ControlTemplate& from, HWND handle);
  virtual ~Control();
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  HWND Handle() const { return handle; }
  bool TakesFocus() const { return platform::TakesFocus(kind); }
  // Buttons of all kinds that Enter presses.
  bool IsPushButton() const {
    return kind == ControlKind::Button || kind == ControlKind::PictureButton ||
           kind == ControlKind::DrawnButton;
  }

  void Show(bool show);
  bool IsShown() const { return shown; }
  void Enable(bool enable) { EnableWindow(handle, enable); }
  bool IsEnabled() const { return IsWindowEnabled(handle); }
  void Redraw() { InvalidateRect(handle, nullptr, TRUE); }

  Rect Place() const;  // in the window's inside
  virtual void SetPlace(const Rect& rect, std::uint32_t flags);

  // The kinds that have a text: false, and empty, for the others.
  bool HasText() const;
  virtual bool SetText(const std::string& bytes);
  virtual std::string Text() const { return HasText() ? text : std::string(); }
  // What a label of several lines needs for its text at its present width; 0 for what needs
  // nothing.
  int HeightForText() const;

  // Check boxes and radio buttons.
  virtual bool SetChecked(bool) { return false; }
  virtual bool IsChecked() const { return false; }

  virtual bool SetPicture(BitmapHandle) { return false; }
  void SetFont(const std::string& face, std::int32_t height, std::int32_t weight, bool underline);
  void SetTextColour(Colour colour);
  void SetBackgroundColour(Colour colour);
  bool SetHandCursor();

  // What the window gets of it, and hands on.
  virtual void OnCommand(int) {}
  virtual LRESULT OnNotify(NMHDR&) { return 0; }
  virtual void OnScroll() {}
  virtual void OnDrawItem(const DRAWITEMSTRUCT&) {}
  virtual void InTurn() {}
  // The system is about to draw it before `behind`: the brush for its background, null to leave
  // that to the system.
  HBRUSH Colours(HDC canvas, const std::optional<COLORREF>& behind);
  bool SetsCursor() const;  // puts up its own one

  const std::uint32_t id;
  const ControlKind kind;
  const std::uint32_t style;

 protected:
  // The control's own messages, before or behind Inherited.
  virtual LRESULT Message(UINT message, WPARAM w, LPARAM l) { return Inherited(message, w, l); }
  LRESULT Inherited(UINT message, WPARAM w, LPARAM l) {
    return DefSubclassProc(handle, message, w, l);
  }

  ControlHost& host;
  const HWND handle;
  std::string text;  // as it was set

 private:
  static LRESULT CALLBACK Procedure(HWND, UINT message, WPARAM w, LPARAM l, UINT_PTR,
                                    DWORD_PTR control);
  // The text is what the person reads or types, not what says what the control is for.
  bool IsContent() const { return kind == ControlKind::Edit || kind == ControlKind::TextArea; }

  bool shown;
  std::optional<Colour> ink;
  std::optional<Colour> background;
  HBRUSH brush = nullptr;
  HFONT font = nullptr;
  HCURSOR hand = nullptr;
};

}  // namespace platform::ui
