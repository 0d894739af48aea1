# shellcheck shell=bash disable=SC2154
# The reference from headers and docs/; sourced by ./dev.

# build_reference: build/docs/html/index.html. A function without its arguments and results, or a link that leads nowhere,
# is an error.
build_reference() {
  local version output=$root/build/docs
  version=$(sed -nE 's/^project\(UserAuthService VERSION ([0-9.]+) .*/\1/p' "$root/CMakeLists.txt")
  rm -rf "$output"
  mkdir -p "$output"
  cd "$root" || die "no such folder: $root"
  if ! { cat docs/Doxyfile; printf 'OUTPUT_DIRECTORY = build/docs\nPROJECT_NUMBER = %s\n' "$version"; } |
    doxygen - 2> "$output/warnings.log" 9>&-; then
    sed "s,^$root/,," "$output/warnings.log" >&2
    die "docs: the findings above"
  fi
  check_links "$output/html" || die "docs: links above lead nowhere"
  say "docs: build/docs/html/index.html"
}

# check_links FOLDER: prints the links of the documents' pages to files that are not there.
check_links() {
  (cd "$1" && grep -oHE 'href="[^"#:]+["#]' -- *.html | sed -E 's/:href="/ /; s/.$//' | sort -u |
    while read -r page target; do [ -e "$target" ] || printf '%s: %s\n' "$page" "$target"; done | grep .) || return 0
  return 1
}
