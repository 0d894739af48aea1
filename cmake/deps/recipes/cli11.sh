version=2.1.2+ds-1
needs=""
minutes="seconds"

recipe() {
  fetch_package libcli11-dev "$version"
  mkdir -p "$prefix/include"
  cp -r package/usr/include/CLI "$prefix/include/"
}
