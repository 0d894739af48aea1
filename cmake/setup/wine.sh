# shellcheck shell=bash disable=SC2034,SC2154
# The project's own Wine prefix; sourced, with $root and the functions of common.sh.

run_wine=$root/cmake/setup/run-wine
export WINEPREFIX=$root/build/wine
# A value of WINEDEBUG other than the caller's own keeps it from remarking on its missing 32-bit part at every start.
export WINEDEBUG=${WINEDEBUG:--all}
# One locale for everybody: file names outside ASCII work, and the ANSI code page is 1252, which the tests count on.
export LC_ALL=C.UTF-8
# No offers to download a .NET or HTML engine, no menu entries on the person's desktop.
export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d'

# Starts something that outlives its starter: no terminal, no inherited stream, no lock.
detached() { setsid "$@" < /dev/null > /dev/null 2>&1 9>&-; }

stop_wine() {
  if [ -d "$WINEPREFIX" ] && command -v wineserver > /dev/null; then
    wineserver -k > /dev/null 2>&1 || true
    wineserver -w > /dev/null 2>&1 || true
  fi
}

# The stamp tells a finished prefix from one whose creation was interrupted.
ensure_wine_prefix() {
  local stamp=$WINEPREFIX/ready
  [ ! -f "$stamp" ] || return 0
  say "creating the Wine prefix, 20 seconds"
  stop_wine
  rm -rf "${WINEPREFIX:?}"
  run_logged "$root/build/wine-prefix.log" wineboot --init
  wineserver -w
  touch "$stamp"
}

# wake_wine [SECONDS]: starts Wine's background processes, which stay for SECONDS after the last program, or until stop_wine.
# The first program starts them otherwise and hands them its streams: whoever reads those would wait for the last of them.
wake_wine() {
  detached wineserver "-p${1:-}" || true # one that runs already is as good
  detached wine cmd /c exit || true
}
