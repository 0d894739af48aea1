// A host that has defined these before it includes the public headers, one at a time: see tests/CMakeLists.txt.
#define min(a, b) (((a) < (b)) ? (a) : (b))
#define max(a, b) (((a) > (b)) ? (a) : (b))
#define small char

#include PUBLIC_HEADER

#if defined(_WINDOWS_) || defined(JSON_JSON_H_INCLUDED) || defined(OPENSSL_VERSION_NUMBER)
#error "the public headers pull in a platform or third-party header"
#endif
