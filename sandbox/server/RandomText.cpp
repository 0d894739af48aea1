#include "RandomText.h"

#include <algorithm>

#include <openssl/rand.h>

#include "OpenSslTypes.h"

namespace sandbox {
namespace {

// byteCount bytes in base64; 3n bytes need no padding, 3n + 1 end in "==".
std::string RandomBase64(std::size_t byteCount) {
    const auto bytes = RandomBytes(byteCount);
    std::string text((byteCount + 2) / 3 * 4 + 1, '\0');
    const auto length =
        EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                        reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(byteCount));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

}  // namespace

std::string RandomBytes(std::size_t count) {
    std::string bytes(count, '\0');
    RequireOpenSsl(RAND_bytes(reinterpret_cast<unsigned char*>(bytes.data()), static_cast<int>(count)) == 1,
                   "drawing random bytes");
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

}  // namespace sandbox
