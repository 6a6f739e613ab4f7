#include "app/platform/qt/message_box.h"

#include <QPushButton>

#include "app/platform/qt/text.h"

namespace platform::qt {

std::unique_ptr<QMessageBox> MakeMessageBox(QWidget* owner, const std::string& text,
                                            const std::string& caption, std::uint32_t type) {
  const bool asks = type & MB_YESNO;
  QMessageBox::Icon icon = QMessageBox::NoIcon;
  switch (type & 0xF0) {
    case MB_ICONSTOP:
      icon = QMessageBox::Critical;
      break;
    case MB_ICONQUESTION:
      icon = QMessageBox::Question;
      break;
    case MB_ICONEXCLAMATION:
      icon = QMessageBox::Warning;
      break;
    default:
      break;
  }
  auto box = std::make_unique<QMessageBox>(
      icon, Shown(caption), Breakable(Shown(text)),
      asks ? QMessageBox::Yes | QMessageBox::No : QMessageBox::StandardButtons(QMessageBox::Ok),
      owner);
  box->setTextFormat(Qt::PlainText);
  for (QAbstractButton* button : box->buttons()) button->setIcon(QIcon());
  box->setDefaultButton(asks ? QMessageBox::Yes : QMessageBox::Ok);
  box->setEscapeButton(asks ? QMessageBox::No : QMessageBox::Ok);
  // The box's own way would make a sheet of it. On Wayland a sheet has no frame and so no title.
  box->QWidget::setWindowModality(owner ? Qt::WindowModal : Qt::ApplicationModal);
  return box;
}

std::int32_t AnswerOf(const QMessageBox& box) {
  if (box.standardButtons() & QMessageBox::Yes) {
    return box.clickedButton() == box.button(QMessageBox::Yes) ? IDYES : IDNO;
  }
  return IDOK;
}

}  // namespace platform::qt
