#!/usr/bin/env bash
# files.sh [PATTERN...]: the project's own files, those not committed yet included, one path a line from its root.
# Patterns are globs of file names, such as '*.cpp'; without any: all files. Fails when there is none.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
found=$(mktemp)
trap 'rm -f "$found"' EXIT
# Only as a repository of its own: one around it may ignore this folder.
if [ "$(git rev-parse --show-toplevel 2> /dev/null)" = "$(pwd -P)" ]; then
  # A file that was deleted but not committed yet is still listed.
  git ls-files -co --exclude-standard -- "$@" | while IFS= read -r file; do
    [ ! -f "$file" ] || printf '%s\n' "$file"
  done | LC_ALL=C sort -u > "$found"
else
  names=()
  for pattern in "${@:-*}"; do names+=(-o -name "$pattern"); done
  find . \( -path ./build -o -path ./.git \) -prune -o -type f \( "${names[@]:1}" \) -print |
    sed 's,^\./,,' | LC_ALL=C sort > "$found"
fi
# A check of no file would pass.
[ -s "$found" ] || { printf 'files.sh: no file matches: %s\n' "$*" >&2; exit 1; }
cat "$found"
