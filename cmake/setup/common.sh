# shellcheck shell=bash disable=SC2034,SC2154
# Shared by ./dev and its parts; sourced, with $root set to the project's folder.
# What is said goes to standard error: standard output belongs to the program that a command runs.

preset=mingw-release
build=$root/build/$preset
cache=${USERAUTH_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/userauthservice}

say() { printf '%s\n' "$*" >&2; }
die() {
  printf 'dev: %s\n' "$*" >&2
  exit 1
}

# run_logged LOG COMMAND...: runs quietly; on failure shows the log's end and stops.
run_logged() {
  local log=$1
  shift
  mkdir -p "$(dirname "$log")"
  if ! "$@" > "$log" 2>&1 < /dev/null 9>&-; then
    tail -n 30 "$log" >&2
    die "failed: $* (whole log: $log)"
  fi
}

# One ./dev at a time works on a build folder. The lock is descriptor 9; what may outlive this script starts without it.
take_lock() {
  mkdir -p "$root/build"
  exec 9> "$root/build/.lock"
  if ! flock -n 9; then
    say "waiting for another ./dev in this folder"
    flock 9
  fi
}
