# shellcheck shell=bash disable=SC2154
# The unit tests on the build machine under sanitizers; sourced by ./dev.

# Not among them: what wants a Windows locale or exit code, and the first GetInstance of a process, which has a process of
# its own.
sanitize_left_out='SysConf.OperationsLog:BoundedFormat.WithoutAHandlerTheProcessEnds:Singleton.*'

# run_sanitizer NAME SANITIZERS: builds the tests and runs them; a finding ends the run and shows where it is.
run_sanitizer() {
  local folder=$root/build/sanitize-$1 filter
  say "unit tests under $2: building, 3 minutes the first time"
  run_logged "$folder/configure.log" cmake -S "$root/instruments" -B "$folder" -G Ninja -DCMAKE_CXX_COMPILER=clang++ \
    "-DUSERAUTH_SANITIZE=$2"
  run_logged "$folder/build.log" ninja -C "$folder"
  for filter in "-$sanitize_left_out" 'Singleton.*'; do
    (cd "$folder" && TSAN_OPTIONS=halt_on_error=1 ./unit_tests --gtest_brief=1 "--gtest_filter=$filter") 9>&- ||
      die "unit tests under $2: a finding above"
  done
}

# run_allocations: every allocation of every operation, and of the suite's calls, fails once, under the address sanitizer.
run_allocations() {
  local program
  for program in allocation_tests suite_allocation_tests; do
    (cd "$root/build/sanitize-address" && "./$program" --gtest_brief=1) 9>&- || die "$program: a finding above"
  done
}

run_sanitizers() {
  run_sanitizer address address,undefined
  run_allocations
  run_sanitizer thread thread
  say "sanitizers: nothing found"
}
