#include "app/platform/windows/windows_calls.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <utility>

#include "app/platform/callers.h"
#include "app/platform/file_pattern.h"
#include "app/platform/windows/instance_news.h"
#include "app/platform/windows/owned_handle.h"
#include "app/platform/windows/program_file.h"
#include "app/platform/windows/windows_processes.h"
#include "app/platform/windows/windows_threads.h"

#include <sddl.h>

namespace platform {
namespace {

constexpr DWORD kRoom = 65536;  // bytes that wait for a reader, in either direction
constexpr DWORD kRestWithoutPipesMs = 100;
constexpr ULONGLONG kPatienceMs = 10'000;

bool IsOneOfOurs(DWORD process) {
  return IsOfThisUser(process) &&
         BearsOurName(Folded(ProgramNameOf(process)), Folded(ProgramNameOf(GetCurrentProcessId())));
}

// Says that nobody but the user may touch the pipe.
class UserAlone {
 public:
  UserAlone() {
    const std::string user = ThisUser();
    const std::string text = "O:" + user + "D:P(A;;GA;;;" + user + ")";
    if (!user.empty())
      ConvertStringSecurityDescriptorToSecurityDescriptorA(
          text.c_str(), SDDL_REVISION_1, &attributes.lpSecurityDescriptor, nullptr);
  }
  ~UserAlone() { LocalFree(attributes.lpSecurityDescriptor); }
  UserAlone(const UserAlone&) = delete;
  UserAlone& operator=(const UserAlone&) = delete;

  // Null where there is no saying so.
  SECURITY_ATTRIBUTES* Get() { return attributes.lpSecurityDescriptor ? &attributes : nullptr; }

 private:
  SECURITY_ATTRIBUTES attributes{sizeof(SECURITY_ATTRIBUTES), nullptr, FALSE};
};

// One end of the pipe on the side that is called: it waits for a caller, and then is theirs.
struct Instance {
  OwnedHandle pipe;
  OVERLAPPED receiving{};  // of the caller, and then of what they say
  OVERLAPPED sending{};
  bool receives = false;  // under way in the system, which needs this object until it has ended
  bool sends = false;
  bool wantsRoom = false;
  bool gone = false;
  char incoming[kLongestMessage];
  std::string outgoing;
};

class WindowsConversation final : public Conversation {
 public:
  explicit WindowsConversation(OwnedHandle pipe) : pipe(std::move(pipe)) {}

  bool Send(const std::string& message) override {
    OVERLAPPED how{};
    how.hEvent = over.Get();
    const auto size = static_cast<DWORD>(message.size());
    const bool begun = !Ended() && (WriteFile(pipe.Get(), message.data(), size, nullptr, &how) ||
                                    GetLastError() == ERROR_IO_PENDING);
    DWORD sent = 0;
    return begun && AwaitEnd(&how, 0, &sent) && sent == size;
  }

  Heard Receive(std::string* message, std::optional<std::uint32_t> ms) override {
    char bytes[kLongestMessage];
    OVERLAPPED how{};
    how.hEvent = over.Get();
    if (!ReadFile(pipe.Get(), bytes, sizeof bytes, nullptr, &how) &&
        GetLastError() != ERROR_IO_PENDING)
      return Heard::End;
    DWORD size = 0;
    const bool came = AwaitEnd(&how, ms ? *ms : INFINITE, &size);
    const DWORD error = GetLastError();
    if (Ended()) {
      pipe.Close();  // here, as nothing is under way in it
      return Heard::End;
    }
    if (!came && error == ERROR_OPERATION_ABORTED) return Heard::Nothing;
    if (!came || size == 0) return Heard::End;
    message->assign(bytes, size);
    return Heard::Message;
  }

  void End() override { ::SetEvent(ended.Get()); }

 private:
  bool Ended() const { return ::WaitForSingleObject(ended.Get(), 0) == WAIT_OBJECT_0; }

  // False, with the error, where it failed; it is broken off after `ms`.
  bool AwaitEnd(OVERLAPPED* how, DWORD ms, DWORD* size) const {
    const HANDLE either[] = {over.Get(), ended.Get()};
    if (::WaitForMultipleObjects(2, either, FALSE, ms) != WAIT_OBJECT_0)
      CancelIoEx(pipe.Get(), how);
    return GetOverlappedResult(pipe.Get(), how, size, TRUE) != FALSE;
  }

  OwnedHandle pipe;
  const OwnedHandle over{::CreateEventA(nullptr, TRUE, FALSE, nullptr)};
  const OwnedHandle ended{::CreateEventA(nullptr, TRUE, FALSE, nullptr)};
};

class WindowsArrivals final : public Arrivals {
 public:
  bool Wait() override {
    if (!news) {
      news.emplace();  // of the thread that waits, which isn't told of who came before
      return ::WaitForSingleObject(end.Get(), 0) != WAIT_OBJECT_0;
    }
    while (AwaitMessages(end.Get()) != Awaited::End)
      if (news->Take()) return true;
    return false;
  }
  void End() override { ::SetEvent(end.Get()); }

 private:
  std::optional<InstanceNews> news;
  const OwnedHandle end{::CreateEventA(nullptr, TRUE, FALSE, nullptr)};
};

}  // namespace

// All that one who is called has; of its thread, but for what says otherwise.
struct WindowsCalls::Line {
  static std::uint32_t Listen(void* self);
  bool ServeOnce();  // false when it is to end
  void End();        // hangs up on all
  bool Open(DWORD first = 0);
  void AwaitCaller();
  void GoOn(CallId id, Instance& one, const OVERLAPPED* what, bool well, DWORD size);
  void Take(CallId id, Instance& one);
  void Receive(CallId id, Instance& one);
  void Hear(CallId id, Instance& one, bool well, DWORD size);
  bool Begun(CallId id, BOOL done, OVERLAPPED* what) const;

  const OwnedHandle port{CreateIoCompletionPort(INVALID_HANDLE_VALUE, nullptr, 0, 1)};
  std::atomic<bool> woken{false};  // any thread, as are the next two
  std::atomic<bool> ending{false};
  CallReceiver* receiver = nullptr;  // null when nobody answers
  WindowsThreads threads;
  Handle thread = kInvalidHandle;
  std::string name;
  std::map<CallId, std::unique_ptr<Instance>> instances;
  CallId waiting = 0;  // the one that waits for a caller; 0 for none
  CallId last = 0;
};

std::uint32_t WindowsCalls::Line::Listen(void* raw) {
  Line& self = *static_cast<Line*>(raw);
  while (self.ServeOnce()) {
  }
  self.End();
  return 0;
}

bool WindowsCalls::Line::ServeOnce() {
  if (waiting == 0) Open();
  if (waiting != 0 && !instances.at(waiting)->receives) AwaitCaller();
  DWORD size = 0;
  ULONG_PTR id = 0;
  OVERLAPPED* what = nullptr;
  const DWORD wait = waiting == 0 ? kRestWithoutPipesMs : INFINITE;
  const bool well = GetQueuedCompletionStatus(port.Get(), &size, &id, &what, wait);
  if (what) {
    const auto found = instances.find(static_cast<CallId>(id));
    if (found != instances.end()) GoOn(found->first, *found->second, what, well, size);
  } else if (well) {
    woken = false;
    if (ending) return false;
    receiver->OnWake();
  }
  std::erase_if(instances, [](const auto& each) {
    const Instance& one = *each.second;
    return one.gone && !one.receives && !one.sends;
  });
  return true;
}

void WindowsCalls::Line::End() {
  for (const auto& [id, one] : instances) CancelIoEx(one->pipe.Get(), nullptr);
  const auto isUnderWay = [](const auto& each) {
    return each.second->receives || each.second->sends;
  };
  while (std::any_of(instances.begin(), instances.end(), isUnderWay)) {
    DWORD size = 0;
    ULONG_PTR id = 0;
    OVERLAPPED* what = nullptr;
    GetQueuedCompletionStatus(port.Get(), &size, &id, &what, INFINITE);
    const auto found = instances.find(static_cast<CallId>(id));
    if (!what || found == instances.end()) continue;
    Instance& one = *found->second;
    (what == &one.sending ? one.sends : one.receives) = false;
  }
  instances.clear();
  waiting = 0;
}

// Where the system has begun something, its end comes to the port. It says nothing of what is done
// at once.
bool WindowsCalls::Line::Begun(CallId id, BOOL done, OVERLAPPED* what) const {
  if (!done) return GetLastError() == ERROR_IO_PENDING;
  return PostQueuedCompletionStatus(port.Get(), static_cast<DWORD>(what->InternalHigh), id, what);
}

// One more that can be called.
bool WindowsCalls::Line::Open(DWORD first) {
  UserAlone owner;
  if (!owner.Get()) return false;
  auto one = std::make_unique<Instance>();
  one->pipe = OwnedHandle(CreateNamedPipeA(
      name.c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | first,
      PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS,
      PIPE_UNLIMITED_INSTANCES, kRoom, kRoom, 0, owner.Get()));
  if (!one->pipe) return false;
  while (++last == 0 || instances.count(last) != 0) {
  }
  if (!CreateIoCompletionPort(one->pipe.Get(), port.Get(), last, 0) ||
      !SetFileCompletionNotificationModes(one->pipe.Get(), FILE_SKIP_COMPLETION_PORT_ON_SUCCESS))
    return false;
  waiting = last;
  instances[last] = std::move(one);
  return true;
}

// On the thread: what another one has begun is broken off when that ends.
void WindowsCalls::Line::AwaitCaller() {
  Instance& one = *instances.at(waiting);
  // One that is there already may be gone again, too.
  const BOOL done = ConnectNamedPipe(one.pipe.Get(), &one.receiving) ||
                    GetLastError() == ERROR_PIPE_CONNECTED || GetLastError() == ERROR_NO_DATA;
  one.receives = Begun(waiting, done, &one.receiving);
  if (one.receives) return;
  instances.erase(waiting);
  waiting = 0;
}

void WindowsCalls::Line::GoOn(CallId id, Instance& one, const OVERLAPPED* what, bool well,
                              DWORD size) {
  if (what == &one.sending) {
    one.sends = false;
    // That the caller is gone is told to who receives.
    if (!one.gone && std::exchange(one.wantsRoom, false)) receiver->OnRoom(id);
    return;
  }
  one.receives = false;
  if (one.gone) return;
  if (id != waiting) return Hear(id, one, well, size);
  // The next one is there before this one can go, so that the name is never free.
  waiting = 0;
  Open();
  one.gone = !well;
  if (well) Take(id, one);
}

void WindowsCalls::Line::Take(CallId id, Instance& one) {
  ULONG process = 0;
  const std::size_t callers = instances.size() - (waiting == 0 ? 0 : 1);
  one.gone = callers > kMostCallers || !GetNamedPipeClientProcessId(one.pipe.Get(), &process) ||
             !IsOneOfOurs(process);
  if (!one.gone) Receive(id, one);
}

void WindowsCalls::Line::Receive(CallId id, Instance& one) {
  one.receiving = {};
  const BOOL done =
      ReadFile(one.pipe.Get(), one.incoming, sizeof one.incoming, nullptr, &one.receiving);
  one.receives = Begun(id, done, &one.receiving);
  if (one.receives) return;
  one.gone = true;
  CancelIoEx(one.pipe.Get(), nullptr);
  receiver->OnHungUp(id);
}

void WindowsCalls::Line::Hear(CallId id, Instance& one, bool well, DWORD size) {
  if (well && size != 0) {
    receiver->OnMessage(id, std::string(one.incoming, size));
    if (!one.gone) Receive(id, one);
    return;
  }
  one.gone = true;
  CancelIoEx(one.pipe.Get(), nullptr);
  receiver->OnHungUp(id);
}

WindowsCalls::WindowsCalls(std::string place)
    : place(std::move(place)), line(std::make_unique<Line>()) {}

WindowsCalls::~WindowsCalls() { StopAnswering(); }

std::string WindowsCalls::PipeOf(const std::string& place, std::uint32_t process) {
  return R"(\\.\pipe\)" + place + "-steering-" + std::to_string(process);
}

bool WindowsCalls::Answer(CallReceiver* called) {
  if (line->receiver || !line->port) return false;
  line->name = PipeOf(place, GetCurrentProcessId());
  if (!line->Open(FILE_FLAG_FIRST_PIPE_INSTANCE)) return false;
  line->receiver = called;
  line->ending = false;
  line->thread = line->threads.CreateThread(Line::Listen, line.get(), "steering", nullptr);
  if (line->thread == kInvalidHandle) {
    line->receiver = nullptr;
    line->End();
    return false;
  }
  InstanceNews::Tell();
  return true;
}

void WindowsCalls::StopAnswering() {
  if (!line->receiver) return;
  line->ending = true;
  Wake();
  line->threads.WaitForSingleObject(line->thread, INFINITE);
  line->threads.CloseHandle(line->thread);
  line->receiver = nullptr;
  InstanceNews::Tell();
}

void WindowsCalls::Wake() {
  if (line->woken.exchange(true)) return;
  if (!PostQueuedCompletionStatus(line->port.Get(), 0, 0, nullptr)) line->woken = false;
}

bool WindowsCalls::Send(CallId call, const std::string& message) {
  const auto found = line->instances.find(call);
  if (found == line->instances.end() || found->second->gone) return true;
  Instance& one = *found->second;
  one.wantsRoom |= one.sends;
  if (one.sends) return false;
  one.outgoing = message;
  one.sending = {};
  // That the caller is gone is seen by the next look at it.
  one.sends = !WriteFile(one.pipe.Get(), one.outgoing.data(),
                         static_cast<DWORD>(one.outgoing.size()), nullptr, &one.sending) &&
              GetLastError() == ERROR_IO_PENDING;
  return true;
}

void WindowsCalls::HangUp(CallId call) {
  const auto found = line->instances.find(call);
  if (found == line->instances.end()) return;
  found->second->gone = true;
  CancelIoEx(found->second->pipe.Get(), nullptr);
}

std::vector<std::uint32_t> WindowsCalls::Answering() {
  std::vector<RunningProcess> all;
  WindowsProcesses::ListByToolhelp(&all);
  std::vector<std::uint32_t> processes;
  for (const RunningProcess& each : all) {
    const std::string pipe = PipeOf(place, each.id);
    // All ends of it may be taken just now.
    const bool isThere = WaitNamedPipeA(pipe.c_str(), 1) || GetLastError() == ERROR_SEM_TIMEOUT;
    if (isThere && IsOneOfOurs(each.id)) processes.push_back(each.id);
  }
  std::sort(processes.begin(), processes.end());
  return processes;
}

std::unique_ptr<Conversation> WindowsCalls::Call(std::uint32_t process) {
  const std::string name = PipeOf(place, process);
  const ULONGLONG end = GetTickCount64() + kPatienceMs;
  OwnedHandle pipe;
  for (;;) {
    // Who is called learns who calls, and can't do anything in their name.
    pipe = OwnedHandle(
        CreateFileA(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                    FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_ANONYMOUS, nullptr));
    if (pipe) break;
    const ULONGLONG now = GetTickCount64();
    if (GetLastError() != ERROR_PIPE_BUSY || now >= end) return nullptr;
    WaitNamedPipeA(name.c_str(), static_cast<DWORD>(end - now));
  }
  ULONG server = 0;
  DWORD messages = PIPE_READMODE_MESSAGE;
  if (!GetNamedPipeServerProcessId(pipe.Get(), &server) || server != process ||
      !IsOneOfOurs(process) || !SetNamedPipeHandleState(pipe.Get(), &messages, nullptr, nullptr))
    return nullptr;
  return std::make_unique<WindowsConversation>(std::move(pipe));
}

std::unique_ptr<Arrivals> WindowsCalls::WatchArrivals() {
  return std::make_unique<WindowsArrivals>();
}

}  // namespace platform
