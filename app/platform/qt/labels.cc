#include "app/platform/qt/labels.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QFocusEvent>
#include <QFrame>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QShortcut>
#include <QStyle>
#include <QStyleOptionGroupBox>
#include <QStylePainter>
#include <functional>

#include "app/platform/qt/focus.h"
#include "app/platform/qt/text.h"

namespace platform::qt {
namespace {

// Gives the focus to the control that a label or group box stands before.
class Mnemonic {
 public:
  Mnemonic(Control& control, QWidget* widget) : control(control), shortcut(new QShortcut(widget)) {
    const auto go = [this] {
      if (Control* next = this->control.Labelled()) {
        next->FocusWidget()->setFocus(Qt::ShortcutFocusReason);
      }
    };
    QObject::connect(shortcut, &QShortcut::activated, go);
    QObject::connect(shortcut, &QShortcut::activatedAmbiguously, go);
  }

  void Take(const QString& marked) { shortcut->setKey(QKeySequence::mnemonic(marked)); }

 private:
  Control& control;
  QShortcut* const shortcut;  // of the widget
};

// Text with mnemonic marks, which QLabel and QGroupBox give a meaning of their own.
class LabelWidget : public QLabel {
 public:
  LabelWidget(QWidget* parent, std::uint32_t style) : QLabel(parent), templateStyle(style) {
    setTextFormat(Qt::PlainText);
  }

  void ShowMarked(const QString& text) {
    marked = templateStyle & kStyleWrap ? Breakable(text) : text;
    const QString plain = WithoutMnemonic(text);
    // The label of something makes a shortcut of a mark.
    setText(buddy() ? Marked(plain) : plain);
    update();
  }

  int HeightForText() const {
    return style()
        ->itemTextRect(fontMetrics(), QRect(0, 0, width(), QWIDGETSIZE_MAX), Flags(), true, marked)
        .height();
  }

  std::function<void()> onPress;

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    style()->drawItemText(&painter, rect(), Flags(), palette(), isEnabled(), marked,
                          foregroundRole());
    if (hasFocus()) DrawFocus(painter, *this, rect());
  }

  void mousePressEvent(QMouseEvent* event) override {
    if (event->button() == Qt::LeftButton && onPress) {
      onPress();
    } else {
      event->ignore();
    }
  }

 private:
  int Flags() const {
    const Qt::Alignment across = templateStyle & kStyleRight     ? Qt::AlignRight
                                 : templateStyle & kStyleCentred ? Qt::AlignHCenter
                                                                 : Qt::AlignLeft;
    return static_cast<int>(across | Qt::AlignTop) | Qt::TextShowMnemonic |
           (templateStyle & kStyleWrap ? Qt::TextWordWrap : Qt::TextSingleLine);
  }

  const std::uint32_t templateStyle;
  QString marked;
};

class LinkWidget : public LabelWidget {
 public:
  using LabelWidget::LabelWidget;

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    const bool press = event->key() == Qt::Key_Space || event->key() == Qt::Key_Return ||
                       event->key() == Qt::Key_Enter;
    if (press && onPress) {
      onPress();
    } else {
      event->ignore();
    }
  }
  void focusInEvent(QFocusEvent*) override { update(); }
  void focusOutEvent(QFocusEvent*) override { update(); }
};

class AccessibleLink : public QAccessibleWidget {
 public:
  explicit AccessibleLink(LinkWidget* link) : QAccessibleWidget(link, QAccessible::Link) {}

  QString text(QAccessible::Text kind) const override {
    const QString own = QAccessibleWidget::text(kind);
    return kind == QAccessible::Name && own.isEmpty() ? Link()->text() : own;
  }
  QStringList actionNames() const override { return {pressAction()}; }
  void doAction(const QString& action) override {
    if (action == pressAction() && Link()->onPress) Link()->onPress();
  }

 private:
  LinkWidget* Link() const { return static_cast<LinkWidget*>(widget()); }
};

class LabelControl final : public Control {
 public:
  LabelControl(ControlHost& host, const ControlTemplate& from, LabelWidget* label)
      : Control(host, from), label(label), mnemonic(*this, label) {
    label->onPress = [this] { Clicked(); };
    Adopt(label);
  }

  bool HasText() const override { return true; }
  int HeightForText() const override { return style & kStyleWrap ? label->HeightForText() : 0; }

 private:
  void ShowText(const QString& shown) override {
    label->ShowMarked(shown);
    mnemonic.Take(shown);
  }
  void BindTo(QWidget* field) override {
    label->setBuddy(field);
    label->ShowMarked(Shown(text));
  }

  LabelWidget* const label;
  Mnemonic mnemonic;
};

class PictureWidget : public QLabel {
 public:
  using QLabel::QLabel;
  BitmapHandle bitmap = 0;

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    DrawBitmap(painter, rect(), bitmap, palette().color(QPalette::WindowText));
  }
};

class PictureControl final : public Control {
 public:
  PictureControl(ControlHost& host, const ControlTemplate& from)
      : Control(host, from), picture(new PictureWidget(host.Inside())) {
    Adopt(picture);
  }

  bool SetPicture(BitmapHandle bitmap) override {
    picture->bitmap = bitmap;
    picture->update();
    return true;
  }

 private:
  PictureWidget* const picture;
};

class RuleWidget : public QFrame {
 public:
  explicit RuleWidget(QWidget* parent) : QFrame(parent) {
    setFrameStyle(QFrame::HLine | QFrame::Sunken);
  }
};

class PlainControl final : public Control {
 public:
  PlainControl(ControlHost& host, const ControlTemplate& from, QWidget* widget)
      : Control(host, from) {
    Adopt(widget);
  }
};

// Draws its title by itself, since QGroupBox makes a shortcut of a mnemonic that leads nowhere.
class GroupBoxWidget : public QGroupBox {
 public:
  using QGroupBox::QGroupBox;

  void ShowMarked(const QString& text) {
    marked = text;
    setTitle(Marked(WithoutMnemonic(text)));
    update();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QStylePainter painter(this);
    QStyleOptionGroupBox option;
    initStyleOption(&option);
    option.text = marked;
    painter.drawComplexControl(QStyle::CC_GroupBox, option);
  }

 private:
  QString marked;
};

class GroupBoxControl final : public Control {
 public:
  GroupBoxControl(ControlHost& host, const ControlTemplate& from)
      : Control(host, from), box(new GroupBoxWidget(host.Inside())), mnemonic(*this, box) {
    Adopt(box);
  }

  bool HasText() const override { return true; }

 private:
  void ShowText(const QString& shown) override {
    box->ShowMarked(shown);
    mnemonic.Take(shown);
  }

  GroupBoxWidget* const box;
  Mnemonic mnemonic;
};

}  // namespace

QAccessibleInterface* MakeAccessibleLabel(QObject* object) {
  if (auto* const link = dynamic_cast<LinkWidget*>(object)) return new AccessibleLink(link);
  if (auto* const picture = dynamic_cast<PictureWidget*>(object))
    return new QAccessibleWidget(picture, QAccessible::Graphic);
  if (auto* const rule = dynamic_cast<RuleWidget*>(object))
    return new QAccessibleWidget(rule, QAccessible::Separator);
  return nullptr;
}

std::unique_ptr<Control> MakeLabel(ControlHost& host, const ControlTemplate& from) {
  return std::make_unique<LabelControl>(host, from, new LabelWidget(host.Inside(), from.style));
}

std::unique_ptr<Control> MakeLink(ControlHost& host, const ControlTemplate& from) {
  auto* link = new LinkWidget(host.Inside(), from.style);
  link->setFocusPolicy(Qt::StrongFocus);
  return std::make_unique<LabelControl>(host, from, link);
}

std::unique_ptr<Control> MakePicture(ControlHost& host, const ControlTemplate& from) {
  return std::make_unique<PictureControl>(host, from);
}

std::unique_ptr<Control> MakeRule(ControlHost& host, const ControlTemplate& from) {
  return std::make_unique<PlainControl>(host, from, new RuleWidget(host.Inside()));
}

std::unique_ptr<Control> MakeGroupBox(ControlHost& host, const ControlTemplate& from) {
  return std::make_unique<GroupBoxControl>(host, from);
}

std::unique_ptr<Control> MakeBox(ControlHost& host, const ControlTemplate& from) {
  return std::make_unique<PlainControl>(host, from, new QWidget(host.Inside()));
}

}  // namespace platform::qt
