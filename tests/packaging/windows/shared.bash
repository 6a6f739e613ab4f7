# What the tests of the downloads share; they run where programs of Wine's find a desktop.
# Sourced with: BUILD_FOLDER VISIT.exe
build=$1 visit=$2
root=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../../..")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
version=$(sed -n 's/^!define VERSION "\(.*\)"/\1/p' "$build/packaging/windows/names.nsh")
programs="kelvaro.exe kelvaroctl.exe rendlink.exe"

fail() { printf 'FAILED: %s\n' "$1"; exit 1; }
expect() { # what, wanted, got
  [ "$2" = "$3" ] || fail "$(printf '%s\nwanted:\n%s\ngot:\n%s' "$1" "$2" "$3")"
}
await() { # condition...
  local i
  for ((i = 0; i < 600; i++)); do
    ! "$@" || return 0
    sleep 0.1
  done
  fail "$* never came"
}
wine() { "$root/tests/windows/wine" "$@"; }
# Lines of a program for Windows.
said() { wine "$@" | tr -d '\r'; }
windows_path() { local path; path=$(realpath -m "$1"); printf 'Z:%s' "${path//\//\\}"; }
pack() { # folder
  SOURCE_DATE_EPOCH=1700000000 "$root/packaging/windows/pack" "$build" "$scratch/$1" ||
    fail "the downloads are made"
}
files() { (cd "$1" && find . -type f -printf '%P\n' | LC_ALL=C sort); }
examples() { (cd "$build/examples/Profiles" && printf '%s\n' *.idprof | LC_ALL=C sort); }
listed() { tr -d '\r' | sed '/^--$/d'; } # of what visit.cc prints
examples_in_window() { examples | sed 's/\.idprof$//'; }
