# shellcheck shell=bash disable=SC2154
# Builds for this machine itself; sourced, with $root and the functions of common.sh.

# native_build NAME SANITIZERS [TARGET...]: build/sanitize-NAME, without a target what "./dev test" runs of it. The
# fuzzers and the tests share the one named address.
native_build() {
  local folder=$root/build/sanitize-$1 sanitizers=$2
  shift 2
  if [ ! -f "$folder/build.ninja" ]; then
    say "building for this machine${sanitizers:+ under $sanitizers}, some minutes the first time"
    run_logged "$folder/configure.log" cmake -S "$root/instruments" -B "$folder" -G Ninja -DCMAKE_CXX_COMPILER=clang++ \
      "-DUSERAUTH_SANITIZE=$sanitizers"
  fi
  run_logged "$folder/build.log" ninja -C "$folder" "$@"
}
