#include "app/platform/linux/settings/sqlite_registry.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/platform/entry_text.h"
#include "app/platform/linux/home_folders.h"
#include "app/platform/linux/linux_platform.h"
#include "tests/host/files.h"
#include "tests/host/processes.h"
#include "tests/host/refused_calls.h"

// The database's own calls come here, too: an executable's functions go before those of libraries.
namespace {
std::atomic<int> flushes{0};
}

extern "C" int fsync(int file) {
  ++flushes;
  return static_cast<int>(syscall(SYS_fsync, file));
}

extern "C" int fdatasync(int file) {
  ++flushes;
  return static_cast<int>(syscall(SYS_fdatasync, file));
}

namespace platform {
namespace {

using namespace kelvaro::tests;

// Stands in for one of the system calls that the database makes by its own table.
class DatabaseCall {
 public:
  DatabaseCall(const char* name, sqlite3_syscall_ptr call)
      : name(name), before(vfs->xGetSystemCall(vfs, name)) {
    EXPECT_EQ(vfs->xSetSystemCall(vfs, name, call), SQLITE_OK);
  }
  ~DatabaseCall() { vfs->xSetSystemCall(vfs, name, before); }
  DatabaseCall(const DatabaseCall&) = delete;
  DatabaseCall& operator=(const DatabaseCall&) = delete;

 private:
  sqlite3_vfs* const vfs = sqlite3_vfs_find(nullptr);
  const char* const name;
  const sqlite3_syscall_ptr before;
};

// Of the reads from that one on fail, of the writes that one, and how many there were.
int failing = 0;
int calls = 0;
ssize_t ReadOrFail(int file, void* bytes, std::size_t size, off_t at) {
  if (calls++ < failing) return pread(file, bytes, size, at);
  errno = EIO;
  return -1;
}
ssize_t WriteOrFail(int file, const void* bytes, std::size_t size, off_t at) {
  if (calls++ != failing) return pwrite(file, bytes, size, at);
  errno = ENOSPC;
  return -1;
}
// What is done as the next file is closed.
std::function<void()> atClose;
int CloseAndAct(int file) {
  if (const auto act = std::exchange(atClose, nullptr)) act();
  return close(file);
}
// The same for the next one that is opened.
std::function<void()> atOpen;
int OpenAndAct(const char* path, int flags, int mode) {
  const int file = open(path, flags, mode);
  if (const auto act = std::exchange(atOpen, nullptr)) act();
  return file;
}
sqlite3_syscall_ptr Call(auto* function) { return reinterpret_cast<sqlite3_syscall_ptr>(function); }

using Names = std::vector<std::string>;

constexpr const char* kRun = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const char* kGame = "Software\\Game";

// A temporary folder, and a registry that keeps all in it.
class SqliteRegistryTest : public ::testing::Test, protected TemporaryFolder {
 protected:
  // As a program that starts.
  void Start() { registry = Another(); }
  std::unique_ptr<SqliteRegistry> Another() {
    auto made = std::make_unique<SqliteRegistry>(places);
    made->OnTrouble([this](const std::string& text) { troubles.push_back(text); });
    return made;
  }

  static HKEY Create(SqliteRegistry& in, const char* path) {
    HKEY key = 0;
    EXPECT_EQ(in.RegCreateKeyA(HKEY_CURRENT_USER, path, &key), ERROR_SUCCESS);
    return key;
  }
  HKEY Create(const char* path) { return Create(*registry, path); }
  HKEY OpenRun() {
    HKEY key = 0;
    EXPECT_EQ(registry->RegOpenKeyA(HKEY_CURRENT_USER, kRun, &key), ERROR_SUCCESS);
    return key;
  }

  static std::uint32_t Put(SqliteRegistry& in, HKEY key, const std::string& name,
                           const std::string& text) {
    return in.RegSetValueExA(key, name, REG_SZ, text.c_str(),
                             static_cast<std::uint32_t>(text.size() + 1));
  }
  std::uint32_t Put(HKEY key, const std::string& name, const std::string& text) {
    return Put(*registry, key, name, text);
  }

  // "!CODE" for a failure; else the bytes, a terminator cut off.
  static std::string Get(SqliteRegistry& in, HKEY key, const std::string& name) {
    char data[20000];
    std::uint32_t size = sizeof data;
    const std::uint32_t result = in.RegQueryValueExA(key, name, nullptr, data, &size);
    if (result != ERROR_SUCCESS) return "!" + std::to_string(result);
    std::string text(data, size);
    if (text.ends_with('\0')) text.pop_back();
    return text;
  }
  std::string Get(HKEY key, const std::string& name) { return Get(*registry, key, name); }
  // The same in a key that is opened for it.
  std::string GetIn(SqliteRegistry& in, const char* path, const std::string& name) {
    HKEY key = 0;
    if (const std::uint32_t error = in.RegOpenKeyA(HKEY_CURRENT_USER, path, &key)) {
      return "!" + std::to_string(error);
    }
    return Get(in, key, name);
  }

  Names ValueNames(HKEY key) {
    Names names;
    char name[300];
    for (std::uint32_t index = 0;; ++index) {
      std::uint32_t size = sizeof name;
      if (registry->RegEnumValueA(key, index, name, &size, nullptr, nullptr, nullptr) != 0) break;
      names.emplace_back(name);
    }
    return names;
  }
  Names SubkeyNames(HKEY key) {
    Names names;
    char name[300];
    while (registry->RegEnumKeyA(key, static_cast<std::uint32_t>(names.size()), name,
                                 sizeof name) == 0) {
      names.emplace_back(name);
    }
    return names;
  }

  static void PutFile(const std::string& path, const std::string& bytes) {
    kelvaro::tests::Put(path, bytes);
  }
  // Of another program's that holds the user's file open; to be closed.
  sqlite3* Other(const char* statement) const {
    sqlite3* other = nullptr;
    EXPECT_EQ(sqlite3_open(places.userFile.c_str(), &other), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(other, statement, nullptr, nullptr, nullptr), SQLITE_OK);
    return other;
  }
  Names FilesIn(const std::string& path) {
    Names names;
    if (!std::filesystem::exists(path)) return names;
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
      names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  std::string Autostart(const std::string& file) {
    return Content(places.autostartFolder + "/" + file);
  }

  const RegistryPlaces places = {In("config/kelvaro/settings.sqlite3"), In("etc/settings.sqlite3"),
                                 In("config/autostart")};
  Names troubles;
  std::unique_ptr<SqliteRegistry> registry = Another();
};

TEST_F(SqliteRegistryTest, ReadsMakeNoFile) {
  HKEY key = 0;
  EXPECT_EQ(registry->RegOpenKeyA(HKEY_CURRENT_USER, kGame, &key), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(registry->RegOpenKeyA(HKEY_LOCAL_MACHINE, kGame, &key), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(Get(HKEY_CURRENT_USER, "n"), "!2");
  EXPECT_EQ(registry->RegDeleteValueA(HKEY_CURRENT_USER, "n"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(SubkeyNames(HKEY_CURRENT_USER), Names{});
  EXPECT_EQ(ValueNames(OpenRun()), Names{});
  EXPECT_EQ(FilesIn(folder), Names{});
}

TEST_F(SqliteRegistryTest, TheFirstWriteMakesTheFileInAFolderOfTheOwnersOwn) {
  Create(kGame);
  EXPECT_EQ(FilesIn(In("config/kelvaro")), Names{"settings.sqlite3"});
  struct stat status = {};
  ASSERT_EQ(stat(In("config/kelvaro").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700u);
  EXPECT_EQ(FilesIn(folder), Names{"config"});
}

TEST_F(SqliteRegistryTest, AnyKindOfValueIsKeptWithItsBytes) {
  const struct {
    std::uint32_t type;
    std::string data;
  } values[] = {{REG_SZ, std::string("text\0", 5)},
                {REG_SZ, "no terminator"},
                {REG_EXPAND_SZ, std::string("%X%\0", 4)},
                {REG_BINARY, std::string("\0\xFF\x80\0", 4)},
                {REG_DWORD, "\x01\x02\x03\x04"},
                {REG_MULTI_SZ, std::string("a\0b\0\0", 5)},
                {REG_QWORD, "12345678"},
                {REG_NONE, ""},
                {0xFFFFFFFFu, "x"}};
  HKEY key = Create(kGame);
  int n = 0;
  for (const auto& value : values) {
    EXPECT_EQ(registry->RegSetValueExA(key, std::to_string(n++), value.type, value.data.data(),
                                       static_cast<std::uint32_t>(value.data.size())),
              ERROR_SUCCESS);
  }
  Start();
  key = Create(kGame);
  n = 0;
  for (const auto& value : values) {
    char data[20];
    std::uint32_t size = sizeof data;
    std::uint32_t type = 77;
    ASSERT_EQ(registry->RegQueryValueExA(key, std::to_string(n++), &type, data, &size),
              ERROR_SUCCESS);
    EXPECT_EQ(type, value.type);
    EXPECT_EQ(std::string(data, size), value.data);
  }
}

TEST_F(SqliteRegistryTest, NamesAreFoundInEitherCaseAndStayAsTheyWereMade) {
  const HKEY key = Create("Software\\Game\\Pad \xE9");
  EXPECT_EQ(Put(key, "Last Device", "1"), ERROR_SUCCESS);
  const HKEY same = Create("SOFTWARE\\gAME\\pad \xE9");
  EXPECT_EQ(Put(same, "LAST DEVICE", "2"), ERROR_SUCCESS);
  EXPECT_EQ(Get(key, "last device"), "2");
  EXPECT_EQ(ValueNames(key), Names{"Last Device"});
  EXPECT_EQ(SubkeyNames(HKEY_CURRENT_USER), Names{"Software"});
  EXPECT_EQ(SubkeyNames(Create(kGame)), Names{"Pad \xE9"});
  EXPECT_EQ(registry->RegDeleteValueA(key, "lAST dEVICE"), ERROR_SUCCESS);
  EXPECT_EQ(ValueNames(key), Names{});
}

TEST_F(SqliteRegistryTest, EnumerationGoesInTheOrderOfMaking) {
  const HKEY key = Create(kGame);
  for (const char* name : {"z", "a", "m"}) Put(key, name, "1");
  Put(key, "a", "again");
  EXPECT_EQ(ValueNames(key), (Names{"z", "a", "m"}));
  EXPECT_EQ(registry->RegDeleteValueA(key, "z"), ERROR_SUCCESS);
  Put(key, "z", "anew");
  EXPECT_EQ(ValueNames(key), (Names{"a", "m", "z"}));
  for (const char* path : {"Software\\Game\\z", "Software\\Game\\a"}) Create(path);
  Start();
  EXPECT_EQ(SubkeyNames(Create(kGame)), (Names{"z", "a"}));
  EXPECT_EQ(ValueNames(Create(kGame)), (Names{"a", "m", "z"}));
}

TEST_F(SqliteRegistryTest, HandlesThatAreNotOpenAreInvalid) {
  const HKEY key = Create(kGame);
  EXPECT_EQ(registry->RegCloseKey(key), ERROR_SUCCESS);
  EXPECT_EQ(registry->RegCloseKey(key), ERROR_INVALID_HANDLE);
  HKEY other = 0;
  for (const HKEY hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    EXPECT_EQ(registry->RegOpenKeyA(hive, "", &other), ERROR_SUCCESS);
    EXPECT_EQ(registry->RegCloseKey(hive), ERROR_SUCCESS);
  }
  EXPECT_EQ(registry->RegOpenKeyA(key, "", &other), ERROR_INVALID_HANDLE);
  EXPECT_EQ(registry->RegCreateKeyA(key, "x", &other), ERROR_INVALID_HANDLE);
  EXPECT_EQ(Put(key, "n", "1"), ERROR_INVALID_HANDLE);
  EXPECT_EQ(Get(key, "n"), "!6");
  EXPECT_EQ(registry->RegDeleteValueA(key, "n"), ERROR_INVALID_HANDLE);
  EXPECT_EQ(ValueNames(key), Names{});
  EXPECT_EQ(SubkeyNames(key), Names{});
}

TEST_F(SqliteRegistryTest, ThereAreNoClasses) {
  HKEY key = 7;
  EXPECT_EQ(registry->RegOpenKeyA(HKEY_CLASSES_ROOT, "CLSID", &key), ERROR_INVALID_HANDLE);
  EXPECT_EQ(registry->RegCreateKeyA(HKEY_CLASSES_ROOT, "CLSID", &key), ERROR_INVALID_HANDLE);
  EXPECT_EQ(key, 7u);
  EXPECT_EQ(Get(HKEY_CLASSES_ROOT, ""), "!6");
  EXPECT_EQ(SubkeyNames(HKEY_CLASSES_ROOT), Names{});
}

TEST_F(SqliteRegistryTest, TheMachinesHiveIsReadAlone) {
  // A user's file, put in the other place.
  Put(Create(kGame), "n", "of the machine");
  registry.reset();
  std::filesystem::create_directories(In("etc"));
  std::filesystem::rename(places.userFile, places.machineFile);
  Start();
  HKEY key = 0;
  ASSERT_EQ(registry->RegOpenKeyA(HKEY_LOCAL_MACHINE, kGame, &key), ERROR_SUCCESS);
  EXPECT_EQ(Get(key, "n"), "of the machine");
  EXPECT_EQ(ValueNames(key), Names{"n"});
  EXPECT_EQ(Put(key, "n", "other"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(registry->RegDeleteValueA(key, "n"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(registry->RegCreateKeyA(HKEY_LOCAL_MACHINE, "Software\\New", &key),
            ERROR_ACCESS_DENIED);
  EXPECT_EQ(registry->RegCreateKeyA(HKEY_LOCAL_MACHINE, kGame, &key), ERROR_SUCCESS);
  EXPECT_EQ(GetIn(*registry, kGame, "n"), "!2");
}

TEST_F(SqliteRegistryTest, TwoInstancesSeeWhatTheOtherWrote) {
  const auto second = Another();
  const HKEY mine = Create(*registry, kGame);
  const HKEY theirs = Create(*second, kGame);
  EXPECT_EQ(Put(*registry, mine, "a", "1"), ERROR_SUCCESS);
  EXPECT_EQ(Put(*second, theirs, "b", "2"), ERROR_SUCCESS);
  EXPECT_EQ(Put(*second, theirs, "A", "3"), ERROR_SUCCESS);
  EXPECT_EQ(Get(*registry, mine, "a"), "3");
  EXPECT_EQ(ValueNames(mine), (Names{"a", "b"}));
  EXPECT_EQ(troubles, Names{});
}

// ---- Writes in groups.

class WriteGroupTest : public SqliteRegistryTest {
 protected:
  static constexpr int kValues = 20;

  void PutAll(SqliteRegistry& in, HKEY key, const std::string& text) {
    for (int n = 0; n < kValues; ++n)
      EXPECT_EQ(Put(in, key, std::to_string(n), text), ERROR_SUCCESS);
  }
  // The texts of all values in the file, each once.
  Names Texts() {
    const auto fresh = Another();
    Names texts;
    for (int n = 0; n < kValues; ++n) texts.push_back(GetIn(*fresh, kGame, std::to_string(n)));
    texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
    return texts;
  }
  static int FlushesOf(const std::function<void()>& work) {
    const int before = flushes;
    work();
    return flushes - before;
  }
};

TEST_F(WriteGroupTest, AGroupCostsTheFlushesOfOneValue) {
  const HKEY key = Create(kGame);
  PutAll(*registry, key, "first");
  const int one = FlushesOf([&] { Put(key, "0", "second"); });
  ASSERT_GT(one, 0);
  EXPECT_EQ(FlushesOf([&] { PutAll(*registry, key, "third"); }), kValues * one);
  EXPECT_EQ(FlushesOf([&] {
              registry->BeginWrites();
              PutAll(*registry, key, "fourth");
              EXPECT_EQ(registry->EndWrites(), ERROR_SUCCESS);
            }),
            one);
  EXPECT_EQ(Texts(), Names{"fourth"});
}

TEST_F(WriteGroupTest, OneWithoutAWriteTouchesNothing) {
  EXPECT_EQ(FlushesOf([&] {
              registry->BeginWrites();
              EXPECT_EQ(GetIn(*registry, kGame, "0"), "!" + std::to_string(ERROR_FILE_NOT_FOUND));
              EXPECT_EQ(registry->EndWrites(), ERROR_SUCCESS);
            }),
            0);
  EXPECT_FALSE(std::filesystem::exists(In("config")));
}

TEST_F(WriteGroupTest, ItIsReadAtOnceHereAndByOthersFromTheOutermostEnd) {
  const HKEY key = Create(kGame);
  PutAll(*registry, key, "old");
  registry->BeginWrites();
  registry->BeginWrites();
  PutAll(*registry, key, "new");
  EXPECT_EQ(Get(key, "7"), "new");
  registry->EndWrites();
  EXPECT_EQ(Get(key, "7"), "new");
  EXPECT_EQ(Texts(), Names{"old"});
  EXPECT_EQ(registry->EndWrites(), ERROR_SUCCESS);
  EXPECT_EQ(Texts(), Names{"new"});
}

TEST_F(WriteGroupTest, WhatFailsInsideLosesNothingOfTheRest) {
  const HKEY key = Create(kGame);
  registry->BeginWrites();
  PutAll(*registry, key, "new");
  EXPECT_EQ(registry->RegDeleteValueA(key, "none"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(Get(key, "none"), "!" + std::to_string(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(registry->EndWrites(), ERROR_SUCCESS);
  EXPECT_EQ(Texts(), Names{"new"});
}

TEST_F(WriteGroupTest, AProgramThatIsKilledInsideOfOneLeavesAllOfTheOldValues) {
  PutAll(*registry, Create(kGame), "old");
  registry.reset();
  const pid_t child = Fork([this] {
    SqliteRegistry own(places);
    HKEY key = 0;
    own.RegCreateKeyA(HKEY_CURRENT_USER, kGame, &key);
    own.BeginWrites();
    for (int n = 0; n < kValues; ++n) own.RegSetValueExA(key, std::to_string(n), REG_SZ, "new", 4);
    return kill(getpid(), SIGKILL);
  });
  EXPECT_EQ(StatusOf(child), 128 + SIGKILL);
  EXPECT_EQ(Texts(), Names{"old"});
  EXPECT_EQ(troubles, Names{});
}

TEST_F(SqliteRegistryTest, ManyProgramsWriteAtOnceAndLoseNothing) {
  constexpr int kPrograms = 4;
  constexpr int kValues = 10;
  std::vector<pid_t> children;
  for (int program = 0; program < kPrograms; ++program) {
    children.push_back(Fork([&] {
      // All of them make the file, too.
      SqliteRegistry own(places);
      HKEY key = 0;
      if (own.RegCreateKeyA(HKEY_CURRENT_USER, kGame, &key) != ERROR_SUCCESS) return 1;
      for (int n = 0; n < kValues; ++n) {
        const std::string name = std::to_string(program) + "-" + std::to_string(n);
        if (own.RegSetValueExA(key, name, REG_SZ, "x", 2) != ERROR_SUCCESS) return 2;
      }
      return 0;
    }));
  }
  for (const pid_t child : children) EXPECT_EQ(StatusOf(child), 0);
  EXPECT_EQ(ValueNames(Create(kGame)).size(), static_cast<std::size_t>(kPrograms * kValues));
  EXPECT_EQ(FilesIn(In("config/kelvaro")), Names{"settings.sqlite3"});
}

TEST_F(SqliteRegistryTest, AFileThatIsNoneIsSetAsideAndTold) {
  PutFile(places.userFile, std::string(5000, 'x'));
  EXPECT_EQ(GetIn(*registry, kGame, "n"), "!2");
  EXPECT_EQ(FilesIn(In("config/kelvaro")), Names{"settings.sqlite3.damaged"});
  EXPECT_EQ(Content(places.userFile + ".damaged"), std::string(5000, 'x'));
  EXPECT_EQ(troubles,
            Names{"The settings file " + places.userFile + " is damaged. It has been renamed to " +
                  places.userFile + ".damaged, and the settings start afresh."});
  EXPECT_EQ(Put(Create(kGame), "n", "new"), ERROR_SUCCESS);
  EXPECT_EQ(GetIn(*registry, kGame, "n"), "new");
  EXPECT_EQ(troubles.size(), 1u);
}

TEST_F(SqliteRegistryTest, AnEarlierDamagedFileIsKept) {
  PutFile(places.userFile + ".damaged", "first");
  PutFile(places.userFile, "second");
  EXPECT_EQ(Put(Create(kGame), "n", "1"), ERROR_SUCCESS);
  EXPECT_EQ(Content(places.userFile + ".damaged"), "first");
  EXPECT_EQ(Content(places.userFile + ".damaged.2"), "second");
}

TEST_F(SqliteRegistryTest, AFileWithDamageInsideIsSetAside) {
  HKEY key = Create(kGame);
  for (int n = 0; n < 100; ++n) Put(key, std::to_string(n), std::string(200, 'x'));
  registry.reset();
  std::string bytes = Content(places.userFile);
  ASSERT_GT(bytes.size(), 5 * 4096u);
  std::fill(bytes.begin() + 4096, bytes.end(), '\xA5');
  PutFile(places.userFile, bytes);
  Start();
  EXPECT_EQ(GetIn(*registry, kGame, "1"), "!2");
  EXPECT_EQ(Content(places.userFile + ".damaged"), bytes);
  EXPECT_EQ(troubles.size(), 1u);
}

TEST_F(SqliteRegistryTest, ATruncatedFileIsSetAside) {
  HKEY key = Create(kGame);
  for (int n = 0; n < 60; ++n) Put(key, std::to_string(n), std::string(200, 'x'));
  registry.reset();
  const std::string bytes = Content(places.userFile);
  // A single byte counts as an empty file.
  for (std::size_t size = 2; size < bytes.size(); size += 1371) {
    SCOPED_TRACE(size);
    std::filesystem::remove(places.userFile + ".damaged");
    PutFile(places.userFile, bytes.substr(0, size));
    troubles.clear();
    Start();
    EXPECT_EQ(GetIn(*registry, kGame, "1"), "!2");
    EXPECT_EQ(troubles.size(), 1u);
    EXPECT_EQ(Content(places.userFile + ".damaged").size(), size);
  }
}

TEST_F(SqliteRegistryTest, OneOfTwoInstancesSetsAsideAndTheOtherFollows) {
  const auto second = Another();
  const HKEY mine = Create(*registry, kGame);
  const HKEY theirs = Create(*second, kGame);
  Put(*registry, mine, "n", "lost");
  EXPECT_EQ(Get(*second, theirs, "n"), "lost");
  PutFile(places.userFile, std::string(20000, 'x'));  // beneath both
  EXPECT_EQ(Put(*registry, Create(*registry, kGame), "n", "new"), ERROR_SUCCESS);
  EXPECT_EQ(Get(*second, theirs, "n"), "new");
  EXPECT_EQ(Put(*second, theirs, "m", "too"), ERROR_SUCCESS);
  EXPECT_EQ(Get(*registry, mine, "m"), "too");
  EXPECT_EQ(FilesIn(In("config/kelvaro")), (Names{"settings.sqlite3", "settings.sqlite3.damaged"}));
  EXPECT_EQ(troubles.size(), 1u);
}

TEST_F(SqliteRegistryTest, AJournalGoesAsideWithItsFile) {
  PutFile(places.userFile, std::string(5000, 'x'));
  // One that is over, by its first byte: SQLite would end any other when it looks at the file.
  PutFile(places.userFile + "-journal", std::string(600, '\0'));
  EXPECT_EQ(Put(Create(kGame), "n", "1"), ERROR_SUCCESS);
  EXPECT_EQ(FilesIn(In("config/kelvaro")), (Names{"settings.sqlite3", "settings.sqlite3.damaged",
                                                  "settings.sqlite3.damaged-journal"}));
  EXPECT_EQ(GetIn(*Another(), kGame, "n"), "1");
}

TEST_F(SqliteRegistryTest, AnotherProgramsDatabaseIsSetAside) {
  for (const char* statement :
       {"CREATE TABLE key (x)", "PRAGMA application_id = 7", "PRAGMA user_version = 1"}) {
    SCOPED_TRACE(statement);
    std::filesystem::remove_all(In("config/kelvaro"));
    std::filesystem::create_directories(In("config/kelvaro"));
    sqlite3_close(Other(statement));
    EXPECT_EQ(Put(Create(kGame), "n", "1"), ERROR_SUCCESS);
    EXPECT_EQ(FilesIn(In("config/kelvaro")),
              (Names{"settings.sqlite3", "settings.sqlite3.damaged"}));
  }
}

TEST_F(SqliteRegistryTest, ALaterProgramsFileIsNeitherReadNorLost) {
  Put(Create(kGame), "n", "1");
  registry.reset();
  sqlite3_close(Other("PRAGMA user_version = 2"));
  const std::string bytes = Content(places.userFile);
  Start();
  HKEY key = 0;
  EXPECT_EQ(registry->RegOpenKeyA(HKEY_CURRENT_USER, kGame, &key), ERROR_ACCESS_DENIED);
  EXPECT_EQ(registry->RegCreateKeyA(HKEY_CURRENT_USER, kGame, &key), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Content(places.userFile), bytes);
  EXPECT_EQ(FilesIn(In("config/kelvaro")), Names{"settings.sqlite3"});
}

TEST_F(SqliteRegistryTest, AFileWithoutItsTablesIsSetAside) {
  for (const char* table : {"key", "value"}) {
    Put(Create(kGame), "n", "1");
    registry.reset();
    sqlite3_close(Other((std::string("DROP TABLE ") + table).c_str()));
    Start();
    EXPECT_EQ(GetIn(*registry, kGame, "n"), "!2") << table;
  }
  EXPECT_EQ(FilesIn(In("config/kelvaro")),
            (Names{"settings.sqlite3.damaged", "settings.sqlite3.damaged.2"}));
}

TEST_F(SqliteRegistryTest, AKeyThatTheFileDoesNotKeepIsRefused) {
  Put(Create(kGame), "n", "1");
  registry.reset();
  sqlite3_close(
      Other("CREATE TRIGGER gone AFTER INSERT ON key"
            " BEGIN DELETE FROM key WHERE id = new.id; END"));
  Start();
  HKEY key = 0;
  EXPECT_EQ(registry->RegCreateKeyA(HKEY_CURRENT_USER, "New", &key), ERROR_ACCESS_DENIED);
  EXPECT_EQ(GetIn(*registry, kGame, "n"), "1");
  EXPECT_EQ(troubles, Names{});
}

// By a program that was stopped between making the file and filling it.
TEST_F(SqliteRegistryTest, AFileThatWasNeverFilledIsFilled) {
  std::filesystem::create_directories(In("config/kelvaro"));
  sqlite3_close(Other("CREATE TABLE gone (x); DROP TABLE gone"));
  ASSERT_NE(Content(places.userFile), "");
  EXPECT_EQ(GetIn(*registry, kGame, "n"), "!2");
  EXPECT_EQ(Put(Create(kGame), "n", "1"), ERROR_SUCCESS);
  EXPECT_EQ(GetIn(*Another(), kGame, "n"), "1");
  EXPECT_EQ(troubles, Names{});
}

TEST_F(SqliteRegistryTest, AFileThatSomebodyFillsIsBusy) {
  std::filesystem::create_directories(In("config/kelvaro"));
  sqlite3* const other = Other("BEGIN EXCLUSIVE");
  HKEY key = 0;
  EXPECT_EQ(registry->RegCreateKeyA(HKEY_CURRENT_USER, kGame, &key), ERROR_BUSY);
  sqlite3_close(other);
  EXPECT_EQ(Put(Create(kGame), "n", "1"), ERROR_SUCCESS);
}

// From each of its reads on.
TEST_F(SqliteRegistryTest, AReadThatFailsIsNoDamage) {
  Put(Create(kGame), "n", "1");
  registry.reset();
  const std::string bytes = Content(places.userFile);
  const DatabaseCall read("pread", Call(ReadOrFail)), read64("pread64", Call(ReadOrFail));
  for (failing = 0;; ++failing) {
    calls = 0;
    Start();
    const std::string found = GetIn(*registry, kGame, "n");
    if (calls <= failing) {
      EXPECT_EQ(found, "1");
      break;
    }
    EXPECT_EQ(found, "!5") << failing;
  }
  EXPECT_GT(failing, 2);
  EXPECT_EQ(Content(places.userFile), bytes);
  EXPECT_EQ(troubles, Names{});
}

// With more at each turn, until it is enough.
TEST_F(SqliteRegistryTest, WithoutMemoryNothingIsReadOrSetAside) {
  Put(Create(kGame), "n", "1");
  registry.reset();
  const std::string bytes = Content(places.userFile);
  const std::int64_t used = sqlite3_memory_used();
  int refused = 0;
  for (std::int64_t more = 1;; more += 500) {
    Start();
    sqlite3_hard_heap_limit64(used + more);
    const std::string found = GetIn(*registry, kGame, "n");
    sqlite3_hard_heap_limit64(0);
    registry.reset();
    ASSERT_TRUE(Content(places.userFile) == bytes) << more;
    if (found == "1") break;
    ASSERT_EQ(found, "!5") << more;
    ++refused;
  }
  EXPECT_GT(refused, 10);
  EXPECT_EQ(troubles, Names{});
}

TEST_F(SqliteRegistryTest, WithoutMemoryNothingOfAKeyIsMade) {
  Put(Create(kGame), "n", "1");
  registry.reset();
  const std::int64_t used = sqlite3_memory_used();
  int refused = 0;
  for (std::int64_t more = 1;; more += 500) {
    Start();
    HKEY key = 0;
    sqlite3_hard_heap_limit64(used + more);
    const std::uint32_t result =
        registry->RegCreateKeyA(HKEY_CURRENT_USER, "Software\\A\\B\\C", &key);
    sqlite3_hard_heap_limit64(0);
    if (result == ERROR_SUCCESS) break;
    ASSERT_EQ(result, ERROR_ACCESS_DENIED) << more;
    ++refused;
    ASSERT_EQ(GetIn(*registry, kGame, "n"), "1") << more;
    ASSERT_EQ(SubkeyNames(Create("Software")), Names{"Game"}) << more;
  }
  EXPECT_GT(refused, 10);
  EXPECT_EQ(troubles, Names{});
}

TEST_F(SqliteRegistryTest, AFullDiskIsToldAndLosesNothing) {
  const DatabaseCall write("pwrite", Call(WriteOrFail)), write64("pwrite64", Call(WriteOrFail));
  for (failing = 0;; ++failing) {
    calls = 0;
    std::filesystem::remove(places.userFile);
    Start();
    HKEY key = 0;
    std::uint32_t result = registry->RegCreateKeyA(HKEY_CURRENT_USER, kGame, &key);
    if (result == ERROR_SUCCESS) result = Put(key, "n", "1");
    if (result == ERROR_SUCCESS) result = Put(key, "n", "2");
    if (calls <= failing) {
      EXPECT_EQ(result, ERROR_SUCCESS);
      break;
    }
    EXPECT_EQ(result, ERROR_DISK_FULL) << failing;
    registry.reset();
    const std::string now = GetIn(*Another(), kGame, "n");
    EXPECT_TRUE(now == "!2" || now == "1") << failing << now;
    const auto next = Another();
    EXPECT_EQ(Put(*next, Create(*next, kGame), "n", "3"), ERROR_SUCCESS) << failing;
  }
  EXPECT_GT(failing, 2);
  EXPECT_EQ(troubles, Names{});
}

TEST_F(SqliteRegistryTest, AFileThatIsReplacedWhileItIsOpenedIsBusy) {
  Put(Create(kGame), "n", "1");
  registry.reset();
  Start();
  const DatabaseCall opened("open", Call(OpenAndAct));
  atOpen = [this] {
    std::filesystem::rename(places.userFile, In("before"));
    std::filesystem::copy_file(In("before"), places.userFile);
  };
  EXPECT_EQ(GetIn(*registry, kGame, "n"), "!170");
  EXPECT_EQ(GetIn(*registry, kGame, "n"), "1");
}

// Another program may be faster with a damaged file.
TEST_F(SqliteRegistryTest, AFileThatIsSoundOrGoneWhenItIsToBeSetAsideStays) {
  const std::string path = places.userFile;
  Put(Create(kGame), "n", "1");
  registry.reset();
  std::filesystem::copy_file(path, In("sound"));
  const DatabaseCall closed("close", Call(CloseAndAct));
  PutFile(path, std::string(5000, 'x'));
  Start();
  atClose = [&] { std::filesystem::rename(In("sound"), path); };
  EXPECT_EQ(GetIn(*registry, kGame, "n"), "1");
  registry.reset();
  PutFile(path, std::string(5000, 'x'));
  Start();
  atClose = [&] { std::filesystem::remove(path); };
  EXPECT_EQ(GetIn(*registry, kGame, "n"), "!2");
  EXPECT_EQ(FilesIn(In("config/kelvaro")), Names{});
  EXPECT_EQ(troubles, Names{});
}

TEST_F(SqliteRegistryTest, ADamagedFileThatCanNotBeRenamedIsNotUsed) {
  PutFile(places.userFile, "damaged");
  WhereRefused({{SYS_rename, EPERM}}, [&] { EXPECT_EQ(GetIn(*registry, kGame, "n"), "!5"); });
  EXPECT_EQ(GetIn(*registry, kGame, "n"), "!5");
  EXPECT_EQ(FilesIn(In("config/kelvaro")), Names{"settings.sqlite3"});
  EXPECT_EQ(troubles, Names{"The settings file " + places.userFile +
                            " is damaged and can't be renamed (Operation not permitted). "
                            "Its settings are not used."});
}

TEST_F(SqliteRegistryTest, WhereFoldersCanNotBeLockedItWorksAsWell) {
  WhereRefused({{SYS_flock, ENOLCK}},
               [&] { EXPECT_EQ(Put(Create(kGame), "n", "1"), ERROR_SUCCESS); });
  EXPECT_EQ(GetIn(*Another(), kGame, "n"), "1");
}

TEST_F(SqliteRegistryTest, WithoutDescriptorsNothingIsReadOrMade) {
  HKEY key = 0;
  WhereRefused({{SYS_openat, EMFILE}}, [&] {
    EXPECT_EQ(registry->RegCreateKeyA(HKEY_CURRENT_USER, kGame, &key), ERROR_ACCESS_DENIED);
  });
  EXPECT_EQ(FilesIn(In("config/kelvaro")), Names{});
  Put(Create(kGame), "n", "1");
  Start();
  WhereRefused({{SYS_openat, EMFILE}}, [&] { EXPECT_EQ(GetIn(*registry, kGame, "n"), "!5"); });
  EXPECT_EQ(GetIn(*registry, kGame, "n"), "1");
}

TEST_F(SqliteRegistryTest, AnEmptyFileIsFilled) {
  PutFile(places.userFile, "");
  EXPECT_EQ(GetIn(*registry, kGame, "n"), "!2");
  EXPECT_EQ(Put(Create(kGame), "n", "1"), ERROR_SUCCESS);
  EXPECT_EQ(GetIn(*Another(), kGame, "n"), "1");
  EXPECT_EQ(troubles, Names{});
}

TEST_F(SqliteRegistryTest, TheMachinesDamagedFileStaysAndIsToldOnce) {
  PutFile(places.machineFile, "damaged");
  HKEY key = 0;
  EXPECT_NE(registry->RegOpenKeyA(HKEY_LOCAL_MACHINE, kGame, &key), ERROR_SUCCESS);
  EXPECT_NE(registry->RegOpenKeyA(HKEY_LOCAL_MACHINE, kGame, &key), ERROR_SUCCESS);
  EXPECT_EQ(SubkeyNames(HKEY_LOCAL_MACHINE), Names{});
  EXPECT_EQ(Content(places.machineFile), "damaged");
  EXPECT_EQ(troubles, Names{"The settings file " + places.machineFile +
                            " is damaged. Its settings are not used."});
}

TEST_F(SqliteRegistryTest, TroublesBeforeTheListenerAreToldThen) {
  PutFile(places.userFile, "damaged");
  SqliteRegistry own(places);
  EXPECT_EQ(GetIn(own, kGame, "n"), "!2");
  Names heard;
  own.OnTrouble([&](const std::string& text) { heard.push_back(text); });
  EXPECT_EQ(heard.size(), 1u);
  own.OnTrouble([&](const std::string& text) { heard.push_back(text); });
  EXPECT_EQ(heard.size(), 1u);
}

TEST_F(SqliteRegistryTest, AReadOnlyFileIsReadAndStaysAsItIs) {
  Put(Create(kGame), "n", "1");
  registry.reset();
  const std::string bytes = Content(places.userFile);
  ASSERT_EQ(chmod(places.userFile.c_str(), 0400), 0);
  Start();
  HKEY key = 0;
  ASSERT_EQ(registry->RegOpenKeyA(HKEY_CURRENT_USER, kGame, &key), ERROR_SUCCESS);
  EXPECT_EQ(Get(key, "n"), "1");
  EXPECT_EQ(Put(key, "n", "2"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(registry->RegDeleteValueA(key, "n"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Content(places.userFile), bytes);
  EXPECT_EQ(troubles, Names{});
}

TEST_F(SqliteRegistryTest, ALockedFileIsBusyAndNoDamage) {
  Put(Create(kGame), "n", "1");
  registry.reset();
  sqlite3* const other = Other("BEGIN EXCLUSIVE");
  Start();
  HKEY key = 0;
  EXPECT_EQ(registry->RegOpenKeyA(HKEY_CURRENT_USER, kGame, &key), ERROR_BUSY);
  EXPECT_EQ(registry->RegCreateKeyA(HKEY_CURRENT_USER, "New", &key), ERROR_BUSY);
  EXPECT_EQ(SubkeyNames(HKEY_CURRENT_USER), Names{});
  sqlite3_close(other);
  EXPECT_EQ(GetIn(*registry, kGame, "n"), "1");
  key = Create(kGame);
  sqlite3* const writer = Other("BEGIN IMMEDIATE");
  EXPECT_EQ(Put(key, "n", "2"), ERROR_BUSY);
  EXPECT_EQ(Get(key, "n"), "1");
  sqlite3_close(writer);
  EXPECT_EQ(troubles, Names{});
}

// As by an instance that was stopped while it made the file, or set one aside.
TEST_F(SqliteRegistryTest, AFolderThatSomebodyKeepsLockedIsBusyAndHoldsUpNobody) {
  std::filesystem::create_directories(In("config/kelvaro"));
  // Gone in the end, so that a wait for it is seen in what comes then.
  const pid_t owner = Fork([&] {
    const int folder = open(In("config/kelvaro").c_str(), O_RDONLY | O_DIRECTORY);
    if (flock(folder, LOCK_EX) != 0) return 1;
    PutFile(In("locked"), "");
    sleep(20);
    return 0;
  });
  ASSERT_TRUE(Eventually([&] { return std::filesystem::exists(In("locked")); }));
  HKEY key = 0;
  EXPECT_EQ(registry->RegCreateKeyA(HKEY_CURRENT_USER, kGame, &key), ERROR_BUSY);
  EXPECT_EQ(registry->RegCreateKeyA(HKEY_CURRENT_USER, kGame, &key), ERROR_BUSY);
  PutFile(places.userFile, std::string(5000, 'x'));
  EXPECT_EQ(registry->RegOpenKeyA(HKEY_CURRENT_USER, kGame, &key), ERROR_BUSY);
  EXPECT_EQ(Content(places.userFile), std::string(5000, 'x'));
  EXPECT_EQ(troubles, Names{});
  kill(owner, SIGKILL);
  EXPECT_NE(StatusOf(owner), 1);
  Create(kGame);
  EXPECT_EQ(FilesIn(In("config/kelvaro")), (Names{"settings.sqlite3", "settings.sqlite3.damaged"}));
}

TEST_F(SqliteRegistryTest, APlaceThatIsNoFileCanNotBeWritten) {
  std::filesystem::create_directories(places.userFile);
  HKEY key = 0;
  EXPECT_EQ(registry->RegCreateKeyA(HKEY_CURRENT_USER, kGame, &key), ERROR_ACCESS_DENIED);
  SqliteRegistry nowhere(RegistryPlaces{});
  EXPECT_EQ(nowhere.RegOpenKeyA(HKEY_CURRENT_USER, kGame, &key), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(nowhere.RegCreateKeyA(HKEY_CURRENT_USER, kGame, &key), ERROR_ACCESS_DENIED);
  ASSERT_EQ(nowhere.RegOpenKeyA(HKEY_CURRENT_USER, kRun, &key), ERROR_SUCCESS);
  EXPECT_EQ(Put(nowhere, key, "Kelvaro", "/x"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Get(nowhere, key, "Kelvaro"), "!2");
  SqliteRegistry tooLong(RegistryPlaces{In(std::string(300, 'x') + "/settings.sqlite3"), "", ""});
  EXPECT_EQ(tooLong.RegOpenKeyA(HKEY_CURRENT_USER, kGame, &key), ERROR_ACCESS_DENIED);
}

TEST_F(SqliteRegistryTest, AFileThatIsTakenAwayIsLeftForTheNewOne) {
  const HKEY key = Create(kGame);
  Put(key, "n", "1");
  std::filesystem::rename(places.userFile, In("elsewhere"));
  EXPECT_EQ(Get(key, "n"), "!2");
  EXPECT_EQ(Put(Create(kGame), "n", "2"), ERROR_SUCCESS);
  EXPECT_EQ(Get(key, "n"), "2");
  EXPECT_EQ(FilesIn(In("config/kelvaro")), Names{"settings.sqlite3"});
}

TEST_F(SqliteRegistryTest, LaunchAtLoginIsAnAutostartEntry) {
  EXPECT_EQ(Put(OpenRun(), "Kelvaro", "/opt/games/kelvaro"), ERROR_SUCCESS);
  EXPECT_EQ(FilesIn(places.autostartFolder), Names{"kelvaro-Kelvaro.desktop"});
  EXPECT_EQ(Autostart("kelvaro-Kelvaro.desktop"),
            "[Desktop Entry]\n"
            "Type=Application\n"
            "Name=Kelvaro\n"
            "Exec=/opt/games/kelvaro\n"
            "Terminal=false\n"
            "X-Kelvaro-Value=Kelvaro\n"
            "X-Kelvaro-Order=1\n");
  EXPECT_FALSE(std::filesystem::exists(places.userFile));
  Start();
  std::uint32_t type = 0;
  std::uint32_t size = 0;
  EXPECT_EQ(registry->RegQueryValueExA(OpenRun(), "kelvaro", &type, nullptr, &size), ERROR_SUCCESS);
  EXPECT_EQ(type, REG_SZ);
  EXPECT_EQ(size, 19u);
  EXPECT_EQ(Get(OpenRun(), "KELVARO"), "/opt/games/kelvaro");
  EXPECT_EQ(registry->RegDeleteValueA(OpenRun(), "kelvaro"), ERROR_SUCCESS);
  EXPECT_EQ(registry->RegDeleteValueA(OpenRun(), "kelvaro"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(FilesIn(places.autostartFolder), Names{});
}

TEST_F(SqliteRegistryTest, TheRunKeyIsReachedByAnyWay) {
  HKEY key = 0;
  EXPECT_EQ(registry->RegCreateKeyA(HKEY_CURRENT_USER, kRun, &key), ERROR_SUCCESS);
  const HKEY upper = Create("SOFTWARE\\Microsoft");
  ASSERT_EQ(registry->RegCreateKeyA(upper, "windows\\currentversion\\run", &key), ERROR_SUCCESS);
  EXPECT_EQ(Put(key, "Kelvaro", "/x"), ERROR_SUCCESS);
  EXPECT_EQ(Get(OpenRun(), "Kelvaro"), "/x");
  EXPECT_EQ(SubkeyNames(OpenRun()), Names{});
  EXPECT_EQ(registry->RegOpenKeyA(key, "below", &key), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(registry->RegCreateKeyA(key, "below", &key), ERROR_ACCESS_DENIED);
  EXPECT_EQ(registry->RegOpenKeyA(HKEY_LOCAL_MACHINE, kRun, &key), ERROR_FILE_NOT_FOUND);
}

TEST_F(SqliteRegistryTest, AutostartValuesKeepTheirOrderAndPlace) {
  const HKEY run = OpenRun();
  for (const char* name : {"z", "a", "m"}) EXPECT_EQ(Put(run, name, "/1"), ERROR_SUCCESS);
  EXPECT_EQ(Put(run, "Z", "/2"), ERROR_SUCCESS);
  EXPECT_EQ(ValueNames(run), (Names{"z", "a", "m"}));
  EXPECT_EQ(Get(run, "z"), "/2");
  registry->RegDeleteValueA(run, "z");
  Put(run, "z", "/3");
  EXPECT_EQ(ValueNames(run), (Names{"a", "m", "z"}));
}

TEST_F(SqliteRegistryTest, OtherProgramsEntriesAreNotTouched) {
  const std::string foreign = "[Desktop Entry]\nType=Application\nExec=/usr/bin/other\n";
  PutFile(places.autostartFolder + "/other.desktop", foreign);
  PutFile(places.autostartFolder + "/kelvaro-Foreign.desktop", foreign);
  PutFile(places.autostartFolder + "/kelvaro-Copy.desktop", foreign + "X-Kelvaro-Value=Original\n");
  const HKEY run = OpenRun();
  EXPECT_EQ(ValueNames(run), Names{});
  for (const char* name : {"Foreign", "Copy"}) {
    EXPECT_EQ(Get(run, name), "!2");
    EXPECT_EQ(Put(run, name, "/x"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(registry->RegDeleteValueA(run, name), ERROR_FILE_NOT_FOUND);
  }
  EXPECT_EQ(Put(run, "other", "/x"), ERROR_SUCCESS);
  EXPECT_EQ(Autostart("other.desktop"), foreign);
  EXPECT_EQ(Autostart("kelvaro-Foreign.desktop"), foreign);
  EXPECT_EQ(FilesIn(places.autostartFolder),
            (Names{"kelvaro-Copy.desktop", "kelvaro-Foreign.desktop", "kelvaro-other.desktop",
                   "other.desktop"}));
}

TEST_F(SqliteRegistryTest, WhatIsNamedOrMadeOtherwiseIsNoEntry) {
  Put(OpenRun(), "Kelvaro", "/x");
  const std::string entry = Autostart("kelvaro-Kelvaro.desktop");
  for (const char* name : {"kelvaro-.desktop", "kelvaro-Another.text", "another-Kelvaro.desktop"})
    PutFile(places.autostartFolder + "/" + name, entry);
  std::filesystem::create_directory(places.autostartFolder + "/kelvaro-Folder.desktop");
  EXPECT_EQ(ValueNames(OpenRun()), Names{"Kelvaro"});
  EXPECT_EQ(Put(OpenRun(), "Folder", "/x"), ERROR_ACCESS_DENIED);
}

TEST_F(SqliteRegistryTest, AnEntryIsThereAsAWholeOrAsItWas) {
  const HKEY run = OpenRun();
  PutFile(places.autostartFolder, "no folder");
  EXPECT_EQ(Put(run, "Kelvaro", "/x"), ERROR_ACCESS_DENIED);
  std::filesystem::remove(places.autostartFolder);
  Put(run, "Kelvaro", "/x");
  for (const long call : {SYS_openat, SYS_write, SYS_fsync, SYS_close, SYS_rename}) {
    WhereRefused({{call, EIO}},
                 [&] { EXPECT_EQ(Put(run, "Kelvaro", "/y"), ERROR_ACCESS_DENIED) << call; });
    EXPECT_EQ(Get(run, "Kelvaro"), "/x") << call;
    EXPECT_EQ(FilesIn(places.autostartFolder), Names{"kelvaro-Kelvaro.desktop"}) << call;
  }
  WhereRefused({{SYS_unlink, EIO}},
               [&] { EXPECT_EQ(registry->RegDeleteValueA(run, "Kelvaro"), ERROR_ACCESS_DENIED); });
  EXPECT_EQ(Get(run, "Kelvaro"), "/x");
}

TEST_F(SqliteRegistryTest, AnEntryThatWasSwitchedOffIsNotThereUntilItIsWritten) {
  const HKEY run = OpenRun();
  for (const char* off : {"Hidden=true\n", "X-GNOME-Autostart-enabled=false\n"}) {
    Put(run, "Kelvaro", "/x");
    PutFile(places.autostartFolder + "/kelvaro-Kelvaro.desktop",
            Autostart("kelvaro-Kelvaro.desktop") + off);
    EXPECT_EQ(Get(run, "Kelvaro"), "!2") << off;
    EXPECT_EQ(ValueNames(run), Names{}) << off;
    EXPECT_EQ(registry->RegDeleteValueA(run, "Kelvaro"), ERROR_FILE_NOT_FOUND) << off;
    EXPECT_EQ(Put(run, "Kelvaro", "/y"), ERROR_SUCCESS);
    EXPECT_EQ(Get(run, "Kelvaro"), "/y") << off;
  }
}

TEST_F(SqliteRegistryTest, OnlyStringsWithNamesForAFileCanStartAtLogin) {
  const HKEY run = OpenRun();
  EXPECT_EQ(registry->RegSetValueExA(run, "n", REG_DWORD, "1234", 4), ERROR_INVALID_PARAMETER);
  for (const std::string& name : {std::string(), std::string("a/b"), std::string("a\nb"),
                                  std::string("a\x7F"), std::string(201, 'x')}) {
    EXPECT_EQ(Put(run, name, "/x"), ERROR_INVALID_PARAMETER) << name;
  }
  EXPECT_EQ(FilesIn(places.autostartFolder), Names{});
  const std::string longest(200, 'x');
  for (const std::string& name : {std::string(" a b\\c"), std::string("..."), longest}) {
    EXPECT_EQ(Put(run, name, "/x"), ERROR_SUCCESS) << name;
    EXPECT_EQ(Get(run, name), "/x") << name;
  }
}

TEST(AutostartEntry, ProgramsAreQuotedByTheEntryRules) {
  const struct {
    std::string program;
    std::string exec;
  } rows[] = {
      {"/usr/bin/kelvaro", "/usr/bin/kelvaro"},
      {"/home/a b/kelvaro", "\"/home/a b/kelvaro\""},
      {"/a\"b", R"("/a\\"b")"},
      {"/a$b", R"("/a\\$b")"},
      {"/a`b", R"("/a\\`b")"},
      {"/a\\b", R"("/a\\\\b")"},
      {"/a%b", "/a%%b"},
      {"/a %f", "\"/a %%f\""},
      {"/a%%", "/a%%%%"},
      {"/a\nb\tc", R"("/a\nb\tc")"},
      {"/it's", "\"/it's\""},
      {"/caf\xC3\xA9", "/caf\xC3\xA9"},
      {" /x ", "\" /x \""},
      {"", "\"\""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(EscapedForEntry(ExecWord(row.program)), row.exec);
    EXPECT_EQ(ProgramOf(UnescapedFromEntry(row.exec)), row.program);
  }
}

TEST(AutostartEntry, AnExecWithArgumentsReadsAsItStands) {
  for (const char* exec : {"/usr/bin/kelvaro --x", "\"/a b\" --x", "\"/never ends",
                           "\"/never ends\\", "'/a b'", "/a%f", "/a%"}) {
    EXPECT_EQ(ProgramOf(exec), exec);
  }
}

TEST(AutostartEntry, ABackslashInQuotesStandsForItselfBeforeOtherCharacters) {
  EXPECT_EQ(ProgramOf(R"("/a\b c")"), R"(/a\b c)");
}

class ConfigFolderTest : public ::testing::Test, protected TemporaryFolder {
 protected:
  const Variable home{"HOME", "/home/player"};
  const Variable config{"XDG_CONFIG_HOME"};
  const Variable data{"XDG_DATA_HOME"};
};

TEST_F(ConfigFolderTest, FollowsTheEnvironment) {
  config.Set("/somewhere/config");
  EXPECT_EQ(ConfigFolder(), "/somewhere/config");
  EXPECT_EQ(UsualRegistryPlaces().userFile, "/somewhere/config/kelvaro/settings.sqlite3");
  EXPECT_EQ(UsualRegistryPlaces().autostartFolder, "/somewhere/config/autostart");
  EXPECT_EQ(UsualRegistryPlaces().machineFile, "/etc/kelvaro/settings.sqlite3");
  for (const char* ignored : {"", "relative/config"}) {
    config.Set(ignored);
    EXPECT_EQ(ConfigFolder(), "/home/player/.config");
  }
  config.Set(nullptr);
  EXPECT_EQ(ConfigFolder(), "/home/player/.config");
}

TEST_F(ConfigFolderTest, WithoutAHomeInTheEnvironmentItIsTheSystemsOrNone) {
  home.Set(nullptr);
  EXPECT_EQ(ConfigFolder(), std::string(getpwuid(getuid())->pw_dir) + "/.config");
  WhereRefused({{SYS_openat, EMFILE}}, [] { EXPECT_EQ(ConfigFolder(), ""); });
  home.Set("relative");
  EXPECT_EQ(ConfigFolder(), "");
  EXPECT_EQ(UsualRegistryPlaces().userFile, "");
}

TEST_F(ConfigFolderTest, FoldersAreMadeDownToTheLast) {
  EXPECT_TRUE(MakeFolders(In("a/b/c")));
  EXPECT_TRUE(std::filesystem::is_directory(In("a/b/c")));
  Put(In("file"), "");
  EXPECT_FALSE(MakeFolders(In("file/d")));
  EXPECT_FALSE(MakeFolders(In("file")));
  EXPECT_FALSE(MakeFolders(""));
}

TEST_F(ConfigFolderTest, SoDoesTheFolderOfAPersonsData) {
  data.Set("/somewhere/data");
  EXPECT_EQ(LinuxSystem().GetUserDataFolder(), "/somewhere/data");
  for (const char* ignored : {"", "relative/data"}) {
    data.Set(ignored);
    EXPECT_EQ(LinuxSystem().GetUserDataFolder(), "/home/player/.local/share");
  }
}

TEST_F(ConfigFolderTest, NothingIsTouchedBeforeTheFirstOperation) {
  config.Set(In("config").c_str());
  LinuxPlatform linuxPlatform;
  SqliteRegistry settings;
  Platform groups = linuxPlatform.Groups();
  groups.registry = &settings;
  const InstalledPlatform installed(groups);
  EXPECT_FALSE(std::filesystem::exists(In("config")));
  HKEY key = 0;
  EXPECT_EQ(platform::registry().RegCreateKeyA(HKEY_CURRENT_USER, kGame, &key), ERROR_SUCCESS);
  EXPECT_TRUE(std::filesystem::exists(In("config/kelvaro/settings.sqlite3")));
}

}  // namespace
}  // namespace platform
