version=0.11.4+ds-1+deb12u1
origin="source cpp-httplib"
files="
a0adf8a38610806f6d94ba69839438635e5e6580775e28ff31d6a081e34f1484  cpp-httplib_0.11.4+ds-1+deb12u1.debian.tar.xz
a4dde747bbde7cc9fa62cdf50d61140a0eaefb7f1383497ef2d48daf3bf5f9ec  cpp-httplib_0.11.4+ds-1+deb12u1.dsc
8b1a5df569003b6a4f24c68489bbda5c64aec94697bdc9ebba5d79408b2ae7eb  cpp-httplib_0.11.4+ds.orig.tar.xz
"
needs=""
minutes="seconds"

# The source package has the whole single header; the distribution's development package is a split build.
recipe() {
  mkdir -p "$prefix/include"
  cp source/httplib.h "$prefix/include/"
}
