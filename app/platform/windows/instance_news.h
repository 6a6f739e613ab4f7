// Tells that programs of the user's have begun to answer or stopped doing so (windows_calls.h):
// each tells all windows of the desktop, and who wants to know has one that nobody sees. Of one
// that is killed nobody tells.
#pragma once

#include "app/platform/windows/win32.h"

namespace platform {

// Of the thread that makes it, which has to wait for messages of windows and take them in by Take.
class InstanceNews {
 public:
  InstanceNews();
  ~InstanceNews();
  InstanceNews(const InstanceNews&) = delete;
  InstanceNews& operator=(const InstanceNews&) = delete;

  // To all. Any thread; never waits.
  static void Tell();

  // Hands out all messages that have come to windows of the thread; whether there was news.
  bool Take();

 private:
  HWND window;
};

enum class Awaited { End, Message, Nothing };

// Waits until `end` is signalled or there are messages of windows for the thread, for `ms` at most.
Awaited AwaitMessages(HANDLE end, DWORD ms = INFINITE);

}  // namespace platform
