#include "app/platform/windows/ui/control_maker.h"

#include "app/platform/windows/ui/buttons.h"
#include "app/platform/windows/ui/drop_list.h"
#include "app/platform/windows/ui/edits.h"
#include "app/platform/windows/ui/labels.h"
#include "app/platform/windows/ui/list_view.h"
#include "app/platform/windows/ui/slider.h"
#include "app/platform/windows/ui/tab_control.h"

namespace platform::ui {
namespace {

std::unique_ptr<Control> MakeControl(ControlHost& host, const ControlTemplate& from, HWND handle,
                                     const std::shared_ptr<RadioRun>& run) {
  switch (from.kind) {
    case ControlKind::Label:
      return MakeLabel(host, from, handle);
    case ControlKind::Link:
      return MakeLink(host, from, handle);
    case ControlKind::Picture:
      return MakePicture(host, from, handle);
    case ControlKind::Rule:
    case ControlKind::GroupBox:
    case ControlKind::Box:
      return MakePlain(host, from, handle);
    case ControlKind::Edit:
    case ControlKind::TextArea:
      return std::make_unique<Edit>(host, from, handle);
    case ControlKind::Button:
      return MakeButton(host, from, handle);
    case ControlKind::PictureButton:
      return MakePictureButton(host, from, handle);
    case ControlKind::DrawnButton:
      return MakeDrawnButton(host, from, handle);
    case ControlKind::CheckBox:
    case ControlKind::RadioButton:
      return MakeCheck(host, from, handle, run);
    case ControlKind::DropList:
      return std::make_unique<DropList>(host, from, handle);
    case ControlKind::ListView:
      return std::make_unique<ListView>(host, from, handle);
    case ControlKind::TabControl:
      return std::make_unique<TabControl>(host, from, handle);
    case ControlKind::Slider:
      return std::make_unique<Slider>(host, from, handle);
  }
  return MakePlain(host, from, handle);
}

}  // namespace

std::vector<std::unique_ptr<Control>> MakeControls(ControlHost& host, HWND window,
                                                   std::span<const ControlTemplate> from) {
  std::vector<std::unique_ptr<Control>> controls;
  std::shared_ptr<RadioRun> run;
  for (const ControlTemplate& row : from) {
    if (row.kind != ControlKind::RadioButton) {
      run.reset();
    } else if (!run) {
      run = std::make_shared<RadioRun>();
    }
    controls.push_back(MakeControl(host, row, GetDlgItem(window, static_cast<int>(row.id)), run));
  }
  return controls;
}

}  // namespace platform::ui
