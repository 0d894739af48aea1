# shellcheck shell=bash disable=SC2154
# Third-party libraries, configuration and build; sourced by ./dev.

# The script looks for each library in the cache and says what it has to build.
ensure_libraries() { "$root/cmake/deps/build.sh" "$root/build/deps" 9>&- >&2; }

# What the build folder was configured from: the preset and which build of each library.
configuration_key() {
  { cat "$root/CMakePresets.json" "$root/cmake/toolchains/mingw-w64.cmake"; readlink "$root"/build/deps/*; } | sha256sum
}

ensure_configured() {
  local key
  key=$(configuration_key)
  if [ -f "$build/build.ninja" ] && [ "$(cat "$build/configured-from" 2> /dev/null)" = "$key" ]; then
    return 0
  fi
  say "configuring, 10 seconds"
  (cd "$root" && run_logged "$root/build/configure.log" cmake --fresh --preset "$preset")
  printf '%s\n' "$key" > "$build/configured-from"
}

# ensure_built [TARGET...]: builds the targets, else everything. Prints nothing when there is nothing to build.
ensure_built() {
  ensure_configured
  local plan quietly=()
  plan=$(ninja -C "$build" -n "$@" 9>&- 2>&1) || true
  [[ $plan != *"no work to do"* ]] || return 0
  say "building, a few minutes the first time"
  [ -t 2 ] || quietly=(--quiet)
  ninja -C "$build" "${quietly[@]}" "$@" 9>&- >&2
}
