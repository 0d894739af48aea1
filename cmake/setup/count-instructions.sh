# shellcheck shell=bash disable=SC2154,SC2016
# Instruction counts of the measurements' rows; sourced by ./dev.

# count_instructions [FILTER]: builds the subjects for this machine and prints what callgrind counted for a call of each side.
count_instructions() {
  local counts=$root/build/instructions
  native_build none "" count-instructions
  rm -rf "$counts"
  mkdir -p "$counts"
  (cd "$root/build/sanitize-none/instructions" && valgrind --tool=callgrind --collect-atstart=no "--callgrind-out-file=$counts/out" \
    ./count-instructions "$@") > "$counts/log" 2>&1 < /dev/null 9>&- || die "counting failed; see $counts/log"
  compgen -G "$counts/out.?*" > /dev/null || die "no row of single calls has that name"
  echo '| what | instructions | reference | ratio |'
  echo '| --- | --- | --- | --- |'
  # The newest count of each row and side; "50|ours|NAME" says of how many calls.
  find "$counts" -name 'out.*' -print0 | sort -zV | xargs -0 awk '
    /^desc: Trigger: Client Request: / { sub(/^desc: Trigger: Client Request: /, ""); split($0, name, "|") }
    /^totals: / && name[2] == "ours" { ours = $2 / name[1]; name[2] = "" }
    /^totals: / && name[2] == "reference" {
      reference = $2 / name[1]; name[2] = ""
      printf "| %s | %d | %d | %.2f |\n", name[3], ours, reference, ours / reference
    }'
}
