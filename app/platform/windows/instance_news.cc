#include "app/platform/windows/instance_news.h"

namespace platform {
namespace {

UINT News() {
  static const UINT message = RegisterWindowMessageA("KelvaroSteering");
  return message;
}

}  // namespace

InstanceNews::InstanceNews()
    : window(CreateWindowExA(WS_EX_TOOLWINDOW, "STATIC", "", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                             GetModuleHandleA(nullptr), nullptr)) {
  // From programs with fewer rights than this one, too.
  ChangeWindowMessageFilterEx(window, News(), MSGFLT_ALLOW, nullptr);
}

InstanceNews::~InstanceNews() { DestroyWindow(window); }

void InstanceNews::Tell() { PostMessageA(HWND_BROADCAST, News(), 0, 0); }

bool InstanceNews::Take() {
  bool came = false;
  for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
    came |= message.hwnd == window && message.message == News();
    DispatchMessageA(&message);
  }
  return came;
}

Awaited AwaitMessages(HANDLE end, DWORD ms) {
  switch (MsgWaitForMultipleObjectsEx(1, &end, ms, QS_ALLINPUT, MWMO_INPUTAVAILABLE)) {
    case WAIT_OBJECT_0:
    case WAIT_FAILED:
      return Awaited::End;
    case WAIT_TIMEOUT:
      return Awaited::Nothing;
    default:
      return Awaited::Message;
  }
}

}  // namespace platform
