# shellcheck shell=bash disable=SC2016,SC2154
# The checks of ./dev check; sourced by it. Every one runs; a finding is one line that starts with FILE:LINE.

# step NAME COMMAND...: notes the name when the command finds something. The commands are programs or single pipelines,
# because bash ignores "set -e" inside them.
step() {
  local name=$1
  shift
  "$@" || findings_in+=("$name")
}

check_formatting() { project_files '*.h' '*.cpp' | xargs -d '\n' clang-format --dry-run -Werror; }
# The formatter leaves comments as they are. Counted in characters, so that UTF-8 texts are not longer than they look.
check_line_length() {
  project_files '*.h' '*.cpp' | LC_ALL=C.UTF-8 xargs -d '\n' perl -CSD -ne \
    'if (length($_) > 121) { print "$ARGV:$.: longer than 120 columns\n"; $found = 1 } close ARGV if eof; END { $? = $found ? 1 : $? }'
}
check_scripts() {
  { project_files '*.sh'; project_files | xargs -d '\n' grep -lIm 1 '^#!.*bash'; } | LC_ALL=C sort -u | xargs -d '\n' shellcheck -f gcc
}
check_rooms() { project_files '*.h' '*.cpp' | xargs -d '\n' awk -v files="$(project_files '*.h' '*.cpp')" -f cmake/check/rooms.awk; }
project_files() { cmake/check/files.sh "$@"; }

# run_checks [SOURCE...]: sources for clang-tidy, as absolute paths; without any: all.
run_checks() {
  local findings_in=()
  cd "$root" || die "no such folder: $root"
  step formatting check_formatting
  step "line length" check_line_length
  step words cmake/check/words.sh
  step rooms check_rooms
  step examples cmake/check/readme.sh
  step troubleshooting cmake/check/troubleshooting.sh
  step scripts check_scripts
  # clang-tidy reads the compile commands and the dependencies of an up-to-date build.
  ensure_built
  step clang-tidy cmake/check/tidy.sh "$build" "$@"
  # For a person to decide on: no finding.
  cmake/deps/pins.sh || say "pins: not compared"
  [ "${#findings_in[@]}" -eq 0 ] || die "check: findings in ${findings_in[*]}"
  say "check: nothing found"
}
