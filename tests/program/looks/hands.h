// What a person does at the dialogs with keyboard and mouse. The user interface's thread alone.
#pragma once

#include <QWidget>
#include <cstdint>

#include "app/platform/qt/dialog_window.h"

namespace kelvaro::looks {

using platform::qt::DialogWindow;

DialogWindow& Dialog(QWidget& window);
// The one that takes the keys of a control; it has to be there.
QWidget* Widget(QWidget& window, std::uint32_t id);
// At its left, where a check box has its box.
void Click(QWidget& window, std::uint32_t id);
// In place of what is in the field.
void Type(QWidget& window, std::uint32_t id, const char* text);

// Of the main window.
void ShowTab(DialogWindow& window, int tab);
void SelectRow(DialogWindow& window, int row);
// As with a double click on each divider of the list, so that whole texts are seen.
void FitColumns(DialogWindow& window);

}  // namespace kelvaro::looks
