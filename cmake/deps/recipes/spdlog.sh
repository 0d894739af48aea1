version=1:1.10.0+ds-0.4
needs=""
minutes="seconds"

# Header-only use, on the distribution's own fmt (its spdlog is patched to look for fmt outside).
recipe() {
  fetch_package libspdlog-dev "$version"
  fetch_package libfmt-dev 9.1.0+ds1-2
  mkdir -p "$prefix/include"
  cp -r package/usr/include/spdlog package/usr/include/fmt "$prefix/include/"
}
