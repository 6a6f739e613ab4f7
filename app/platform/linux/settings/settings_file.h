// One hive of the registry: an SQLite file of keys and values. It is opened by the first operation
// that needs it, and made by the first that writes. Several programs can use it at once; each
// operation is a transaction, after which what was written is on the disk, and so is a group of
// them. Results are the registry's error codes; a file that isn't there reads as an empty one.
//
// A user's file that is damaged, or isn't a settings file at all, is renamed to "FILE.damaged" (or
// "FILE.damaged.2" and so on) and told of, and the settings begin anew. One thread at a time.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "app/platform/registry_parts.h"

struct sqlite3;

namespace platform {

class SettingsFile {
 public:
  enum class Kind {
    OfTheUser,     // with the folder it lies in made where it is missing
    OfTheMachine,  // read alone: all writes are ERROR_ACCESS_DENIED, and it stays where it is
  };
  using Key = std::vector<std::string>;  // the names down to a key; none for the root, always there

  // An empty path is a file that can't be there. `tell` gets a sentence for the user, once for
  // each damaged file.
  SettingsFile(std::string path, Kind kind, std::function<void(const std::string& text)> tell);
  ~SettingsFile();
  SettingsFile(const SettingsFile&) = delete;
  SettingsFile& operator=(const SettingsFile&) = delete;

  // ERROR_FILE_NOT_FOUND when the key isn't there.
  std::uint32_t FindKey(const Key& key);
  std::uint32_t MakeKey(const Key& key);
  // ERROR_FILE_NOT_FOUND when the key or the value isn't there.
  std::uint32_t Read(const Key& key, const std::string& name, StoredValue* value);
  std::uint32_t Write(const Key& key, const StoredValue& value);
  std::uint32_t Delete(const Key& key, const std::string& name);
  // ERROR_NO_MORE_ITEMS behind the last.
  std::uint32_t ValueAt(const Key& key, std::uint32_t index, StoredValue* value);
  std::uint32_t KeyAt(const Key& key, std::uint32_t index, std::string* name);

  // What is written between the two is one transaction, which begins with the first write and keeps
  // other programs from writing until the end. Pairs nest, and the outermost counts.
  void BeginGroup() { ++groups; }
  std::uint32_t EndGroup();

 private:
  class Statement;
  using Work = std::function<int()>;  // gives a result of SQLite

  // Runs `work` as a transaction, or in that of the group. A file that turns out damaged is set
  // aside, and `work` tried once more.
  std::uint32_t Run(bool writes, const Work& work);
  int RunOnce(bool writes, const Work& work);
  // Run for what works on one key: ERROR_FILE_NOT_FOUND when the key isn't there.
  std::uint32_t RunAt(const Key& key, bool writes, const std::function<int(std::int64_t id)>& work);
  // SQLITE_EMPTY: it isn't there, and wasn't to be made.
  int Open(bool make);
  int OpenAs(int flags, bool make);
  // Whether what is open is a whole settings file; makes its tables when `make` allows.
  int Check(bool make);
  void Close();
  // SQLITE_OK to try again; SQLITE_PERM when it stays where it is, and can't be used.
  int SetAside();
  int PatienceMs() const;  // with what others keep locked
  int Do(const char* sql);
  // Ends the transaction: keeps what it wrote if the result so far is SQLITE_OK.
  int End(int result);

  // The id of a key; SQLITE_NOTFOUND when it isn't there.
  int Find(const Key& key, std::int64_t* id);
  // Replaces the id of a key by that of its subkey.
  int FindBelow(std::int64_t* id, const std::string& name);

  const std::string path;
  const Kind kind;
  const std::function<void(const std::string&)> tell;
  sqlite3* database = nullptr;
  int groups = 0;             // under way, one inside the other
  struct stat opened = {};    // the file that `database` is
  struct stat unusable = {};  // the damaged file that had to stay
  bool waitedInVain = false;  // somebody keeps it locked: no more long waits
};

}  // namespace platform
