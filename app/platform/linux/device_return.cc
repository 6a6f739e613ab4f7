#include "app/platform/linux/device_return.h"

#include <errno.h>
#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <utility>

#include "app/platform/linux/descriptor.h"
#include "app/platform/linux/detached_thread.h"
#include "app/platform/linux/thread_priority.h"
#include "app/platform/linux/waiting.h"

namespace platform {
namespace {

// How soon a node that can't be opened yet is tried again. Rules run within moments; a change of
// the user at the machine takes as long as it takes.
constexpr std::int64_t kFirstRetryMs = 20;
constexpr std::int64_t kLongestRetryMs = 1000;

// The devices of a hub come one after the other.
constexpr std::int64_t kAloneMs = 1000;

bool MayYetOpen(int errorCode) {
  return errorCode == EACCES || errorCode == EPERM || errorCode == ENOENT;
}

bool IsSameProduct(const DeviceIds& a, const DeviceIds& b) {
  return a.vendor == b.vendor && a.product == b.product;
}

// But for the ordinal.
bool IsSameIdentity(const DeviceIds& a, const DeviceIds& b) {
  return DeviceIdentity(a, 0) == DeviceIdentity(b, 0);
}

}  // namespace

std::vector<NodePlace> AttachedNodes(DeviceSource& source) {
  std::vector<NodePlace> nodes = source.nodes->List();
  std::vector<std::string> places;
  places.reserve(nodes.size());
  for (const NodePlace& node : nodes) places.push_back(node.place);
  source.identities.KeepOnly(places);
  return nodes;
}

// The search

ReturnSearch::ReturnSearch(std::shared_ptr<DeviceSource> sharedSource, const NodePlace& place,
                           const GUID& deviceIdentity)
    : source(std::move(sharedSource)),
      own(place),
      identity(deviceIdentity),
      // Before the first look, so that nothing falls between the two.
      watch(source->nodes->Watch()) {
  Remember(AttachedNodes(*source));
  if (!watch) LookBy(source->nowMs() + kLongestRetryMs);
}

std::unique_ptr<DeviceNode> ReturnSearch::Look(bool asked) {
  const bool news = TakeNews();
  const bool due = nextLookMs && source->nowMs() >= *nextLookMs;
  if (!news && !asked && !due) return nullptr;
  if (news || asked) retryDelayMs = kFirstRetryMs;
  if (asked) lost = true;
  nextLookMs.reset();
  if (!watch) LookBy(source->nowMs() + kLongestRetryMs);
  const std::vector<NodePlace> nodes = AttachedNodes(*source);
  const bool isThere = std::any_of(nodes.begin(), nodes.end(), [this](const NodePlace& node) {
    return node.place == own.place;
  });
  if (lost || !isThere) return Search(nodes);
  Remember(nodes);
  return nullptr;
}

int ReturnSearch::WaitMs() const {
  if (!nextLookMs) return -1;
  return static_cast<int>(std::max<std::int64_t>(*nextLookMs - source->nowMs(), 0));
}

// Whether something has come, or may have come, that may be the device.
bool ReturnSearch::TakeNews() {
  bool matters = false;
  if (!watch) return matters;
  NodePlace arrived;
  for (;;) {
    const NodeWatch::Report report = watch->Next(&arrived);
    if (report == NodeWatch::Report::None) return matters;
    if (report == NodeWatch::Report::Overrun) return true;
    if (report == NodeWatch::Report::Arrived && IsSameProduct(arrived.ids, own.ids)) matters = true;
  }
}

void ReturnSearch::Remember(const std::vector<NodePlace>& nodes) {
  for (const NodePlace& node : nodes) {
    const bool isLikeIt = IsSameProduct(node.ids, own.ids) && node.ids.name == own.ids.name;
    if (isLikeIt && node.place != own.place && !WasBeside(node.ids)) beside.push_back(node.ids);
  }
}

bool ReturnSearch::WasBeside(const DeviceIds& ids) const {
  return std::any_of(beside.begin(), beside.end(),
                     [&](const DeviceIds& other) { return IsSameIdentity(other, ids); });
}

// On the same bus and of the same version the identities tell, by their ordinals too.
bool ReturnSearch::HasItsSerial(const DeviceIds& ids) const {
  return !own.ids.unique.empty() && ids.unique == own.ids.unique && IsSameProduct(ids, own.ids) &&
         !IsSameIdentity(ids, own.ids);
}

bool ReturnSearch::MayBeItElsewhere(const DeviceIds& ids) const {
  if (!IsSameProduct(ids, own.ids) || ids.name != own.ids.name) return false;
  if (!ids.unique.empty() && !own.ids.unique.empty() && ids.unique != own.ids.unique) return false;
  // Neither one that was there all along nor one that has been pulled and is back in its own place.
  return !WasBeside(ids);
}

// Nothing unless it is a game device: a pad's motion sensor and touch pad are of the same make.
std::optional<AttachedDevice> ReturnSearch::Open(const NodePlace& node) {
  int errorCode = 0;
  std::unique_ptr<DeviceNode> opened = source->nodes->Open(node, &errorCode);
  if (!opened && MayYetOpen(errorCode)) {
    LookBy(source->nowMs() + (watch ? retryDelayMs : kLongestRetryMs));
    return std::nullopt;
  }
  if (!opened || !IsGameDevice(opened->Facts())) return std::nullopt;
  return AttachedDevice{node, source->identities.Assign(node.place, node.ids), std::move(opened)};
}

std::unique_ptr<DeviceNode> ReturnSearch::Search(const std::vector<NodePlace>& nodes) {
  std::vector<AttachedDevice> ofItsSerial;
  std::vector<AttachedDevice> ofItsName;
  for (const NodePlace& node : nodes) {
    const bool hasItsSerial = HasItsSerial(node.ids);
    const bool mayBeIt = MayBeItElsewhere(node.ids);
    if (!hasItsSerial && !mayBeIt && !IsSameIdentity(node.ids, own.ids)) continue;
    std::optional<AttachedDevice> device = Open(node);
    if (!device) continue;
    if (device->identity == identity) return GotBack(std::move(*device), nodes);
    if (hasItsSerial) {
      ofItsSerial.push_back(std::move(*device));
    } else if (mayBeIt) {
      ofItsName.push_back(std::move(*device));
    }
  }
  retryDelayMs = std::min(2 * retryDelayMs, kLongestRetryMs);
  if (ofItsSerial.size() == 1) return GotBack(std::move(ofItsSerial[0]), nodes);
  if (ofItsSerial.empty() && ofItsName.size() == 1 && StaysAlone(ofItsName[0].place))
    return GotBack(std::move(ofItsName[0]), nodes);
  return nullptr;
}

std::unique_ptr<DeviceNode> ReturnSearch::GotBack(AttachedDevice device,
                                                  const std::vector<NodePlace>& nodes) {
  own = std::move(device.place);
  identity = device.identity;
  lost = false;
  Remember(nodes);
  nextLookMs.reset();
  if (!watch) LookBy(source->nowMs() + kLongestRetryMs);
  return std::move(device.node);
}

bool ReturnSearch::StaysAlone(const NodePlace& node) {
  const std::int64_t now = source->nowMs();
  if (aloneAt != node.place) {
    aloneAt = node.place;
    aloneTillMs = now + kAloneMs;
  }
  if (now >= aloneTillMs) return true;
  LookBy(aloneTillMs);
  return false;
}

void ReturnSearch::LookBy(std::int64_t ms) {
  nextLookMs = nextLookMs ? std::min(*nextLookMs, ms) : ms;
}

// Its thread

struct DeviceReturn::State {
  State(std::shared_ptr<DeviceSource> source, const NodePlace& place, const GUID& identity)
      : wakeUp(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
        found(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    search.emplace(std::move(source), place, identity);
  }

  void Wake() const { eventfd_write(wakeUp.Get(), 1); }
  void WaitForWork() const {
    pollfd readable[] = {{wakeUp.Get(), POLLIN, 0}, {search->NewsDescriptor(), POLLIN, 0}};
    poll(readable, 2, search->WaitMs());
    eventfd_t wakes;
    eventfd_read(wakeUp.Get(), &wakes);
  }

  const Descriptor wakeUp;
  const Descriptor found;              // readable while `back` is there
  std::optional<ReturnSearch> search;  // the thread's, and gone with it

  PriorityMutex mutex;  // of all that follows
  MonotonicCondition threadEnded;
  bool threadRuns = false;
  bool ending = false;
  bool lost = false;
  std::unique_ptr<DeviceNode> useless;
  std::unique_ptr<DeviceNode> back;
  std::atomic<bool> isBack{false};  // whether `back` is there, for a look without the mutex
};

DeviceReturn::DeviceReturn(std::shared_ptr<DeviceSource> source, const NodePlace& place,
                           const GUID& identity)
    : state(std::make_shared<State>(std::move(source), place, identity)) {
  auto start = std::make_unique<std::shared_ptr<State>>(state);
  const std::lock_guard<PriorityMutex> lock(state->mutex);
  state->threadRuns = StartDetachedThread(Run, start.get());
  if (state->threadRuns) (void)start.release();  // the thread's now
}

DeviceReturn::~DeviceReturn() {
  std::unique_lock<PriorityMutex> lock(state->mutex);
  state->ending = true;
  state->Wake();
  while (state->threadRuns) state->threadEnded.Wait(lock);
}

void DeviceReturn::Lost(std::unique_ptr<DeviceNode> node) {
  {
    const std::lock_guard<PriorityMutex> lock(state->mutex);
    state->useless = std::move(node);
    state->lost = true;
  }
  state->Wake();
}

std::unique_ptr<DeviceNode> DeviceReturn::Take() {
  if (!state->isBack.load(std::memory_order_relaxed)) return nullptr;
  const std::lock_guard<PriorityMutex> lock(state->mutex);
  state->isBack.store(false, std::memory_order_relaxed);
  eventfd_t times;
  eventfd_read(state->found.Get(), &times);
  return std::move(state->back);
}

int DeviceReturn::Fd() const { return state->found.Get(); }

void* DeviceReturn::Run(void* start) {
  const std::unique_ptr<std::shared_ptr<State>> own(static_cast<std::shared_ptr<State>*>(start));
  State& state = **own;
  NameCurrentThread("device return");
  StartAtNormalPriority();
  std::unique_ptr<DeviceNode> useless;
  std::unique_ptr<DeviceNode> untaken;  // came, and went again
  std::unique_lock<PriorityMutex> lock(state.mutex);
  while (!state.ending) {
    const bool asked = std::exchange(state.lost, false);
    useless = std::move(state.useless);
    lock.unlock();
    useless.reset();
    untaken.reset();
    std::unique_ptr<DeviceNode> found = state.search->Look(asked);
    if (!found) state.WaitForWork();
    lock.lock();
    if (!found) continue;
    untaken = std::exchange(state.back, std::move(found));
    state.isBack.store(true, std::memory_order_relaxed);
    eventfd_write(state.found.Get(), 1);
  }
  // All that is used of the source, before the owner goes on.
  state.useless.reset();
  state.back.reset();
  untaken.reset();
  state.search.reset();
  state.threadRuns = false;
  state.threadEnded.WakeAll();
  return nullptr;
}

}  // namespace platform
