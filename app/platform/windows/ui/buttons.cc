#include "app/platform/windows/ui/buttons.h"

#include <algorithm>

#include "app/platform/windows/ui/windows_canvas.h"

namespace platform::ui {
namespace {

class PushButton : public Control {
 public:
  using Control::Control;

  // The second click of a double one comes by a code of its own.
  void OnCommand(int code) override {
    if ((code == BN_CLICKED || code == BN_DBLCLK) && host.GoesOn())
      host.Notify(id, Notice::Clicked);
  }
};

class PictureButton final : public PushButton {
 public:
  using PushButton::PushButton;
  ~PictureButton() override {
    if (icon) DestroyIcon(icon);
  }

  bool SetPicture(BitmapHandle wanted) override {
    bitmap = wanted;
    ShowPicture();
    return true;
  }

 protected:
  LRESULT Message(UINT message, WPARAM w, LPARAM l) override {
    const LRESULT result = Inherited(message, w, l);
    if (message == WM_SYSCOLORCHANGE || message == WM_THEMECHANGED) ShowPicture();
    return result;
  }

 private:
  void ShowPicture() {
    const Rect place = Place();
    SIZE size = SizeOf(bitmap);
    const LONG room = std::min(place.Width(), place.Height()) - 8;
    if (size.cx <= 0 || room <= 0) return;
    size = {room, room * size.cy / size.cx};
    const COLORREF ink = GetSysColor(COLOR_BTNTEXT);
    const HICON made = IconOf(bitmap, size, IsMask(bitmap) ? &ink : nullptr);
    Ask(handle, BM_SETIMAGE, IMAGE_ICON, made);
    if (icon) DestroyIcon(icon);
    icon = made;
  }

  BitmapHandle bitmap = 0;
  HICON icon = nullptr;
};

class DrawnButton final : public PushButton {
 public:
  using PushButton::PushButton;

  void OnDrawItem(const DRAWITEMSTRUCT& wanted) override {
    WindowsCanvas canvas(wanted.hDC, handle, host.AllIcons());
    DrawItem item;
    item.id = id;
    item.rect = RectOf(wanted.rcItem);
    item.pressed = wanted.itemState & ODS_SELECTED;
    item.focused = wanted.itemState & ODS_FOCUS;
    item.disabled = wanted.itemState & ODS_DISABLED;
    item.focusAction = focusMoves || (wanted.itemAction & ODA_FOCUS) != 0;
    focusMoves = false;
    host.Draw(item, canvas);
  }

 protected:
  // Drawn at once, which not every version of the system does when the focus goes.
  LRESULT Message(UINT message, WPARAM w, LPARAM l) override {
    const bool ofFocus = message == WM_SETFOCUS || message == WM_KILLFOCUS;
    if (ofFocus) focusMoves = true;
    const LRESULT result = Inherited(message, w, l);
    if (ofFocus && focusMoves)
      RedrawWindow(handle, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    return result;
  }

 private:
  bool focusMoves = false;  // and the program hasn't drawn it since
};

class CheckControl final : public Control {
 public:
  CheckControl(ControlHost& host, const ControlTemplate& from, HWND handle,
               const std::shared_ptr<RadioRun>& run)
      : Control(host, from, handle), run(run) {
    if (run) run->push_back(this);
  }

  bool IsChecked() const override { return Ask(handle, BM_GETCHECK) == BST_CHECKED; }
  bool SetChecked(bool checked) override {
    if (run && checked) {
      for (const Control* other : *run) Ask(other->Handle(), BM_SETCHECK, BST_UNCHECKED);
    }
    Ask(handle, BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED);
    return true;
  }
  void OnCommand(int code) override {
    if (code == BN_CLICKED || code == BN_DBLCLK) host.Notify(id, Notice::Clicked);
  }

 private:
  const std::shared_ptr<RadioRun> run;
};

}  // namespace

std::unique_ptr<Control> MakeButton(ControlHost& host, const ControlTemplate& from, HWND handle) {
  return std::make_unique<PushButton>(host, from, handle);
}

std::unique_ptr<Control> MakePictureButton(ControlHost& host, const ControlTemplate& from,
                                           HWND handle) {
  return std::make_unique<PictureButton>(host, from, handle);
}

std::unique_ptr<Control> MakeDrawnButton(ControlHost& host, const ControlTemplate& from,
                                         HWND handle) {
  return std::make_unique<DrawnButton>(host, from, handle);
}

std::unique_ptr<Control> MakeCheck(ControlHost& host, const ControlTemplate& from, HWND handle,
                                   const std::shared_ptr<RadioRun>& run) {
  return std::make_unique<CheckControl>(host, from, handle, run);
}

}  // namespace platform::ui
