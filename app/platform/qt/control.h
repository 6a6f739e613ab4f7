// One control of a dialog. A class a kind derives from it, owns the widget's looks and says what
// the person does to the host. User interface's thread alone.
// Its many methods are the operations on any control, of which a kind overrides those that it has.
#pragma once

#include <QObject>
#include <QWidget>
#include <cstdint>
#include <optional>
#include <string>

#include "app/platform/canvas.h"
#include "app/platform/controls.h"
#include "app/platform/desktop.h"
#include "app/platform/qt/pictures.h"

namespace platform::qt {

class Control;

// The window, as its controls see it.
class ControlHost {
 public:
  virtual ~ControlHost() = default;
  // The parent of every widget.
  virtual QWidget* Inside() = 0;
  virtual const Icons& AllIcons() const = 0;
  // The colour that a control stands before.
  virtual QColor Behind(const Control& control) const = 0;
  // The person did something. Window and controls are still there after the call: a dialog that
  // its handler ends goes later.
  virtual void Notify(std::uint32_t id, Notice notice, std::int32_t value = 0) = 0;
  // The same, in its turn: for what happens in the middle of a change of the focus.
  virtual void NotifyInTurn(std::uint32_t id, Notice notice) = 0;
  // Tells first what is in turn. False when that keeps what the person just did from counting: a
  // box came up, or the focus was put elsewhere.
  virtual bool GoesOn() = 0;
  virtual void Draw(const DrawItem& item, Canvas& canvas) = 0;
  // The focus came to or left a button: another one may be the default now.
  virtual void FocusMoved() = 0;
};

class Control : public QObject {
 public:
  Control(ControlHost& host, const ControlTemplate& from);

  // Deleted by the window that it is in.
  QWidget* Widget() const { return widget; }
  // The one that gets the focus: the widget, or a part of it.
  virtual QWidget* FocusWidget() const { return widget; }
  bool TakesFocus() const { return FocusWidget()->focusPolicy() != Qt::NoFocus; }

  // Buttons of all kinds that Enter presses.
  virtual bool IsPushButton() const { return false; }
  // Drawn as the one that Enter presses.
  virtual void ShowDefault(bool) {}

  void Show(bool show);
  bool IsShown() const { return shown; }
  void Enable(bool enable) { widget->setEnabled(enable); }
  void Redraw() { widget->update(); }

  Rect Place() const;  // in the window's inside
  void SetPlace(const Rect& rect, std::uint32_t flags);

  bool IsEnabled() const;

  // The kinds that have a text: false, and empty, for the others.
  virtual bool HasText() const { return false; }
  bool SetText(const std::string& bytes);
  virtual std::string Text() const { return HasText() ? text : std::string(); }

  // What a label of several lines needs for its text at its present width; 0 for what needs
  // nothing.
  virtual int HeightForText() const { return 0; }

  // Check boxes and radio buttons.
  virtual bool SetChecked(bool) { return false; }
  virtual bool IsChecked() const { return false; }

  virtual bool SetPicture(BitmapHandle) { return false; }
  void SetFont(const std::string& face, std::int32_t height, std::int32_t weight, bool underline);
  void SetTextColour(Colour colour);
  void SetBackgroundColour(Colour colour);
  bool SetHandCursor() {
    widget->setCursor(Qt::PointingHandCursor);
    return true;
  }

  // A label or group box: its mnemonic goes to that control.
  void SetLabelled(Control* control) { labelled = control; }
  Control* Labelled() const { return labelled; }
  bool NamesNext() const { return kind == ControlKind::Label || kind == ControlKind::GroupBox; }
  // The present text of that one, the nearest before it, is what a screen reader says where neither
  // the own text nor the template does.
  void TakeNameFrom(Control& label);
  // What a screen reader says beside the name.
  void SetDescription(const QString& text) { FocusWidget()->setAccessibleDescription(text); }

  // The palette of the window is another one.
  void TakeColours();

  const std::uint32_t id;
  const ControlKind kind;
  const std::uint32_t style;

 protected:
  // To be called once by a derived class's constructor.
  void Adopt(QWidget* made);
  // Of a kind that has mnemonics: with its marks.
  virtual void ShowText(const QString&) {}
  // It is the label of that widget.
  virtual void BindTo(QWidget*) {}
  void Clicked() { host.Notify(id, Notice::Clicked); }

  ControlHost& host;
  std::string text;  // as it was set

 private:
  // The text is what the person reads or types, not what says what the control is for.
  bool IsContent() const { return kind == ControlKind::Edit || kind == ControlKind::TextArea; }
  bool SaysItself() const { return HasText() && !IsContent() && !text.empty(); }
  void SetSpokenName(const QString& name);

  const char* const spokenName;
  QWidget* widget = nullptr;
  Control* labelled = nullptr;
  Control* namedBy = nullptr;
  std::optional<Colour> ink;
  std::optional<Colour> background;
  bool shown = true;
};

}  // namespace platform::qt
