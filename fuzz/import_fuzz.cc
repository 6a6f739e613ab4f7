// Other programs' files of any bytes, read as .amgp or .lyt. Checked: a fault has words and a place
// in the text; so does each note, in rising order; and the profile that comes out has key texts
// that parse, reads back the same, and is the same a second time.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "console/import/foreign_profile.h"
#include "console/profile_json.h"
#include "fuzz/check.h"

namespace {

using namespace kelvaro;
using namespace kelvaro::console;

void CheckPlace(Place place, const std::string& text) {
  const auto lines =
      1 + static_cast<std::size_t>(std::count_if(text.begin(), text.end(),
                                                 [](char c) { return c == '\n' || c == '\r'; }));
  Check(place.line >= 1 && place.line <= lines, "no such line", text);
  Check(place.column >= 1 && place.column <= text.size() + 1, "no such column", text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(bytes), size);
  // The length stands for the options.
  ForeignChoice choice;
  choice.section = size % 3;
  choice.playStation = size % 2 == 1;
  if (size % 5 == 0) choice.axes = {0, 1, 3, 7};

  Profile profile;
  ForeignProfile foreign(profile);
  ForeignFault fault;
  Profile again;
  ForeignProfile foreignAgain(again);
  ForeignFault faultAgain;
  const bool read = ReadForeignProfile(text, choice, &foreign, &fault);
  Check(ReadForeignProfile(text, choice, &foreignAgain, &faultAgain) == read, "another answer",
        text);
  if (!read) {
    Check(!fault.what.empty(), "a fault without words", text);
    Check(fault.what == faultAgain.what && fault.place == faultAgain.place, "another fault", text);
    CheckPlace(fault.place, text);
    return 0;
  }
  Place last;
  for (const ForeignNote& note : foreign.notes) {
    Check(!note.what.empty(), "a note without words", text);
    Check(last <= note.place, "notes out of order", text);
    CheckPlace(note.place, text);
    last = note.place;
  }
  Check(foreign.notes == foreignAgain.notes, "other notes", text);
  const std::string json = ProfileJson(profile);
  Check(json == ProfileJson(again), "read differently", text);
  Profile back;
  JsonFault problem;
  Check(ReadProfile(json, &back, &problem), "can't be read back", problem.Text("f"));
  Check(ProfileJson(back) == json, "reads back as something else", json);
  for (const Control& control : profile.controls) {
    Check(control.Weight() > 0, "a Control without an input", text);
    Check(control.actions.count == 1, "a Control without its keys", text);
  }
  return 0;
}
