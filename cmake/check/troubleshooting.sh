#!/usr/bin/env bash
# shellcheck disable=SC2015,SC2016 # backquotes are text here; a finding sets the status
# Compares the tables of docs/troubleshooting.md with the sources: each text that the service logs at severity 5 and each
# transport code has one row, and no row is left of one that is gone. Prints what differs, as FILE:LINE: text.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
page=docs/troubleshooting.md
status=0
finding() { printf '%s\n' "$1"; status=1; }

# section TITLE: the first cells of that section's table, without backquotes, each behind its line number and a tab.
section() {
  awk -v title="## $1" '$0 == title { on = 1; next } /^## / { on = 0 }
    on && /^\| / { split($0, cell, " [|] "); sub(/^\| /, "", cell[1]); gsub(/`/, "", cell[1]); gsub(/`/, "", cell[2])
      if (++rows > 2) print NR "\t" cell[1] (cell[1] ~ /^-?[0-9]+$/ ? " " cell[2] : "") }' "$page"
}

# The texts in the sources, one a line: FILE:LINE<TAB>TEXT, the variable end of a text left out. An HTTP library's error
# text reaches the log through a hook, whose row begins with "HTTP: ".
texts=$(find src -name '*.cpp' -print0 | sort -z | xargs -0 awk '
  FNR == 1 { call = "" }
  /kSeverityFailure/ && !/HttpLogHook\(kSeverityFailure/ { call = ""; place = FILENAME ":" FNR; open = 1 }
  /HttpLogHook\(kSeverityFailure/ { print FILENAME ":" FNR "\tHTTP: " }
  open { call = call $0 }
  open && /;$/ {
    open = 0
    text = match(call, /L"([^"\\]|\\.)*"/) ? substr(call, RSTART + 2, RLENGTH - 3) : ""
    print place "\t" text
  }')
rows=$(section "The service's failure lines")
while IFS=$'\t' read -r place text; do
  [ -n "$text" ] || { finding "$place: a failure line whose text does not stand in the call: check it by hand"; continue; }
  awk -F '\t' -v text="$text" 'index($2, text) == 1 { found = 1 } END { exit !found }' <<< "$rows" ||
    finding "$place: \"$text\" has no row in $page"
done <<< "$texts"
while IFS=$'\t' read -r line row; do
  awk -F '\t' -v row="$row" '$2 != "" && index(row, $2) == 1 { found = 1 } END { exit !found }' <<< "$texts" ||
    finding "$page:$line: no source logs \"$row\""
done <<< "$rows"

codes=$(sed -nE 's/^ *(kHttp[A-Za-z]+) = (-[0-9]+),.*/\2 \1/p' suite/include/HttpLib.h | sort)
if ! difference=$(diff <(printf '%s\n' "$codes") <(section "Transport codes" | cut -f 2 | sort)); then
  finding "$page:1: its transport codes differ from those of suite/include/HttpLib.h: $difference"
fi
# A check of nothing would pass.
[ "$(wc -l <<< "$texts")" -gt 10 ] && [ "$(wc -l <<< "$codes")" -gt 10 ] || finding "$page:1: the sources were not understood"
exit "$status"
