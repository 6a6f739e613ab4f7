// kelvaroctl conflicts: which Controls of a profile are in one another's way.

#include "console/conflicts/conflicts.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include "console/commands.h"
#include "console/conflicts/conflict_graph.h"
#include "console/console_error.h"
#include "console/file_machine.h"
#include "console/json_text.h"
#include "console/profile_source.h"
#include "console/profile_text.h"
#include "console/terminal_text.h"
#include "console/text_table.h"
#include "engine/input_text.h"

namespace kelvaro::console {
namespace {

constexpr std::size_t kLongestShown = 16;  // characters

// In the order of Effect.
constexpr struct {
  const char* name;
  const char* means;
} kEffects[] = {
    {"-", "there is no such order"},
    {"fires", ""},
    {"late", "it fires if it is still held when the other's own inputs are let go"},
    {"silent", "it doesn't fire"},
    {"rests", "it wouldn't fire without the other either"},
};

const auto& Of(Effect effect) { return kEffects[static_cast<std::size_t>(effect)]; }

// By their places.
std::vector<const Control*> InOrder(const Profile& profile) {
  std::vector<const Control*> controls;
  profile.profileLock.NotNeeded();
  for (const Control& control : profile.DispatchList) controls.push_back(&control);
  return controls;
}

std::string InputsOf(const Control& control) {
  ByteString text;
  TriggerText(control, &text);
  return TerminalText(text);
}

// "7 'Jump', B1", with no more of the description than a table has room for.
std::string Named(const Control& control) {
  std::string text = TerminalText(control.description);
  if (Characters(text) > kLongestShown) text = FirstCharacters(text, kLongestShown) + "...";
  if (!text.empty()) text = " '" + text + "'";
  const std::string inputs = InputsOf(control);
  return std::to_string(control.controlId) + text + (inputs.empty() ? "" : ", " + inputs);
}

std::string SilencingText(const std::vector<const Control*>& controls,
                          const std::vector<Silencing>& silencings) {
  if (silencings.empty()) return "";
  std::vector<std::vector<std::string>> rows = {{"Kept silent", "by", "at once", "first", "last"}};
  bool isUsed[std::size(kEffects)] = {};
  for (const Silencing& each : silencings) {
    rows.push_back({Named(*controls[each.silenced]), Named(*controls[each.by])});
    for (const Effect effect : {each.atOnce, each.first, each.last}) {
      rows.back().push_back(Of(effect).name);
      isUsed[static_cast<std::size_t>(effect)] = true;
    }
  }
  std::string text = TextTable(rows) +
                     "  What comes of it when its inputs are pressed at once with those that the "
                     "other has\n  besides, first, or last:\n";
  std::vector<std::vector<std::string>> meanings;
  for (std::size_t i = 0; i < std::size(kEffects); ++i) {
    if (isUsed[i] && *kEffects[i].means != '\0') {
      meanings.push_back({"  " + std::string(kEffects[i].name), kEffects[i].means});
    }
  }
  return text + TextTable(meanings);
}

std::string MouseText(const std::vector<const Control*>& controls, const Conflicts& conflicts,
                      bool alwaysOn) {
  if (conflicts.mouseTakings.empty()) return "";
  std::vector<std::vector<std::string>> rows;
  for (const MouseTaking& each : conflicts.mouseTakings) {
    rows.push_back({Named(*controls[each.control]), "loses " + TerminalText(each.inputs)});
  }
  return std::string("  Silent while the mouse controls are on") +
         (alwaysOn ? ", as they always are" : "") + ":\n" + TextTable(rows);
}

using Ids = std::set<std::uint32_t>;

std::string IdsText(const Ids& ids) {
  std::string text;
  for (const std::uint32_t id : ids) text += (text.empty() ? "" : ", ") + std::to_string(id);
  return text;
}

// "2, 3" of those in the table, or "any other here but 4" where that is shorter.
std::string WinnersText(const Ids& winners, std::uint32_t self, const Ids& table) {
  if (!std::includes(table.begin(), table.end(), winners.begin(), winners.end())) {
    return IdsText(winners);
  }
  Ids others = table;
  others.erase(self);
  for (const std::uint32_t id : winners) others.erase(id);
  if (winners.size() <= others.size() + 2) return IdsText(winners);
  return "any other here" + (others.empty() ? "" : " but " + IdsText(others));
}

std::string RepeatText(const std::vector<const Control*>& controls,
                       const std::vector<RepeatLoss>& losses) {
  if (losses.empty()) return "";
  std::map<std::size_t, Ids> winners;
  Ids table;
  for (const RepeatLoss& each : losses) {
    winners[each.loser].insert(controls[each.winner]->controlId);
    table.insert(controls[each.loser]->controlId);
  }
  std::vector<std::vector<std::string>> rows;
  for (const auto& [place, ids] : winners) {
    const Control& loser = *controls[place];
    rows.push_back({Named(loser), "for " + WinnersText(ids, loser.controlId, table)});
  }
  return "  One Control repeats at a time. Held, these stop for another one that begins:\n" +
         TextTable(rows);
}

std::string NeverText(const std::vector<const Control*>& controls,
                      const std::vector<NeverFiring>& never) {
  if (never.empty()) return "";
  std::vector<std::vector<std::string>> rows;
  rows.reserve(never.size());
  for (const NeverFiring& each : never) rows.push_back({Named(*controls[each.control]), each.why});
  return "  Can never fire:\n" + TextTable(rows);
}

void PrintText(const Profile& profile, const Conflicts& conflicts, std::ostream& out) {
  const std::vector<const Control*> controls = InOrder(profile);
  const std::string name = TerminalText(profile.profileName);
  out << (name.empty() ? "(no name)" : name) << ", " << controls.size()
      << (controls.size() == 1 ? " Control" : " Controls") << '\n';
  const std::string sections[] = {
      SilencingText(controls, conflicts.silencings),
      MouseText(controls, conflicts, profile.mouseAlwaysActive),
      RepeatText(controls, conflicts.repeatLosses),
      NeverText(controls, conflicts.neverFiring),
  };
  bool any = false;
  for (const std::string& section : sections) {
    if (section.empty()) continue;
    out << (any ? "\n" : "") << section;
    any = true;
  }
  if (!any) out << "  no Control is in another's way\n";
  out << std::flush;
}

std::string JsonEffect(Effect effect) {
  if (effect == Effect::Impossible) return "null";
  return std::string("\"") + Of(effect).name + "\"";
}

// The others that `mine` leads to in these, as members of a JSON array.
std::string JsonSilencings(const std::vector<const Control*>& controls,
                           const std::vector<Silencing>& silencings, std::size_t place,
                           std::size_t Silencing::*mine, std::size_t Silencing::*others) {
  std::string list;
  for (const Silencing& each : silencings) {
    if (each.*mine != place) continue;
    list += std::string(list.empty() ? "" : ",") +
            "{\"controlId\":" + std::to_string(controls[each.*others]->controlId) +
            ",\"atOnce\":" + JsonEffect(each.atOnce) + ",\"first\":" + JsonEffect(each.first) +
            ",\"last\":" + JsonEffect(each.last) + "}";
  }
  return "[" + list + "]";
}

void PrintJson(const Profile& profile, const Conflicts& conflicts, std::ostream& out) {
  const std::vector<const Control*> controls = InOrder(profile);
  for (std::size_t place = 0; place < controls.size(); ++place) {
    const Control& control = *controls[place];
    std::string winners;
    for (const RepeatLoss& each : conflicts.repeatLosses) {
      if (each.loser != place) continue;
      winners += (winners.empty() ? "" : ",") + std::to_string(controls[each.winner]->controlId);
    }
    std::string mouse;
    for (const MouseTaking& each : conflicts.mouseTakings) {
      if (each.control == place) mouse = each.inputs;
    }
    std::string why;
    for (const NeverFiring& each : conflicts.neverFiring) {
      if (each.control == place) why = each.why;
    }
    ByteString inputs;
    TriggerText(control, &inputs);
    out << "{\"controlId\":" << control.controlId
        << ",\"description\":" << JsonText(control.description)
        << ",\"inputs\":" << JsonText(inputs) << ",\"silences\":"
        << JsonSilencings(controls, conflicts.silencings, place, &Silencing::by,
                          &Silencing::silenced)
        << ",\"silencedBy\":"
        << JsonSilencings(controls, conflicts.silencings, place, &Silencing::silenced,
                          &Silencing::by)
        << ",\"mouseTakes\":" << JsonText(mouse) << ",\"repeatGoesTo\":[" << winners
        << "],\"neverFires\":" << JsonText(why) << "}" << std::endl;
  }
}

}  // namespace

int ConflictsCommand(const ConflictsOptions& options, Streams streams) {
  const FileMachine machine;
  ProfileFile profile;
  if (!FindProfile(options.profile, &profile, streams.err)) return kBad;
  const Conflicts conflicts = FindConflicts(profile);
  if (options.json) {
    PrintJson(profile, conflicts, streams.out);
  } else if (options.dot) {
    streams.out << DotGraph(profile, conflicts) << std::flush;
  } else if (options.svg) {
    streams.out << SvgGraph(profile, conflicts) << std::flush;
  } else {
    PrintText(profile, conflicts, streams.out);
  }
  return kDone;
}

}  // namespace kelvaro::console
