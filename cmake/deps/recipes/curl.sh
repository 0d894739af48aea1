version=7.88.1-10+deb12u15
needs="openssl zlib brotli"
minutes="about 3 minutes"

# HTTP and HTTPS only: a protocol that is not there cannot be redirected to.
recipe() {
  fetch_source curl "$version"
  local dependencies
  dependencies="$(result_of openssl);$(result_of zlib);$(result_of brotli)"
  cmake_build -DCMAKE_PREFIX_PATH="$dependencies" -DCMAKE_FIND_ROOT_PATH="$dependencies" \
    -DBUILD_SHARED_LIBS=ON -DBUILD_CURL_EXE=OFF -DBUILD_TESTING=OFF -DHTTP_ONLY=ON \
    -DCURL_USE_OPENSSL=ON -DCURL_USE_LIBSSH2=OFF -DCURL_ZLIB=ON -DCURL_BROTLI=ON -DCURL_ZSTD=OFF -DUSE_LIBIDN2=OFF \
    -DOPENSSL_ROOT_DIR="$(result_of openssl)" -DBROTLI_INCLUDE_DIR="$(result_of brotli)/include" \
    -DBROTLICOMMON_LIBRARY="$(result_of brotli)/lib/libbrotlicommon-static.a" \
    -DBROTLIDEC_LIBRARY="$(result_of brotli)/lib/libbrotlidec-static.a;$(result_of brotli)/lib/libbrotlicommon-static.a"
}
