#!/usr/bin/env bash
# run-fuzzers.sh [SECONDS [TARGET...]]: builds the fuzzers and gives each target, or each of the named ones, so many seconds
# (USERAUTH_FUZZ_SECONDS, else one).
# What they learn stays in build/sanitize-address/corpus; an input that ends a fuzzer lies in build/sanitize-address/findings.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
for piece in common native; do
  # shellcheck source=/dev/null
  . "$root/cmake/setup/$piece.sh"
done

# What was freed is remembered for a while, not for hundreds of megabytes.
export ASAN_OPTIONS=quarantine_size_mb=64
export LC_ALL=C.UTF-8
folder=$root/build/sanitize-address
tests=$root/tests/fuzz
programs=(fuzz_service fuzz_suite)

# The file of a target has one seed a line, with the escapes of printf.
write_seeds() {
  local target=$1 corpus=$2 number=0 seed
  [ -f "$tests/seeds/$target" ] || return 0
  while IFS= read -r seed; do
    number=$((number + 1))
    printf '%b' "$seed" > "$corpus/seed-$number"
  done < "$tests/seeds/$target"
}

statistic() { sed -n "s/^stat::$1: *//p" "$2"; }

# run_target PROGRAM TARGET SECONDS
run_target() {
  local program=$folder/$1 target=$2 corpus=$folder/corpus/$2 log=$folder/$2.log dictionary=$tests/${2%%-*}.dict start=$SECONDS
  local options=(-max_len=2048 -timeout=60 -rss_limit_mb=1024 -print_final_stats=1 "-seed=$seed"
    "-artifact_prefix=$folder/findings/$target-")
  mkdir -p "$corpus" "$folder/findings"
  write_seeds "$target" "$corpus"
  [ ! -f "$dictionary" ] || options+=("-dict=$dictionary")
  if ! (cd "$folder" && "$program" "--target=$target" "-max_total_time=$3" "${options[@]}" "$corpus") > "$log" 2>&1 < /dev/null; then
    grep -E '^finding:|ERROR: |runtime error:|Test unit written' "$log" >&2 || tail -n 20 "$log" >&2
    say "$target: a finding (whole log: $log). Again, with the file named above: (cd $folder && $program --target=$target FILE)"
    return 1
  fi
  printf '%-16s %9s executions in %4s s, %4s MB at most\n' "$target" "$(statistic number_of_executed_units "$log")" \
    "$((SECONDS - start))" "$(statistic peak_rss_mb "$log")"
}

seconds=${1:-${USERAUTH_FUZZ_SECONDS:-1}}
# As a test it begins with the same inputs each time; asked for by a person it tries others.
seed=0
[ $# -gt 0 ] || seed=1
[[ $seconds =~ ^[1-9][0-9]*$ ]] || die "fuzz takes a number of seconds, then targets"
[ $# -eq 0 ] || shift
native_build address address,undefined "${programs[@]}"
failed=0
known=
for program in "${programs[@]}"; do
  for target in $("$folder/$program" --list); do
    known+=" $target "
    [[ $# -eq 0 || " $* " == *" $target "* ]] || continue
    run_target "$program" "$target" "$seconds" || failed=1
  done
done
for target in "$@"; do
  [[ $known == *" $target "* ]] || die "no fuzz target $target; there are:$known"
done
exit "$failed"
