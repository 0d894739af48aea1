#!/usr/bin/env bash
# Prints every line of the project that holds a word of forbidden-words.txt, as FILE:LINE: text. Exit code 1 if there is one.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$here/../.."

found=0
while read -r scope pattern; do
  case "$scope" in
    all) globs=() ;;
    cpp) globs=('*.h' '*.cpp') ;;
    '' | '#'*) continue ;;
    *)
      printf 'forbidden-words.txt: unknown scope "%s"\n' "$scope" >&2
      exit 2
      ;;
  esac
  files=$("$here/files.sh" "${globs[@]}") || exit 2
  # grep's failure is that it found nothing.
  lines=$(xargs -d '\n' grep -nHIE -e "$pattern" <<< "$files") || [ -n "$lines" ] || continue
  sed -E 's/^([^:]*:[0-9]+): */\1: forbidden: /' <<< "$lines"
  found=1
done < "$here/forbidden-words.txt"
exit "$found"
