# shellcheck shell=bash disable=SC2154
# The tests on the build machine under sanitizers, and on the target with checks that trap; sourced by ./dev.

# Not among them: what wants a Windows locale or exit code, and the first GetInstance of a process, which has a process of
# its own.
sanitize_left_out='SysConf.OperationsLog:BoundedFormat.WithoutAHandlerTheProcessEnds:Singleton.*'

# sanitizer_build NAME SANITIZERS TARGET...
sanitizer_build() {
  local folder=$root/build/sanitize-$1 sanitizers=$2
  shift 2
  say "tests under $sanitizers: building, 3 minutes the first time, 4 with the sandbox"
  run_logged "$folder/configure.log" cmake -S "$root/instruments" -B "$folder" -G Ninja -DCMAKE_CXX_COMPILER=clang++ \
    "-DUSERAUTH_SANITIZE=$sanitizers" "-DUSERAUTH_THIRD_PARTY=$root/build/deps"
  run_logged "$folder/build.log" ninja -C "$folder" "$@"
}

# sanitizer_run NAME PROGRAM FILTER: a finding ends the run and shows where it is. Folders lie behind two slashes, which
# the target's rules take for an absolute path.
sanitizer_run() {
  (cd "$root/build/sanitize-$1" &&
    TMPDIR=//tmp TSAN_OPTIONS=halt_on_error=1 \
      "./$2" --gtest_brief=1 "--gtest_filter=$3") 9>&- || die "$2, $1: a finding above"
}

# The unit tests under the address, undefined-behaviour and leak sanitizers.
run_unit_sanitizers() {
  sanitizer_build "$1" "$2" unit_tests
  sanitizer_run "$1" unit_tests "-$sanitize_left_out"
  sanitizer_run "$1" unit_tests 'Singleton.*'
}

# run_allocations: every allocation of every operation, and of the suite's calls, fails once, under the address sanitizer.
run_allocations() {
  local program
  for program in allocation_tests suite_allocation_tests; do
    (cd "$root/build/sanitize-address" && "./$program" --gtest_brief=1) 9>&- || die "$program: a finding above"
  done
}

run_sanitizers() {
  run_unit_sanitizers address address,undefined
  run_allocations
  run_unit_sanitizers thread thread
  say "sanitizers: nothing found"
}
