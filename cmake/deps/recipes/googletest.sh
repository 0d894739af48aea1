version=1.12.1-0.2
needs=""
minutes="under a minute"

recipe() {
  fetch_package googletest "$version"
  cmake_source=package/usr/src/googletest cmake_build -DBUILD_SHARED_LIBS=OFF -DBUILD_GMOCK=ON
}
