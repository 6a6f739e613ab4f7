#include "app/platform/linux/settings/settings_file.h"

#include <errno.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <stdio.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <thread>
#include <tuple>
#include <utility>

#include "app/platform/linux/descriptor.h"
#include "app/platform/linux/home_folders.h"

namespace platform {
namespace {

// In the file's header: never to change.
constexpr int kApplicationId = 0x4B4C5652;  // "KLVR"
constexpr int kVersion = 1;

constexpr const char* kTables =
    "CREATE TABLE key ("
    " id INTEGER PRIMARY KEY,"  // 1 and up; 0 is the root, which has no row
    " parent INTEGER NOT NULL,"
    " name TEXT NOT NULL COLLATE NOCASE,"
    " UNIQUE (parent, name)) STRICT;"
    "CREATE TABLE value ("
    " id INTEGER PRIMARY KEY,"
    " key INTEGER NOT NULL,"
    " name TEXT NOT NULL COLLATE NOCASE,"
    " type INTEGER NOT NULL,"
    " data BLOB NOT NULL,"
    " UNIQUE (key, name)) STRICT;";

constexpr int kPatienceMs = 2000;
constexpr int kLittlePatienceMs = 20;
constexpr int kLookAgainMs = 5;

bool IsSame(const struct stat& a, const struct stat& b) {
  return std::tie(a.st_dev, a.st_ino) == std::tie(b.st_dev, b.st_ino);
}

bool MeansDamaged(int result) {
  const int primary = result & 0xFF;
  return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
}

// By what a check of the whole file said. It also says what kept it from looking: no memory, or a
// read that failed.
int WholeBy(const std::string& said) {
  constexpr std::string_view kWhy = "error code=";
  const std::size_t why = said.find(kWhy);
  const int code = why == std::string::npos ? 0 : std::atoi(&said[why + kWhy.size()]);
  if ((code & 0xFF) == SQLITE_NOMEM || (code & 0xFF) == SQLITE_IOERR) return code;
  return said == "ok" ? SQLITE_OK : SQLITE_CORRUPT;
}

std::uint32_t ErrorCode(int result) {
  switch (result & 0xFF) {
    case SQLITE_OK:
      return ERROR_SUCCESS;
    case SQLITE_EMPTY:
    case SQLITE_NOTFOUND:
      return ERROR_FILE_NOT_FOUND;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return ERROR_BUSY;
    case SQLITE_FULL:
      return ERROR_DISK_FULL;
    default:
      return ERROR_ACCESS_DENIED;
  }
}

// Keeps other programs from making or setting aside a file of the folder. Where a folder can't be
// locked, as on some network file systems, another program may see its work set aside. That is rare
// and loses nothing. False when somebody else kept it locked all the time: an instance that was
// stopped inside must not stop the others.
bool LockFolderOf(const std::string& file, int patienceMs, Descriptor* lock) {
  const std::string folder = std::filesystem::path(file).parent_path();
  *lock = Descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!*lock) return true;
  for (int waitedMs = 0;; waitedMs += kLookAgainMs) {
    if (flock(lock->Get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) return true;
    if (waitedMs >= patienceMs) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(kLookAgainMs));
  }
}

// A name that nothing has yet.
std::string NameAside(const std::string& path) {
  std::string name = path + ".damaged";
  for (int n = 2; access(name.c_str(), F_OK) == 0; ++n) {
    name = path + ".damaged." + std::to_string(n);
  }
  return name;
}

}  // namespace

// Bound texts must outlive it.
class SettingsFile::Statement {
 public:
  // `values` are bound in their order, from ?1 on.
  template <typename... Values>
  explicit Statement(sqlite3* database, const char* sql, const Values&... values)
      : prepared(sqlite3_prepare_v2(database, sql, -1, &statement, nullptr)) {
    int place = 0;
    (Bind(++place, values), ...);
  }
  ~Statement() { sqlite3_finalize(statement); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  void BindBytes(int place, const std::string& bytes) {
    sqlite3_bind_blob(statement, place, bytes.data(), static_cast<int>(bytes.size()),
                      SQLITE_STATIC);
  }

  // SQLITE_OK, or a failure.
  int Prepared() const { return prepared; }
  // SQLITE_ROW, SQLITE_DONE, or a failure.
  int Step() { return prepared == SQLITE_OK ? sqlite3_step(statement) : prepared; }
  // SQLITE_OK for a row, `none` without one, or a failure.
  int Row(int none) {
    const int result = Step();
    return result == SQLITE_ROW ? SQLITE_OK : result == SQLITE_DONE ? none : result;
  }
  // For what gives no rows.
  int Finish() {
    const int result = Step();
    return result == SQLITE_DONE ? SQLITE_OK : result;
  }

  std::int64_t Number(int column) { return sqlite3_column_int64(statement, column); }
  std::string Bytes(int column) {
    const void* bytes = sqlite3_column_blob(statement, column);
    const int size = sqlite3_column_bytes(statement, column);
    return bytes ? std::string(static_cast<const char*>(bytes), size) : std::string();
  }
  // Of "name, type, data".
  int Take(StoredValue* value) {
    const int result = Row(SQLITE_NOTFOUND);
    if (result == SQLITE_OK) *value = {Bytes(0), static_cast<std::uint32_t>(Number(1)), Bytes(2)};
    return result;
  }

 private:
  void Bind(int place, std::int64_t number) { sqlite3_bind_int64(statement, place, number); }
  void Bind(int place, const std::string& text) {
    sqlite3_bind_text(statement, place, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
  }

  sqlite3_stmt* statement = nullptr;
  const int prepared;
};

SettingsFile::SettingsFile(std::string path, Kind kind,
                           std::function<void(const std::string&)> tell)
    : path(std::move(path)), kind(kind), tell(std::move(tell)) {}

SettingsFile::~SettingsFile() { Close(); }

void SettingsFile::Close() {
  sqlite3_close(database);
  database = nullptr;
}

int SettingsFile::PatienceMs() const { return waitedInVain ? kLittlePatienceMs : kPatienceMs; }

int SettingsFile::Do(const char* sql) {
  return sqlite3_exec(database, sql, nullptr, nullptr, nullptr);
}

int SettingsFile::Check(bool make) {
  std::int64_t application = 0;
  std::int64_t version = 0;
  std::int64_t tables = 0;
  const struct {
    const char* sql;
    std::int64_t* number;
  } facts[] = {{"PRAGMA application_id", &application},
               {"PRAGMA user_version", &version},
               {"SELECT count(*) FROM sqlite_schema", &tables}};
  for (const auto& fact : facts) {
    Statement statement(database, fact.sql);
    if (const int result = statement.Row(SQLITE_CORRUPT)) return result;
    *fact.number = statement.Number(0);
  }
  if (tables == 0 && application == 0 && version == 0) {
    // Somebody was stopped between making the file and filling it.
    if (!make) return SQLITE_EMPTY;
    if (const int result = Do(kTables)) return result;
    const std::string marks = "PRAGMA application_id=" + std::to_string(kApplicationId) +
                              "; PRAGMA user_version=" + std::to_string(kVersion);
    return Do(marks.c_str());
  }
  if (application != kApplicationId) return SQLITE_NOTADB;
  if (version > kVersion) return SQLITE_PERM;  // a later program's: neither read nor lost
  Statement whole(database, "PRAGMA quick_check(1)");
  if (const int result = whole.Row(SQLITE_CORRUPT)) return result;
  if (const int result = WholeBy(whole.Bytes(0))) return result;
  for (const char* rows :
       {"SELECT id, parent, name FROM key", "SELECT id, key, name, type, data FROM value"}) {
    const int result = Statement(database, rows).Prepared();
    if (result == SQLITE_ERROR) return SQLITE_CORRUPT;  // there are no such rows
    if (result != SQLITE_OK) return result;
  }
  return SQLITE_OK;
}

int SettingsFile::OpenAs(int flags, bool make) {
  int result = sqlite3_open_v2(path.c_str(), &database, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  if (result == SQLITE_OK) {
    sqlite3_busy_timeout(database, PatienceMs());
    // A rollback journal needs no memory shared with others, so that a read-only folder or a home
    // on the network serves, and leaves one file that can be copied.
    result = Do(make ? "BEGIN IMMEDIATE" : "BEGIN");
    if (result == SQLITE_OK) result = Check(make);
    if (result == SQLITE_OK) result = Do("COMMIT");
  }
  if (result != SQLITE_OK) Close();
  return result;
}

int SettingsFile::Open(bool make) {
  if (path.empty()) return make ? SQLITE_CANTOPEN : SQLITE_EMPTY;
  struct stat found = {};
  bool isThere = stat(path.c_str(), &found) == 0;
  if (!isThere && errno != ENOENT && errno != ENOTDIR) return SQLITE_CANTOPEN;
  if (database) {
    if (isThere && IsSame(found, opened)) return SQLITE_OK;
    Close();  // it was moved away or replaced
  }
  if (isThere && IsSame(found, unusable)) return SQLITE_PERM;
  if (!isThere || found.st_size == 0) {
    if (!make) return SQLITE_EMPTY;
    if (!MakeFolders(std::filesystem::path(path).parent_path())) return SQLITE_CANTOPEN;
    Descriptor lock(-1);
    if (!LockFolderOf(path, PatienceMs(), &lock)) return SQLITE_BUSY;
    const int result = OpenAs(SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, true);
    opened = {};
    stat(path.c_str(), &opened);
    return result;
  }
  if (!S_ISREG(found.st_mode)) return SQLITE_CANTOPEN;
  // Root could write a read-only file, too, but shouldn't.
  const bool canWrite = kind == Kind::OfTheUser && (found.st_mode & S_IWUSR) != 0;
  const int flags = canWrite ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY;
  int result = OpenAs(flags, false);
  if (result == SQLITE_EMPTY && make && canWrite) result = OpenAs(flags, true);
  if (result != SQLITE_OK) return result;
  if (stat(path.c_str(), &opened) == 0 && IsSame(opened, found)) return SQLITE_OK;
  Close();
  return SQLITE_BUSY;  // it was replaced at this moment
}

int SettingsFile::SetAside() {
  Close();
  Descriptor lock(-1);
  if (!LockFolderOf(path, PatienceMs(), &lock)) return SQLITE_BUSY;
  struct stat found = {};
  if (stat(path.c_str(), &found) != 0) return SQLITE_OK;
  std::string trouble;
  if (kind == Kind::OfTheUser) {
    // Another program may have been faster, and the file that lies there now may be sound.
    const int result = OpenAs(SQLITE_OPEN_READONLY, false);
    Close();
    if (!MeansDamaged(result)) return SQLITE_OK;
    const std::string aside = NameAside(path);
    // The journal first: it must never meet the file that comes next.
    const std::string journal = path + "-journal";
    const bool isMoved =
        (rename(journal.c_str(), (aside + "-journal").c_str()) == 0 || errno == ENOENT) &&
        rename(path.c_str(), aside.c_str()) == 0;
    if (isMoved) {
      tell("The settings file " + path + " is damaged. It has been renamed to " + aside +
           ", and the settings start afresh.");
      return SQLITE_OK;
    }
    trouble = std::string(" and can't be renamed (") + std::strerror(errno) + ")";
  }
  unusable = found;
  tell("The settings file " + path + " is damaged" + trouble + ". Its settings are not used.");
  return SQLITE_PERM;
}

int SettingsFile::RunOnce(bool writes, const Work& work) {
  int result = Open(writes);
  if (result != SQLITE_OK) return result;
  sqlite3_busy_timeout(database, PatienceMs());
  const bool inGroup = !sqlite3_get_autocommit(database);
  if (!inGroup) result = Do(writes ? "BEGIN IMMEDIATE" : "BEGIN");
  if (result == SQLITE_OK) result = work();
  // A failure inside of a group keeps what the group has written.
  if (inGroup || (groups > 0 && writes && result == SQLITE_OK)) return result;
  return End(result);
}

int SettingsFile::End(int result) {
  if (result == SQLITE_OK) result = Do("COMMIT");
  // A file that failed beneath has rolled back by itself.
  if (!sqlite3_get_autocommit(database)) Do("ROLLBACK");
  return result;
}

std::uint32_t SettingsFile::EndGroup() {
  if (--groups > 0 || !database || sqlite3_get_autocommit(database)) return ERROR_SUCCESS;
  const int result = End(SQLITE_OK);
  waitedInVain = (result & 0xFF) == SQLITE_BUSY;
  return ErrorCode(result);
}

std::uint32_t SettingsFile::Run(bool writes, const Work& work) {
  if (writes && kind == Kind::OfTheMachine) return ERROR_ACCESS_DENIED;
  int result = RunOnce(writes, work);
  if (MeansDamaged(result)) {
    result = SetAside();
    if (result == SQLITE_OK) result = RunOnce(writes, work);
  }
  waitedInVain = (result & 0xFF) == SQLITE_BUSY;
  return ErrorCode(result);
}

int SettingsFile::FindBelow(std::int64_t* id, const std::string& name) {
  Statement statement(database, "SELECT id FROM key WHERE parent = ?1 AND name = ?2", *id, name);
  const int result = statement.Row(SQLITE_NOTFOUND);
  if (result == SQLITE_OK) *id = statement.Number(0);
  return result;
}

int SettingsFile::Find(const Key& key, std::int64_t* id) {
  *id = 0;
  for (const std::string& name : key)
    if (const int result = FindBelow(id, name)) return result;
  return SQLITE_OK;
}

std::uint32_t SettingsFile::RunAt(const Key& key, bool writes,
                                  const std::function<int(std::int64_t id)>& work) {
  return Run(writes, [&] {
    std::int64_t id = 0;
    const int result = Find(key, &id);
    return result == SQLITE_OK ? work(id) : result;
  });
}

std::uint32_t SettingsFile::FindKey(const Key& key) {
  if (key.empty()) return ERROR_SUCCESS;
  return RunAt(key, false, [](std::int64_t) { return SQLITE_OK; });
}

std::uint32_t SettingsFile::MakeKey(const Key& key) {
  // Opening what is there writes nothing.
  const std::uint32_t found = FindKey(key);
  if (found != ERROR_FILE_NOT_FOUND) return found;
  return Run(true, [&] {
    std::int64_t id = 0;
    for (const std::string& name : key) {
      Statement add(database, "INSERT OR IGNORE INTO key (parent, name) VALUES (?1, ?2)", id, name);
      if (const int result = add.Finish()) return result;
      if (const int result = FindBelow(&id, name))
        return result == SQLITE_NOTFOUND ? SQLITE_CORRUPT : result;
    }
    return SQLITE_OK;
  });
}

std::uint32_t SettingsFile::Read(const Key& key, const std::string& name, StoredValue* value) {
  return RunAt(key, false, [&](std::int64_t id) {
    Statement statement(database, "SELECT name, type, data FROM value WHERE key = ?1 AND name = ?2",
                        id, name);
    return statement.Take(value);
  });
}

std::uint32_t SettingsFile::Write(const Key& key, const StoredValue& value) {
  return RunAt(key, true, [&](std::int64_t id) {
    Statement statement(database,
                        "INSERT INTO value (key, name, type, data) VALUES (?1, ?2, ?3, ?4)"
                        " ON CONFLICT (key, name) DO UPDATE"
                        " SET type = excluded.type, data = excluded.data",
                        id, value.name, value.type);
    statement.BindBytes(4, value.data);
    return statement.Finish();
  });
}

std::uint32_t SettingsFile::Delete(const Key& key, const std::string& name) {
  StoredValue value;
  const std::uint32_t found = Read(key, name, &value);
  if (found != ERROR_SUCCESS) return found;
  return RunAt(key, true, [&](std::int64_t id) {
    Statement statement(database, "DELETE FROM value WHERE key = ?1 AND name = ?2", id, name);
    const int result = statement.Finish();
    if (result != SQLITE_OK) return result;
    return sqlite3_changes(database) == 1 ? SQLITE_OK : SQLITE_NOTFOUND;
  });
}

std::uint32_t SettingsFile::ValueAt(const Key& key, std::uint32_t index, StoredValue* value) {
  const std::uint32_t result = RunAt(key, false, [&](std::int64_t id) {
    Statement statement(database,
                        "SELECT name, type, data FROM value WHERE key = ?1 ORDER BY id"
                        " LIMIT 1 OFFSET ?2",
                        id, index);
    return statement.Take(value);
  });
  return result == ERROR_SUCCESS ? ERROR_SUCCESS : ERROR_NO_MORE_ITEMS;
}

std::uint32_t SettingsFile::KeyAt(const Key& key, std::uint32_t index, std::string* name) {
  const std::uint32_t result = RunAt(key, false, [&](std::int64_t id) {
    Statement statement(database,
                        "SELECT name FROM key WHERE parent = ?1 ORDER BY id LIMIT 1 OFFSET ?2", id,
                        index);
    const int found = statement.Row(SQLITE_NOTFOUND);
    if (found == SQLITE_OK) *name = statement.Bytes(0);
    return found;
  });
  return result == ERROR_SUCCESS ? ERROR_SUCCESS : ERROR_NO_MORE_ITEMS;
}

}  // namespace platform
