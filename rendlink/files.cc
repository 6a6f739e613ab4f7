#include "rendlink/files.h"

#include "foundation/byte_string.h"

namespace kelvaro::rendlink {

bool IsFile(const std::string& path) {
  const std::uint32_t attributes = platform::files().GetFileAttributesA(path);
  return attributes != platform::INVALID_FILE_ATTRIBUTES &&
         (attributes & platform::FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool IsFolder(const std::string& path) {
  const std::uint32_t attributes = platform::files().GetFileAttributesA(path);
  return attributes != platform::INVALID_FILE_ATTRIBUTES &&
         (attributes & platform::FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool ReadFile(const std::string& path, std::uint32_t most, std::string* bytes) {
  const auto file = platform::files().CreateFileA(
      path, platform::GENERIC_READ, platform::FILE_SHARE_READ, platform::OPEN_EXISTING);
  if (!file) return false;
  bytes->clear();
  for (;;) {
    char part[4096];
    std::uint32_t read = 0;
    if (!file->ReadFile(part, sizeof part, &read)) return false;
    if (read == 0) return true;
    if (bytes->size() + read > most) return false;
    bytes->append(part, read);
  }
}

namespace {

bool WriteWhole(const std::string& path, const std::string& bytes) {
  const auto file =
      platform::files().CreateFileA(path, platform::GENERIC_WRITE, 0, platform::CREATE_ALWAYS);
  std::uint32_t written = 0;
  return file &&
         file->WriteFile(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &written) &&
         file->CloseHandle();
}

}  // namespace

bool WriteFile(const std::string& path, const std::string& bytes, std::string* error) {
  const std::string aside = path + ".tmp";
  const bool written = WriteWhole(aside, bytes) && platform::files().CopyFileA(aside, path, false);
  if (!written) *error = ErrorText();
  platform::files().DeleteFileA(aside);  // a rest is written over the next time
  return written;
}

std::string ErrorText(std::uint32_t error) { return Bytes(SystemErrorWords(error)); }

std::string Stem(const std::string& path) {
  const std::string name = path.substr(path.rfind(platform::files().PathSeparator()) + 1);
  const std::size_t dot = name.rfind('.');
  return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

}  // namespace kelvaro::rendlink
