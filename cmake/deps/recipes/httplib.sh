version=0.11.4+ds-1+deb12u1
needs=""
minutes="seconds"

# The source package has the whole single header; the distribution's development package is a split build.
recipe() {
  fetch_source cpp-httplib "$version"
  mkdir -p "$prefix/include"
  cp source/httplib.h "$prefix/include/"
}
