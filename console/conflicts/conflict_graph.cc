#include "console/conflicts/conflict_graph.h"

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "console/profile_text.h"
#include "console/svg.h"
#include "console/terminal_text.h"
#include "engine/input_text.h"

namespace kelvaro::console {
namespace {

// A Control that is in the picture.
struct Line {
  std::size_t place;  // in the DispatchList
  std::string name;
  std::string inputs;
  std::string note;  // what the mouse controls take, or why it never fires
};

// Those that take the repeat from one another would be joined each to each.
bool IsOneWay(const RepeatLoss& loss, const std::vector<RepeatLoss>& all) {
  return std::none_of(all.begin(), all.end(), [&](const RepeatLoss& other) {
    return other.loser == loss.winner && other.winner == loss.loser;
  });
}

std::vector<Line> Lines(const Profile& profile, const Conflicts& conflicts) {
  std::set<std::size_t> places;
  std::map<std::size_t, std::string> notes;
  for (const Silencing& each : conflicts.silencings) places.insert({each.by, each.silenced});
  for (const RepeatLoss& each : conflicts.repeatLosses) {
    places.insert({each.loser, each.winner});
    if (!IsOneWay(each, conflicts.repeatLosses)) notes[each.loser] = "repeats";
  }
  for (const MouseTaking& each : conflicts.mouseTakings) {
    std::string& note = notes[each.control];
    note += (note.empty() ? "mouse: " : ", mouse: ") + TerminalText(each.inputs);
  }
  for (const NeverFiring& each : conflicts.neverFiring) notes[each.control] = "never: " + each.why;
  for (const auto& [place, note] : notes) places.insert(place);
  std::vector<Line> lines;
  std::size_t place = 0;
  profile.profileLock.NotNeeded();
  for (const Control& control : profile.DispatchList) {
    if (places.count(place) > 0) {
      ByteString inputs;
      TriggerText(control, &inputs);
      lines.push_back({place, ControlName(control), TerminalText(inputs), notes[place]});
    }
    ++place;
  }
  return lines;
}

bool MayComeFirst(const Silencing& silencing) { return silencing.first == Effect::Fires; }

std::string DotText(const std::string& text) {
  std::string escaped;
  for (const char c : text) escaped += (c == '"' || c == '\\' ? "\\" : "") + std::string(1, c);
  return escaped;
}

constexpr std::size_t kRow = 28;      // from line to line; all in the picture's own units
constexpr std::size_t kLetter = 8;    // at least as wide as a letter is
constexpr std::size_t kGap = 12;      // between a text and an arc
constexpr std::size_t kArcStep = 14;  // how much further out an arc goes for each line it passes
constexpr std::size_t kMargin = 16;

class Picture {
 public:
  Picture(const Profile& profile, const Conflicts& conflicts)
      : lines(Lines(profile, conflicts)), conflicts(conflicts) {
    for (std::size_t i = 0; i < lines.size(); ++i) {
      rows[lines[i].place] = i;
      text = std::max(text, Characters(TextOfLine(lines[i])) * kLetter);
    }
    for (const RepeatLoss& each : conflicts.repeatLosses) {
      if (IsOneWay(each, conflicts.repeatLosses)) Widen(each.loser, each.winner, &left);
    }
    for (const Silencing& each : conflicts.silencings) Widen(each.by, each.silenced, &right);
  }

  std::string Svg() const {
    std::string svg =
        "<defs><marker id=\"end\" viewBox=\"0 0 10 10\" refX=\"9\" refY=\"5\" "
        "markerWidth=\"9\" markerHeight=\"9\" markerUnits=\"userSpaceOnUse\" orient=\"auto\">"
        "<path d=\"M0 0L10 5L0 10z\"/></marker></defs>\n";
    for (const Line& line : lines) {
      svg += SvgText(kMargin + left + kGap, Middle(line.place) + 4, TextOfLine(line));
    }
    for (const Silencing& each : conflicts.silencings) {
      svg += Arc(each.by, each.silenced, true,
                 MayComeFirst(each) ? "stroke-width=\"1\"" : "stroke-width=\"2.5\"");
    }
    for (const RepeatLoss& each : conflicts.repeatLosses) {
      if (!IsOneWay(each, conflicts.repeatLosses)) continue;
      svg += Arc(each.loser, each.winner, false, "stroke-dasharray=\"4 3\"");
    }
    return SvgPicture(left + text + right + 2 * (kMargin + kGap), lines.size() * kRow + 2 * kMargin,
                      svg);
  }

 private:
  static std::string TextOfLine(const Line& line) {
    return line.name + "  " + line.inputs + (line.note.empty() ? "" : "  (" + line.note + ")");
  }

  std::size_t Middle(std::size_t place) const { return kMargin + rows.at(place) * kRow + kRow / 2; }

  // How far out the arc between two lines goes.
  std::size_t Reach(std::size_t from, std::size_t to) const {
    const std::size_t a = rows.at(from);
    const std::size_t b = rows.at(to);
    return kArcStep * (1 + std::max(a, b) - std::min(a, b));
  }

  void Widen(std::size_t from, std::size_t to, std::size_t* side) const {
    *side = std::max(*side, Reach(from, to));
  }

  std::string Arc(std::size_t from, std::size_t to, bool onRight, const std::string& style) const {
    const std::size_t begin = onRight ? kMargin + left + kGap + text + kGap : kMargin + left;
    const std::size_t reach = Reach(from, to);
    // The middle of such a curve is three quarters of the way out.
    const std::size_t out = onRight ? begin + reach : begin - reach;
    const auto number = [](std::size_t value) { return std::to_string(value); };
    // An arc that leads up ends where one that leads down begins.
    const std::size_t shift = from < to ? 0 : 6;
    return "<path d=\"M" + number(begin) + " " + number(Middle(from) + 3 - shift) + "C" +
           number(out) + " " + number(Middle(from)) + " " + number(out) + " " + number(Middle(to)) +
           " " + number(begin) + " " + number(Middle(to) - 3 + shift) +
           "\" fill=\"none\" stroke=\"black\" " + style + " marker-end=\"url(#end)\"/>\n";
  }

  const std::vector<Line> lines;
  const Conflicts& conflicts;
  std::map<std::size_t, std::size_t> rows;  // of each place
  std::size_t text = 0;                     // widths
  std::size_t left = 0;
  std::size_t right = 0;
};

}  // namespace

std::string DotGraph(const Profile& profile, const Conflicts& conflicts) {
  const auto node = [](std::size_t place) { return "c" + std::to_string(place + 1); };
  std::string dot =
      "digraph \"" + DotText(TerminalText(profile.profileName)) + "\" {\n  node [shape=box];\n";
  for (const Line& line : Lines(profile, conflicts)) {
    dot += "  " + node(line.place) + " [label=\"" + DotText(line.name) + "\\n" +
           DotText(line.inputs) + (line.note.empty() ? "" : "\\n" + DotText(line.note)) + "\"];\n";
  }
  for (const Silencing& each : conflicts.silencings) {
    dot += "  " + node(each.by) + " -> " + node(each.silenced) +
           (MayComeFirst(each) ? "" : " [style=bold]") + ";\n";
  }
  for (const RepeatLoss& each : conflicts.repeatLosses) {
    if (!IsOneWay(each, conflicts.repeatLosses)) continue;
    dot += "  " + node(each.loser) + " -> " + node(each.winner) +
           " [style=dashed, constraint=false];\n";
  }
  return dot + "}\n";
}

std::string SvgGraph(const Profile& profile, const Conflicts& conflicts) {
  return Picture(profile, conflicts).Svg();
}

}  // namespace kelvaro::console
