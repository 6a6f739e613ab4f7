// kelvaroctl pack: a stored profile of one in JSON.

#include <cerrno>
#include <cstring>

#include "console/commands.h"
#include "console/console_error.h"
#include "console/file_machine.h"
#include "console/json_text.h"
#include "console/profile_json.h"
#include "console/profile_source.h"
#include "console/read_file.h"
#include "foundation/paths.h"

namespace kelvaro::console {
namespace {

// The system's words for the last operation that failed.
std::string LastError() {
  ByteString text = SystemErrorText(platform::files().GetLastError());
  text.TrimRight(0, ' ');
  return text.IsEmpty() ? "it can't be written" : Bytes(text);
}

// What keeps a file from being made at this path, empty for nothing.
std::string Obstacle(const ByteString& path) {
  const std::uint32_t attributes = platform::files().GetFileAttributesA(Bytes(path));
  if (attributes != platform::INVALID_FILE_ATTRIBUTES &&
      (attributes & platform::FILE_ATTRIBUTE_DIRECTORY) != 0) {
    return std::strerror(EISDIR);
  }
  // Saving would make it, and a mistyped path is more likely than the wish for a new folder.
  const ByteString folder = FolderOf(path, false);
  if (!folder.IsEmpty() && !FileExists(folder)) return "there is no such folder";
  return "";
}

}  // namespace

int PackCommand(const PackOptions& options, Streams streams) {
  std::string text;
  std::string error;
  if (!ReadWholeFile(options.in, kMostProfile, &text, &error)) {
    return Complain(streams.err, options.in + ": " + error);
  }
  if (IsStoredProfile(text)) {
    return Complain(streams.err, options.in + ": a stored profile already; pack takes JSON");
  }
  const FileMachine machine;
  ProfileFile profile;
  JsonFault fault;
  if (!ReadProfile(text, &profile, &fault)) {
    return Complain(streams.err, fault.Text(options.in), fault.detail);
  }
  const ByteString out = TextOf(options.out);
  if (const std::string obstacle = Obstacle(out); !obstacle.empty()) {
    return Complain(streams.err, options.out + ": " + obstacle);
  }
  if (!profile.SaveAs(out)) {
    const std::string reason = LastError();
    // A load would take it for what is left of a save that was cut off.
    platform::files().DeleteFileA(options.out + ".tmp");
    return Complain(streams.err, options.out + ": " + reason);
  }
  return kDone;
}

}  // namespace kelvaro::console
