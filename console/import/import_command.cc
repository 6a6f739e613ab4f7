// kelvaroctl import: a profile of another program's.

#include <filesystem>

#include "console/commands.h"
#include "console/console_error.h"
#include "console/file_machine.h"
#include "console/import/foreign_profile.h"
#include "console/json_text.h"
#include "console/profile_output.h"
#include "console/profile_source.h"
#include "console/read_file.h"
#include "console/terminal_text.h"
#include "foundation/paths.h"

namespace kelvaro::console {
namespace {

// "pad.lyt:3:9".
std::string PlaceText(const std::string& file, Place place) {
  return file + ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
}

// What a file of that name may be called, without the folder and the endings of such files.
std::string NameOf(const std::string& path) {
  std::string name = std::filesystem::path(path).filename().string();
  for (const char* const ending : {".amgp", ".lyt", ".xml", ".gamecontroller", ".joystick"}) {
    if (name.ends_with(ending)) name.erase(name.size() - std::string(ending).size());
  }
  return name.empty() || name == "-" ? "Imported" : name;
}

std::string NoteLines(const std::string& file, const std::vector<ForeignNote>& notes) {
  std::string lines;
  for (const ForeignNote& note : notes) {
    lines += TerminalText(PlaceText(file, note.place)) +
             (note.leftOut ? ": left out: " : ": different: ") + TerminalText(note.what) + "\n";
  }
  return lines;
}

std::string JsonReport(const std::string& in, const std::string& out,
                       const ForeignProfile& foreign) {
  std::string notes;
  for (const ForeignNote& note : foreign.notes) {
    notes += std::string(notes.empty() ? "" : ",") +
             "{\"line\":" + std::to_string(note.place.line) +
             ",\"column\":" + std::to_string(note.place.column) + ",\"kind\":\"" +
             (note.leftOut ? "left-out" : "different") + "\",\"what\":" + JsonText(note.what) + "}";
  }
  return "{\"file\":" + JsonText(in) + ",\"profile\":" + JsonText(out) +
         ",\"profileName\":" + JsonText(foreign.profile.profileName) +
         ",\"controls\":" + std::to_string(foreign.profile.controls.count) + ",\"notes\":[" +
         notes + "]}";
}

void Report(const ImportOptions& options, const std::string& out, const ForeignProfile& foreign,
            std::ostream& stream) {
  if (options.json) {
    stream << JsonReport(options.in, out, foreign) << std::endl;
    return;
  }
  const std::uint32_t controls = foreign.profile.controls.count;
  stream << TerminalText(out) << ": '" << TerminalText(foreign.profile.profileName) << "', "
         << controls << (controls == 1 ? " Control" : " Controls")
         << (foreign.profile.mouseAlwaysActive ? " and the mouse" : "") << '\n'
         << NoteLines(options.in, foreign.notes) << std::flush;
}

// Where it is told to, or among the stored ones; *path is where.
bool Write(const ImportOptions& options, ProfileFile& profile, std::string* path,
           std::string* error) {
  if (!options.out) {
    if (StoreProfile(profile, path, error)) return true;
    *error += " (--name gives it another name)";
    return false;
  }
  *path = *options.out;
  if (!FileExists(TextOf(*path))) return WriteProfile(profile, *path, error);
  *error = *path + ": there is such a file already";
  return false;
}

}  // namespace

int ImportCommand(const ImportOptions& options, Streams streams) {
  std::string bytes;
  std::string error;
  if (!ReadWholeFile(options.in, kMostProfile, &bytes, &error)) {
    return Complain(streams.err, options.in + ": " + error);
  }
  if (IsStoredProfile(bytes)) {
    return Complain(streams.err, options.in + ": a profile of Kelvaro already");
  }
  const FileMachine machine;
  ProfileFile profile;
  profile.profileName = TextOf(NameOf(options.in));
  ForeignProfile foreign(profile);
  ForeignFault fault;
  if (!ReadForeignProfile(bytes, {options.section, options.axes, options.playStation}, &foreign,
                          &fault)) {
    return Complain(streams.err, PlaceText(options.in, fault.place) + ": " + fault.what);
  }
  if (foreign.IsEmpty()) {
    return Complain(streams.err, options.in + ": nothing of it can be brought over",
                    NoteLines(options.in, foreign.notes));
  }
  if (options.name) profile.profileName = TextOf(*options.name);
  std::string path;
  if (!Write(options, profile, &path, &error)) return Complain(streams.err, error);
  Report(options, path, foreign, streams.out);
  return kDone;
}

}  // namespace kelvaro::console
