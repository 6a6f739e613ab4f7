// A profile that notes, while it is loaded from a stored file, what a load passes over in silence,
// and what it fails at.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "console/profile_check.h"
#include "storage/profile_file.h"

namespace kelvaro::console {

class StoredProfileCheck : public ProfileFile {
 public:
  // For a file of `fileSize` bytes. Findings are appended, up to the first damage; borrowed.
  StoredProfileCheck(std::uint64_t fileSize, std::vector<Finding>* findings)
      : fileSize(fileSize), findings(findings) {}

 private:
  bool Enter(std::uint32_t id) override;
  bool EnterAt(std::uint32_t index) override;
  bool Take(std::uint32_t index, std::uint32_t size, bool needed, ByteString* out) override;
  void FieldsTaken(std::uint32_t count) override;
  bool Leave() override;

  void Note(Finding::Kind kind, const std::string& where, const std::string& what);
  void Lacks(const std::string& what) { Note(Finding::Kind::Lacks, Place(), what); }
  void PassedOver(const std::string& what) { Note(Finding::Kind::PassedOver, Place(), what); }
  void Damage(const std::string& where, const std::string& what);
  // Of the current list, and of what stands in the list of Controls.
  std::string Place();
  std::string ControlPlace() const;
  std::string ActionPlace(std::size_t index) const;

  // Of the current list. Its id; the root goes by kRoot, whatever id it has.
  std::uint32_t Id() const { return openLists.count == 1 ? profile_list::kRoot : ListId(); }
  const ChunkEntry& Entry(std::uint32_t index);
  bool HasList(std::uint32_t id);
  void FieldMissing(std::uint32_t index, bool needed);
  // Notes where a field departs from what a save makes of it.
  void CheckField(std::uint32_t index, std::uint32_t size, const ByteString& field);
  void CheckSize(std::uint32_t index, std::uint32_t size, std::uint32_t found);
  void CheckHead();
  void CheckRevision();
  void CheckActionFlags();
  void CheckOldTimings();
  // Notes the children from `fields` on that don't belong there, and where the list's size and its
  // children disagree.
  void CheckOthers(std::uint32_t fields);
  void CheckEnd();

  const std::uint64_t fileSize;
  std::vector<Finding>* const findings;
  bool damaged = false;
  std::size_t control = 0;                // that is being read, or the next
  std::size_t action = 0;                 // of it, that is being read, or the next
  std::vector<ByteString> actionTimings;  // of the Control
  std::uint32_t actionTimingsSize = 0;
  ByteString timings;  // of the Control; empty without
};

}  // namespace kelvaro::console
