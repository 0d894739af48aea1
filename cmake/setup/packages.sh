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
check_packages=(clang-format clang-tidy)

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
  run_logged "$root/build/package-lists.log" "${as_root[@]}" apt-get update
  run_logged "$root/build/packages.log" "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get -o DPkg::Lock::Timeout=300 install -y --no-install-recommends "${missing[@]}"
}
