// Answers those who ask a running Kelvaro and steer it: says how it stands, pauses, lets go,
// selects profiles, and tells followers what happens. docs/steering.md is the protocol. Nothing of
// it delays a key: a status is answered without a lock of the engine; what waits for the engine
// waits on a thread of its own, which is there once there is such work; and what the engine's
// threads tell goes through a bounded ring, from which the calls' thread sends it on. With nobody
// following the engine tells nothing.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "app/platform/calls.h"
#include "engine/control_engine.h"
#include "engine/dispatch_observer.h"
#include "foundation/byte_string.h"
#include "foundation/recursive_lock.h"
#include "foundation/worker_thread.h"
#include "steering/event_ring.h"
#include "steering/message.h"
#include "storage/profile_file.h"

namespace kelvaro {

// What is steered: the window, or a run without one.
class SteeringHost {
 public:
  virtual ~SteeringHost() = default;

  virtual const char* ProgramKind() const = 0;  // "window" or "run"
  // Opens that stored profile and asks the person nothing. Answers by Steering::Selected, at once
  // or later. On the steering's own thread.
  virtual void SelectProfile(std::uint32_t ticket, const std::string& name) = 0;
};

// The file of a profile that is to be opened, which `looked` holds then. Returns what both answer
// when there is none, or none that can be read; empty otherwise.
std::string FindStoredProfile(const std::string& name, ProfileFile* looked, ByteString* path);

class Steering final : public platform::CallReceiver,
                       private DispatchObserver,
                       private WorkerThread {
 public:
  // `host` must outlive this.
  explicit Steering(SteeringHost& host);
  ~Steering() override;

  // Answers from here on, if the platform has calls. The engine, made before this or after, must
  // outlive End.
  void Begin(ControlEngine& steered);
  // Nothing is answered or carried out any more. Waits for what is under way.
  void End();

  // What is open and in use now, empty for none; a change is told to followers. Also before Begin:
  // the first who asks may ask at once. One thread at a time; not the engine's.
  void ProfileIs(const ByteString& name);
  void DeviceIs(const ByteString& name);
  // The mouse controls may have gone on or off otherwise than by a Control. Any thread.
  void MouseMayHaveChanged();

  // The end of a SelectProfile; `error` is empty when the profile is open. Any thread.
  void Selected(std::uint32_t ticket, const std::string& error);

  // CallReceiver, on the calls' thread.
  void OnMessage(platform::CallId call, const std::string& message) override;
  void OnRoom(platform::CallId call) override;
  void OnHungUp(platform::CallId call) override;
  void OnWake() override;

 private:
  enum class Happened : std::uint8_t {
    Profile,
    Device,
    DeviceLost,
    DeviceBack,
    ControlFired,
    Mouse,
    Paused,
    Resumed,
  };
  struct Event {
    Happened what{};
    bool on{};                  // of Mouse
    std::uint32_t controlId{};  // of ControlFired
    std::uint32_t tick{};
    std::string name;  // of Profile and Device
  };
  struct Caller {
    bool follows = false;
    std::deque<std::string> waiting;  // for room
    std::uint32_t missed = 0;         // events that found no place there
  };
  struct Work {
    std::uint32_t ticket{};  // the caller's id
    SteeringMessage request;
  };

  // On the engine's threads.
  void ChangeBegins(const DeviceSnapshot&) override {}
  void ChangeEnds() override;
  void MouseTakes(std::uint64_t) override {}
  void ControlJudged(const Control& control, Verdict verdict, const Control* container) override;
  void MouseSwitched(bool on) override;
  void RepeatLost(const Control&, const Control&) override {}
  void Repeats(const Control&) override {}
  static void OnPresence(bool answers, void* self);

  std::uint32_t Run() override;  // carries out
  void CarryOut(const Work& work);

  // Any thread.
  void Tell(Event event);
  void TellAndWake(Event event);
  void Reply(std::uint32_t ticket, const SteeringMessage& answer);
  void NameIs(Happened what, std::string* place, const ByteString& name);

  // On the calls' thread.
  void HandOver(platform::CallId call, SteeringMessage request);
  SteeringMessage Status();
  void Follow(platform::CallId call);
  void FollowersChanged();
  void SendOrKeep(platform::CallId call, const std::string& message);
  void Flush(platform::CallId call, Caller* caller);  // as far as there is room
  void TellFollowers(const std::string& message);
  void TellFollowers(const Event& event);
  void TellMouse(bool on, std::uint32_t tick);

  SteeringHost& host;
  ControlEngine* engine = nullptr;
  std::uint32_t beginTick{};
  bool answering = false;

  std::map<platform::CallId, Caller> callers;  // of the calls' thread, as is the next
  bool mouseTold{};                            // to followers
  std::atomic<bool> followed{false};           // by any of them

  EventRing<Event, 512> ring;
  std::atomic<std::uint32_t> missedByRing{0};
  std::atomic<bool> toldInChange{false};

  // Never taken by a thread of the engine.
  RecursiveLock boardLock;
  std::string profileName KELVARO_GUARDED_BY(boardLock);
  std::string deviceName KELVARO_GUARDED_BY(boardLock);
  // Tickets and answers, on their way to the calls' thread.
  std::vector<std::pair<std::uint32_t, std::string>> replies KELVARO_GUARDED_BY(boardLock);
  std::deque<Work> work KELVARO_GUARDED_BY(boardLock);
  const platform::Handle workCame;  // auto-reset
};

}  // namespace kelvaro
