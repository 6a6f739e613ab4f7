#include "app/platform/linux/instance_news.h"

#include <sys/inotify.h>

#include <utility>

#include "app/platform/calls.h"

namespace platform {

InstanceNews::InstanceNews(std::string folder)
    : folder(std::move(folder)), changes(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
  Watch();
}

// A socket that can be called has its rights set last (ListenAt).
void InstanceNews::Watch() {
  watches =
      inotify_add_watch(changes.Get(), folder.c_str(), IN_ATTRIB | IN_DELETE | IN_ONLYDIR) >= 0;
}

int InstanceNews::LongestWait() const {
  return watches ? -1 : static_cast<int>(kLookForArrivalsMs);
}

void InstanceNews::Read() {
  alignas(inotify_event) char block[4096] = {};
  ssize_t size;
  while ((size = Retry([&] { return read(changes.Get(), block, sizeof block); })) > 0) {
    for (ssize_t at = 0; at < size;) {
      const auto& event = reinterpret_cast<const inotify_event&>(block[at]);
      if ((event.mask & IN_IGNORED) != 0) watches = false;  // the folder is gone
      at += static_cast<ssize_t>(sizeof event + event.len);
    }
  }
  if (!watches) Watch();
}

}  // namespace platform
