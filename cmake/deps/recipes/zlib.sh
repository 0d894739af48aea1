version=1.2.13+dfsg-1
origin="package libz-mingw-w64-dev"
files="
a5ec1f087a017955d15ca2deb288d9e3271589982f8d35a790c58ac520975736  libz-mingw-w64-dev_1.2.13+dfsg-1_all.deb
"
needs=""
minutes="seconds"

# The distribution builds zlib for this target itself.
recipe() {
  mkdir -p "$prefix/lib"
  cp -r package/usr/x86_64-w64-mingw32/include "$prefix/include"
  cp package/usr/x86_64-w64-mingw32/lib/libz.a "$prefix/lib/"
}
