#!/usr/bin/env bash
# run-fuzzers.sh [SECONDS [TARGET...]]: builds the fuzzers and gives each target, or each of the named ones, so many seconds
# (USERAUTH_FUZZ_SECONDS, else one) or USERAUTH_FUZZ_EXECUTIONS, whichever ends first; two at a time where there are two
# processors.
# What they learn stays in build/sanitize-address/corpus; an input that ends a fuzzer lies in build/sanitize-address/findings.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
for piece in common native; do
  # shellcheck source=/dev/null
  . "$root/cmake/setup/$piece.sh"
done

# What was freed is remembered for a while, not for hundreds of megabytes. The stacks of allocations are not: those that lead
# through libraries without frame pointers never repeat. A finding that is run again shows them.
export ASAN_OPTIONS=quarantine_size_mb=64:malloc_context_size=1
export LC_ALL=C.UTF-8
folder=$root/build/sanitize-address
tests=$root/tests/fuzz
programs=(fuzz_service fuzz_suite)
# Bytes of the longest input, where more than 2,048 of them reach other code.
declare -A longest=([http-coded]=16384 [http-reply]=16384 [json-document]=16384 [mask-names]=16384 [mask-values]=16384
  [replies]=16384 [smbios]=16384 [text-base64]=16384 [text-url]=16384)

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
  local target=$2 corpus=$folder/corpus/$2 log=$folder/$2.log dictionary=$tests/${2%%-*}.dict start=$SECONDS
  local home=$folder/fuzzers/$target program=./$1  # the service looks for files beside its program
  # Without entropic scheduling, which takes longer than it saves where an input reaches a thousand places.
  local options=("-max_len=${longest[$target]:-2048}" "-runs=${USERAUTH_FUZZ_EXECUTIONS:--1}" -timeout=60 -rss_limit_mb=1024
    -entropic=0 -reload=0 -print_final_stats=1 "-seed=$seed" "-artifact_prefix=$folder/findings/$target-")
  mkdir -p "$corpus" "$folder/findings" "$home"
  ln -f "$folder/$1" "$folder/scripted-sdk.dll" "$home"
  write_seeds "$target" "$corpus"
  [ ! -f "$dictionary" ] || options+=("-dict=$dictionary")
  if ! (cd "$home" && "$program" "--target=$target" "-max_total_time=$3" "${options[@]}" "$corpus") > "$log" 2>&1 < /dev/null; then
    say "$(grep -aE '^finding:|ERROR: |runtime error:|Test unit written' "$log" || tail -n 20 "$log")
$target: a finding (whole log: $log). Again, with the file named above: (cd $home && $program --target=$target FILE)"
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
running=0
lanes=$(($(nproc) > 1 ? 2 : 1))
await_one() {
  wait -n || failed=1
  running=$((running - 1))
}
# Each in a process group of its own, which ends with this script.
set -m
# shellcheck disable=SC2317 # called by the trap
end_all() {
  local group
  for group in $(jobs -p); do kill -- "-$group" 2> /dev/null || true; done
}
trap end_all EXIT
for program in "${programs[@]}"; do
  for target in $("$folder/$program" --list); do
    known+=" $target "
    [[ $# -eq 0 || " $* " == *" $target "* ]] || continue
    run_target "$program" "$target" "$seconds" &
    running=$((running + 1))
    [ "$running" -lt "$lanes" ] || await_one
  done
done
while [ "$running" -gt 0 ]; do await_one; done
for target in "$@"; do
  [[ $known == *" $target "* ]] || die "no fuzz target $target; there are:$known"
done
exit "$failed"
