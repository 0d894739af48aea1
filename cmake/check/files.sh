#!/usr/bin/env bash
# files.sh [PATTERN...]: the project's own files, those not committed yet included, one path a line from its root.
# Patterns are globs of file names, such as '*.cpp'; without any: all files.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
if git rev-parse --is-inside-work-tree > /dev/null 2>&1; then
  # A file that was deleted but not committed yet is still listed.
  git ls-files -co --exclude-standard -- "$@" | while IFS= read -r file; do
    [ ! -f "$file" ] || printf '%s\n' "$file"
  done | LC_ALL=C sort -u
else
  names=()
  for pattern in "$@"; do names+=(-o -name "$pattern"); done
  find . \( -path ./build -o -path ./.git \) -prune -o -type f \( "${names[@]:1}" \) -print | sed 's,^\./,,' | LC_ALL=C sort
fi
