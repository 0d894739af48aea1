#!/usr/bin/env bash
# Compares the recipes' versions with what the archive has now, and says which are behind. Lists of the last day are good
# enough; without a network nothing is compared, and that is no failure.
# shellcheck disable=SC2154 # the sourced pieces and the recipes set them
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
# shellcheck source=/dev/null
. "$root/cmake/setup/common.sh"
# shellcheck source=/dev/null
. "$here/fetch.sh"

lock_libraries
if [ -z "$(find "$apt_root/refreshed" -mmin -1440 2> /dev/null)" ]; then
  mkdir -p "$apt_root"
  refresh_lists -o Acquire::http::Timeout=10 -o Acquire::https::Timeout=10 -o Acquire::Retries=0 8>&- ||
    { say "pins: not compared, the archive's lists did not come (log: $apt_root/update.log)"; exit 0; }
fi
mapfile -t packages < <(sed -nE 's/^origin="[a-z]+ (.*)"$/\1/p' "$here"/recipes/*.sh)
lines=$(archive_lists "${packages[@]}")
for recipe_file in "$here"/recipes/*.sh; do
  # shellcheck source=/dev/null
  . "$recipe_file"
  name=$(basename "$recipe_file" .sh)
  newer=$(newer_versions "$lines" "$origin" "$version")
  [ -z "$newer" ] || say "pins: $name $version is behind, the archive lists ${newer%%$'\n'*}"
  grep -qxF -e "$origin $version" <<< "$lines" || say "pins: the archive no longer lists $name $version"
done
