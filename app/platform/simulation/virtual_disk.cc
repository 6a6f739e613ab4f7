#include "app/platform/simulation/virtual_disk.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "app/platform/file_pattern.h"

namespace platform::simulation {
namespace {

// No file grows beyond this: a position far out must fail like a full disk, not use up the memory.
constexpr std::size_t kLargestFile = std::size_t{1} << 30;

constexpr std::size_t kLongestName = 255;  // bytes of one level of a path

// As Windows has devices in each folder, whatever stands behind a dot.
bool IsDevice(const std::string& name) {
  std::string device = name.substr(0, name.find('.'));
  device.erase(device.find_last_not_of(' ') + 1);
  const bool isNumbered = device.size() == 4 && device[3] >= '1' && device[3] <= '9';
  if (isNumbered) device.pop_back();
  for (const char* known : {"COM", "LPT"})
    if (isNumbered && SameName(device, known)) return true;
  for (const char* known : {"CON", "PRN", "AUX", "NUL"})
    if (!isNumbered && SameName(device, known)) return true;
  return false;
}

// 2001-01-01 00:00 UTC, where the simulation's time starts, and a millisecond, in units of 100 ns.
constexpr std::uint64_t kStartOfTime = 126'227'808'000'000'000;
constexpr std::uint64_t kMillisecond = 10'000;

bool IsFolder(std::uint32_t attributes) { return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }

bool IsReadOnly(std::uint32_t attributes) { return (attributes & FILE_ATTRIBUTE_READONLY) != 0; }

// FILE_ATTRIBUTE_NORMAL stands for no other bit.
std::uint32_t Normalized(std::uint32_t attributes) {
  attributes &= ~FILE_ATTRIBUTE_NORMAL;
  return attributes == 0 ? FILE_ATTRIBUTE_NORMAL : attributes;
}

}  // namespace

struct VirtualDisk::Node {
  std::string name;
  std::uint32_t attributes = FILE_ATTRIBUTE_NORMAL;
  std::string bytes;
  std::optional<std::string> lastingBytes;      // while those above aren't
  std::vector<std::shared_ptr<Node>> children;  // in the order of their making
  std::uint64_t created = 0;
  std::uint64_t written = 0;
  std::vector<const OpenFile*> claims;  // those that don't share writing
};

class VirtualDisk::OpenFile final : public File {
 public:
  OpenFile(VirtualDisk& disk, std::shared_ptr<Node> node, std::string path, std::uint32_t access,
           bool claims)
      : disk(disk),
        openHandles(disk.openHandles),
        node(std::move(node)),
        path(std::move(path)),
        access(access),
        life(disk.life) {
    ++*openHandles;
    if (claims) this->node->claims.push_back(this);
  }
  ~OpenFile() override {
    --*openHandles;
    std::erase(node->claims, this);
  }

  // Whether this keeps out another one that doesn't share writing either.
  bool KeepsOut(bool isWriting) const {
    return life == disk.life && (isWriting || (access & GENERIC_WRITE));
  }

  bool ReadFile(void* buffer, std::uint32_t wanted, std::uint32_t* read) override {
    *read = 0;
    if (!disk.Enter("ReadFile", path, false)) return false;
    if (!Usable()) return disk.Fail(ERROR_INVALID_HANDLE);
    if (!(access & GENERIC_READ)) return disk.Fail(ERROR_ACCESS_DENIED);
    if (position >= node->bytes.size()) return true;
    const std::size_t taken = std::min<std::size_t>(wanted, node->bytes.size() - position);
    if (taken > 0) std::memcpy(buffer, node->bytes.data() + position, taken);
    position += taken;
    *read = static_cast<std::uint32_t>(taken);
    return true;
  }

  bool WriteFile(const void* data, std::uint32_t size, std::uint32_t* written) override {
    *written = 0;
    const Fate fate = disk.Note("WriteFile", path, true, size);
    const auto refuse = [&](std::uint32_t error) {
      return disk.Fail(fate.error ? fate.error : error);
    };
    if (!Usable()) return refuse(ERROR_INVALID_HANDLE);
    if (!(access & GENERIC_WRITE)) return refuse(ERROR_ACCESS_DENIED);
    if (position > kLargestFile || size > kLargestFile - position) return refuse(ERROR_DISK_FULL);
    const std::uint32_t n = fate.error ? std::min(size, fate.bytes) : size;
    if (n > 0) {
      disk.NoteBytes(node);
      // A gap behind the old end reads as zeros.
      if (node->bytes.size() < position + n) node->bytes.resize(position + n);
      std::memcpy(node->bytes.data() + position, data, n);
      position += n;
      node->written = disk.FileTime();
    }
    *written = n;
    return fate.error ? disk.Fail(fate.error) : true;
  }

  bool SetFilePointer(std::int64_t distance, std::uint32_t method,
                      std::int64_t* newPosition) override {
    if (!disk.Enter("SetFilePointer", path, false)) return false;
    if (!Usable() || method > FILE_END) return disk.Fail(ERROR_INVALID_HANDLE);
    const std::size_t from = method == FILE_BEGIN     ? 0
                             : method == FILE_CURRENT ? position
                                                      : node->bytes.size();
    std::int64_t target = 0;
    if (__builtin_add_overflow(static_cast<std::int64_t>(from), distance, &target) || target < 0) {
      return disk.Fail(ERROR_NEGATIVE_SEEK);
    }
    position = static_cast<std::size_t>(target);
    if (newPosition) *newPosition = target;
    return true;
  }

  bool CloseHandle() override {
    const bool works = disk.Enter("CloseHandle", path, (access & GENERIC_WRITE) != 0);
    const bool usable = Usable();
    if (works && usable && (access & GENERIC_WRITE)) disk.MakeLasting(node);
    closed = true;
    return works && (usable || disk.Fail(ERROR_INVALID_HANDLE));
  }

 private:
  bool Usable() const { return !closed && life == disk.life; }

  VirtualDisk& disk;
  const std::shared_ptr<std::uint32_t> openHandles;
  const std::shared_ptr<Node> node;
  const std::string path;
  const std::uint32_t access;
  const std::uint64_t life;
  std::size_t position = 0;
  bool closed = false;
};

// Goes through the names that were there at its start, and passes over those that went away.
class VirtualDisk::Search final : public FileSearch {
 public:
  Search(VirtualDisk& disk, std::string path, std::shared_ptr<Node> folder, Names names)
      : disk(disk),
        openHandles(disk.openHandles),
        path(std::move(path)),
        folder(std::move(folder)),
        names(std::move(names)),
        life(disk.life) {
    ++*openHandles;
  }
  ~Search() override { --*openHandles; }

  bool FindNextFileA(FindData* data) override {
    if (!disk.Enter("FindNextFileA", path, false)) return false;
    if (life != disk.life) return disk.Fail(ERROR_INVALID_HANDLE);
    return Step(data);
  }

  bool Step(FindData* data) {
    while (next < names.size()) {
      const std::string& name = names[next++];
      const bool isSelf = name == "." || name == "..";
      const std::shared_ptr<Node> node = isSelf ? folder : disk.Child(*folder, name);
      if (!node) continue;
      *data = disk.Data(*node, name);
      return true;
    }
    return disk.Fail(ERROR_NO_MORE_FILES);
  }

 private:
  VirtualDisk& disk;
  const std::shared_ptr<std::uint32_t> openHandles;
  const std::string path;
  const std::shared_ptr<Node> folder;
  const Names names;
  const std::uint64_t life;
  std::size_t next = 0;
};

VirtualDisk::VirtualDisk(std::function<std::uint64_t()> now)
    : now(std::move(now)), openHandles(std::make_shared<std::uint32_t>(0)) {
  Format('/');
}

VirtualDisk::~VirtualDisk() = default;

void VirtualDisk::Format(char newSeparator) {
  separator = newSeparator;
  nameChanges.clear();
  unflushed.clear();
  top = std::make_shared<Node>();
  top->attributes = FILE_ATTRIBUTE_DIRECTORY;
  currentFolder.clear();
  const bool hasDrives = separator == '\\';
  programPath = hasDrives ? "C:\\game\\kelvaro.exe" : "/game/kelvaro";
  const std::string home = hasDrives ? "C:\\home\\player" : "/home/player";
  drives = hasDrives ? 4 : 0;
  Add(*top, hasDrives ? "C:" : "", FILE_ATTRIBUTE_DIRECTORY);
  PutFile(programPath, "program");
  PutFolder(home);
  currentFolder = *Parts(home);
}

void VirtualDisk::PutFile(const std::string& path, std::string bytes, std::uint32_t attributes) {
  const std::shared_ptr<Node> node = Make(path, attributes);
  node->bytes = std::move(bytes);
  MakeLasting(node);
}

void VirtualDisk::PutFolder(const std::string& path, std::uint32_t attributes) {
  Make(path, attributes | FILE_ATTRIBUTE_DIRECTORY);
}

void VirtualDisk::Remove(const std::string& path) {
  std::optional<Names> parts = Parts(path);
  if (!parts || parts->size() < 2) return;
  const std::shared_ptr<Node> node = Find(*parts);
  parts->pop_back();
  const std::shared_ptr<Node> folder = Find(*parts);
  if (!node || !folder) return;
  std::erase(folder->children, node);
  MakeNameLasting(folder, node->name);
}

bool VirtualDisk::Exists(const std::string& path) const { return Look(path) != nullptr; }

std::optional<std::string> VirtualDisk::FileBytes(const std::string& path) const {
  const std::shared_ptr<Node> node = Look(path);
  if (!node || IsFolder(node->attributes)) return std::nullopt;
  return node->bytes;
}

std::uint32_t VirtualDisk::Attributes(const std::string& path) const {
  const std::shared_ptr<Node> node = Look(path);
  return node ? node->attributes : INVALID_FILE_ATTRIBUTES;
}

std::vector<std::string> VirtualDisk::List(const std::string& folder) const {
  std::vector<std::string> names;
  if (const std::shared_ptr<Node> node = Look(folder)) {
    for (const std::shared_ptr<Node>& child : node->children) names.push_back(child->name);
  }
  return names;
}

void VirtualDisk::FailOperation(std::uint64_t n, std::uint32_t error) {
  Plan(n, Fault{{error, 0}, false});
}

void VirtualDisk::FailInside(std::uint64_t n, std::uint32_t bytes, std::uint32_t error) {
  Plan(n, Fault{{error, bytes}, false});
}

void VirtualDisk::StopBefore(std::uint64_t n) { Plan(n, Fault{{ERROR_NOT_READY, 0}, true}); }

void VirtualDisk::StopInside(std::uint64_t n, std::uint32_t bytes) {
  Plan(n, Fault{{ERROR_NOT_READY, bytes}, true});
}

void VirtualDisk::StopAfter(std::uint64_t n) { StopBefore(n + 1); }

bool VirtualDisk::IsStopped() const {
  if (stopped) return true;
  const auto next = faults.find(operations + 1);
  return next != faults.end() && next->second.stops && next->second.fate.bytes == 0;
}

void VirtualDisk::Restart() {
  stopped = false;
  faults.clear();
  ++life;
}

void VirtualDisk::CutPower(const std::function<std::uint32_t(std::uint32_t)>& choose) {
  Restart();
  while (!nameChanges.empty()) {
    const NameChange first = nameChanges.front();
    std::vector<std::shared_ptr<Node>> states = {first.before};
    std::erase_if(nameChanges, [&](const NameChange& change) {
      if (change.folder != first.folder || change.name != first.name) return false;
      states.push_back(change.after);
      return true;
    });
    auto& children = first.folder->children;
    std::erase(children, states.back());
    const std::shared_ptr<Node> left = states[choose(static_cast<std::uint32_t>(states.size()))];
    if (left) children.push_back(left);
  }
  for (const std::shared_ptr<Node>& node : unflushed) {
    if (!node->lastingBytes) continue;
    const std::string& was = *node->lastingBytes;
    const std::string& is = node->bytes;
    const std::string half = is.substr(0, is.size() / 2);
    const std::string zeros(is.size() - half.size(), '\0');
    std::vector<std::string> states = {
        was, is, "", half, half + zeros, std::string(half.size(), '\0') + is.substr(half.size())};
    if (was.size() > half.size()) states.push_back(half + was.substr(half.size()));
    std::sort(states.begin(), states.end());
    states.erase(std::unique(states.begin(), states.end()), states.end());
    node->bytes = states[choose(static_cast<std::uint32_t>(states.size()))];
    node->lastingBytes.reset();
  }
  unflushed.clear();
}

void VirtualDisk::NoteBytes(const std::shared_ptr<Node>& node) {
  if (node->lastingBytes) return;
  node->lastingBytes = node->bytes;
  unflushed.push_back(node);
}

void VirtualDisk::NoteName(const std::shared_ptr<Node>& folder, const std::string& name,
                           std::shared_ptr<Node> before, std::shared_ptr<Node> after) {
  nameChanges.push_back({folder, name, std::move(before), std::move(after)});
}

void VirtualDisk::MakeLasting(const std::shared_ptr<Node>& node) {
  node->lastingBytes.reset();
  std::erase(unflushed, node);
  const auto named = std::find_if(nameChanges.begin(), nameChanges.end(),
                                  [&](const NameChange& change) { return change.after == node; });
  if (named != nameChanges.end()) MakeNameLasting(named->folder, named->name);
}

void VirtualDisk::MakeNameLasting(const std::shared_ptr<Node>& folder, const std::string& name) {
  std::erase_if(nameChanges, [&](const NameChange& change) {
    return change.folder == folder && change.name == name;
  });
  MakeLasting(folder);
}

std::uint32_t VirtualDisk::Count(std::string_view operation) const {
  return static_cast<std::uint32_t>(
      std::count_if(log.begin(), log.end(),
                    [operation](const DiskOperation& noted) { return noted.name == operation; }));
}

void VirtualDisk::Plan(std::uint64_t n, const Fault& fault) { faults[operations + n] = fault; }

VirtualDisk::Fate VirtualDisk::Note(const char* name, const std::string& path, bool changes,
                                    std::uint32_t size) {
  ++operations;
  log.push_back(DiskOperation{name, path, size, changes});
  if (stopped) return Fate{ERROR_NOT_READY, 0};
  const auto fault = faults.find(operations);
  if (fault == faults.end()) return Fate{};
  stopped = fault->second.stops;
  return fault->second.fate;
}

bool VirtualDisk::Enter(const char* name, const std::string& path, bool changes) {
  const Fate fate = Note(name, path, changes);
  return fate.error == 0 || Fail(fate.error);
}

bool VirtualDisk::Fail(std::uint32_t error) {
  lastError = error;
  return false;
}

bool VirtualDisk::IsClaimed(const Node& node, bool isWriting) {
  return std::any_of(node.claims.begin(), node.claims.end(),
                     [isWriting](const OpenFile* file) { return file->KeepsOut(isWriting); });
}

std::unique_ptr<File> VirtualDisk::CreateFileA(const std::string& path, std::uint32_t access,
                                               std::uint32_t share, std::uint32_t disposition) {
  const bool makes = disposition == CREATE_ALWAYS;
  const bool changes = makes || (access & GENERIC_WRITE);
  const auto refuse = [this](std::uint32_t error) {
    Fail(error);
    return nullptr;
  };
  if (!Enter("CreateFileA", path, changes)) return nullptr;
  std::string name;
  const std::shared_ptr<Node> folder = Parent(path, &name);
  if (!folder) return nullptr;
  std::shared_ptr<Node> node = Child(*folder, name);
  const bool claims = !(share & FILE_SHARE_WRITE);
  if (!node) {
    if (!makes) return refuse(ERROR_FILE_NOT_FOUND);
    if (IsReadOnly(folder->attributes)) return refuse(ERROR_ACCESS_DENIED);
    node = Add(*folder, name, FILE_ATTRIBUTE_NORMAL);
    NoteName(folder, name, nullptr, node);
  } else {
    if (IsFolder(node->attributes) || (changes && IsReadOnly(node->attributes))) {
      return refuse(ERROR_ACCESS_DENIED);
    }
    if (claims && IsClaimed(*node, changes)) return refuse(ERROR_SHARING_VIOLATION);
    if (makes) {
      NoteBytes(node);
      node->bytes.clear();
      node->written = FileTime();
    }
  }
  return std::make_unique<OpenFile>(*this, node, path, access, claims);
}

bool VirtualDisk::CopyFileA(const std::string& from, const std::string& to, bool failIfExists) {
  if (!Enter("CopyFileA", to, true)) return false;
  const std::shared_ptr<Node> source = Find(from);
  if (!source) return false;
  std::string name;
  const std::shared_ptr<Node> folder = Parent(to, &name);
  if (!folder) return false;
  std::shared_ptr<Node> target = Child(*folder, name);
  if (IsFolder(source->attributes) || IsReadOnly(folder->attributes)) {
    return Fail(ERROR_ACCESS_DENIED);
  }
  if (target && failIfExists) return Fail(ERROR_FILE_EXISTS);
  if (target && (IsFolder(target->attributes) || IsReadOnly(target->attributes))) {
    return Fail(ERROR_ACCESS_DENIED);
  }
  const std::string bytes = source->bytes;
  if (!target) {
    target = Add(*folder, name, source->attributes);
  } else if (copyStep == 0) {
    // The old file lives on for those who have it open.
    auto& place = *std::find(folder->children.begin(), folder->children.end(), target);
    target = std::make_shared<Node>(*target);
    target->claims.clear();
    place = target;
  }
  target->written = source->written;
  if (copyStep == 0) {
    target->bytes = bytes;
    target->lastingBytes.reset();
    MakeNameLasting(folder, name);
    return true;
  }
  target->bytes.clear();
  for (std::size_t done = 0; done < bytes.size();) {
    const std::uint32_t size =
        static_cast<std::uint32_t>(std::min<std::size_t>(copyStep, bytes.size() - done));
    const Fate fate = Note("CopyFileA", to, true, size);
    const std::uint32_t n = fate.error ? std::min(size, fate.bytes) : size;
    target->bytes.append(bytes, done, n);
    if (fate.error) return Fail(fate.error);
    done += n;
  }
  return true;
}

bool VirtualDisk::DeleteFileA(const std::string& path) {
  if (!Enter("DeleteFileA", path, true)) return false;
  const std::shared_ptr<Node> node = Find(path);
  if (!node) return false;
  std::string name;
  if (IsFolder(node->attributes) || IsReadOnly(node->attributes) ||
      IsReadOnly(Parent(path, &name)->attributes)) {
    return Fail(ERROR_ACCESS_DENIED);
  }
  if (IsClaimed(*node, true)) return Fail(ERROR_SHARING_VIOLATION);
  Remove(path);
  return true;
}

std::uint32_t VirtualDisk::GetFileAttributesA(const std::string& path) {
  if (!Enter("GetFileAttributesA", path, false)) return INVALID_FILE_ATTRIBUTES;
  const std::shared_ptr<Node> node = Find(path);
  return node ? node->attributes : INVALID_FILE_ATTRIBUTES;
}

bool VirtualDisk::SetFileAttributesA(const std::string& path, std::uint32_t attributes) {
  if (!Enter("SetFileAttributesA", path, true)) return false;
  const std::shared_ptr<Node> node = Find(path);
  if (!node) return false;
  node->attributes = Normalized((node->attributes & ~FILE_ATTRIBUTE_READONLY) |
                                (attributes & FILE_ATTRIBUTE_READONLY));
  return true;
}

bool VirtualDisk::CreateDirectoryA(const std::string& path) {
  if (!Enter("CreateDirectoryA", path, true)) return false;
  std::string name;
  const std::shared_ptr<Node> folder = Parent(path, &name);
  if (!folder) return false;
  if (Child(*folder, name)) return Fail(ERROR_ALREADY_EXISTS);
  if (IsReadOnly(folder->attributes)) return Fail(ERROR_ACCESS_DENIED);
  NoteName(folder, name, nullptr, Add(*folder, name, FILE_ATTRIBUTE_DIRECTORY));
  return true;
}

std::unique_ptr<FileSearch> VirtualDisk::FindFirstFileA(const std::string& pattern,
                                                        FindData* data) {
  if (!Enter("FindFirstFileA", pattern, false)) return nullptr;
  const std::size_t last = pattern.rfind(separator);
  const std::size_t start = last == std::string::npos ? 0 : last + 1;
  const std::string wanted = pattern.substr(start);
  const std::string place = pattern.substr(0, start);
  const std::shared_ptr<Node> folder = place.empty() ? Find(currentFolder) : Look(place);
  if (!folder || !IsFolder(folder->attributes)) {
    Fail(ERROR_PATH_NOT_FOUND);
    return nullptr;
  }
  Names names;
  const auto exact = [&wanted](const std::shared_ptr<Node>& node) { return node->name == wanted; };
  if (!HasWildcards(wanted) &&
      std::any_of(folder->children.begin(), folder->children.end(), exact)) {
    names.push_back(wanted);
  } else {
    for (const char* self : {".", ".."}) {
      if (FitsPattern(self, wanted)) names.push_back(self);
    }
    for (const std::shared_ptr<Node>& node : folder->children) {
      if (FitsPattern(node->name, wanted)) names.push_back(node->name);
    }
  }
  if (names.empty() || wanted.empty()) {
    Fail(ERROR_FILE_NOT_FOUND);
    return nullptr;
  }
  auto search = std::make_unique<Search>(*this, pattern, folder, std::move(names));
  search->Step(data);
  return search;
}

std::string VirtualDisk::GetCurrentDirectoryA() {
  return Enter("GetCurrentDirectoryA", "", false) ? Joined(currentFolder) : std::string();
}

bool VirtualDisk::SetCurrentDirectoryA(const std::string& path) {
  if (!Enter("SetCurrentDirectoryA", path, false)) return false;
  const std::shared_ptr<Node> node = Find(path);
  if (!node) return false;
  if (!IsFolder(node->attributes)) return Fail(ERROR_PATH_NOT_FOUND);
  currentFolder = *Parts(path);
  return true;
}

std::optional<VirtualDisk::Names> VirtualDisk::Parts(const std::string& path) const {
  if (path.empty() || path.find('\0') != std::string::npos) return std::nullopt;
  const auto isSeparator = [this](char c) { return c == separator; };
  Names parts;
  std::size_t at = 0;
  if (separator == '/') {
    if (path[0] == '/') {
      parts.emplace_back();
    } else {
      parts = currentFolder;
    }
  } else if (path.size() >= 2 && path[1] == ':') {
    parts.push_back(path.substr(0, 2));
    at = 2;
  } else if (path.size() > 2 && isSeparator(path[0]) && isSeparator(path[1])) {
    const std::size_t server = path.find(separator, 2);
    if (server == std::string::npos || server + 1 == path.size()) return std::nullopt;
    at = std::min(path.find(separator, server + 1), path.size());
    parts.push_back(path.substr(0, at));
  } else if (isSeparator(path[0])) {
    parts.assign(1, currentFolder.front());
  } else {
    parts = currentFolder;
  }
  while (at < path.size()) {
    const std::size_t end = std::min(path.find(separator, at), path.size());
    const std::string name = path.substr(at, end - at);
    at = end + 1;
    if (name.empty() || name == ".") continue;
    if (name.size() > kLongestName) return std::nullopt;
    if (separator == '\\' && IsDevice(name)) return std::nullopt;
    if (name == "..") {
      if (parts.size() > 1) parts.pop_back();
    } else {
      parts.push_back(name);
    }
  }
  return parts;
}

std::string VirtualDisk::Joined(const Names& parts) const {
  std::string path = parts.front();
  if (parts.size() == 1) return path + separator;
  for (std::size_t part = 1; part < parts.size(); ++part) {
    path += separator;
    path += parts[part];
  }
  return path;
}

std::shared_ptr<VirtualDisk::Node> VirtualDisk::Child(const Node& folder,
                                                      const std::string& name) const {
  for (const std::shared_ptr<Node>& node : folder.children) {
    if (separator == '/' ? node->name == name : SameName(node->name, name)) return node;
  }
  return nullptr;
}

std::shared_ptr<VirtualDisk::Node> VirtualDisk::Find(const Names& parts) const {
  std::shared_ptr<Node> node = top;
  for (const std::string& name : parts) {
    node = Child(*node, name);
    if (!node) break;
  }
  return node;
}

std::shared_ptr<VirtualDisk::Node> VirtualDisk::Find(const std::string& path) {
  std::string name;
  const std::optional<Names> parts = Parts(path);
  if (parts && parts->size() == 1) {
    std::shared_ptr<Node> root = Find(*parts);
    if (!root) Fail(ERROR_PATH_NOT_FOUND);
    return root;
  }
  const std::shared_ptr<Node> folder = Parent(path, &name);
  if (!folder) return nullptr;
  std::shared_ptr<Node> node = Child(*folder, name);
  if (!node) Fail(ERROR_FILE_NOT_FOUND);
  return node;
}

std::shared_ptr<VirtualDisk::Node> VirtualDisk::Look(const std::string& path) const {
  const std::optional<Names> parts = Parts(path);
  return parts ? Find(*parts) : nullptr;
}

std::shared_ptr<VirtualDisk::Node> VirtualDisk::Parent(const std::string& path, std::string* name) {
  std::optional<Names> parts = Parts(path);
  if (!parts) {
    Fail(ERROR_INVALID_NAME);
    return nullptr;
  }
  std::shared_ptr<Node> folder;
  if (parts->size() > 1) {
    *name = parts->back();
    parts->pop_back();
    folder = Find(*parts);
  }
  if (!folder || !IsFolder(folder->attributes)) {
    // A root lies in no folder, and is there already.
    Fail(parts->size() == 1 && Find(*parts) ? ERROR_ACCESS_DENIED : ERROR_PATH_NOT_FOUND);
    return nullptr;
  }
  return folder;
}

std::shared_ptr<VirtualDisk::Node> VirtualDisk::Make(const std::string& path,
                                                     std::uint32_t attributes) {
  const std::optional<Names> parts = Parts(path);
  if (!parts) {
    std::fprintf(stderr, "simulation: \"%s\" is no path\n", path.c_str());
    std::abort();
  }
  std::shared_ptr<Node> node = top;
  for (std::size_t part = 0; part < parts->size(); ++part) {
    const bool isLast = part + 1 == parts->size();
    std::shared_ptr<Node> child = Child(*node, (*parts)[part]);
    if (!child) {
      child = Add(*node, (*parts)[part], isLast ? attributes : FILE_ATTRIBUTE_DIRECTORY);
    } else if (isLast) {
      child->attributes = Normalized(attributes);
    }
    node = child;
  }
  return node;
}

std::shared_ptr<VirtualDisk::Node> VirtualDisk::Add(Node& folder, const std::string& name,
                                                    std::uint32_t attributes) {
  auto node = std::make_shared<Node>();
  node->name = name;
  node->attributes = Normalized(attributes);
  node->created = node->written = FileTime();
  folder.children.push_back(node);
  return node;
}

FindData VirtualDisk::Data(const Node& node, const std::string& name) const {
  FindData data;
  data.name = name == "." || name == ".." ? name : node.name;
  data.attributes = node.attributes;
  data.size = node.bytes.size();
  data.created = node.created;
  data.accessed = node.written;
  data.written = node.written;
  return data;
}

std::uint64_t VirtualDisk::FileTime() const {
  return kStartOfTime + (now ? now() * kMillisecond : 0);
}

}  // namespace platform::simulation
