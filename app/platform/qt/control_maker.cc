#include "app/platform/qt/control_maker.h"

#include "app/platform/qt/buttons.h"
#include "app/platform/qt/drop_list.h"
#include "app/platform/qt/edits.h"
#include "app/platform/qt/labels.h"
#include "app/platform/qt/list_view.h"
#include "app/platform/qt/slider.h"
#include "app/platform/qt/tab_control.h"

namespace platform::qt {
namespace {

std::unique_ptr<Control> MakeControl(ControlHost& host, const ControlTemplate& from,
                                     QButtonGroup* run) {
  switch (from.kind) {
    case ControlKind::Label:
      return MakeLabel(host, from);
    case ControlKind::Link:
      return MakeLink(host, from);
    case ControlKind::Picture:
      return MakePicture(host, from);
    case ControlKind::Rule:
      return MakeRule(host, from);
    case ControlKind::GroupBox:
      return MakeGroupBox(host, from);
    case ControlKind::Box:
      return MakeBox(host, from);
    case ControlKind::Edit:
      return std::make_unique<Edit>(host, from);
    case ControlKind::TextArea:
      return MakeTextArea(host, from);
    case ControlKind::Button:
      return MakeButton(host, from);
    case ControlKind::PictureButton:
      return MakePictureButton(host, from);
    case ControlKind::DrawnButton:
      return MakeDrawnButton(host, from);
    case ControlKind::CheckBox:
      return MakeCheckBox(host, from);
    case ControlKind::RadioButton:
      return MakeRadioButton(host, from, run);
    case ControlKind::DropList:
      return std::make_unique<DropList>(host, from);
    case ControlKind::ListView:
      return std::make_unique<ListView>(host, from);
    case ControlKind::TabControl:
      return std::make_unique<TabControl>(host, from);
    case ControlKind::Slider:
      return std::make_unique<Slider>(host, from);
  }
  return MakeBox(host, from);
}

// The mnemonic of a label or group box goes to the next control that can have the focus.
void Label(const std::vector<std::unique_ptr<Control>>& controls) {
  for (std::size_t i = 0; i < controls.size(); ++i) {
    if (!controls[i]->NamesNext()) continue;
    for (std::size_t next = i + 1; next < controls.size(); ++next) {
      if (!controls[next]->TakesFocus()) continue;
      controls[i]->SetLabelled(controls[next].get());
      break;
    }
  }
}

// Of several labels before a control the last one is its name: the others may be values.
void Name(const std::vector<std::unique_ptr<Control>>& controls) {
  Control* before = nullptr;
  for (const auto& control : controls) {
    if (control->NamesNext()) before = control.get();
    if (!control->TakesFocus()) continue;
    if (before) control->TakeNameFrom(*before);
    before = nullptr;
  }
}

void ChainTabOrder(const std::vector<std::unique_ptr<Control>>& controls) {
  QWidget* before = nullptr;
  for (const auto& control : controls) {
    if (!control->TakesFocus()) continue;
    if (before) QWidget::setTabOrder(before, control->FocusWidget());
    before = control->FocusWidget();
  }
}

// What lies around or behind other controls lies below them.
void Stack(const std::vector<std::unique_ptr<Control>>& controls) {
  for (const ControlKind kind : {ControlKind::GroupBox, ControlKind::TabControl}) {
    for (auto control = controls.rbegin(); control != controls.rend(); ++control) {
      if ((*control)->kind == kind) (*control)->Widget()->lower();
    }
  }
}

}  // namespace

std::vector<std::unique_ptr<Control>> MakeControls(ControlHost& host,
                                                   std::span<const ControlTemplate> from) {
  std::vector<std::unique_ptr<Control>> controls;
  QButtonGroup* run = nullptr;
  for (const ControlTemplate& row : from) {
    if (row.kind != ControlKind::RadioButton) {
      run = nullptr;
    } else if (!run) {
      run = new QButtonGroup(host.Inside());
    }
    controls.push_back(MakeControl(host, row, run));
  }
  Label(controls);
  Name(controls);
  ChainTabOrder(controls);
  Stack(controls);
  return controls;
}

}  // namespace platform::qt
