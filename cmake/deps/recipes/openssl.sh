version=3.0.20-1~deb12u2
needs=""
minutes="about 4 minutes"

# Shared, without programs and tests: the service and the HTTP library share one libcrypto.
recipe() {
  fetch_source openssl "$version"
  cd source
  ./Configure mingw64 --cross-compile-prefix=x86_64-w64-mingw32- --libdir=lib --prefix=/openssl \
    --openssldir=/openssl shared no-tests
  make -j "$jobs" build_generated
  make -j "$jobs" libcrypto.dll.a libssl.dll.a
  make install_dev DESTDIR="$PWD/staged"
  mv staged/openssl "$prefix"
}
