version=1.2.13+dfsg-1
needs=""
minutes="seconds"

# The distribution builds zlib for this target itself.
recipe() {
  fetch_package libz-mingw-w64-dev "$version"
  mkdir -p "$prefix/lib"
  cp -r package/usr/x86_64-w64-mingw32/include "$prefix/include"
  cp package/usr/x86_64-w64-mingw32/lib/libz.a "$prefix/lib/"
}
