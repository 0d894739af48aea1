#include "synckey/KeyAgreement.h"

#include <openssl/crypto.h>
#include <openssl/ecdh.h>
#include <openssl/obj_mac.h>

#include <algorithm>
#include <utility>

namespace userauth {
namespace {

constexpr unsigned char kUncompressed = 0x04;

EC_GROUP* MakeCurve() {
    return EC_GROUP_new_by_curve_name(NID_X9_62_prime256v1);
}

// A key on the curve, without numbers yet; null when there is no memory. Making the curve takes longer than a
// key on it.
OwnedEcKey NewKey() {
    const EC_GROUP* const curve = KeptForProcess<MakeCurve, EC_GROUP_free>();
    OwnedEcKey key(EC_KEY_new());
    const bool isOnCurve = curve != nullptr && key != nullptr && EC_KEY_set_group(key.get(), curve) == 1;
    return isOnCurve ? std::move(key) : nullptr;
}

void WriteClientPoint(const EC_KEY& own, UncompressedPoint& point) {
    EC_POINT_point2oct(EC_KEY_get0_group(&own), EC_KEY_get0_public_key(&own), POINT_CONVERSION_UNCOMPRESSED,
                       point.data(), point.size(), nullptr);
}

}  // namespace

KeyAgreement::~KeyAgreement() {
    OPENSSL_cleanse(secret.data(), secret.size());
}

UncompressedPoint PointOfPublicKey(const std::string& publicKey) {
    UncompressedPoint point{};
    if (publicKey.size() > kPublicKeyHeader) {
        const std::size_t present = std::min(kPointBytes, publicKey.size() - kPublicKeyHeader);
        std::copy_n(publicKey.begin() + kPublicKeyHeader, present, point.begin());
    }
    return point;
}

void AgreeByFreshKey(const UncompressedPoint& peer, KeyAgreement& agreement) {
    const OwnedEcKey own = NewKey();
    if (own == nullptr || EC_KEY_generate_key(own.get()) != 1) {
        return;
    }
    if (peer.front() == kUncompressed) {
        WriteClientPoint(*own, agreement.clientPoint);
    }
    ComputeSharedSecret(*own, peer, agreement.secret);
}

bool ComputeSharedSecret(const EC_KEY& own, const UncompressedPoint& peer, SharedSecret& secret) {
    const EC_GROUP* const group = EC_KEY_get0_group(&own);
    const OwnedEcPoint point(EC_POINT_new(group));
    if (point == nullptr || EC_POINT_oct2point(group, point.get(), peer.data(), peer.size(), nullptr) != 1 ||
        ECDH_compute_key(secret.data(), secret.size(), point.get(), &own, nullptr) != static_cast<int>(secret.size())) {
        secret.fill(0);
        return false;
    }
    return true;
}

}  // namespace userauth
