# shellcheck shell=bash disable=SC2154
# ./dev package; sourced by it. docs/package.md says what is inside and what makes it the same each time.

package_name() { echo "UserAuthService-$(package_version)-win64-mingw"; }
package_version() { sed -nE 's/^project\(UserAuthService VERSION ([0-9.]+) .*/\1/p' "$root/CMakeLists.txt"; }

# The time of the commit; what was not committed has none.
commit_time() { git -C "$root" log -1 --format=%ct 2> /dev/null || echo 315532800; }

# licence_of NAME FILE FOLDER: a copyright file as NAME.txt, and the licence texts that it names from the machine's collection.
licence_of() {
  local text
  cp -L "$2" "$3/$1.txt"
  { grep -oE '/usr/share/common-licenses/[A-Za-z0-9.-]*[A-Za-z0-9]' "$2" || true; } | sort -u | while IFS= read -r text; do
    [ ! -f "$text" ] || cp -L "$text" "$3/$(basename "$text").txt"
  done
}

# The licences of everything inside, from the packages that it was built from.
collect_licences() {
  local folder=$1/licences library package
  mkdir "$folder"
  for library in "$root"/build/deps/*; do
    [ "$(basename "$library")" = googletest ] || licence_of "$(basename "$library")" "$library/copyright" "$folder"
  done
  for package in gcc-mingw-w64-x86-64-posix-runtime mingw-w64-x86-64-dev; do
    licence_of "$package" "/usr/share/doc/$package/copyright" "$folder"
  done
}

# The installation with everything that a package has besides, in the folder.
assemble() {
  local folder=$1 image
  rm -rf "$folder"
  run_logged "$root/build/install.log" cmake --install "$build" --prefix "$folder"
  collect_licences "$folder"
  for image in "$folder"/*/*.dll "$folder"/*/*.exe; do
    ! x86_64-w64-mingw32-strings -n 8 "$image" | grep -F -e "$root" -e "$cache" >&2 || die "$image names a folder of this machine, above"
  done
  "$root/cmake/package/bill-of-materials.pl" "$folder" "$(package_version)" "$root/cmake/deps/recipes" > "$root/build/bill.json"
  "$root/cmake/package/check-bill.pl" "$root/build/bill.json" >&2 || die "the bill of materials is wrong, above"
  mv "$root/build/bill.json" "$folder/sbom.spdx.json"
  (cd "$folder" && find . -type f -printf '%P\n' | LC_ALL=C sort | xargs -d '\n' sha256sum > "$root/build/sums" &&
    mv "$root/build/sums" SHA256SUMS)
}

# pack FOLDER ZIP: entries sorted, all with one date and mode, nothing about this machine.
pack() {
  rm -f "$2"
  find "$1" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +
  find "$1" -type f -exec chmod 644 {} +
  (cd "$(dirname "$1")" && find "$(basename "$1")" -type f | LC_ALL=C sort | TZ=UTC zip -q -9 -X -D "$2" -@)
}

make_package() {
  local name folder
  name=$(package_name)
  folder=$root/build/package/$name
  SOURCE_DATE_EPOCH=$(commit_time)
  export SOURCE_DATE_EPOCH
  [ -z "$(git -C "$root" status --porcelain 2> /dev/null)" ] || say "package: with changes that are not committed"
  assemble "$folder"
  pack "$folder" "$root/build/package/$name.zip"
  say "package: $(stat -c '%s bytes' "$root/build/package/$name.zip"), $(find "$folder" -type f | wc -l) files"
  (cd "$root/build/package" && sha256sum "$name.zip")
}

# Builds the commit in another folder, from the first file on, and compares the packages. A compiler cache may store what it
# compiles there, and answers nothing.
compare_package() {
  local other zip
  zip=build/package/$(package_name).zip
  [ -z "$(git -C "$root" status --porcelain)" ] || die "package: only a commit can be built again: commit your changes first"
  other=$(mktemp -d)
  run_logged "$root/build/clone.log" git clone -q --no-local "$root" "$other"
  say "package: building the commit again, in $other"
  run_logged "$root/build/again.log" env CCACHE_RECACHE=1 ${CCACHE_BASEDIR:+"CCACHE_BASEDIR=$other"} "$other/dev" package
  cmp "$root/$zip" "$other/$zip" || die "package: the second build differs ($other)"
  rm -rf "$other"
  say "package: the second build has the same bytes"
}
