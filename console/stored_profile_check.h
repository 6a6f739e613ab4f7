// Goes through a stored profile the way a load does, and notes what a load passes over in silence.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "console/profile_check.h"
#include "storage/tagged_file.h"

namespace kelvaro::console {

class StoredProfileCheck : private TaggedFile {
 public:
  // Findings are appended; borrowed.
  explicit StoredProfileCheck(std::vector<Finding>* findings);

  // Up to the first damage, behind which a load reads no more either. `fileSize` in bytes.
  void Run(const ByteString& path, std::uint64_t fileSize);

 private:
  void Note(Finding::Kind kind, const std::string& what);
  void Damage(const std::string& what);
  void Lacks(const std::string& what) { Note(Finding::Kind::Lacks, what); }
  void PassedOver(const std::string& what) { Note(Finding::Kind::PassedOver, what); }

  // Each of what the current list holds.
  void CheckHead(std::uint64_t fileSize);
  void CheckRoot();
  void CheckDocumentType();
  void CheckFormatRevision();
  void CheckProfileName();
  void CheckDevice();
  void CheckMouseSettings();
  void CheckControls();
  void CheckControl();
  void CheckTrigger();
  ByteString CheckKeyAction();  // its timings
  void CheckScanCodes(std::uint32_t steps);
  ByteString CheckTimings();

  // Of the current list.
  const ChunkEntry& Entry(std::uint32_t index);
  bool HasList(std::uint32_t id);
  // Reads a field that a load needs, of `size` bytes or of any number (0).
  bool NeedField(std::uint32_t index, std::uint32_t size, ByteString* out);
  // Notes where a field departs from what a save makes of it.
  void CheckField(std::uint32_t index, std::uint32_t size, const ByteString& field);
  void CheckSize(std::uint32_t index, std::uint32_t size, std::uint32_t found);
  // Notes the children from `fields` on that are none of `lists`, and a second one of the same id,
  // unless that is `repeated`; then CheckEnd.
  void CheckOthers(std::uint32_t fields, const std::set<std::uint32_t>& lists,
                   std::uint32_t repeated = 0);
  // Notes where the list's size and its children disagree.
  void CheckEnd();

  std::vector<Finding>* const findings;
  std::string where;  // the current place
  bool damaged = false;
};

}  // namespace kelvaro::console
