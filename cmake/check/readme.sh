#!/usr/bin/env bash
# Checks that README's C++ example is host/readme_example.cpp, which is compiled. Prints the difference.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck disable=SC2016
example=$(sed -n '/^```cpp$/,/^```$/{/^```/d;p}' README.md)
if ! difference=$(diff -u host/readme_example.cpp - <<< "$example"); then
  printf 'README.md:1: its example differs from host/readme_example.cpp:\n%s\n' "$difference"
  exit 1
fi
