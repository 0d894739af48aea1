# shellcheck shell=bash disable=SC2154
# The measurements; sourced by ./dev.

# run_bench [FILTER]: prints the table, writes it as JSON, returns the program's verdict.
run_bench() {
  local json=$root/build/bench.json status=0
  wake_wine 20
  # Whoever starts first pays for the libraries' pages and for Wine's own processes.
  "$run_wine" "$build/bin/bench.exe" "nothing has this name" < /dev/null > /dev/null 2>&1 9>&- || true
  "$run_wine" "$build/bin/bench.exe" "${1:-}" "Z:$json" 9>&- < /dev/null | sed -u 's/\r$//' 9>&- || status=${PIPESTATUS[0]}
  say "the same rows as JSON: $json"
  return "$status"
}
