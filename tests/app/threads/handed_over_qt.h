// Qt off the screen, for a program on real threads under the thread sanitizer: what other threads
// want waits under a lock of its own until the person lets it in. Qt isn't built with the
// sanitizer, which would see no order in Qt's own queue.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "app/platform/qt/qt_controls.h"
#include "app/platform/qt/qt_desktop.h"

namespace platform::qt {

class HandedOver {
 public:
  bool Later(std::function<void()> act) {
    const std::lock_guard guard(mutex);
    acts.push_back(std::move(act));
    return true;
  }
  void LetIn() {
    std::vector<std::function<void()>> now;
    {
      const std::lock_guard guard(mutex);
      now.swap(acts);
    }
    for (const auto& act : now) act();
  }

 private:
  std::mutex mutex;
  std::vector<std::function<void()>> acts;
};

class HandedOverDesktop final : public QtDesktop {
 public:
  explicit HandedOverDesktop(HandedOver& others) : others(others) {}

  std::function<void()> inWindow;  // what the person does once a window is up, and then closes it
  std::function<void()> inDialog;  // the same of a dialog in front of it
  std::int32_t answer = 0;         // to every box
  std::vector<std::string> boxes;  // texts of all that came up

  std::int32_t RunDialog(const DialogTemplate& dialog, WindowHandle owner,
                         WindowListener& listener) override {
    QTimer::singleShot(0, this, [this, owner] {
      const WindowHandle up = Front();
      (owner == kNoWindow ? inWindow : inDialog)();
      if (DialogWindow* const still = Windows().Find(up)) still->Close();
    });
    return QtDesktop::RunDialog(dialog, owner, listener);
  }
  WindowHandle Front() { return Windows().TopLevelWindows().back().window; }

  bool PostMessageA(WindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                    std::intptr_t lParam) override {
    return others.Later([=, this] {
      if (DialogWindow* const there = Windows().Find(window))
        there->SendMessage(message, wParam, lParam);
    });
  }
  std::int32_t MessageBoxA(WindowHandle, const std::string& text, const std::string&,
                           std::uint32_t) override {
    const std::lock_guard guard(mutex);
    boxes.push_back(text);
    return answer;
  }
  bool Shell_NotifyIconA(std::uint32_t, const NOTIFYICONDATA&) override { return true; }

 private:
  HandedOver& others;
  std::mutex mutex;  // guards `boxes` while the program runs
};

class HandedOverControls final : public QtControls {
 public:
  HandedOverControls(WindowTable& windows, HandedOver& others)
      : QtControls(windows), windows(windows), others(others) {}

  bool SetDlgItemTextA(WindowHandle window, std::uint32_t id, const std::string& text) override {
    if (windows.OnOwnThread()) return QtControls::SetDlgItemTextA(window, id, text);
    return others.Later([=, this] { QtControls::SetDlgItemTextA(window, id, text); });
  }
  bool CheckDlgButton(WindowHandle window, std::uint32_t id, bool checked) override {
    if (windows.OnOwnThread()) return QtControls::CheckDlgButton(window, id, checked);
    return others.Later([=, this] { QtControls::CheckDlgButton(window, id, checked); });
  }

 private:
  const WindowTable& windows;
  HandedOver& others;
};

}  // namespace platform::qt
