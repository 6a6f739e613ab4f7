#include "steering/steering.h"

#include <algorithm>

#include "app/platform/clock.h"
#include "app/platform/threads.h"
#include "foundation/version.h"

namespace kelvaro {
namespace {

constexpr std::size_t kMostWaiting = 256;  // messages of one caller that doesn't read
constexpr std::size_t kMostWork = 64;      // requests that wait for the engine

constexpr const char* kEventNames[] = {"profile",      "device",        "deviceLost", "deviceBack",
                                       "controlFired", "mouseControls", "paused",     "resumed"};

SteeringMessage Answer(const char* kind) {
  SteeringMessage answer;
  answer.kind = kind;
  return answer;
}

SteeringMessage Refusal(const std::string& why) { return Answer("error").Add("text", why); }

}  // namespace

std::string FindStoredProfile(const std::string& name, ProfileFile* looked, ByteString* path) {
  *path = looked->FindProfileFile(TextOf(name));
  if (path->IsEmpty()) return "there is no stored profile '" + name + "'";
  if (!looked->Load(*path)) return "the profile '" + name + "' can't be read";
  return {};
}

Steering::Steering(SteeringHost& host)
    : WorkerThread("steered"),
      host(host),
      workCame(platform::threads().CreateEventA(false, false)) {}

Steering::~Steering() {
  End();
  if (workCame != platform::kInvalidHandle) platform::threads().CloseHandle(workCame);
}

void Steering::Begin(ControlEngine& steered) {
  engine = &steered;
  beginTick = platform::clock().GetTickCount();
  answering = platform::calls().Answer(this);
  if (answering) engine->device.SetPresenceCallback(&Steering::OnPresence, this);
}

void Steering::End() {
  if (!answering) return;
  answering = false;
  // The calls' thread may start the other one: so it goes first.
  platform::calls().StopAnswering();
  Stop();
  followed = false;
  engine->SetObserver(nullptr);
  engine->device.SetPresenceCallback(nullptr, nullptr);
}

// ---- What is told

void Steering::Tell(Event event) {
  event.tick = platform::clock().GetTickCount();
  if (followed && !ring.Put(std::move(event))) ++missedByRing;
}

void Steering::TellAndWake(Event event) {
  if (!followed) return;
  Tell(std::move(event));
  platform::calls().Wake();
}

void Steering::NameIs(Happened what, std::string* place, const ByteString& name) {
  Event event;
  event.what = what;
  event.name = Bytes(name);
  {
    LockGuard guard(boardLock);
    if (*place == event.name) return;
    *place = event.name;
  }
  TellAndWake(std::move(event));
}

void Steering::ProfileIs(const ByteString& name) { NameIs(Happened::Profile, &profileName, name); }

void Steering::DeviceIs(const ByteString& name) { NameIs(Happened::Device, &deviceName, name); }

void Steering::MouseMayHaveChanged() {
  if (followed) platform::calls().Wake();
}

// The wake waits for the end of the change: it would come between a press and its keys.
void Steering::ControlJudged(const Control& control, Verdict verdict, const Control*) {
  if (verdict != Verdict::Fires) return;
  Event event;
  event.what = Happened::ControlFired;
  event.controlId = control.controlId;
  Tell(event);
  toldInChange = true;
}

void Steering::MouseSwitched(bool) {
  Event event;
  event.what = Happened::Mouse;
  event.on = engine->MouseIsOn();
  Tell(event);
}

void Steering::ChangeEnds() {
  if (toldInChange.exchange(false)) platform::calls().Wake();
}

void Steering::OnPresence(bool answers, void* self) {
  Event event;
  event.what = answers ? Happened::DeviceBack : Happened::DeviceLost;
  static_cast<Steering*>(self)->TellAndWake(event);
}

// ---- Answers

void Steering::Reply(std::uint32_t ticket, const SteeringMessage& answer) {
  {
    LockGuard guard(boardLock);
    replies.emplace_back(ticket, answer.Text());
  }
  platform::calls().Wake();
}

void Steering::Selected(std::uint32_t ticket, const std::string& error) {
  Reply(ticket, error.empty() ? Answer("done") : Refusal(error));
}

SteeringMessage Steering::Status() {
  SteeringMessage status = Answer("status");
  status.Add("program", std::string(host.ProgramKind()));
  status.Add("version", std::string(VersionNumber().Text()));
  {
    LockGuard guard(boardLock);
    status.Add("profile", profileName);
    status.Add("device", deviceName);
    status.AddFlag("deviceAnswers", !deviceName.empty() && engine->device.Answers());
  }
  status.AddFlag("paused", engine->IsPaused());
  status.AddFlag("mouseControls", engine->MouseIsOn());
  return status;
}

// ---- The calls' thread

void Steering::OnMessage(platform::CallId call, const std::string& message) {
  std::string error;
  auto request = ParseSteeringMessage(message, &error);
  if (!request) return SendOrKeep(call, Refusal(error).Text());
  if (request->kind == "status") return SendOrKeep(call, Status().Text());
  if (request->kind == "follow-events") return Follow(call);
  for (const char* const kind : {"pause", "resume", "release-all", "select"})
    if (request->kind == kind) return HandOver(call, std::move(*request));
  SendOrKeep(call, Refusal("there is no request '" + request->kind + "'").Text());
}

void Steering::HandOver(platform::CallId call, SteeringMessage request) {
  if (!IsRunning() && !Start(false, kPriorityOfCaller))
    return SendOrKeep(call, Refusal("no thread can be started").Text());
  callers[call];  // so that its answer finds it
  bool full;
  {
    LockGuard guard(boardLock);
    full = work.size() >= kMostWork;
    if (!full) work.push_back({call, std::move(request)});
  }
  if (full) return SendOrKeep(call, Refusal("too many requests are waiting").Text());
  platform::threads().SetEvent(workCame);
}

void Steering::Follow(platform::CallId call) {
  Caller& caller = callers[call];
  if (!followed) mouseTold = engine->MouseIsOn();
  caller.follows = true;
  FollowersChanged();
  SendOrKeep(call, Answer("done").Text());
}

void Steering::FollowersChanged() {
  followed = std::any_of(callers.begin(), callers.end(),
                         [](const auto& caller) { return caller.second.follows; });
  engine->SetObserver(followed ? this : nullptr);
}

void Steering::OnHungUp(platform::CallId call) {
  callers.erase(call);
  FollowersChanged();
}

void Steering::OnRoom(platform::CallId call) {
  const auto found = callers.find(call);
  if (found != callers.end()) Flush(call, &found->second);
}

void Steering::Flush(platform::CallId call, Caller* caller) {
  for (; !caller->waiting.empty(); caller->waiting.pop_front())
    if (!platform::calls().Send(call, caller->waiting.front())) return;
  if (caller->missed == 0) return;
  SteeringMessage told = Answer("event");
  told.Add("event", "missed").Add("count", caller->missed);
  if (platform::calls().Send(call, told.Text())) caller->missed = 0;
}

// An answer that finds no place is one to a caller that asks on and on and reads nothing.
void Steering::SendOrKeep(platform::CallId call, const std::string& message) {
  Caller& caller = callers[call];
  if (caller.waiting.size() < kMostWaiting && caller.missed == 0) {
    caller.waiting.push_back(message);
    Flush(call, &caller);
  } else if (caller.follows) {
    ++caller.missed;
  } else {
    callers.erase(call);
    platform::calls().HangUp(call);
  }
}

void Steering::TellFollowers(const std::string& message) {
  for (auto& [call, caller] : callers)
    if (caller.follows) SendOrKeep(call, message);
}

void Steering::TellMouse(bool on, std::uint32_t tick) {
  if (on == mouseTold) return;
  mouseTold = on;
  SteeringMessage told = Answer("event");
  told.Add("event", "mouseControls").Add("t", tick - beginTick).AddFlag("on", on);
  TellFollowers(told.Text());
}

void Steering::TellFollowers(const Event& event) {
  if (event.what == Happened::Mouse) return TellMouse(event.on, event.tick);
  SteeringMessage told = Answer("event");
  told.Add("event", kEventNames[static_cast<std::size_t>(event.what)]);
  told.Add("t", event.tick - beginTick);
  if (event.what == Happened::ControlFired) told.Add("controlId", event.controlId);
  if (event.what == Happened::Profile || event.what == Happened::Device)
    told.Add("name", event.name);
  TellFollowers(told.Text());
}

void Steering::OnWake() {
  for (Event event; ring.Take(&event);) TellFollowers(event);
  const std::uint32_t missed = missedByRing.exchange(0);
  for (auto& [call, caller] : callers) {
    if (caller.follows) caller.missed += missed;
    Flush(call, &caller);
  }
  TellMouse(engine->MouseIsOn(), platform::clock().GetTickCount());
  std::vector<std::pair<std::uint32_t, std::string>> due;
  {
    LockGuard guard(boardLock);
    due.swap(replies);
  }
  for (const auto& [call, answer] : due)
    if (callers.count(call) != 0) SendOrKeep(call, answer);
}

// ---- The thread that carries out

std::uint32_t Steering::Run() {
  const platform::Handle events[] = {stopEvent, workCame};
  while (platform::threads().WaitForMultipleObjects(2, events, platform::WAIT_FOREVER) ==
         platform::WAIT_OBJECT_0 + 1) {
    for (;;) {
      Work next;
      {
        LockGuard guard(boardLock);
        if (work.empty()) break;
        next = std::move(work.front());
        work.pop_front();
      }
      if (StopRequested()) return 0;
      CarryOut(next);
    }
  }
  return 0;
}

void Steering::CarryOut(const Work& next) {
  const std::string& kind = next.request.kind;
  if (kind == "select") {
    const std::string* const name = next.request.Find("name");
    if (!name || name->empty()) return Reply(next.ticket, Refusal("no profile is named"));
    return host.SelectProfile(next.ticket, *name);
  }
  const bool wasPaused = engine->IsPaused();
  if (kind == "pause") engine->Pause();
  if (kind == "resume") engine->Resume();
  if (kind == "release-all") engine->ReleaseAll();
  if (engine->IsPaused() != wasPaused) {
    Event event;
    event.what = wasPaused ? Happened::Resumed : Happened::Paused;
    TellAndWake(event);
  }
  Reply(next.ticket, Answer("done"));
}

}  // namespace kelvaro
