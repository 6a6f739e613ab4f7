#include "packaging/describe/completion.h"

#include <functional>
#include <map>

namespace kelvaro::describe {
namespace {

// Names, one a line, of what kelvaroctl prints as JSON Lines.
constexpr char kNames[] = R"shell(
_@_names() {
  kelvaroctl "$@" --json 2>/dev/null |
    sed -n 's/^{\("[a-z]*":[0-9]*,\)*"name":"\(\([^"\\]\|\\.\)*\)".*/\2/p' | sed 's/\\\(.\)/\1/g'
}
)shell";

// Both walk the words before the one that is typed: `at` is the command so far, `place` counts the
// words that go by their place, `option` is one that waits for its value.
constexpr char kBash[] = R"shell(
_@_lines() { # what is typed, the front of each reply; lines "reply:meaning"
  local reply
  while IFS= read -r reply; do
    [[ $reply == "$1"* ]] && COMPREPLY+=("$2$reply")
  done
}

_@() {
  local at=@ place=1 option= kind= front= i word
  local cur=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}
  COMPREPLY=()
  # Bash may take NAME=VALUE for three words.
  if [[ $cur == '=' ]]; then
    option=$before= cur=
  elif [[ $before == '=' ]]; then
    option=${COMP_WORDS[COMP_CWORD-2]}=
  elif [[ $cur == *=* && $cur != -* ]]; then
    option=${cur%%=*}= front=$option cur=${cur#*=}
  fi
  local key=$option
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    if [[ $word == -- ]]; then
      kind=file
      break
    elif [[ $option && ! $key ]]; then
      option=
    elif [[ $word == -* ]]; then
      [[ ! $key && $(_@_kind "$at $word") ]] && option=$word
    elif _@_commands "$at" | cut -d: -f1 | grep -qxFe "$word"; then
      at+=" $word" place=1
    else
      ((place++))
    fi
  done
  cur=${cur#[\"\']}
  cur=${cur//\\/}
  if [[ ! $kind && $option ]]; then
    kind=$(_@_kind "$at $option")
  elif [[ ! $kind ]]; then
    if [[ $cur == -* ]]; then
      _@_lines "$cur" < <(_@_options "$at" | cut -d: -f1 | grep '^-')
      return
    fi
    _@_lines "$cur" < <(_@_commands "$at" | cut -d: -f1)
    _@_lines "$cur" < <(_@_options "$at" | cut -d: -f1 | grep '=$')
    if [[ ${COMPREPLY[*]} == *= ]]; then compopt -o nospace; fi
    kind=$(_@_kind "$at $place")
  fi
  # For the quotes; words that end in = must not get any.
  if [[ ${COMPREPLY[*]} != *= ]]; then compopt -o filenames; fi
  case $kind in
    *file) _@_lines '' "$front" < <(compgen -f -- "$cur") ;;
    folder) _@_lines '' "$front" < <(compgen -d -- "$cur") ;;
  esac
  case $kind in
    profile*) _@_lines "$cur" "$front" < <(_@_names profiles) ;;
    pad) _@_lines "$cur" "$front" < <(_@_names devices) ;;
    setting) _@_lines "$cur" "$front" < <(_@_names settings list) ;;
  esac
}
complete -F _@ @
)shell";

constexpr char kZsh[] = R"shell(
_@_offer() { # a title, what asks for the names
  local title=$1
  shift
  local -a names=("${(@f)$(_@_names "$@")}")
  _wanted names expl $title compadd -a names
}

_@() {
  local at=@ place=1 option= kind= i word
  local -a lines
  for ((i = 2; i < CURRENT; i++)); do
    word=${(Q)words[i]}
    if [[ $word == -- ]]; then
      kind=file
      break
    elif [[ -n $option ]]; then
      option=
    elif [[ $word == -* ]]; then
      [[ -n $(_@_kind "$at $word") ]] && option=$word
    elif _@_commands "$at" | cut -d: -f1 | grep -qxFe "$word"; then
      at+=" $word"
      place=1
    else
      ((place++))
    fi
  done
  if [[ -z $kind && -z $option && $PREFIX == *=* && $PREFIX != -* ]]; then
    option=${PREFIX%%=*}=
    compset -P '*='
  fi
  if [[ -z $kind && -n $option ]]; then
    kind=$(_@_kind "$at $option")
  elif [[ -z $kind ]]; then
    if [[ $PREFIX == -* ]]; then
      lines=("${(@f)$(_@_options "$at" | grep '^-')}")
      _describe option lines
      return
    fi
    lines=("${(@f)$(_@_commands "$at")}")
    [[ -n $lines ]] && _describe command lines
    lines=("${(@f)$(_@_options "$at" | grep '^[^-][^:]*=')}")
    [[ -n $lines ]] && _describe option lines -S ''
    kind=$(_@_kind "$at $place")
  fi
  case $kind in
    *file) _files ;;
    folder) _files -/ ;;
  esac
  case $kind in
    profile*) _@_offer profile profiles ;;
    pad) _@_offer pad devices ;;
    setting) _@_offer setting settings list ;;
  esac
}
_@ "$@"
)shell";

constexpr char kFish[] = R"shell(
function __@_names
    kelvaroctl $argv --json 2>/dev/null |
        string match -r '^\{(?:"[a-z]*":[0-9]*,)*"name":"(?:[^"\\\\]|\\\\.)*"' |
        string replace -r '^.*?"name":"(.*)"$' '$1' | string replace -ra '\\\\(.)' '$1'
end
function __@_words # before the one that is typed, without options
    set -l words (commandline -opc)
    set -e words[1]
    string match -v -- '-*' $words | string join ' '
end
function __@_at # just behind this command
    test "$(__@_words)" = "$argv"
end
function __@_in # anywhere behind this command
    string match -q -- "$argv *" "$(__@_words) "
end

complete -c @ -f
)shell";

std::string For(const std::string& program, std::string text) {
  for (std::size_t at = 0; (at = text.find('@', at)) != std::string::npos;) {
    // "${name[@]}" and "$@" are the shell's own.
    const bool own = at > 0 && (text[at - 1] == '[' || text[at - 1] == '$' || text[at - 1] == '(');
    if (own) {
      ++at;
    } else {
      text.replace(at, 1, program);
    }
  }
  return text;
}

std::string Quoted(const std::string& text) {
  std::string out = "'";
  for (const char c : text) out += c == '\'' ? "'\\''" : std::string(1, c);
  return out + '\'';
}

// As fish has it: a backslash before what would end the text.
std::string FishQuoted(const std::string& text) {
  std::string out = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') out += '\\';
    out += c;
  }
  return out + '\'';
}

const char* KindName(Kind kind) {
  switch (kind) {
    case Kind::None:
      return "";
    case Kind::Text:
      return "text";
    case Kind::File:
      return "file";
    case Kind::Folder:
      return "folder";
    case Kind::Profile:
      return "profile";
    case Kind::ProfileOrFile:
      return "profile-or-file";
    case Kind::Pad:
      return "pad";
    case Kind::Setting:
      return "setting";
  }
  return "";
}

void ForEach(const Command& command, const std::function<void(const Command&)>& visit) {
  visit(command);
  for (const Command& each : command.commands) ForEach(each, visit);
}

std::string LastWord(const std::string& name) { return name.substr(name.rfind(' ') + 1); }

// One branch of a case: lines "word:meaning".
std::string Branch(const std::string& name, const std::string& lines) {
  return lines.empty() ? ""
                       : "    " + Quoted(name) + ") cat <<'LINES'\n" + lines + "LINES\n      ;;\n";
}

std::string KindBranches(const Command& command) {
  std::string out;
  int place = 0;
  for (const Option& option : command.options) {
    std::vector<std::string> words = option.names;
    if (words.empty()) words = {std::to_string(++place)};
    if (option.kind == Kind::None) continue;
    for (const std::string& word : words) {
      const bool any = option.names.empty() && option.many;
      out += "    " +
             (any ? Quoted(command.name + ' ') + "[0-9]*" : Quoted(command.name + ' ' + word)) +
             ") echo " + KindName(option.kind) + " ;;\n";
    }
  }
  return out;
}

// Three functions that bash and zsh both read.
std::string Tables(const Command& program) {
  std::string commands, options, kinds;
  ForEach(program, [&](const Command& command) {
    std::string names, words;
    for (const Command& each : command.commands)
      names += LastWord(each.name) + ':' + each.about + '\n';
    for (const Option& option : command.options)
      for (const std::string& name : option.names) words += name + ':' + option.about + '\n';
    commands += Branch(command.name, names);
    options += Branch(command.name, words);
    kinds += KindBranches(command);
  });
  const auto function = [&](const char* name, const std::string& branches) {
    return "\n_" + program.name + '_' + name + "() {\n  case $1 in\n" + branches +
           "    *) ;;\n  esac\n}\n";
  };
  return function("commands", commands) + function("options", options) + function("kind", kinds);
}

// What offers the values of a kind, as fish's options.
std::string FishValues(const std::string& program, Kind kind) {
  const auto names = [&](const char* what) {
    return " -a '(__" + program + "_names " + what + ")'";
  };
  switch (kind) {
    case Kind::None:
    case Kind::Text:
      return "";
    case Kind::File:
    case Kind::Folder:
      return " -F";
    case Kind::Profile:
      return names("profiles");
    case Kind::ProfileOrFile:
      return " -F" + names("profiles");
    case Kind::Pad:
      return names("devices");
    case Kind::Setting:
      return names("settings list");
  }
  return "";
}

std::string FishOption(const std::string& start, const std::string& program, const Option& option) {
  const std::string values = FishValues(program, option.kind);
  const std::string about = " -d " + FishQuoted(option.about);
  if (option.names.empty()) return values.empty() ? "" : start + values + '\n';
  std::string names;
  for (const std::string& name : option.names) {
    if (name.back() == '=') {
      const std::string after =
          option.kind == Kind::Profile ? "(__" + program + "_names profiles)" : "";
      return start + " -a " + FishQuoted(name + after) + about + '\n';
    }
    names += name[1] == '-' ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  const bool files = values.starts_with(" -F");
  const char* const takes = option.value.empty() ? "" : files ? " -r" : " -x";
  return start + names + takes + values + about + '\n';
}

}  // namespace

std::string BashCompletion(const Command& program) {
  return "# Completes " + program.name + " in bash.\n" + Tables(program) +
         For(program.name, std::string(kNames) + kBash);
}

std::string ZshCompletion(const Command& program) {
  return "#compdef " + program.name + '\n' + Tables(program) +
         For(program.name, std::string(kNames) + kZsh);
}

std::string FishCompletion(const Command& program) {
  std::string out = "# Completes " + program.name + " in fish." + For(program.name, kFish);
  ForEach(program, [&](const Command& command) {
    const bool top = command.name == program.name;
    const std::string below = top ? "" : command.name.substr(program.name.size() + 1);
    const auto when = [&](const char* what) {
      return "complete -c " + program.name + " -n " +
             FishQuoted("__" + program.name + what + (below.empty() ? "" : ' ' + below));
    };
    for (const Command& each : command.commands)
      out += when("_at") + " -a " + LastWord(each.name) + " -d " + FishQuoted(each.about) + '\n';
    const bool always = top && command.commands.empty();
    const std::string start =
        always ? "complete -c " + program.name : when(command.commands.empty() ? "_in" : "_at");
    for (const Option& option : command.options) out += FishOption(start, program.name, option);
  });
  return out;
}

}  // namespace kelvaro::describe
