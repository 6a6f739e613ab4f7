#include "storage/tagged_file.h"

#include <algorithm>
#include <cstdlib>

#include "foundation/paths.h"

namespace kelvaro {

namespace {

constexpr std::uint32_t kChunkHead = 6;   // type and size
constexpr std::uint32_t kIdAndCount = 8;  // the rest of a list's header
constexpr std::uint32_t kListHeader = kChunkHead + kIdAndCount;

}  // namespace

const ChunkEntry* EntryCursor::At(const Entries& entries, std::int64_t index) {
  if (!entries.head) return nullptr;
  const std::int64_t end = entries.count - 1;
  index = std::clamp<std::int64_t>(index, 0, end);

  Entries::Node* node = entries.head;
  std::int64_t at = 0;
  if (end - index < index) {
    node = entries.tail;
    at = end;
  }
  if (last && std::abs(index - lastIndex) < std::abs(index - at)) {
    node = last;
    at = lastIndex;
  }
  for (; at < index; ++at, ++linksFollowed) node = node->next;
  for (; at > index; --at, ++linksFollowed) node = node->prev;
  last = node;
  lastIndex = index;
  return node->value;
}

void EntryCursor::Forget() { last = nullptr; }

TaggedFile::TaggedFile() = default;

TaggedFile::~TaggedFile() { Close(); }

// Reading

bool TaggedFile::OpenForRead(const ByteString& target) {
  if (isOpen) return true;
  path = target;
  const bool started = ReadStart(path);
  isDamaged = started && IsCutShort();
  if (!started || isDamaged) {
    auto claim = ClaimTemporary();
    // A copy over the target that was cut off may have got as far as the heads of the root's lists.
    // But what is left of the target is worth more than what is left of a temporary.
    if (claim && (!started || IsTemporaryWhole())) {
      const bool copied = CopyOverTarget();
      claim.reset();
      if (copied) DeleteTemporary();
      // Not the target in its place: the next write would begin the temporary anew.
      if (!copied) return ForgetStart();
    }
    if (!ReadStart(path)) return false;
    isDamaged = IsCutShort();
  }
  isOpen = true;
  isWriting = false;
  return true;
}

bool TaggedFile::IsCutShort() {
  const OpenList& root = *openLists.head->value;
  ByteString last;
  return !reader.ReadBytes(&last, root.end - 1, 1);
}

bool TaggedFile::IsTemporaryWhole() {
  // One that was just begun has a root without children.
  return ReadStart(TemporaryPath()) && ChildCount() > 0 && !IsCutShort();
}

bool TaggedFile::ReadStart(const ByteString& file) {
  ForgetStart();
  reader.Assign(file);
  return (reader.Open() && ReadRoot()) || ForgetStart();
}

bool TaggedFile::ForgetStart() {
  reader.Close();
  openLists.Clear();
  current = nullptr;
  return false;
}

bool TaggedFile::ReadRoot() {
  ByteString start;
  if (!reader.ReadBytes(&start, 0, magic.Length()) || !start.Equals(magic)) return false;
  if (!reader.ReadU16(&version, magic.Length())) return false;
  firstChunkOffset = magic.Length() + sizeof version;

  OpenList root;
  if (!reader.ReadU16(&root.type, firstChunkOffset) || root.type != chunk_type::kList) return false;
  if (!reader.ReadU32(&root.size, firstChunkOffset + 2)) return false;
  if (!ReadIdAndCount(firstChunkOffset + kChunkHead, &root)) return false;
  root.end = root.offset + root.size;

  strayLeft = kStrayLimit;
  return Push(root);
}

bool TaggedFile::ReadIdAndCount(std::uint64_t offset, OpenList* list) {
  if (!reader.ReadU32(&list->id, offset) || !reader.ReadU32(&list->count, offset + 4)) {
    reader.Close();
    return false;
  }
  list->offset = offset + kIdAndCount;
  return true;
}

bool TaggedFile::Push(const OpenList& list) {
  if (!openLists.AddTail(list)) return false;
  if (!FillEntries(openLists.tail->value)) {
    openLists.RemoveNode(openLists.tail);
    return false;
  }
  current = openLists.tail->value;
  return true;
}

bool TaggedFile::FillEntries(OpenList* list) {
  // Every entry costs at least its head, so a count that the file can't hold ends at its end.
  std::uint64_t position = list->offset;
  for (std::uint32_t i = 0; i < list->count; ++i) {
    if (position >= list->end && !FollowStray(kStrayChunk)) return false;
    ChunkEntry entry;
    if (!reader.ReadU16(&entry.type, position)) return false;
    if (!reader.ReadU32(&entry.size, position + 2)) {
      reader.Close();
      return false;
    }
    entry.offset = position + kChunkHead;
    if (!list->entries.AddTail(entry)) return false;
    position = entry.offset + entry.size;
    if (entry.type == chunk_type::kList) position += kIdAndCount;
  }
  return true;
}

bool TaggedFile::FollowStray(std::uint64_t bytes) {
  if (strayLeft == 0) return false;
  strayLeft -= static_cast<std::uint32_t>(std::min<std::uint64_t>(bytes, strayLeft));
  return true;
}

const ChunkEntry* TaggedFile::EntryAt(std::int64_t index) {
  return current ? current->cursor.At(current->entries, index) : nullptr;
}

const ChunkEntry* TaggedFile::ChildAt(std::uint32_t index) {
  return index < ChildCount() ? EntryAt(index) : nullptr;
}

bool TaggedFile::IsList(std::uint32_t index) {
  const ChunkEntry* const entry = ChildAt(index);
  return entry && entry->type == chunk_type::kList;
}

bool TaggedFile::ReadHead(const ChunkEntry& entry, OpenList* list) {
  list->size = entry.size;
  if (!ReadIdAndCount(entry.offset, list)) return false;
  list->end = std::min(current->end, list->offset + list->size);
  return true;
}

bool TaggedFile::DescendAt(std::int32_t index) {
  const ChunkEntry* const entry = EntryAt(index);
  if (!entry || entry->type != chunk_type::kList) return false;
  OpenList list;
  return (ReadHead(*entry, &list) && Push(list)) || Damaged();
}

bool TaggedFile::Damaged() {
  isDamaged = true;
  return false;
}

bool TaggedFile::ReadField(std::uint32_t index, ByteString* out) {
  const ChunkEntry* const entry = ChildAt(index);
  if (!entry) return false;
  const std::uint64_t end = entry->offset + entry->size;
  const std::uint64_t inside = std::max(current->end, entry->offset);
  if (end > inside && strayLeft == 0) return Damaged();
  const bool whole = reader.ReadBytes(out, entry->offset, entry->size);
  // Only bytes that were there count, so that one size beyond the end of the file doesn't use up
  // the limit.
  const std::uint64_t readTo = entry->offset + out->Length();
  if (readTo > inside) FollowStray(std::max<std::uint64_t>(readTo - inside, kStrayChunk));
  return whole || Damaged();
}

bool TaggedFile::ReadNumber(std::int32_t index, std::uint32_t* out) {
  const ChunkEntry* const entry = EntryAt(index);
  if (!entry || entry->type != chunk_type::kNumber) return false;
  ByteString data;
  if (!ReadField(static_cast<std::uint32_t>(index), &data) || data.IsEmpty()) return false;
  data.ReadU32(out);
  return true;
}

// Both ways

bool TaggedFile::Descend(std::uint32_t id) {
  if (!current) return false;

  if (!isWriting) {
    for (const ChunkEntry& entry : current->entries) {
      if (entry.type != chunk_type::kList) continue;
      OpenList list;
      if (!ReadHead(entry, &list)) return Damaged();
      if (list.id == id) return Push(list) || Damaged();
    }
    return false;
  }

  OpenList list;
  list.id = id;
  if (!WriteHeader(&list) || !openLists.AddTail(list)) {
    Close();
    return false;
  }
  ++current->count;
  current = openLists.tail->value;
  return true;
}

bool TaggedFile::Ascend() {
  if (!isOpen) return true;
  if (!openLists.tail || !current) return false;

  OpenList& list = *openLists.tail->value;
  const std::uint32_t growth = kListHeader + list.size;
  bool result = true;
  if (isWriting) {
    writeHandle.Seek(static_cast<std::uint32_t>(list.offset - kListHeader));
    result = WriteHeader(&list);
    writeHandle.SeekToEnd();
  }
  openLists.RemoveNode(openLists.tail);
  if (!openLists.tail) return Close();
  current = openLists.tail->value;
  if (isWriting) current->size += growth;
  return result;
}

bool TaggedFile::Close() {
  if (!isOpen) return true;
  bool result = true;
  while (openLists.tail) {
    // Leaving the root comes back here and does the rest. So a failure noted in this loop doesn't
    // keep the copy from being made.
    if (!Ascend()) result = false;
  }
  if (isWriting) {
    if (writeHandle.IsOpen() && !FinishWriting()) result = false;
  } else if (!reader.Close()) {
    result = false;
  }
  current = nullptr;
  isOpen = false;
  return result;
}

// Writing

template <typename T>
bool TaggedFile::WriteNumber(T value) {
  std::uint8_t bytes[sizeof value];
  for (std::uint8_t& byte : bytes) {
    byte = static_cast<std::uint8_t>(value >> (sizeof value - 1) * 8);
    value = static_cast<T>(value << 8);
  }
  return writeHandle.Write(bytes, sizeof bytes);
}

bool TaggedFile::OpenForWrite(const ByteString& target) {
  Close();
  path = target;
  if (path.IsEmpty()) return false;
  if (!CreateFolders(FolderOf(path, true))) return false;
  if (!writeHandle.Create(useTemporary ? TemporaryPath() : path)) return false;

  OpenList root;
  // At once, to find out early about a disk that takes nothing.
  if (!writeHandle.Write(magic.Text(), magic.Length()) || !WriteNumber(std::uint16_t{1}) ||
      !WriteHeader(&root) || !writeHandle.PutDown()) {
    writeHandle.Release();
    return false;
  }
  openLists.Clear();
  if (!openLists.AddTail(root)) {
    writeHandle.Release();
    return false;
  }
  current = openLists.tail->value;
  isOpen = true;
  isWriting = true;
  return true;
}

bool TaggedFile::WriteHeader(OpenList* list) {
  if (!WriteNumber(list->type) || !WriteNumber(list->size) || !WriteNumber(list->id) ||
      !WriteNumber(list->count)) {
    return false;
  }
  if (list->offset == 0) list->offset = writeHandle.Position();
  return true;
}

bool TaggedFile::WriteField(std::uint16_t type, const ByteString& data) {
  if (!current || !isWriting) return false;
  if (!WriteNumber(type)) return false;
  current->size += sizeof type;
  if (!WriteNumber(data.Length())) return false;
  current->size += sizeof data.Length();
  if (!writeHandle.Write(data.Text(), data.Length())) return false;
  current->size += data.Length();
  ++current->count;
  return true;
}

bool TaggedFile::WriteBytes(const ByteString& data) { return WriteField(chunk_type::kBytes, data); }

bool TaggedFile::FinishWriting() {
  // What the system didn't take counts as a file that couldn't be closed: copied over the target,
  // a temporary cut short by a full disk would be all that is left of the profile.
  const bool good = writeHandle.Close() && (!useTemporary || CopyOverTarget());
  // Not before: another writer would begin the temporary anew while it is copied.
  writeHandle.Release();
  if (good && useTemporary) DeleteTemporary();
  return good;
}

// The temporary

ByteString TaggedFile::TemporaryPath() const { return path.Concat(".tmp"); }

std::unique_ptr<platform::File> TaggedFile::ClaimTemporary() const {
  return platform::files().CreateFileA(Bytes(TemporaryPath()), platform::GENERIC_READ,
                                       platform::FILE_SHARE_READ, platform::OPEN_EXISTING);
}

bool TaggedFile::CopyOverTarget() {
  const std::string target = Bytes(path);
  const std::uint32_t attributes = platform::files().GetFileAttributesA(target);
  if (attributes != platform::INVALID_FILE_ATTRIBUTES) {
    platform::files().SetFileAttributesA(target, attributes & ~platform::FILE_ATTRIBUTE_READONLY);
  }
  return platform::files().CopyFileA(Bytes(TemporaryPath()), target, false);
}

void TaggedFile::DeleteTemporary() {
  // One that stays does no harm: it is whole, and the next write begins it anew. That may be under
  // way already, and then it isn't deleted.
  platform::files().DeleteFileA(Bytes(TemporaryPath()));
}

}  // namespace kelvaro
