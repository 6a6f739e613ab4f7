#include "app/platform/qt/edits.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QRegularExpressionValidator>
#include <QSignalBlocker>
#include <algorithm>

#include "app/platform/qt/focus.h"
#include "app/platform/qt/text.h"

namespace platform::qt {
namespace {

bool FitsLatin1(const QString& text) {
  return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 256; });
}

// Leaves the keys of the dialog to the dialog.
class TextAreaWidget : public QPlainTextEdit {
 public:
  using QPlainTextEdit::QPlainTextEdit;

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    switch (event->key()) {
      case Qt::Key_Return:
      case Qt::Key_Enter:
      case Qt::Key_Escape:
        event->ignore();
        return;
      default:
        QPlainTextEdit::keyPressEvent(event);
    }
  }
  // It has no cursor that would tell.
  void paintEvent(QPaintEvent* event) override {
    QPlainTextEdit::paintEvent(event);
    if (!hasFocus()) return;
    QPainter painter(viewport());
    DrawFocusFrame(painter, *this, viewport()->rect());
  }
  // The frame doesn't scroll.
  void scrollContentsBy(int dx, int dy) override {
    QPlainTextEdit::scrollContentsBy(dx, dy);
    viewport()->update();
  }
  void focusInEvent(QFocusEvent* event) override {
    QPlainTextEdit::focusInEvent(event);
    viewport()->update();
  }
  void focusOutEvent(QFocusEvent* event) override {
    QPlainTextEdit::focusOutEvent(event);
    viewport()->update();
  }
};

class TextArea final : public Control {
 public:
  TextArea(ControlHost& host, const ControlTemplate& from)
      : Control(host, from), area(new TextAreaWidget(host.Inside())) {
    area->setReadOnly(true);
    area->setCursorWidth(0);
    area->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    area->setTabChangesFocus(true);
    area->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    Adopt(area);
  }

  bool HasText() const override { return true; }

 private:
  void ShowText(const QString& shown) override { area->setPlainText(shown); }

  QPlainTextEdit* const area;
};

}  // namespace

class Edit::Widget : public QLineEdit {
 public:
  Widget(QWidget* parent, ControlHost& host, std::uint32_t id)
      : QLineEdit(parent), host(host), id(id) {}

 protected:
  void focusOutEvent(QFocusEvent* event) override {
    QLineEdit::focusOutEvent(event);
    // Its own menu takes the focus only for as long as it is open.
    if (event->reason() != Qt::PopupFocusReason) host.NotifyInTurn(id, Notice::FocusLost);
  }

 private:
  ControlHost& host;
  const std::uint32_t id;
};

Edit::Edit(ControlHost& host, const ControlTemplate& from)
    : Control(host, from), line(new Widget(host.Inside(), host, from.id)) {
  line->setReadOnly(from.style & kStyleReadOnly);
  if (from.style & kStyleRight) line->setAlignment(Qt::AlignRight);
  if (from.style & kStyleCentred) line->setAlignment(Qt::AlignHCenter);
  if (from.style & kStyleDigits) {
    static const QRegularExpression digits(QStringLiteral("[0-9]*"));
    line->setValidator(new QRegularExpressionValidator(digits, line));
  }
  // A screen reader puts a text there without typing it.
  connect(line, &QLineEdit::textChanged, this, [this] {
    edited = true;
    this->host.Notify(id, Notice::Changed);
  });
  Adopt(line);
}

std::string Edit::Text() const {
  if (!edited) return text;
  const QString now = line->text();
  if (latin1 && FitsLatin1(now)) return now.toLatin1().toStdString();
  return Bytes(now);
}

void Edit::SetCaret(std::uint32_t offset) {
  const std::string before = Text().substr(0, offset);
  line->deselect();
  line->setCursorPosition(static_cast<int>(latin1 ? static_cast<qsizetype>(before.size())
                                                  : QString::fromStdString(before).size()));
}

void Edit::ShowText(const QString& shown) {
  edited = false;
  latin1 = !IsUtf8(text);
  const QSignalBlocker quiet(line);
  line->setText(shown);
}

std::unique_ptr<Control> MakeTextArea(ControlHost& host, const ControlTemplate& from) {
  return std::make_unique<TextArea>(host, from);
}

}  // namespace platform::qt
