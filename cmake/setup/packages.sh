# shellcheck shell=bash disable=SC2034,SC2154
# Debian packages that the commands need; sourced by ./dev.

build_packages=(
  g++-mingw-w64-x86-64-posix # cross compiler, linker and resource compiler
  cmake ninja-build
  make perl  # OpenSSL's own build
  dpkg-dev   # unpacks the libraries' source packages
  ca-certificates
)
run_packages=(wine wine64 xvfb xauth)
check_packages=(clang-format clang-tidy shellcheck)
docs_packages=(doxygen graphviz)
# The sandbox's page is tested in a browser. Where these cannot be had, that test is skipped.
page_packages=(chromium nodejs npm)
sanitize_packages=(
  clang libclang-rt-14-dev llvm cmake ninja-build pkg-config libgtest-dev libjsoncpp-dev libssl-dev
  libcurl4-openssl-dev libspdlog-dev libfmt-dev zlib1g-dev libbrotli-dev libicu-dev
)
package_packages=(zip)
count_packages=(valgrind)

lists_log=$root/build/package-lists.log
update_package_lists() { "$@" apt-get --error-on=any update > "$lists_log" 2>&1 < /dev/null 9>&-; }

# ensure_packages NAME...: installs those that are missing.
ensure_packages() {
  local missing=() package
  for package in "$@"; do
    if [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2> /dev/null)" != installed ]; then
      missing+=("$package")
    fi
  done
  [ "${#missing[@]}" -gt 0 ] || return 0

  command -v apt-get > /dev/null || die "this needs Debian 12 with the packages: ${missing[*]}"
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo > /dev/null || die "not root and no sudo: let an administrator install ${missing[*]}"
    as_root=(sudo)
  fi
  say "installing Debian packages, 1 to 3 minutes: ${missing[*]}"
  # Another apt-get may hold the lists, or a mirror be away for a moment. The lists that are there may do.
  try_again 60 update_package_lists "${as_root[@]}" || say "not every package list could be fetched (log: $lists_log)"
  run_logged "$root/build/packages.log" "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get -o DPkg::Lock::Timeout=300 install -y --no-install-recommends "${missing[@]}"
}
