#include "app/platform/qt/buttons.h"

#include <QCheckBox>
#include <QFocusEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QStyleOptionButton>
#include <QStylePainter>

#include "app/platform/qt/focus.h"
#include "app/platform/qt/qt_canvas.h"
#include "app/platform/qt/text.h"

namespace platform::qt {
namespace {

class ButtonWidget : public QPushButton {
 public:
  ButtonWidget(ControlHost& host, std::uint32_t id)
      : QPushButton(host.Inside()), host(host), id(id) {
    setAutoDefault(false);
  }

 protected:
  // Some styles draw one that has the focus as the one that Enter presses, and nothing more.
  void paintEvent(QPaintEvent* event) override {
    QPushButton::paintEvent(event);
    if (!hasFocus()) return;
    QStylePainter painter(this);
    QStyleOptionButton button;
    initStyleOption(&button);
    DrawFocus(painter, *this,
              style()->subElementRect(QStyle::SE_PushButtonFocusRect, &button, this));
  }
  void focusInEvent(QFocusEvent* event) override {
    QPushButton::focusInEvent(event);
    host.FocusMoved();
  }
  void focusOutEvent(QFocusEvent* event) override {
    QPushButton::focusOutEvent(event);
    host.FocusMoved();
  }

  ControlHost& host;
  const std::uint32_t id;
};

class PictureButtonWidget : public ButtonWidget {
 public:
  using ButtonWidget::ButtonWidget;
  BitmapHandle bitmap = 0;

 protected:
  void paintEvent(QPaintEvent*) override {
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    option.text.clear();
    painter.drawControl(QStyle::CE_PushButton, option);
    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    DrawBitmap(painter, rect().adjusted(4, 4, -4, -4), bitmap,
               palette().color(group, QPalette::ButtonText));
  }
};

class DrawnButtonWidget : public ButtonWidget {
 public:
  using ButtonWidget::ButtonWidget;

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    QtCanvas canvas(painter, *this, host.AllIcons());
    DrawItem item;
    item.id = id;
    item.rect = RectOf(rect());
    item.pressed = isDown();
    item.focused = hasFocus();
    item.disabled = !isEnabled();
    item.focusAction = focusChanged;
    focusChanged = false;
    host.Draw(item, canvas);
  }
  void focusInEvent(QFocusEvent* event) override {
    ButtonWidget::focusInEvent(event);
    DrawFocusChange();
  }
  void focusOutEvent(QFocusEvent* event) override {
    ButtonWidget::focusOutEvent(event);
    DrawFocusChange();
  }

 private:
  // At once: the program may look at it before the next key comes.
  void DrawFocusChange() {
    focusChanged = true;
    repaint();
  }

  bool focusChanged = false;
};

class PushButton : public Control {
 public:
  PushButton(ControlHost& host, const ControlTemplate& from, ButtonWidget* button)
      : Control(host, from), button(button) {
    connect(button, &QPushButton::clicked, this, [this] {
      if (this->host.GoesOn()) Clicked();
    });
    Adopt(button);
  }

  bool IsPushButton() const override { return true; }
  void ShowDefault(bool on) override { button->setDefault(on); }
  bool HasText() const override { return true; }

 private:
  void ShowText(const QString& shown) override { button->setText(shown); }

  ButtonWidget* const button;
};

class PictureButton final : public PushButton {
 public:
  PictureButton(ControlHost& host, const ControlTemplate& from, PictureButtonWidget* button)
      : PushButton(host, from, button), button(button) {}

  bool SetPicture(BitmapHandle bitmap) override {
    button->bitmap = bitmap;
    button->update();
    return true;
  }

 private:
  PictureButtonWidget* const button;
};

// Knows a click, by pointer or key, from what a screen reader does.
template <typename Button>
class CheckWidget : public Button {
 public:
  using Button::Button;
  bool IsClicked() const { return clicking; }

 protected:
  void nextCheckState() override {
    clicking = true;
    Button::nextCheckState();
    clicking = false;
  }

 private:
  bool clicking = false;
};

class CheckControl final : public Control {
 public:
  template <typename Button>
  CheckControl(ControlHost& host, const ControlTemplate& from, CheckWidget<Button>* button)
      : Control(host, from), button(button) {
    connect(button, &QAbstractButton::clicked, this, [this] { Clicked(); });
    connect(button, &QAbstractButton::toggled, this, [this, button](bool on) {
      // Of a run the one that loses the choice has nothing to tell.
      if (button->IsClicked() || (!on && button->group())) return;
      // It waits for an answer, which a box that comes up would keep from it.
      this->host.NotifyInTurn(id, Notice::Clicked);
    });
    Adopt(button);
  }

  bool HasText() const override { return true; }
  bool IsChecked() const override { return button->isChecked(); }
  bool SetChecked(bool checked) override {
    const QSignalBlocker quiet(button);
    // In a run of radio buttons one is always chosen, but for a moment.
    QButtonGroup* const run = button->group();
    if (run && !checked) run->setExclusive(false);
    button->setChecked(checked);
    if (run && !checked) run->setExclusive(true);
    return true;
  }

 private:
  void ShowText(const QString& shown) override { button->setText(shown); }

  QAbstractButton* const button;
};

}  // namespace

std::unique_ptr<Control> MakeButton(ControlHost& host, const ControlTemplate& from) {
  return std::make_unique<PushButton>(host, from, new ButtonWidget(host, from.id));
}

std::unique_ptr<Control> MakePictureButton(ControlHost& host, const ControlTemplate& from) {
  return std::make_unique<PictureButton>(host, from, new PictureButtonWidget(host, from.id));
}

std::unique_ptr<Control> MakeDrawnButton(ControlHost& host, const ControlTemplate& from) {
  return std::make_unique<PushButton>(host, from, new DrawnButtonWidget(host, from.id));
}

std::unique_ptr<Control> MakeCheckBox(ControlHost& host, const ControlTemplate& from) {
  return std::make_unique<CheckControl>(host, from, new CheckWidget<QCheckBox>(host.Inside()));
}

std::unique_ptr<Control> MakeRadioButton(ControlHost& host, const ControlTemplate& from,
                                         QButtonGroup* run) {
  auto* button = new CheckWidget<QRadioButton>(host.Inside());
  if (run) run->addButton(button);
  return std::make_unique<CheckControl>(host, from, button);
}

}  // namespace platform::qt
