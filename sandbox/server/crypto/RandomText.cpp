#include "crypto/RandomText.h"

#include <algorithm>

#include <openssl/rand.h>

#include "crypto/Base64.h"
#include "crypto/OpenSslTypes.h"
#include "crypto/Sha256.h"

namespace sandbox {
namespace {

// byteCount bytes in base64; 3n bytes need no padding, 3n + 1 end in "==".
std::string RandomBase64(std::size_t byteCount) {
    return Base64Encoded(RandomBytes(byteCount));
}

}  // namespace

std::string RandomBytes(std::size_t count) {
    std::string bytes(count, '\0');
    RequireOpenSsl(RAND_bytes(Octets(bytes.data()), static_cast<int>(count)) == 1, "drawing random bytes");
    return bytes;
}

std::string RandomToken() {
    return RandomBase64(18) + "+" + RandomBase64(18) + "/" + RandomBase64(19);
}

std::string RandomCode() {
    auto code = RandomBase64(24);
    std::replace(code.begin(), code.end(), '+', '-');
    std::replace(code.begin(), code.end(), '/', '_');
    return code;
}

std::string RandomUuid() {
    constexpr std::size_t kUuidBytes = 16;
    return LowerHex(RandomBytes(kUuidBytes));
}

}  // namespace sandbox
