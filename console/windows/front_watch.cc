// By the events that Windows tells of windows: that another one is in front, and of that one that
// its title is another.
#include "console/follow/front_watch.h"

#include <thread>
#include <utility>

#include "app/platform/windows/instance_news.h"
#include "app/platform/windows/owned_handle.h"
#include "app/platform/windows/program_file.h"
#include "app/platform/windows/wide_text.h"
#include "console/follow/front_tale.h"

namespace kelvaro::console {
namespace {

constexpr int kMostText = 4096;  // characters
constexpr char kNoEvents[] =
    "Windows doesn't tell this program which window is in front; start it on the desktop itself, "
    "not from a service or over a remote shell";

// Of the watch's thread: something that may change what is told of the window in front.
thread_local bool frontNews = false;

void CALLBACK Note(HWINEVENTHOOK, DWORD event, HWND window, LONG object, LONG, DWORD, DWORD) {
  // A button's name is none of the window's.
  frontNews |= event == EVENT_SYSTEM_FOREGROUND ||
               (object == OBJID_WINDOW && window == GetForegroundWindow());
}

// Has such events noted, as the thread takes in its messages.
class Events {
 public:
  Events() = default;
  ~Events() { Watch(0); }
  Events(const Events&) = delete;
  Events& operator=(const Events&) = delete;

  // In place of those before; 0 for none. Of that process alone, or of all for 0. False where the
  // system tells nothing.
  bool Watch(DWORD event, DWORD process = 0) {
    if (hook) UnhookWinEvent(hook);
    hook = event == 0
               ? nullptr
               : SetWinEventHook(event, event, nullptr, &Note, process, 0, WINEVENT_OUTOFCONTEXT);
    return hook != nullptr;
  }

 private:
  HWINEVENTHOOK hook = nullptr;
};

FrontWindow Described(HWND window, DWORD process) {
  wchar_t text[kMostText];
  FrontWindow told;
  told.program = platform::ProgramNameOf(process);
  const auto textOf = [&](int length) {
    return platform::Utf8Of({text, static_cast<std::size_t>(length)});
  };
  told.kind = textOf(GetClassNameW(window, text, kMostText));
  // This one doesn't ask the program, which may hang.
  told.title = textOf(InternalGetWindowText(window, text, kMostText));
  return told;
}

}  // namespace

struct FrontWatch::Parts {
  Listener listener;
  const platform::OwnedHandle end{CreateEventA(nullptr, TRUE, FALSE, nullptr)};
  std::thread thread;

  void Watch();
};

void FrontWatch::Parts::Watch() {
  platform::InstanceNews instances;
  FrontTale tale(listener.window);
  Events fronts;
  Events titles;
  if (!fronts.Watch(EVENT_SYSTEM_FOREGROUND)) return listener.ended(kNoEvents);
  frontNews = true;
  HWND front = nullptr;
  for (;;) {
    if (instances.Take()) listener.instances();
    if (std::exchange(frontNews, false)) {
      const HWND before = std::exchange(front, GetForegroundWindow());
      DWORD process = 0;
      if (front) GetWindowThreadProcessId(front, &process);
      // Before it is read, so that no change falls in between.
      if (front != before) titles.Watch(process == 0 ? 0 : EVENT_OBJECT_NAMECHANGE, process);
      tale.See(process == 0 ? std::nullopt : std::optional(Described(front, process)));
    }
    const std::uint32_t wait = tale.Wait().value_or(INFINITE);
    switch (platform::AwaitMessages(end.Get(), wait)) {
      case platform::Awaited::End:
        return;
      case platform::Awaited::Message:
        break;
      case platform::Awaited::Nothing:
        tale.Passed();
    }
  }
}

FrontWatch::FrontWatch() : parts(std::make_unique<Parts>()) {}

FrontWatch::~FrontWatch() {
  if (!parts->thread.joinable()) return;
  SetEvent(parts->end.Get());
  parts->thread.join();
}

bool FrontWatch::Open(std::string*) { return true; }
std::string FrontWatch::Teller() const { return "Windows"; }
std::string FrontWatch::Lack() const { return {}; }

void FrontWatch::Begin(Listener listener) {
  parts->listener = std::move(listener);
  parts->thread = std::thread([this] { parts->Watch(); });
}

}  // namespace kelvaro::console
