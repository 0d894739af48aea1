#!/usr/bin/env bash
# tidy.sh BUILD_FOLDER [FILE...]: runs clang-tidy over the project's sources, or the named ones.
#
# A source that came out clean is not looked at again until it, a header of the project that it includes, its compile
# command's folder or .clang-tidy changes: BUILD_FOLDER/tidy keeps one stamp a source, holding the hash of those.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
build=$(cd "$1" && pwd)
shift
cd "$root"
stamps=$build/tidy
mkdir -p "$stamps"

# clang finds the target's C headers by itself, but not the C++ library of this distribution's cross compiler.
mapfile -t cxx_folders < <(x86_64-w64-mingw32-g++-posix -E -x c++ -v /dev/null 2>&1 | sed -n 's,^ \(/.*/include/c++.*\)$,\1,p')
arguments=(--extra-arg=--target=x86_64-w64-windows-gnu)
for folder in "${cxx_folders[@]}"; do arguments+=("--extra-arg=-isystem$folder"); done

mapfile -t sources < <(sed -nE "s,^ *\"file\": \"$root/(.*\.cpp)\".*$,\1,p" "$build/compile_commands.json" | grep -v '^build/' | sort -u)
if [ $# -gt 0 ]; then
  mapfile -t sources < <(printf '%s\n' "${sources[@]}" | grep -xFf <(realpath --relative-to=. -- "$@"))
  [ "${#sources[@]}" -gt 0 ] || { echo "none of these files is compiled: $*" >&2; exit 1; }
fi
[ "${#sources[@]}" -gt 0 ] || { echo "no source of $root in $build/compile_commands.json" >&2; exit 1; }

# What each source includes, as the compiler noted it: lines "source<TAB>header of the project".
depended=$(mktemp)
trap 'rm -f "$depended"' EXIT
ninja -C "$build" -t deps | awk -v root="$root/" '
  /^[^ ]/ { source = "" }
  /^ / { path = substr($0, 5)
    if (path !~ /^\//) next
    if (index(path, root) != 1) next
    path = substr(path, length(root) + 1)
    if (path ~ /^build\//) next
    if (source == "") source = path
    print source "\t" path }' | sort -u > "$depended"

work=()
for source in "${sources[@]}"; do
  hash=$({ echo "${arguments[*]}"; cat .clang-tidy "$source"; awk -F '\t' -v s="$source" '$1 == s { print $2 }' "$depended" |
    xargs -r -d '\n' cat; } | sha256sum | cut -c1-64)
  stamp=$stamps/${source//\//__}
  [ "$(cat "$stamp" 2> /dev/null)" = "$hash" ] || work+=("$source" "$stamp" "$hash")
done
[ "${#work[@]}" -gt 0 ] || exit 0
printf 'clang-tidy: %d of %d sources, about %d s\n' $((${#work[@]} / 3)) "${#sources[@]}" \
  $((${#work[@]} * 5 / 3 / $(nproc) + 5)) >&2

# One process a source. A header's finding comes once for each source that includes it: shown once, and in one line.
rm -f "$stamps"/*.findings
export build
# shellcheck disable=SC2016
printf '%s\n' "${work[@]}" | xargs -d '\n' -n 3 -P "$(nproc)" bash -c '
  arguments=("${@:1:$#-3}")
  source=${*: -3:1} stamp=${*: -2:1} hash=${*: -1}
  if clang-tidy --quiet -p "$build" "${arguments[@]}" "$source" > "$stamp.log" 2>&1; then
    echo "$hash" > "$stamp"
  else
    grep -E ": (error|warning): " "$stamp.log" > "$stamp.findings" || cp "$stamp.log" "$stamp.findings"
  fi' bash "${arguments[@]}"

mapfile -t findings < <(find "$stamps" -name '*.findings')
[ "${#findings[@]}" -gt 0 ] || exit 0
sort -u "${findings[@]}" | sed "s,^$root/,,"
exit 1
