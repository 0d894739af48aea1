version=7.88.1-10+deb12u15
origin="source curl"
files="
961b78bc48492c5693e4decb352ddd176f343260a8956f48b2887874048ef23b  curl_7.88.1-10+deb12u15.debian.tar.xz
2744f12e3aef161c0361743fa1b318296b122e566e47f381e4a63320fbcc23f4  curl_7.88.1-10+deb12u15.dsc
cdb38b72e36bc5d33d5b8810f8018ece1baa29a8f215b4495e495ded82bbf3c7  curl_7.88.1.orig.tar.gz
7a5a55d7123149a1b357f298cf895bd0a601e3a2807005ef6c95f3752803485f  curl_7.88.1.orig.tar.gz.asc
"
needs="openssl"
minutes="about 2 minutes"

# HTTP and HTTPS only: a protocol that is not there cannot be redirected to. Nor is there what the HTTP library does itself
# (decoding) or never asks for. HEADERS_API, the header store, keeps a pointer into freed memory between two transfers.
# Kept: proxies with CONNECT, SOCKS and Basic, IPv6, the threaded resolver, and the texts, among which are those of the errors.
without=(
  ALTSVC COOKIES CRYPTO_AUTH DOH GETOPTIONS HEADERS_API HSTS MIME NETRC NTLM PARSEDATE PROGRESS_METER SHUFFLE_DNS
  OPENSSL_AUTO_LOAD_CONFIG
)

recipe() {
  # It writes the secrets of every TLS session into the file that the environment names, and no option leaves that out.
  local key_log=source/lib/vtls/keylog.c
  sed -i 's/curl_getenv("SSLKEYLOGFILE")/NULL/' "$key_log"
  if grep -q getenv "$key_log"; then return 1; fi
  # As flags: its CMake takes some of these for options and then forgets them. No path of this machine goes into the DLL.
  cmake_build -DCMAKE_C_FLAGS="${without[*]/#/-DCURL_DISABLE_} -ffile-prefix-map=$PWD=." \
    -DCMAKE_PREFIX_PATH="$(result_of openssl)" -DCMAKE_FIND_ROOT_PATH="$(result_of openssl)" \
    -DOPENSSL_ROOT_DIR="$(result_of openssl)" -DCURL_USE_OPENSSL=ON -DCURL_CA_BUNDLE=none -DCURL_CA_PATH=none \
    -DBUILD_SHARED_LIBS=ON -DBUILD_CURL_EXE=OFF -DBUILD_TESTING=OFF -DHTTP_ONLY=ON -DENABLE_UNIX_SOCKETS=OFF \
    -DCURL_USE_LIBSSH2=OFF -DCURL_ZLIB=OFF -DCURL_BROTLI=OFF -DCURL_ZSTD=OFF -DUSE_LIBIDN2=OFF
}
