version=3.0.20-1~deb12u2
origin="source openssl"
files="
7279efe85c359500c95aa88347e3395dd303d7566e2bb818d80d96e0c3bb9629  openssl_3.0.20-1~deb12u2.debian.tar.xz
a614474a2773c23b10c0d65f4eccbcf93fdac4749afb7c26d76e1b0340154d3d  openssl_3.0.20-1~deb12u2.dsc
c80a01dfc70ece4dc21168932c37739042d404d46ccc81a5986dd75314ecda6f  openssl_3.0.20.orig.tar.gz
07669568ab34cf3a4dcf8fd8e0d85cacdacfaa10d5ab51bdc6fc47c22fa6b33a  openssl_3.0.20.orig.tar.gz.asc
"
needs=""
minutes="about 3 minutes"

# Not built, because neither the service nor HTTPS over TLS 1.1 to 1.3 needs it. TLS 1.1 stays for a test that offers it.
without=(
  tests autoload-config engine module legacy uplink async ui-console  # nothing from outside is loaded or asked for
  cms cmp ts ct ocsp rfc3779                                          # message formats and services
  ssl3 tls1 dtls srtp srp psk nextprotoneg comp                       # protocols and their extensions
  aria bf camellia cast des idea rc2 rc4 rc5 seed sm4 ocb siv         # ciphers
  md2 md4 mdc2 rmd160 sm3 whirlpool blake2 siphash scrypt             # digests
  dsa ec2m gost sm2                                                   # public keys
)

# Shared, without programs: the service and the HTTP library share one libcrypto.
recipe() {
  cd source || return
  # "no-autoload-config" forgets the object table: decoding any key or certificate would still load what OPENSSL_CONF names.
  # Without this one place, a configuration is loaded only for a program that asks for it by OPENSSL_config.
  sed -i 's/if (opts & OPENSSL_INIT_LOAD_CONFIG) {/if ((opts \& OPENSSL_INIT_LOAD_CONFIG) \&\& settings != NULL) {/' crypto/init.c
  grep -q 'OPENSSL_INIT_LOAD_CONFIG) && settings' crypto/init.c
  ./Configure mingw64 --cross-compile-prefix=x86_64-w64-mingw32- --libdir=lib shared "${without[@]/#/no-}"
  # With a drive, and writable for administrators only: without one, any local user could make the folder on the current
  # drive. Given here, because Configure on this machine takes a path with a drive for a relative one.
  local data='C:/Program Files/Common Files/SSL'
  local folders=(OPENSSLDIR="$data" ENGINESDIR="$data/engines" MODULESDIR="$data/modules")
  make -j "$jobs" "${folders[@]}" build_generated
  make -j "$jobs" "${folders[@]}" libcrypto.dll.a libssl.dll.a
  # Not "make install_dev", which compiles everything a second time for static libraries.
  mkdir -p "$prefix/include" "$prefix/lib" "$prefix/bin"
  cp -r include/openssl "$prefix/include/"
  cp libcrypto.dll.a libssl.dll.a "$prefix/lib/"
  cp libcrypto-3-x64.dll libssl-3-x64.dll "$prefix/bin/"
}
