// The boxes that ask a question or tell something, and wait.
#pragma once

#include <QMessageBox>
#include <memory>

#include "app/platform/desktop.h"

namespace platform::qt {

// Not shown yet. `type` is of the MB_ values. In front of `owner`, or of all windows for null.
std::unique_ptr<QMessageBox> MakeMessageBox(QWidget* owner, const std::string& text,
                                            const std::string& caption, std::uint32_t type);

// The button with which it ended: IDOK for one that has no other, IDNO for a question that was
// closed.
std::int32_t AnswerOf(const QMessageBox& box);

}  // namespace platform::qt
