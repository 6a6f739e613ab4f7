#include "app/platform/qt/control.h"

#include <algorithm>

#include "app/platform/qt/colours.h"
#include "app/platform/qt/qt_canvas.h"
#include "app/platform/qt/text.h"

namespace platform::qt {

Control::Control(ControlHost& host, const ControlTemplate& from)
    : id(from.id),
      kind(from.kind),
      style(from.style),
      host(host),
      text(from.text ? from.text : ""),
      spokenName(from.name) {}

void Control::Adopt(QWidget* made) {
  widget = made;
  if (spokenName) FocusWidget()->setAccessibleName(Shown(spokenName));
  if (HasText()) ShowText(Shown(text));
  if (style & kStyleDisabled) widget->setEnabled(false);
  Show(!(style & kStyleHidden));
  TakeColours();
}

void Control::Show(bool show) {
  shown = show;
  // A box takes room and is never seen.
  widget->setVisible(show && kind != ControlKind::Box);
}

bool Control::IsEnabled() const { return widget->isEnabledTo(host.Inside()); }

Rect Control::Place() const { return RectOf(widget->geometry()); }

void Control::SetPlace(const Rect& rect, std::uint32_t flags) {
  if (flags & SWP_NOSIZE) {
    widget->move(rect.left, rect.top);
  } else {
    widget->setGeometry(RectOf(rect));
  }
}

bool Control::SetText(const std::string& bytes) {
  if (!HasText()) return false;
  text = bytes;
  const QString shown = Shown(bytes);
  ShowText(IsContent() ? shown : Marked(shown));
  if (labelled && labelled->namedBy == this) labelled->SetSpokenName(shown);
  return true;
}

void Control::TakeNameFrom(Control& label) {
  namedBy = &label;
  if (!SaysItself()) label.BindTo(FocusWidget());
  SetSpokenName(WithoutMnemonic(Shown(label.Text())));
}

void Control::SetSpokenName(const QString& name) {
  if (!spokenName && !SaysItself()) FocusWidget()->setAccessibleName(name);
}

void Control::SetFont(const std::string& face, std::int32_t height, std::int32_t weight,
                      bool underline) {
  QFont font = widget->font();
  if (!face.empty()) font.setFamily(Shown(face));
  if (height > 0) font.setPixelSize(height);
  if (weight > 0) font.setWeight(static_cast<QFont::Weight>(std::min(weight, 1000)));
  font.setUnderline(underline);
  widget->setFont(font);
}

void Control::SetTextColour(Colour colour) {
  ink = colour;
  TakeColours();
}

void Control::SetBackgroundColour(Colour colour) {
  background = colour;
  TakeColours();
}

void Control::TakeColours() {
  const bool toRead = kind == ControlKind::TextArea || (style & kStyleReadOnly);
  if (!ink && !background && !toRead) return;
  QPalette palette;
  if (background) {
    palette.setColor(QPalette::Base, ColourOf(*background));
    palette.setColor(QPalette::Window, ColourOf(*background));
  } else if (toRead) {
    // Not the colour of a field for typing.
    palette.setColor(QPalette::Base, host.Inside()->palette().color(QPalette::Window));
  }
  if (ink) {
    const QColor colour =
        background ? ColourOf(*ink) : Readable(ColourOf(*ink), host.Behind(*this));
    palette.setColor(QPalette::Text, colour);
    palette.setColor(QPalette::WindowText, colour);
    palette.setColor(QPalette::ButtonText, colour);
  }
  widget->setPalette(palette);
}

}  // namespace platform::qt
