version=1.0.9-2
needs=""
minutes="under a minute"

recipe() {
  fetch_source brotli "$version"
  cmake_build -DBUILD_SHARED_LIBS=OFF -DBROTLI_DISABLE_TESTS=ON
}
