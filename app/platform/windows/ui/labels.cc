#include "app/platform/windows/ui/labels.h"

namespace platform::ui {
namespace {

class Label : public Control {
 public:
  using Control::Control;

  // When the mouse's button goes down.
  void OnCommand(int code) override {
    if (code == STN_CLICKED || code == STN_DBLCLK) host.Notify(id, Notice::Clicked);
  }
};

// A label that can have the focus, which the system's has no use for.
class Link final : public Label {
 public:
  using Label::Label;

 protected:
  LRESULT Message(UINT message, WPARAM w, LPARAM l) override {
    switch (message) {
      case WM_GETDLGCODE: {
        const auto* const key = reinterpret_cast<const MSG*>(l);
        const bool press = key && key->message == WM_KEYDOWN && key->wParam == VK_RETURN;
        return DLGC_STATIC | (press ? DLGC_WANTMESSAGE : 0);
      }
      case WM_KEYDOWN:
        if (w == VK_SPACE || w == VK_RETURN) host.Notify(id, Notice::Clicked);
        break;
      case WM_SETFOCUS:
      case WM_KILLFOCUS:
        Redraw();
        break;
      case WM_PAINT: {
        const LRESULT result = Inherited(message, w, l);
        if (GetFocus() == handle) DrawFocus();
        return result;
      }
      default:
        break;
    }
    return Inherited(message, w, l);
  }

 private:
  void DrawFocus() {
    RECT inside = {};
    GetClientRect(handle, &inside);
    const HDC canvas = GetDC(handle);
    DrawFocusRect(canvas, &inside);
    ReleaseDC(handle, canvas);
  }
};

class Picture final : public Control {
 public:
  using Control::Control;

  bool SetPicture(BitmapHandle wanted) override {
    bitmap = wanted;
    Redraw();
    return true;
  }
  void OnDrawItem(const DRAWITEMSTRUCT& wanted) override {
    DrawBitmap(wanted.hDC, wanted.rcItem, bitmap);
  }

 private:
  BitmapHandle bitmap = 0;
};

}  // namespace

std::unique_ptr<Control> MakeLabel(ControlHost& host, const ControlTemplate& from, HWND handle) {
  return std::make_unique<Label>(host, from, handle);
}

std::unique_ptr<Control> MakeLink(ControlHost& host, const ControlTemplate& from, HWND handle) {
  return std::make_unique<Link>(host, from, handle);
}

std::unique_ptr<Control> MakePicture(ControlHost& host, const ControlTemplate& from, HWND handle) {
  return std::make_unique<Picture>(host, from, handle);
}

std::unique_ptr<Control> MakePlain(ControlHost& host, const ControlTemplate& from, HWND handle) {
  return std::make_unique<Control>(host, from, handle);
}

}  // namespace platform::ui
