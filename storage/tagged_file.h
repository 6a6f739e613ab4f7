// A small nested binary container: a magic, a version, and one root list of chunks. A chunk is a
// list with an id, which holds further chunks, or a field, a run of bytes. A reader goes to any
// list by id or index; a writer only forward. What is written goes to a temporary beside the
// target, which is copied over it at the end, and which a later read falls back on when the target
// is unreadable. Everything is reported by plain results, without a text. One thread at a time.
// It has many methods because it is the reader and the writer: both walk the same lists.
//
//   TaggedFile file;
//   if (file.OpenForRead(path) && file.Descend(3)) file.ReadField(0, &name);
//   file.Close();
#pragma once

#include <cstdint>
#include <memory>

#include "app/platform/files.h"
#include "foundation/binary_file.h"
#include "foundation/byte_string.h"
#include "foundation/linked_list.h"
#include "storage/gathered_file.h"

namespace kelvaro {

// Stored in every file: never renumber. A reader takes any other type for a field.
namespace chunk_type {
constexpr std::uint16_t kList = 1;
constexpr std::uint16_t kBytes = 2;
constexpr std::uint16_t kNumber = 5;
}  // namespace chunk_type

// One child of a list, as a reader sees it.
struct ChunkEntry {
  std::uint16_t type{};
  std::uint32_t size{};    // of a field's data, or of a list's children
  std::uint64_t offset{};  // in the file, behind the 6 bytes of type and size
};

// Finds the entries of one list by index. It starts from the last place asked for where that is the
// nearest, so that a loop over all indexes follows as many links as there are entries.
class EntryCursor {
 public:
  using Entries = LinkedList<ChunkEntry>;

  EntryCursor() = default;
  // A copied list has nodes of its own.
  EntryCursor(const EntryCursor&) {}
  EntryCursor& operator=(const EntryCursor&) {
    Forget();
    return *this;
  }

  // Clamped to the first and last like LinkedList::At; null only when the list is empty.
  const ChunkEntry* At(const Entries& entries, std::int64_t index);
  // To be called when the list has changed.
  void Forget();
  std::uint64_t LinksFollowed() const { return linksFollowed; }

 private:
  Entries::Node* last = nullptr;
  std::int64_t lastIndex{};  // of `last`
  std::uint64_t linksFollowed = 0;
};

// One list on the stack of open lists.
struct OpenList {
  std::uint16_t type = chunk_type::kList;
  std::uint32_t size = 0;    // writing: bytes of children so far
  std::uint64_t offset = 0;  // of the first child; 0 until a new list's header is written
  std::uint32_t id = 0;
  std::uint32_t count = 0;         // of the direct children; writing: so far
  LinkedList<ChunkEntry> entries;  // reading: the children in file order
  EntryCursor cursor;              // reading: into entries
  std::uint64_t end = 0;           // reading: where it ends, going by the sizes around it
};

class TaggedFile {
 public:
  // What a reader follows in one file outside of the lists that should hold it, in bytes; a chunk
  // counts at least kStrayChunk. Wrong sizes are forgiven up to here. Beyond it they are an attempt
  // to have the same bytes read again and again, and count as a file that ends too early.
  static constexpr std::uint32_t kStrayLimit = 1u << 20;
  static constexpr std::uint32_t kStrayChunk = 256;

  TaggedFile();
  TaggedFile(const TaggedFile&) = delete;
  TaggedFile& operator=(const TaggedFile&) = delete;
  // Closes: a file that is being written is finished.
  virtual ~TaggedFile();

  // Opens a file and makes its root the current list. A target that is missing, or unreadable at
  // its start, is replaced by its temporary if there is one that nobody is writing; one that is
  // merely cut short only by a temporary that is whole, and is read as far as it goes otherwise.
  // True, with the open file kept, when one is open already.
  bool OpenForRead(const ByteString& target);

  // Starts the temporary of `target`, after making the missing folders, and makes the root the
  // current list. A file that is open is closed first. False with the target untouched; a temporary
  // may be left. Until Close, any other writer of the same target is refused.
  bool OpenForWrite(const ByteString& target);

  // Leaves all lists. What was written is put on disk and copied over the target, even when a step
  // before has failed; only when it couldn't be put down whole does the target keep its content.
  // False when anything failed; true when nothing was open. Closed in any case.
  bool Close();

  // Reading: enters the first child list with this id. False, with the current list kept, when
  // there is none. Writing: begins a new child list; when that fails the file is closed.
  bool Descend(std::uint32_t id);
  // Reading only: enters the child at this index, clamped to the first and last, if it is a list.
  bool DescendAt(std::int32_t index);
  // Leaves the current list; leaving the root closes the file. True when nothing is open.
  bool Ascend();

  // Replaces *out by the data of a child, of any type; lists count, and their data starts at their
  // id. False, with *out untouched: not reading, or no such index. False, with what there is in
  // *out: the file ends before.
  virtual bool ReadField(std::uint32_t index, ByteString* out);
  // The first 4 bytes, or those that there are, of a child of type kNumber. False, with *out
  // untouched, for another type, an empty one and in the cases of ReadField.
  bool ReadNumber(std::int32_t index, std::uint32_t* out);

  // Append a field to the current list. False when not all of it was taken.
  virtual bool WriteField(std::uint16_t type, const ByteString& data);
  bool WriteBytes(const ByteString& data);

  // Of the current list; 0 when there is none.
  std::uint32_t ChildCount() const { return current ? current->count : 0; }
  std::uint32_t ListId() const { return current ? current->id : 0; }
  // Reading: whether the child at this index is a list.
  bool IsList(std::uint32_t index);

 protected:
  bool isOpen = false;
  bool isWriting = false;
  bool useTemporary = true;
  std::uint16_t version = 0;  // of the file read; nothing acts on it
  std::uint64_t firstChunkOffset = 0;
  ByteString path;  // the target
  BinaryFile reader;
  GatheredFile writeHandle;
  LinkedList<OpenList> openLists;  // the root first
  OpenList* current = nullptr;     // the innermost
  ByteString magic = "XFF";        // a derived class sets its own before the first use
  // Of the file read last: something that it claims to hold couldn't be read.
  bool isDamaged = false;

 private:
  // Opens a file in the reader and reads the magic, the version and the root.
  bool ReadStart(const ByteString& file);
  bool ReadRoot();
  // Undoes it. False for convenience.
  bool ForgetStart();
  // Notes it; false for convenience.
  bool Damaged();
  // Whether the file ends before its root does.
  bool IsCutShort();
  bool ReadHead(const ChunkEntry& entry, OpenList* list);
  // The rest of a list's header, behind its size.
  bool ReadIdAndCount(std::uint64_t offset, OpenList* list);
  // Makes a list current, its entries read.
  bool Push(const OpenList& list);
  bool FillEntries(OpenList* list);
  // Clamped to the first and last of the current list. Null where nothing is being read: a list
  // that is written has no entries.
  const ChunkEntry* EntryAt(std::int64_t index);
  // The same, but null beyond the last.
  const ChunkEntry* ChildAt(std::uint32_t index);
  // Pays for a stray chunk or bytes. False when the limit is used up.
  bool FollowStray(std::uint64_t bytes);

  bool WriteHeader(OpenList* list);
  template <typename T>
  bool WriteNumber(T value);
  bool FinishWriting();

  ByteString TemporaryPath() const;
  // Keeps writers away from it; null where there is none, or a writer is at it.
  std::unique_ptr<platform::File> ClaimTemporary() const;
  // Reads its start, in the target's place.
  bool IsTemporaryWhole();
  // Copies it over the target, read-only or not.
  bool CopyOverTarget();
  void DeleteTemporary();

  std::uint32_t strayLeft = kStrayLimit;
};

}  // namespace kelvaro
