// A registry in memory. Keys are spelled with their hive in front, "HKCU\Software\...", "HKLM\..."
// or "HKCR\...". Not for several system threads. Its many methods are the seam's, and a test's
// set-up and look at it.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/platform/registry_parts.h"
#include "app/platform/simulation/journal.h"

namespace platform::simulation {

class VirtualRegistry final : public Registry {
 public:
  // The journal logs the calls and plans the faults; null for neither. A planned fault of
  // ERROR_SUCCESS changes nothing.
  explicit VirtualRegistry(Journal* journal = nullptr);
  ~VirtualRegistry() override;
  VirtualRegistry(const VirtualRegistry&) = delete;
  VirtualRegistry& operator=(const VirtualRegistry&) = delete;

  // ---- What a test sets up and looks at: no calls, so neither logged nor disturbed.

  void PutKey(const std::string& key);
  // Make the key, too.
  void PutValue(const std::string& key, const std::string& name, std::uint32_t type,
                const std::string& data);
  void PutString(const std::string& key, const std::string& name, const std::string& text);
  void PutDword(const std::string& key, const std::string& name, std::uint32_t number);
  // With all that is in it. What is open there fails with ERROR_FILE_NOT_FOUND from then on.
  void RemoveKey(const std::string& key);

  bool HasKey(const std::string& key) const;
  // None where there is no such value.
  std::optional<StoredValue> Value(const std::string& key, const std::string& name) const;
  // None also for a value of another kind. A text without its terminator.
  std::optional<std::string> Text(const std::string& key, const std::string& name) const;
  std::optional<std::uint32_t> Number(const std::string& key, const std::string& name) const;
  // In order of enumeration.
  std::vector<std::string> ValueNames(const std::string& key) const;
  std::vector<std::string> SubkeyNames(const std::string& key) const;

  // Every change to that hive ("HKLM") fails with ERROR_ACCESS_DENIED; a key that is there can
  // still be "created".
  void Protect(const std::string& hive);

  // Keys that were opened and not closed.
  std::uint32_t OpenHandles() const { return static_cast<std::uint32_t>(open.size()); }

  // How often something that was written became lasting: each write, or each group of them.
  std::uint32_t Commits() const { return commits; }

  // ---- Registry.
  std::uint32_t RegOpenKeyA(HKEY key, const std::string& path, HKEY* opened) override;
  std::uint32_t RegCreateKeyA(HKEY key, const std::string& path, HKEY* opened) override;
  std::uint32_t RegCloseKey(HKEY key) override;
  std::uint32_t RegQueryValueExA(HKEY key, const std::string& name, std::uint32_t* type, void* data,
                                 std::uint32_t* size) override;
  std::uint32_t RegSetValueExA(HKEY key, const std::string& name, std::uint32_t type,
                               const void* data, std::uint32_t size) override;
  std::uint32_t RegDeleteValueA(HKEY key, const std::string& name) override;
  std::uint32_t RegEnumValueA(HKEY key, std::uint32_t index, char* name, std::uint32_t* nameSize,
                              std::uint32_t* type, void* data, std::uint32_t* size) override;
  std::uint32_t RegEnumKeyA(HKEY key, std::uint32_t index, char* name,
                            std::uint32_t nameSize) override;
  void BeginWrites() override { ++groups; }
  std::uint32_t EndWrites() override;

 private:
  struct Node;

  Node* Child(const Node& node, const std::string& name) const;
  Node* Find(const std::string& key) const;
  Node& Make(const std::string& key);
  // Null, with the reason in *error, for what isn't open or isn't there any more.
  Node* Of(HKEY key, std::uint32_t* error) const;
  // "?" for what isn't open.
  std::string PathOf(HKEY key) const;
  static std::string Below(const std::string& key, const std::string& path);
  bool IsProtected(const std::string& key) const;
  void Written();
  HKEY Open(const std::string& key);
  // Logs the call; its planned result, or ERROR_SUCCESS.
  std::uint32_t Enter(const char* operation, const std::string& what);
  // The same for a call on `key`, whose node it looks up; the reason where there is none.
  std::uint32_t Enter(const char* operation, HKEY key, const std::string& what, Node** node);

  Journal* const journal;
  const std::unique_ptr<Node> top;   // holds the hives
  std::map<HKEY, std::string> open;  // with the whole path
  HKEY last = 0;
  std::vector<std::string> protectedHives;
  std::uint32_t groups = 0;  // under way, one inside the other
  bool groupWrote = false;
  std::uint32_t commits = 0;
};

}  // namespace platform::simulation
