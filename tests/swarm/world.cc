#include "tests/swarm/world.h"

#include <algorithm>
#include <utility>

#include "tests/console/random.h"
#include "tests/console/random_change.h"
#include "tests/swarm/instance.h"

namespace kelvaro::swarm {
namespace {

constexpr int kPads = 3;
constexpr int kInstances = 2;
constexpr std::uint32_t kNames = 7;   // of profiles
constexpr std::uint32_t kStored = 4;  // at the beginning
constexpr std::uint64_t kLongest =
    10 * 60 * 1000;  // ms; no replay, nor anything else, takes longer
constexpr char kFolder[] = "/game/Profiles/";
constexpr char kAside[] = "/home/player/now";
constexpr const char* kReads[] = {"Poll", "GetDeviceState"};
constexpr const char* kStarts[] = {"timeSetEvent",  "CreateThread",    "CreateDevice",
                                   "SetDataFormat", "timeBeginPeriod", "Acquire"};

std::string NameOf(std::uint32_t number) { return "P" + std::to_string(number % kNames); }
std::string PathOf(const std::string& name) { return kFolder + name + ".idprof"; }
bool IsProfileFile(const std::string& name) { return name.ends_with(".idprof"); }

console::DeviceChoice DeviceOf(const Profile& profile) {
  return {std::nullopt, profile.deviceGuid, profile.deviceName};
}

}  // namespace

World::World() : instances(kInstances) {
  simulation.KeepEvents(false);
  for (std::uint32_t pad = 0; pad < kPads; ++pad) {
    platform::DeviceDescription description;
    description.name = "Pad" + std::to_string(pad);
    description.guid.Data1 = pad;
    pads.push_back({&simulation.AddDevice(description)});
  }
  simulation.OnEvent([this](const auto& event) {
    const auto sender = senders.find(platform::threads().GetCurrentThreadId());
    if (sender == senders.end()) {
      // A timer moves the pointer, and sends nothing that could stay down.
      HeldInputs held;
      held.See(event);
      return Require(held.presses == 0, "a key of a thread that sends none");
    }
    Instance& instance = *instances[static_cast<std::size_t>(sender->second)];
    const std::uint64_t before = instance.held.presses;
    instance.held.See(event);
    presses += instance.held.presses - before;
  });
  for (std::uint32_t number = 0; number < kStored; ++number) {
    ProfileFile profile;
    FillProfile(number, &profile);
    profile.profileName = TextOf(NameOf(number));
    const auto& pad = pads[number % kPads].device->Description();
    profile.deviceName = TextOf(pad.name);
    profile.deviceGuid = pad.guid;
    Require(profile.Save(), "the first save fails");
    files[PathOf(NameOf(number))] = BytesAt(PathOf(NameOf(number))).value_or("");
  }
}

World::~World() { static_cast<void>(End()); }

std::string World::Do(const Step& step) {
  changing.clear();
  isTroubled = step.trouble != Trouble::None;
  afterTrouble = nullptr;
  simulation.Disk().ClearLog();
  Perform(step);
  EndTrouble(step);
  simulation.RunFor(step.wait);
  Check();
  return fault;
}

std::string World::End() {
  for (int number = 0; number < kInstances; ++number) EndInstance(number);
  for (const char* operation : kReads) simulation.Mend(operation);
  for (const char* operation : kStarts) simulation.Mend(operation);
  CheckHandles();
  return fault;
}

void World::Fault(const std::string& text) {
  if (fault.empty()) fault = text;
}

void World::NoteSender(int instance) {
  senders[platform::threads().GetCurrentThreadId()] = instance;
}

void World::ActFor(int number) { NoteSender(number); }

void World::Perform(const Step& step) {
  const int number = static_cast<int>(step.a % kInstances);
  Instance* const instance = instances[static_cast<std::size_t>(number)].get();
  ActFor(number);
  switch (step.act) {
    case Act::Wait:
      return;
    case Act::ReadsFail:
      return simulation.FailNext(kReads[step.a % std::size(kReads)], platform::DIERR_INPUTLOST,
                                 step.b % 50 + 1);
    case Act::StartFails:
      startFails = true;
      return simulation.FailNext(kStarts[step.a % std::size(kStarts)]);
    case Act::Wrap:
      if (instances[0] || instances[1]) return;  // it doesn't jump while a program looks
      return simulation.SetTickOffset(UINT32_MAX - static_cast<std::uint32_t>(Now()) - step.a);
    case Act::Begin:
      if (!instance) Begin(number, NameOf(step.b));
      return;
    case Act::End:
      return EndInstance(number);
    case Act::Delete:
      return Delete(NameOf(step.b), step);
    case Act::Cut:
      return Cut(NameOf(step.a), step.b);
    default:
      if (step.act < Act::ReadsFail) return PlayPad(step);
      if (instance) Steer(*instance, step);
  }
}

void World::PlayPad(const Step& step) {
  Pad& pad = pads[step.a % kPads];
  Random random(step.b);
  platform::StateChange change;
  switch (step.act) {
    case Act::HandsOff:
      pad.held = 0;
      change = platform::ChangeBetween(pad.device->State(), platform::StateAtRest());
      change.hasButtons = true;
      return pad.device->Change(change);
    case Act::Lose:
      pad.isLost = true;
      return pad.device->Lose();
    case Act::Return:
      pad.isLost = false;
      return pad.device->Return();
    case Act::Unplug:
      pad.isUnplugged = true;
      return pad.device->Unplug();
    case Act::PlugIn:
      pad.isUnplugged = false;
      return pad.device->PlugIn();
    default:
      return pad.device->Change(RandomChange(random, &pad.held));
  }
}

bool World::Loaded(Instance& instance, const std::string& path) {
  const bool isLoaded = instance.profile.Load(TextOf(path));
  // What a load brought back of a temporary is looked at with the files.
  if (!instance.profile.DamagedFile().IsEmpty())
    found.push_back({path, BytesAt(path).value_or("")});
  return isLoaded;
}

void World::Begin(int number, const std::string& name) {
  auto& instance = instances[static_cast<std::size_t>(number)];
  const ByteString path = ProfileFile().FindProfileFile(TextOf(name));
  if (path.IsEmpty()) return;
  instance = std::make_unique<Instance>(*this, number);
  std::string error;
  instance->runs = Loaded(*instance, Bytes(path)) &&
                   instance->session.Begin(DeviceOf(instance->profile), false, &error);
  AfterSelection(*instance);
  if (!instance->runs) EndInstance(number);
}

void World::AfterSelection(Instance& instance) {
  instance.isDeaf = startFails;
  startFails = false;
  for (const char* operation : kStarts) simulation.Mend(operation);
}

void World::EndInstance(int number) {
  auto& instance = instances[static_cast<std::size_t>(number)];
  if (!instance) return;
  ActFor(number);
  instance->NoteExceptions();
  instance->session.End();
  instance->runs = false;
  const std::string left = instance->Disagreement();
  Require(left.empty(), "after the end of an instance " + left);
  std::erase_if(senders, [number](const auto& sender) { return sender.second == number; });
  instance.reset();
}

void World::Steer(Instance& instance, const Step& step) {
  ControlEngine& engine = instance.Engine();
  switch (step.act) {
    case Act::Select:
      return Select(instance, NameOf(step.b));
    case Act::Pause:
      return engine.Pause();
    case Act::Resume:
      return engine.Resume();
    case Act::ReleaseAll:
      return engine.ReleaseAll();
    case Act::TestMode:
      return engine.SetTestMode(!engine.TestMode());
    case Act::AlwaysOn: {
      LockGuard guard(instance.profile.profileLock);
      instance.profile.mouseAlwaysActive = !instance.profile.mouseAlwaysActive;
      return engine.MouseChanged();
    }
    case Act::Slider: {
      LockGuard guard(instance.profile.profileLock);
      return engine.ApplyMouseSlider(ControlEngine::kMovementSensitivitySlider,
                                     static_cast<std::int32_t>(step.b % 51));
    }
    case Act::Detect:
      instance.NoteExceptions();
      if (engine.IsDetecting()) return engine.EndMouseDetection();
      engine.StartMouseDetection(step.b % 2 != 0 ? MouseRole::LeftButton : MouseRole::X);
      return instance.NoteExceptions();
    case Act::Edit:
      return Edit(instance, step);
    case Act::Copy:
      return SaveAs(instance, NameOf(step.b), step);
    default:
      return Rename(instance, NameOf(step.b), step);
  }
}

void World::Select(Instance& instance, const std::string& name) {
  const ByteString path = ProfileFile().FindProfileFile(TextOf(name));
  if (path.IsEmpty()) return;
  instance.NoteExceptions();
  ProfileFile wanted;
  if (!wanted.Load(path)) return;
  std::string error;
  instance.session.Change([&] { Loaded(instance, Bytes(path)); }, DeviceOf(wanted), &error);
  AfterSelection(instance);
}

void World::Edit(Instance& instance, const Step& step) {
  instance.NoteExceptions();
  std::string error;
  instance.session.Change([&] { instance.Take(step.b); }, DeviceOf(instance.profile), &error);
  AfterSelection(instance);
  SaveAs(instance, Bytes(instance.profile.profileName), step);
}

void World::SaveAs(Instance& instance, const std::string& name, const Step& step) {
  const std::string path = PathOf(name);
  if (step.act == Act::Copy && BytesAt(path)) return;
  instance.profile.profileName = TextOf(name);
  const std::string bytes = BytesOf(instance);
  Written(instance, path);
  const auto old = BytesAt(path);
  Arm(step);
  const bool isSaved = instance.profile.Save();
  Require(isSaved || step.trouble != Trouble::None, "a save fails for no reason");
  changing[path] = isSaved ? States{bytes} : States{old, bytes};
}

void World::Rename(Instance& instance, const std::string& name, const Step& step) {
  const std::string oldPath = PathOf(Bytes(instance.profile.profileName));
  const std::string newPath = PathOf(name);
  if (newPath == oldPath || BytesAt(newPath)) return;
  const auto old = BytesAt(oldPath);
  ProfileFile going;
  const ByteString oldName = instance.profile.profileName;
  instance.profile.profileName = TextOf(name);
  const std::string bytes = BytesOf(instance);
  Written(instance, oldPath);
  Arm(step);
  const bool isGoing =
      instance.profile.KeepDamagedFile() && going.BeginRename(oldName, TextOf(name));
  const bool isSaved = instance.profile.Save();
  if (isGoing) going.EndRename();
  Require(isSaved || step.trouble != Trouble::None, "a save fails for no reason");
  changing[newPath] = isSaved ? States{bytes} : States{std::nullopt, bytes};
  changing[oldPath] = isGoing ? States{std::nullopt} : States{old};
  if (step.trouble != Trouble::None) changing[oldPath] = {std::nullopt, old};
  // A write that fails leaves the profile in memory alone; a power cut never does.
  if (step.trouble != Trouble::PowerCut || !old) return;
  afterTrouble = [=, this] {
    Require(BytesAt(oldPath) == old || BytesAt(newPath) == bytes,
            "a rename left the profile under neither name");
  };
}

void World::Delete(const std::string& name, const Step& step) {
  const auto old = BytesAt(PathOf(name));
  if (!old) return;
  ProfileFile gone;
  gone.profileName = TextOf(name);
  Arm(step);
  const bool isGone = gone.DeleteProfileFile();
  Require(isGone || step.trouble != Trouble::None || cut.contains(PathOf(name)),
          "a deletion fails for no reason");
  changing[PathOf(name)] = isGone ? States{std::nullopt} : States{old, std::nullopt};
  if (!isGone && step.trouble == Trouble::None) changing[PathOf(name)] = {old};
  std::erase_if(found, [&](const Found& each) { return each.path == PathOf(name); });
}

void World::Cut(const std::string& name, std::uint32_t bytes) {
  const std::string path = PathOf(name);
  const auto old = BytesAt(path);
  if (!old || old->size() <= bytes) return;
  std::erase_if(found, [&](const Found& each) { return each.path == path; });
  files[path] = old->substr(0, bytes);
  simulation.Disk().PutFile(path, files[path]);
  cut.insert(path);
}

void World::Written(const Instance& instance, const std::string& path) {
  if (instance.profile.DamagedFile().Equals(TextOf(path))) return;
  std::erase_if(found, [&](const Found& each) { return each.path == path; });
}

void World::Arm(const Step& step) {
  auto& disk = simulation.Disk();
  switch (step.trouble) {
    case Trouble::None:
      return;
    case Trouble::Fails:
      return disk.FailOperation(step.at);
    case Trouble::Full:
      for (std::uint32_t n = step.at; n < step.at + 60; ++n) disk.FailInside(n, 100);
      return;
    case Trouble::PowerCut:
      return disk.StopBefore(step.at);
  }
}

void World::EndTrouble(const Step& step) {
  if (step.trouble == Trouble::None) return;
  auto& disk = simulation.Disk();
  if (disk.IsStopped()) {
    for (int number = 0; number < kInstances; ++number) EndInstance(number);
    Random random(step.b * 100 + step.at);
    disk.CutPower([&random](std::uint32_t n) { return random.Below(n); });
  }
  disk.Restart();
  // Brings back the old file of a rename that was cut off, or whose last deletion failed.
  LinkedList<ByteString> names;
  ProfileFile().ListProfileNames(&names);
  if (afterTrouble) afterTrouble();
}

const World::Pad* World::PadOf(Instance& instance) const {
  for (const Pad& pad : pads) {
    if (pad.device->Description().name == Bytes(instance.session.DeviceName())) return &pad;
  }
  return nullptr;
}

std::optional<std::string> World::BytesAt(const std::string& path) {
  return simulation.Disk().FileBytes(path);
}

std::string World::BytesOf(Instance& instance) {
  Require(instance.profile.SaveAs(kAside), "a save aside fails");
  const std::string bytes = BytesAt(kAside).value_or("");
  simulation.Disk().Remove(kAside);
  return bytes;
}

// ---- What always holds

void World::Settle(Instance& instance) {
  const std::uint64_t end = Now() + kLongest;
  while (instance.AnyLockTaken() && Now() < end) simulation.RunFor(1);
  Require(!instance.AnyLockTaken(), "a lock is held at rest");
}

void World::Check() {
  for (const auto& instance : instances) {
    if (!instance) continue;
    CheckFollows(*instance);
    Settle(*instance);
    CheckKeys(*instance);
  }
  CheckFiles();
  CheckFound();
  CheckList();
  CheckHandles();
}

void World::CheckKeys(Instance& instance) {
  if (!fault.empty()) return;
  const std::string text = instance.Disagreement();
  Require(text.empty(), text);
  // What repeats is one of the profile's Controls, and is down.
  if (const Control* const repeating = instance.Engine().repeatWorker.Repeating()) {
    bool isThere = false;
    for (const Control& control : instance.profile.DispatchList) {
      isThere |= &control == repeating && control.triggerDown == Control::kDown;
    }
    Require(isThere, "what repeats isn't down");
  }
}

// Nothing that polls, waits or replays has stopped for ever.
void World::CheckFollows(Instance& instance) {
  ControlEngine& engine = instance.Engine();
  const Pad* const pad = PadOf(instance);
  const auto follows = [&] {
    return !pad || pad->isLost || pad->isUnplugged || engine.IsPaused() || instance.isDeaf ||
           engine.snapshot.dispatchButtons == ButtonMaskFromState(pad->device->State());
  };
  const std::uint64_t end = Now() + kLongest;
  while (!follows() && Now() < end) simulation.RunFor(1);
  Require(follows(), "an instance doesn't see what its pad does");
}

void World::CheckFiles() {
  std::set<std::string> paths;
  for (const auto& [path, bytes] : files) paths.insert(path);
  for (const auto& [path, states] : changing) paths.insert(path);
  std::map<std::string, std::string> temporaries;
  for (const std::string& name : simulation.Disk().List("/game/Profiles")) {
    const std::string path = kFolder + name;
    if (IsProfileFile(name)) paths.insert(path);
    if (name.ends_with(".tmp")) temporaries[path] = BytesAt(path).value_or("");
  }
  for (const std::string& path : paths) {
    const auto now = BytesAt(path);
    const auto before = files.find(path);
    States states = {before == files.end() ? std::nullopt : std::optional(before->second)};
    const auto change = changing.find(path);
    if (change != changing.end()) states = change->second;
    // A load that can't read a file, since it was cut or a read fails, brings it back from what a
    // save has left of its temporary, whole or not: an earlier one, or one that failed in this
    // step, of which anything may be left.
    const bool isAnything = cut.contains(path) && states.size() > 1;
    const auto left = leftOver.find(path + ".tmp");
    if (left != leftOver.end() && (isTroubled || cut.contains(path)))
      states.push_back(left->second);
    Require(isAnything || std::find(states.begin(), states.end(), now) != states.end(),
            path + " is neither as it was nor as it should be");
    const bool isOther = before == files.end() || now != before->second;
    const bool isBack = isOther && left != leftOver.end() && now == left->second;
    if (isBack || (isOther && isAnything)) {
      cut.insert(path);
    } else if (before == files.end() || (isOther && change != changing.end())) {
      cut.erase(path);
    }
    files.erase(path);
    if (now) files[path] = *now;
  }
  leftOver = temporaries;
}

void World::CheckFound() {
  for (const Found& each : found) {
    bool isThere = false;
    for (const std::string& name : simulation.Disk().List("/game/Profiles")) {
      isThere |= BytesAt(kFolder + name) == each.bytes;
    }
    Require(isThere, "the bytes of the damaged " + each.path + " are gone");
  }
}

void World::CheckList() {
  LinkedList<ByteString> listed;
  ProfileFile().ListProfileNames(&listed);
  std::set<std::string> names;
  for (const ByteString& name : listed) {
    names.insert(Bytes(name));
    Require(files.contains(PathOf(Bytes(name))), Bytes(name) + " is listed and has no file");
  }
  for (const auto& [path, bytes] : files) {
    const std::string name = path.substr(sizeof kFolder - 1, 2);
    Require(cut.contains(path) || names.contains(name), name + " isn't listed");
  }
}

void World::CheckHandles() {
  std::uint32_t running = 0;
  for (const auto& instance : instances) running += instance ? 1 : 0;
  const auto atMost = [&](std::uint32_t count, std::uint32_t each, const char* what) {
    Require(count <= each * running,
            std::to_string(count) + " " + what + " of " + std::to_string(running) + " instances");
  };
  atMost(simulation.LivingThreads(), 3, "threads");
  atMost(simulation.OpenHandles(), 8, "handles");
  atMost(simulation.OpenDeviceObjects(), 2, "device objects");
  atMost(simulation.OpenTimerPeriods(), 1, "timer periods");
  Require(simulation.Disk().OpenHandles() == 0, "a file stays open");
}

namespace {

// The number of steps, and the first thing that doesn't hold.
std::pair<std::size_t, std::string> Live(World* world, const Script& script) {
  std::string fault;
  std::size_t at = 0;
  for (; at < script.size() && fault.empty(); ++at) fault = world->Do(script[at]);
  if (fault.empty()) fault = world->End();
  return {at, fault};
}

}  // namespace

std::string Play(const Script& script, Lived* lived) {
  World world;
  const auto [at, fault] = Live(&world, script);
  if (lived) {
    lived->ms += world.Now();
    lived->presses += world.presses;
    lived->steps += at;
  }
  return fault.empty() ? fault : "step " + std::to_string(at) + ": " + fault;
}

std::string Sent(const Script& script, bool timersSleep) {
  World world;
  world.Machine().KeepEvents(true);
  world.Machine().LetTimersSleep(timersSleep);
  const std::string fault = Live(&world, script).second;
  return world.Machine().EventText() + fault;
}

}  // namespace kelvaro::swarm
