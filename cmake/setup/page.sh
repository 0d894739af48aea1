# shellcheck shell=bash disable=SC2154
# What the test of the sandbox's page needs beside the programs: Chromium, Node.js and the browser's driver, an npm package
# at the version and with the checksum of the lock file. Sourced by ./dev.

# Never fails: the test itself says what is missing, and is skipped.
ensure_page_tools() {
  local package missing=() driver=$root/build/page-test
  for package in "${page_packages[@]}"; do
    # By command: Node.js from another archive brings npm along, and Debian's npm cannot be installed beside it.
    command -v "${package/nodejs/node}" > /dev/null || missing+=("$package")
  done
  if [ "${#missing[@]}" -gt 0 ]; then
    (ensure_packages "${missing[@]}") || say "going on without the browser's test"
  fi
  if ! cmp -s "$root/tests/e2e/page/package-lock.json" "$driver/package-lock.json" && command -v npm > /dev/null; then
    mkdir -p "$driver"
    cp "$root/tests/e2e/page/package.json" "$driver"
    say "fetching the browser's driver, 5 seconds"
    if (cd "$driver" && cp "$root/tests/e2e/page/package-lock.json" npm-shrinkwrap.json &&
      npm ci --ignore-scripts --no-audit --no-fund < /dev/null > ../page-driver.log 2>&1 9>&-); then
      # Only a complete one has the lock file's own name.
      mv "$driver/npm-shrinkwrap.json" "$driver/package-lock.json"
    else
      say "the browser's driver could not be fetched (log: build/page-driver.log)"
    fi
  fi
}
