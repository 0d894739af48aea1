# shellcheck shell=bash disable=SC2034,SC2154
# Downloads from the distribution's archive, checked twice: apt against the archive's signed index, and here against the
# SHA-256 of each file in the recipe. Sourced, with the functions of setup/common.sh; a recipe's variables are set where
# a function uses them.

apt_root=$cache/deps/apt
# Private to one apt call: our own lists and archives, so the machine's package sources stay as they are.
apt_options=(-o Dir::Etc::SourceList="$apt_root/sources/all.list" -o Dir::Etc::SourceParts="$apt_root/sources"
  -o Dir::State::Lists="$apt_root/lists" -o Dir::Cache="$apt_root/cache" -o APT::Sandbox::User= -o Acquire::Retries=2 -qq)

# Copies the machine's configured sources, adding the type deb-src to each entry.
copy_sources() {
  rm -rf "$apt_root/sources"
  mkdir -p "$apt_root/sources" "$apt_root/lists/partial" "$apt_root/cache/archives/partial"
  : > "$apt_root/sources/all.list"
  if [ -f /etc/apt/sources.list ]; then
    sed -nE 's/^deb /deb-src /p; /^deb /p' /etc/apt/sources.list > "$apt_root/sources/all.list"
  fi
  local entry
  for entry in /etc/apt/sources.list.d/*.sources; do
    [ ! -f "$entry" ] || sed -E 's/^Types:.*/Types: deb deb-src/' "$entry" > "$apt_root/sources/$(basename "$entry")"
  done
  for entry in /etc/apt/sources.list.d/*.list; do
    [ ! -f "$entry" ] || sed -nE 's/^deb /deb-src /p; /^deb /p' "$entry" > "$apt_root/sources/$(basename "$entry")"
  done
}

# refresh_lists [APT_OPTION...]: fetches the package lists and notes when. False when not all of them came.
refresh_lists() {
  copy_sources
  apt-get "${apt_options[@]}" "$@" --error-on=any update > "$apt_root/update.log" 2>&1 && touch "$apt_root/refreshed"
}

# archive_lists NAME...: what the lists have of sources and packages, as lines "source|package NAME VERSION".
archive_lists() {
  apt-cache "${apt_options[@]}" madison "$@" 2> /dev/null |
    awk -F '[ |]+' '{ sub(/^ +/, ""); print($NF == "Sources" ? "source" : "package", $1, $2) }'
}

# newer_versions LINES ORIGIN VERSION: of those lines, an origin's versions that are newer, newest first.
newer_versions() {
  local candidate
  sed -n "s/^$2 //p" <<< "$1" | sort -ruV | while read -r candidate; do
    if dpkg --compare-versions "$candidate" gt "$3"; then printf '%s\n' "$candidate"; fi
  done
}

# download VERSION: into ./fetched, which holds nothing else: apt leaves what came before a failure.
download() {
  local command=(download)
  [ "${origin%% *}" != source ] || command=(source --download-only --only-source)
  rm -rf fetched
  mkdir fetched
  (cd fetched && apt-get "${apt_options[@]}" "${command[@]}" "${origin#* }=$1") >> fetch.log 2>&1
}

# The pinned version has exactly the files of the recipe.
check_files() {
  local expected count
  expected=$(grep . <<< "$files")
  count=$(find fetched -type f | wc -l)
  [ "$count" -eq "$(wc -l <<< "$expected")" ] && (cd fetched && sha256sum --check --strict --quiet) <<< "$expected" >> fetch.log 2>&1
}

# fetch: the recipe's version into ./fetched. Sets taken to the version that came.
fetch() {
  taken=$version
  if download "$version"; then
    check_files || die "$name $version: what the archive sent is not what cmake/deps/recipes/$name.sh names (whole log: $PWD/fetch.log)"
    return 0
  fi
  local newer
  newer=$(newer_versions "$(archive_lists "${origin#* }")" "$origin" "$version")
  if [ "$accept_newer" = 1 ]; then
    for taken in $newer; do
      if download "$taken"; then
        mkdir -p "$(dirname "$(stand_in_note "$name")")"
        printf '%s\n' "$taken" > "$(stand_in_note "$name")"
        return 0
      fi
    done
  fi
  tail -n 5 fetch.log >&2
  newer=${newer//$'\n'/, }
  if [ "$accept_newer" = 1 ]; then
    newer=${newer:+ Nor can what its lists have: $newer.}
  else
    newer=${newer:+ Its lists have $newer: USERAUTH_ACCEPT_NEWER=1 takes that, on the archive\'s signature alone.}
  fi
  die "$name $version cannot be downloaded: check the network, then whether the archive has dropped it.$newer (log: $PWD/fetch.log)"
}

# unpack: ./fetched to ./source or ./package.
unpack() {
  if [ "${origin%% *}" = source ]; then
    dpkg-source --no-check -x fetched/*.dsc source
  else
    dpkg-deb -x fetched/*.deb package
  fi
}
