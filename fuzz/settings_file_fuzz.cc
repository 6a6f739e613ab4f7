// Files of settings of any bytes. Checked: a value that is written is read back, by this opening
// and by the next; an enumeration ends; and the bytes of a file that can't be used are still there.
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "app/platform/linux/settings/settings_file.h"
#include "fuzz/check.h"

namespace {

namespace fs = std::filesystem;
using platform::SettingsFile;
using platform::StoredValue;

constexpr std::uint32_t kMostItems = 100'000;

struct Folder {
  Folder() {
    // In memory where there is such a place: each write is flushed.
    const fs::path memory = "/dev/shm";
    const fs::path above = fs::is_directory(memory) ? memory : fs::temp_directory_path();
    std::string name = (above / "kelvaro-fuzz-XXXXXX").string();
    if (!mkdtemp(name.data())) std::abort();
    path = name;
  }
  ~Folder() { fs::remove_all(path); }
  fs::path path;
};

std::string BytesOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void LookAtAll(SettingsFile* file, const SettingsFile::Key& key) {
  StoredValue value;
  std::string name;
  std::uint32_t index = 0;
  while (file->ValueAt(key, index, &value) == platform::ERROR_SUCCESS && index < kMostItems)
    ++index;
  Check(index < kMostItems, "values without end");
  for (index = 0;
       file->KeyAt(key, index, &name) == platform::ERROR_SUCCESS && index < kMostItems;) {
    ++index;
  }
  Check(index < kMostItems, "keys without end");
}

bool Holds(SettingsFile* file, const SettingsFile::Key& key, const StoredValue& wanted) {
  StoredValue found;
  return file->Read(key, wanted.name, &found) == platform::ERROR_SUCCESS &&
         found.type == wanted.type && found.data == wanted.data;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Folder folder;
  for (const auto& left : fs::directory_iterator(folder.path)) fs::remove(left);
  const fs::path path = folder.path / "settings";
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  std::ofstream(path, std::ios::binary) << bytes;

  int told = 0;
  const SettingsFile::Key key{"Software", "Kelvaro"};
  const StoredValue value{"Fuzzed", 3, std::string("\0ab", 3)};
  bool written;
  {
    SettingsFile file(path, SettingsFile::Kind::OfTheUser, [&told](const std::string&) { ++told; });
    LookAtAll(&file, {});
    LookAtAll(&file, key);
    written = file.MakeKey(key) == platform::ERROR_SUCCESS &&
              file.Write(key, value) == platform::ERROR_SUCCESS;
    if (written) Check(Holds(&file, key, value), "a value that was written isn't there");
    LookAtAll(&file, key);
  }
  if (written) {
    SettingsFile again(path, SettingsFile::Kind::OfTheUser, [](const std::string&) {});
    Check(Holds(&again, key, value), "a value that was written isn't there the next time");
  }
  if (told > 0 && !written) Check(BytesOf(path) == bytes, "an unusable file has changed");
  if (told > 0 && written) {
    Check(BytesOf(path.string() + ".damaged") == bytes, "the bytes of a damaged file are lost");
  }
  return 0;
}
