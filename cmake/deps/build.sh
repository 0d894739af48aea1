#!/usr/bin/env bash
# Cross-builds the third-party libraries for 64-bit Windows, once, into a cache outside the project.
#
#   cmake/deps/build.sh LINK_FOLDER [NAME...]
#
# Each recipe in recipes/ pins one Debian source or binary package by version and by the SHA-256 of its files. Its result
# lives in the cache's deps/<name>-<key>; the key covers the recipe, the keys of what it needs and the compiler, so a changed
# recipe rebuilds itself and what stands on it, nothing else. LINK_FOLDER receives one link a library.
#
# A version that the archive has dropped fails. With USERAUTH_ACCEPT_NEWER=1 a newer one that the archive signs stands in for
# it; its version then counts in the key, in the result's file "version", and a line says so in each run.
# shellcheck disable=SC2154 # the sourced pieces and the recipes set them
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
# shellcheck source=/dev/null
. "$root/cmake/setup/common.sh"
# shellcheck source=/dev/null
. "$here/fetch.sh"
readonly recipe_format=3
readonly target=x86_64-w64-mingw32
accept_newer=${USERAUTH_ACCEPT_NEWER:-}
# One library has the same bytes whenever and wherever it is built: the linker and OpenSSL take this for the time of day.
export SOURCE_DATE_EPOCH=315532800
jobs=$(nproc)

# Configures, builds and installs the CMake project in ./source for the target; extra arguments go to configure. No path of
# this machine gets into the result.
cmake_build() {
  CFLAGS="-ffile-prefix-map=$PWD=." CXXFLAGS="-ffile-prefix-map=$PWD=." \
    cmake -S "${cmake_source:-source}" -B cross -G Ninja -DCMAKE_TOOLCHAIN_FILE="$here/../toolchains/mingw-w64.cmake" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" -DCMAKE_INSTALL_LIBDIR=lib "$@"
  cmake --build cross -j "$jobs"
  cmake --install cross
}

# The copyright file of the package that the library comes from goes with its result.
keep_copyright() {
  local file=source/debian/copyright
  [ "${origin%% *}" = source ] || file=package/usr/share/doc/${origin#* }/copyright
  cp "$work/$file" "$prefix/copyright"
}

recipe_of() { echo "$here/recipes/$1.sh"; }
needs_of() { sed -nE 's/^needs="(.*)"$/\1/p' "$(recipe_of "$1")"; }

# Where an earlier run noted the version that stands in for a dropped pin; a changed recipe asks again.
stand_in_note() { echo "$cache/deps/stand-ins/$1-$(sha256sum < "$(recipe_of "$1")" | cut -c1-16)"; }
stand_in() { [ "$accept_newer" != 1 ] || cat "$(stand_in_note "$1")" 2> /dev/null || true; }

key_of() {
  local need
  { echo "$recipe_format" "$compiler" "$(stand_in "$1")"; cat "$(recipe_of "$1")"; for need in $(needs_of "$1"); do key_of "$need"; done; } |
    sha256sum | cut -c1-16
}

# Path of a library's result; a recipe uses it to find what it needs.
result_of() { echo "$cache/deps/$1-$(key_of "$1")"; }

# A subshell, for the recipe's variables and the folder. Not to be called in a condition: bash would ignore "set -e" inside.
build_missing() (
  name=$1
  # shellcheck source=/dev/null
  . "$(recipe_of "$name")"
  work=$cache/deps/building/$name
  prefix=$work/install
  rm -rf "$work"
  mkdir -p "$work"
  cd "$work"
  fetch
  final=$(result_of "$name")
  [ ! -d "$final" ] || exit 0 # built when another checkout took the same stand-in
  say "  building $name $taken ($minutes)"
  set +e
  ( set -e; unpack; recipe; keep_copyright ) > build.log 2>&1 8>&-
  status=$?
  set -e
  [ "$status" -eq 0 ] || { tail -n 40 build.log >&2; die "building $name failed (whole log: $work/build.log)"; }
  [ "$taken" = "$version" ] || taken="$taken instead of the pinned $version"
  printf '%s\n' "$taken" > "$prefix/version"
  mv "$prefix" "$final"
  rm -rf "$work"
)

build_one() {
  local name=$1 need
  [ -z "${seen[$name]:-}" ] || return 0
  seen[$name]=1
  for need in $(needs_of "$name"); do build_one "$need"; done
  if [ ! -d "$(result_of "$name")" ]; then
    # Once a run, and only when something is missing.
    [ -n "${lists_refreshed:-}" ] || refresh_lists ||
      say "  not every package list could be fetched (log: $apt_root/update.log): if a download fails, look there"
    lists_refreshed=1
    build_missing "$name"
  fi
  ln -sfnT "$(result_of "$name")" "$links/$name"
  ! grep -q instead "$links/$name/version" || say "  WARNING: $name is $(cat "$links/$name/version")"
}

[ $# -ge 1 ] || die "usage: build.sh LINK_FOLDER [NAME...]"
lock_libraries
mkdir -p "$1"
links=$(cd "$1" && pwd)
shift
declare -A seen
compiler=$("$target-g++-posix" --version | head -n 1)
if [ $# -eq 0 ]; then
  for recipe_file in "$here"/recipes/*.sh; do set -- "$@" "$(basename "$recipe_file" .sh)"; done
fi
for library in "$@"; do build_one "$library"; done
