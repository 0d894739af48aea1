# shellcheck shell=bash disable=SC2034,SC2154
# Shared by ./dev and its parts; sourced, with $root set to the project's folder.
# What is said goes to standard error: standard output belongs to the program that a command runs.

preset=mingw-release
build=$root/build/$preset
cache=${USERAUTH_CACHE:-${XDG_CACHE_HOME:-${HOME:-}/.cache}/userauthservice}

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

# try_again SECONDS COMMAND...: repeats a failing command, with growing pauses, for so long.
try_again() {
  local seconds=$1 last=$((SECONDS + $1)) pause=2
  shift
  until "$@"; do
    [ $((SECONDS + pause)) -le "$last" ] || return 1
    [ "$pause" -ne 2 ] || say "failed, trying again for up to $seconds s"
    sleep "$pause"
    pause=$((pause < 15 ? pause * 2 : 15))
  done
}

# own_folder FOLDER HINT: makes the folder. It must be the caller's own and writable; else HINT says what to do.
own_folder() {
  mkdir -p "$1" 2> /dev/null || [ -d "$1" ] || die "cannot make the folder $1: $2"
  [ -O "$1" ] || die "$1 belongs to $(stat -c %U "$1"): $2"
  [ -w "$1" ] || die "cannot write in $1: $2"
}

# One ./dev at a time works on a build folder. The lock is descriptor 9; what may outlive this script starts without it.
take_lock() {
  own_folder "$root/build" "use a checkout of your own, where it can be written"
  exec 9> "$root/build/.lock"
  flock -n 9 || { say "waiting for another ./dev in this folder"; flock 9; }
}

# One script at a time works on the cross-built libraries of this machine. The lock is descriptor 8.
lock_libraries() {
  [ -n "${USERAUTH_CACHE:-}${XDG_CACHE_HOME:-}${HOME:-}" ] || die "no HOME: name a folder for the libraries with USERAUTH_CACHE"
  [[ $cache == /* ]] || die "the cache's folder $cache is no absolute path: name one with USERAUTH_CACHE"
  local folder
  for folder in "$cache" "$cache/deps"; do own_folder "$folder" "name a folder of your own with USERAUTH_CACHE"; done
  exec 8> "$cache/deps/lock"
  flock -n 8 || { say "waiting for another build of the libraries"; flock 8; }
}

# empty_folder FOLDER LOCK: removes what is in it, all but the lock that is held: whoever waits for it waits for that file.
empty_folder() { find "$1" -mindepth 1 -maxdepth 1 ! -name "$2" -exec rm -rf {} +; }
