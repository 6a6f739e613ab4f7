#include "app/platform/qt/accessible.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include "app/platform/qt/dialog_window.h"
#include "app/platform/qt/labels.h"

namespace platform::qt {
namespace {

class AccessibleWindow final : public QAccessibleWidget {
 public:
  explicit AccessibleWindow(DialogWindow* window)
      : QAccessibleWidget(window,
                          window->parentWidget() ? QAccessible::Dialog : QAccessible::Window) {}

  QAccessible::State state() const override {
    QAccessible::State now = QAccessibleWidget::state();
    now.modal = widget()->isModal();
    return now;
  }
};

QAccessibleInterface* Make(const QString&, QObject* object) {
  if (auto* const window = dynamic_cast<DialogWindow*>(object)) return new AccessibleWindow(window);
  return MakeAccessibleLabel(object);
}

}  // namespace

void InstallAccessible() {
  [[maybe_unused]] static const bool once = [] {
    QAccessible::installFactory(&Make);
    return true;
  }();
}

}  // namespace platform::qt
