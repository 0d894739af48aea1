#include "synckey/TemporaryKeyToken.h"

#include <utility>

#include "crypto/Base64.h"
#include "crypto/P256Key.h"
#include "crypto/WrappedBlob.h"

namespace sandbox {
namespace {

constexpr std::size_t kTokenSize = 185;
constexpr std::size_t kColonPosition = 124;
constexpr std::size_t kBlobSize = 44;

OpenedToken Refused(std::string fault) {
    OpenedToken refused;
    refused.fault = std::move(fault);
    return refused;
}

OpenedToken OpenBlob(const std::string& blob, const SecretBytes& secret) {
    auto temporaryKey = UnwrapSecret(blob, secret);
    if (!temporaryKey) {
        return Refused("the blob's tag is wrong under the agreed secret");
    }
    return {*std::move(temporaryKey), blob.substr(0, kBlobNonceSize), secret.front() == 0, {}};
}

}  // namespace

OpenedToken OpenTemporaryKeyToken(const std::string& token, EVP_PKEY* serverKey) {
    if (token.size() != kTokenSize) {
        return Refused("there are " + std::to_string(token.size()) + " characters instead of 185");
    }
    if (token[kColonPosition] != ':') {
        return Refused("no colon stands behind the first 124 characters");
    }
    const auto der = Base64UrlDecoded(token.substr(0, kColonPosition));
    if (!der) {
        return Refused("the public key is not URL-safe base64");
    }
    const auto blob = Base64UrlDecoded(token.substr(kColonPosition + 1));
    if (!blob || blob->size() != kBlobSize) {
        return Refused("the blob is not 44 bytes in URL-safe base64");
    }
    const auto client = ParseP256PublicKey(*der);
    if (client.key == nullptr) {
        return Refused("the public key " + client.fault);
    }
    return OpenBlob(*blob, SharedSecret(serverKey, client.key.get()));
}

}  // namespace sandbox
