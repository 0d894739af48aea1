#!/usr/bin/env bash
# Cross-builds the third-party libraries for 64-bit Windows, once, into a cache outside the project.
#
#   cmake/deps/build.sh LINK_FOLDER [NAME...]
#
# Each recipe in recipes/ pins one Debian source or binary package. Its result lives in
# $USERAUTH_CACHE/deps/<name>-<key>; the key covers the recipe, the keys of what it needs and the compiler,
# so a changed recipe rebuilds itself and what stands on it, nothing else. LINK_FOLDER receives one link a library.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cache=${USERAUTH_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/userauthservice}/deps
apt_root=$cache/apt
readonly recipe_format=1
readonly target=x86_64-w64-mingw32
jobs=$(nproc)

# Private to one apt call: our own lists and archives, so the machine's package sources stay as they are.
apt_options=(-o Dir::Etc::SourceList="$apt_root/sources/all.list" -o Dir::Etc::SourceParts="$apt_root/sources"
  -o Dir::State::Lists="$apt_root/lists" -o Dir::Cache="$apt_root/cache" -o APT::Sandbox::User= -qq)

say() { printf '  %s\n' "$*"; }
die() { printf 'deps: %s\n' "$*" >&2; exit 1; }

# Copies the machine's configured sources, adding the type deb-src to each entry. Done once a run, when first needed.
apt_prepare() {
  [ -z "${apt_ready:-}" ] || return 0
  rm -rf "$apt_root/sources"
  mkdir -p "$apt_root/sources" "$apt_root/lists/partial" "$apt_root/cache/archives/partial"
  : > "$apt_root/sources/all.list"
  if [ -f /etc/apt/sources.list ]; then
    sed -nE 's/^deb /deb-src /p; /^deb /p' /etc/apt/sources.list > "$apt_root/sources/all.list"
  fi
  local entry
  for entry in /etc/apt/sources.list.d/*.sources; do
    [ -f "$entry" ] && sed -E 's/^Types:.*/Types: deb deb-src/' "$entry" > "$apt_root/sources/$(basename "$entry")"
  done
  for entry in /etc/apt/sources.list.d/*.list; do
    [ -f "$entry" ] && sed -nE 's/^deb /deb-src /p; /^deb /p' "$entry" > "$apt_root/sources/$(basename "$entry")"
  done
  apt-get "${apt_options[@]}" update ||
    say "not every package list could be fetched: check the network and the machine's package sources if a download fails"
  apt_ready=1
}

# fetch_source PACKAGE VERSION: unpacks the source package into ./source. apt verifies what it downloads.
fetch_source() {
  apt_prepare
  if ! apt-get "${apt_options[@]}" source --download-only --only-source "$1=$2" > fetch.log 2>&1; then
    say "$1 $2 can no longer be downloaded; taking the version that the package source still has"
    apt-get "${apt_options[@]}" source --download-only --only-source "$1" > fetch.log 2>&1 ||
      { cat fetch.log >&2; die "no source of $1 could be downloaded"; }
  fi
  dpkg-source --no-check -x ./*.dsc source > unpack.log 2>&1 || { cat unpack.log >&2; die "unpacking $1 failed"; }
}

# fetch_package PACKAGE VERSION: unpacks a binary package into ./package.
fetch_package() {
  apt_prepare
  if ! apt-get "${apt_options[@]}" download "$1=$2" > fetch.log 2>&1; then
    say "$1 $2 can no longer be downloaded; taking the version that the package source still has"
    apt-get "${apt_options[@]}" download "$1" > fetch.log 2>&1 || { cat fetch.log >&2; die "$1 could not be downloaded"; }
  fi
  local archive
  for archive in "$1"_*.deb; do dpkg-deb -x "$archive" package; done
}

# Configures, builds and installs the CMake project in ./source for the target; extra arguments go to configure.
cmake_build() {
  cmake -S "${cmake_source:-source}" -B cross -G Ninja -DCMAKE_TOOLCHAIN_FILE="$here/../toolchains/mingw-w64.cmake" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" -DCMAKE_INSTALL_LIBDIR=lib "$@"
  cmake --build cross -j "$jobs"
  cmake --install cross
}

compiler_id() { "$target-g++-posix" --version | head -n 1; }

key_of() {
  local needs='' need
  needs=$(sed -nE 's/^needs="(.*)"$/\1/p' "$here/recipes/$1.sh")
  { echo "$recipe_format"; compiler_id; cat "$here/recipes/$1.sh"; for need in $needs; do key_of "$need"; done; } |
    sha256sum | cut -c1-16
}

# Path of a library's result; a recipe uses it to find what it needs.
result_of() { echo "$cache/$1-$(key_of "$1")"; }

build_one() {
  local name=$1 prefix work
  prefix=$(result_of "$name")
  if [ ! -d "$prefix" ]; then
    # A subshell for the recipe's variables. Not tested with "||" or "if": bash would ignore "set -e" inside.
    (
      # shellcheck source=/dev/null
      . "$here/recipes/$name.sh"
      for need in $needs; do build_one "$need"; done
      say "building $name $version ($minutes)"
      work=$cache/building/$name
      final=$prefix
      prefix=$work/install
      rm -rf "$work"
      mkdir -p "$work"
      cd "$work"
      set +e
      ( set -e; recipe ) > build.log 2>&1 9>&-
      status=$?
      set -e
      [ "$status" -eq 0 ] || { tail -n 40 build.log >&2; die "building $name failed; the whole log: $work/build.log"; }
      mv "$prefix" "$final"
      rm -rf "$work"
    )
  fi
  ln -sfnT "$prefix" "$links/$name"
}

[ $# -ge 1 ] || die "usage: build.sh LINK_FOLDER [NAME...]"
mkdir -p "$1" "$cache"
links=$(cd "$1" && pwd)
shift
exec 9> "$cache/lock"
flock -n 9 || { say "waiting for another build of the libraries"; flock 9; }
if [ $# -eq 0 ]; then
  for recipe_file in "$here"/recipes/*.sh; do set -- "$@" "$(basename "$recipe_file" .sh)"; done
fi
for name in "$@"; do build_one "$name"; done
