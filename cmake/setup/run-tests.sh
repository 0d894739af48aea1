#!/usr/bin/env bash
# run-tests.sh BUILD_FOLDER [CTEST_OPTIONS]: runs CTest with Wine awake on the current display. Prints nothing of its own.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
# shellcheck source=/dev/null
. "$root/cmake/setup/common.sh"
# shellcheck source=/dev/null
. "$root/cmake/setup/wine.sh"

# What still runs may belong to another display.
stop_wine
trap stop_wine EXIT
wake_wine
# An open window keeps Wine's desktop up, which every test with a window would otherwise start and wait for. The second
# program returns when the desktop is there.
detached wine notepad &
detached wine rundll32 user32.dll,MessageBeep || true

folder=$1
shift
ctest --test-dir "$folder" --output-on-failure --no-tests=error "$@"
