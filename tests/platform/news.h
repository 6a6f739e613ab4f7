// What a device of a test gives for WaitForNews on the machine on which the tests run, and the
// reports that it tells of. Any thread.
#pragma once

#include <atomic>

#include "app/platform/threads.h"
#ifdef _WIN32
#include "app/platform/windows/windows_threads.h"
#else
#include <sys/eventfd.h>

#include "app/platform/linux/descriptor.h"
#endif

namespace platform {

class News {
 public:
#ifdef _WIN32
  ~News() { WindowsThreads().CloseHandle(event); }
  Handle Get() const { return event; }
#else
  Handle Get() const { return event.Get(); }
#endif

  void Report() {
    ++reports;
#ifdef _WIN32
    WindowsThreads().SetEvent(event);
#else
    eventfd_write(event.Get(), 1);
#endif
  }

  // How many there were since the last call.
  int Take() {
#ifndef _WIN32
    eventfd_t told = 0;
    eventfd_read(event.Get(), &told);
#endif
    return reports.exchange(0);
  }

 private:
#ifdef _WIN32
  const Handle event = WindowsThreads().CreateEventA(false, false);
#else
  const Descriptor event{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
#endif
  std::atomic<int> reports{0};
};

}  // namespace platform
