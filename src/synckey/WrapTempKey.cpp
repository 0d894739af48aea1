#include "synckey/WrapTempKey.h"

#include <openssl/rand.h>

#include <algorithm>
#include <array>
#include <utility>

#include "core/Base64.h"
#include "core/WipeAtExit.h"
#include "synckey/AesGcm.h"
#include "synckey/KeyAgreement.h"

namespace userauth {
namespace {

using PublicKey = std::array<unsigned char, kPublicKeyBytes>;

// The server key's bytes in front of its last 65, then the client's point; cut at, or zero-filled to, 91 bytes. The
// header is the server's, so that a server of another DER form gets its own form back.
PublicKey EncodeClientKey(const std::string& serverKey, const UncompressedPoint& clientPoint) {
    PublicKey encoded{};
    const std::size_t header =
        serverKey.size() < kPointBytes ? 0 : std::min(serverKey.size() - kPointBytes, kPublicKeyBytes);
    std::copy_n(serverKey.begin(), header, encoded.begin());
    std::copy_n(clientPoint.begin(), std::min(kPointBytes, kPublicKeyBytes - header), encoded.begin() + header);
    return encoded;
}

std::vector<unsigned char> WrapUnder(const SharedSecret& secret, std::vector<unsigned char> temporaryKey) {
    const WipeAtExit wipeKey(temporaryKey);
    std::vector<unsigned char> nonce(kGcmNonceBytes);
    // Not checked: when the random generator fails nothing can be reported, and the nonce stays zero, once for this
    // secret.
    RAND_bytes(nonce.data(), static_cast<int>(nonce.size()));
    return AesGcmEncrypt(std::move(temporaryKey), std::vector<unsigned char>(secret.begin(), secret.end()), nonce);
}

template <typename Bytes>
std::string Encode(const Bytes& bytes) {
    return Base64UrlEncode(bytes.data(), static_cast<std::int32_t>(bytes.size()));
}

}  // namespace

std::string WrapTempKey(std::string serverPublicKey, std::vector<unsigned char> temporaryKey) {
    const WipeAtExit wipeKey(temporaryKey);
    const std::string serverKey = Base64Decode(serverPublicKey);
    KeyAgreement agreement;
    AgreeByFreshKey(PointOfPublicKey(serverKey), agreement);
    const std::vector<unsigned char> blob = WrapUnder(agreement.secret, temporaryKey);
    return Encode(EncodeClientKey(serverKey, agreement.clientPoint)) + ":" + Encode(blob);
}

}  // namespace userauth
