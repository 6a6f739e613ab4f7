// A modal dialog: runs from a table, ends with OK or Cancel, and hands each event to an operation
// that a derived class overrides. What it doesn't override does what any dialog does: OK and Enter
// end it with IDOK, Cancel, Esc and the close box with IDCANCEL. User interface's thread.
// Half of its many methods are the listener's, answered so that a derived class needs only its own.
#pragma once

#include <cstdint>
#include <string>

#include "app/platform/controls.h"
#include "app/platform/desktop.h"
#include "foundation/byte_string.h"

namespace kelvaro {

class Dialog : public platform::WindowListener {
 public:
  // `resource` must outlive this.
  explicit Dialog(const platform::DialogTemplate& resource) : resource(resource) {}
  Dialog(const Dialog&) = delete;
  Dialog& operator=(const Dialog&) = delete;

  // Returns when the dialog has ended: IDOK or IDCANCEL, or -1 when there could be no window.
  std::int32_t DoModal(platform::WindowHandle owner);

  // While it runs; kNoWindow before and after.
  platform::WindowHandle window = platform::kNoWindow;

  // Of this window's controls.
  ByteString Text(std::uint32_t id) const;
  void SetText(std::uint32_t id, const ByteString& text);
  bool Checked(std::uint32_t id) const {
    return platform::controls().IsDlgButtonChecked(window, id);
  }
  void Check(std::uint32_t id, bool checked) {
    platform::controls().CheckDlgButton(window, id, checked);
  }
  void Enable(std::uint32_t id, bool enable) {
    platform::controls().EnableControl(window, id, enable);
  }
  static constexpr std::int32_t kTipWidth = 300;  // pixels
  // The widest that a tip of this window gets, in pixels, and for ten seconds.
  void LimitTips(std::int32_t width) const;
  // The box in front of this window.
  std::int32_t Box(const ByteString& text, const ByteString& caption, std::uint32_t type) const;

 protected:
  virtual void OnInit() {}
  virtual void OnOK() { EndDialog(platform::IDOK); }
  virtual void OnCancel() { EndDialog(platform::IDCANCEL); }
  void EndDialog(std::int32_t result) { platform::desktop().EndDialog(window, result); }

  void OnInitDialog(platform::WindowHandle handle) override;
  void OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t value) override;
  void OnClose() override { OnCancel(); }
  // WM_CLOSE is the close box, pressed by another program.
  void OnMessage(std::uint32_t message, std::uintptr_t, std::intptr_t) override {
    if (message == platform::WM_CLOSE) OnClose();
  }
  void OnTimer(std::uint32_t) override {}
  void OnSize(std::uint32_t, std::int32_t, std::int32_t) override {}
  void OnMove(std::int32_t, std::int32_t) override {}
  void OnGetMinMaxInfo(platform::MinMaxInfo*) override {}
  void OnPaint(platform::Canvas&) override {}
  std::int32_t OnNcHitTest(platform::Point) override { return platform::HTCLIENT; }
  void OnDrawItem(const platform::DrawItem&, platform::Canvas&) override {}
  std::string OnToolTip(std::uint32_t) override { return {}; }
  void OnDestroy() override {}

 private:
  const platform::DialogTemplate& resource;
};

}  // namespace kelvaro
