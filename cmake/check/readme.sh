#!/usr/bin/env bash
# Checks that the C++ examples of the documents are the sources that are compiled: all blocks of a document, one after the
# other with an empty line between, are its source. Prints the difference.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
status=0
while read -r document source; do
  example=$(awk '/^```cpp$/ { on = 1; if (blocks++) print ""; next } /^```$/ { on = 0 } on' "$document")
  if ! difference=$(diff -u "$source" - <<< "$example"); then
    printf '%s:1: its example differs from %s:\n%s\n' "$document" "$source" "$difference"
    status=1
  fi
done << 'PAIRS'
README.md host/readme_example.cpp
docs/integrating.md host/integrating_example.cpp
PAIRS
exit "$status"
