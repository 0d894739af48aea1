#include "crypto/P256Key.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <openssl/ec.h>

namespace sandbox {
namespace {

// SEQUENCE { SEQUENCE { OID id-ecPublicKey, OID prime256v1 }, BIT STRING { the point follows } }
constexpr unsigned char kHeader[] = {0x30, 0x59, 0x30, 0x13, 0x06, 0x07, 0x2A, 0x86, 0x48, 0xCE, 0x3D, 0x02, 0x01,
                                     0x06, 0x08, 0x2A, 0x86, 0x48, 0xCE, 0x3D, 0x03, 0x01, 0x07, 0x03, 0x42, 0x00};
constexpr unsigned char kUncompressedPoint = 0x04;

struct DerRelease {
    void operator()(unsigned char* bytes) const noexcept { OPENSSL_free(bytes); }
};

bool HasHeader(const std::string& der) {
    return std::equal(std::begin(kHeader), std::end(kHeader), der.begin(),
                      [](unsigned char expected, char byte) { return expected == static_cast<unsigned char>(byte); });
}

// Nothing when the point is not on the curve.
KeyPtr KeyOnCurve(const std::string& der) {
    const auto* position = Octets(der.data());
    KeyPtr key(d2i_PUBKEY(nullptr, &position, static_cast<long>(der.size())));
    if (key != nullptr) {
        const KeyContextPtr context(EVP_PKEY_CTX_new(key.get(), nullptr));
        RequireOpenSsl(context != nullptr, "preparing a key's check");
        if (EVP_PKEY_public_check(context.get()) != 1) {
            key.reset();
        }
    }
    ERR_clear_error();
    return key;
}

}  // namespace

KeyPtr NewP256Key() {
    const KeyContextPtr context(EVP_PKEY_CTX_new_id(EVP_PKEY_EC, nullptr));
    RequireOpenSsl(context != nullptr && EVP_PKEY_keygen_init(context.get()) == 1 &&
                       EVP_PKEY_CTX_set_ec_paramgen_curve_nid(context.get(), NID_X9_62_prime256v1) == 1,
                   "preparing a key");
    EVP_PKEY* key = nullptr;
    RequireOpenSsl(EVP_PKEY_keygen(context.get(), &key) == 1, "making a key");
    return KeyPtr(key);
}

std::string P256PublicKeyDer(EVP_PKEY* key) {
    unsigned char* written = nullptr;
    const int size = i2d_PUBKEY(key, &written);
    const std::unique_ptr<unsigned char, DerRelease> bytes(written);
    RequireOpenSsl(size == static_cast<int>(kP256PublicKeySize), "writing a public key");
    return std::string(reinterpret_cast<const char*>(bytes.get()), kP256PublicKeySize);
}

ParsedPublicKey ParseP256PublicKey(const std::string& der) {
    if (der.size() != kP256PublicKeySize) {
        return {nullptr, "has " + std::to_string(der.size()) + " bytes instead of 91"};
    }
    if (!HasHeader(der)) {
        return {nullptr, "does not begin with the 26 bytes of a P-256 SubjectPublicKeyInfo"};
    }
    if (static_cast<unsigned char>(der[std::size(kHeader)]) != kUncompressedPoint) {
        return {nullptr, "has no uncompressed point, which begins with 04"};
    }
    auto key = KeyOnCurve(der);
    return key != nullptr ? ParsedPublicKey{std::move(key), {}}
                          : ParsedPublicKey{nullptr, "has a point that is not on the curve"};
}

std::string SharedSecret(EVP_PKEY* own, EVP_PKEY* peer) {
    const KeyContextPtr context(EVP_PKEY_CTX_new(own, nullptr));
    RequireOpenSsl(context != nullptr && EVP_PKEY_derive_init(context.get()) == 1 &&
                       EVP_PKEY_derive_set_peer(context.get(), peer) == 1,
                   "preparing a key agreement");
    std::string secret(kSharedSecretSize, '\0');
    std::size_t size = secret.size();
    RequireOpenSsl(EVP_PKEY_derive(context.get(), Octets(secret.data()), &size) == 1 && size == kSharedSecretSize,
                   "agreeing on a secret");
    return secret;
}

}  // namespace sandbox
