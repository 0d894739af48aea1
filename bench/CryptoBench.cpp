#include <openssl/ecdh.h>
#include <openssl/evp.h>
#include <openssl/obj_mac.h>
#include <openssl/opensslv.h>
#include <openssl/rand.h>

#include <array>

#include "Subjects.h"
#include "core/Base64.h"
#include "crypto/P256Key.h"
#include "synckey/AesGcm.h"
#include "synckey/OpenSslTypes.h"
#include "synckey/Sha256Hex.h"
#include "synckey/WrapTempKey.h"

namespace bench {
namespace {

using Bytes = std::vector<unsigned char>;
using userauth::OwnedCipherContext;
using userauth::OwnedEcKey;
using userauth::OwnedEcPoint;

#if OPENSSL_VERSION_NUMBER >= 0x30000000L
const EVP_CIPHER* Cipher(int keyBytes) {
    static const EVP_CIPHER* const fetched[] = {EVP_CIPHER_fetch(nullptr, "AES-128-GCM", nullptr),
                                                EVP_CIPHER_fetch(nullptr, "AES-256-GCM", nullptr)};
    return fetched[keyBytes == 32 ? 1 : 0];
}
const EVP_MD* Digest() {
    static const EVP_MD* const fetched = EVP_MD_fetch(nullptr, "SHA256", nullptr);
    return fetched;
}
#else
const EVP_CIPHER* Cipher(int keyBytes) {
    return keyBytes == 32 ? EVP_aes_256_gcm() : EVP_aes_128_gcm();
}
const EVP_MD* Digest() {
    return EVP_sha256();
}
#endif

EVP_CIPHER_CTX* ReusedContext() {
    static const OwnedCipherContext context(EVP_CIPHER_CTX_new());
    return context.get();
}

Bytes BareSeal(const Bytes& plaintext, const Bytes& key, const Bytes& nonce) {
    EVP_CIPHER_CTX* const context = ReusedContext();
    Bytes blob(nonce);
    blob.resize(44);
    int count = 0;
    EVP_EncryptInit_ex(context, Cipher(static_cast<int>(key.size())), nullptr, key.data(), nonce.data());
    EVP_EncryptUpdate(context, blob.data() + 12, &count, plaintext.data(), 16);
    EVP_EncryptFinal_ex(context, blob.data() + 28, &count);
    EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_GCM_GET_TAG, 16, blob.data() + 28);
    return blob;
}

Bytes BareOpen(const Bytes& blob, const Bytes& key) {
    EVP_CIPHER_CTX* const context = ReusedContext();
    Bytes plaintext(16);
    int count = 0;
    EVP_DecryptInit_ex(context, Cipher(static_cast<int>(key.size())), nullptr, key.data(), blob.data());
    EVP_DecryptUpdate(context, plaintext.data(), &count, blob.data() + 12, 16);
    Bytes tag(blob.end() - 16, blob.end());
    EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_GCM_SET_TAG, 16, tag.data());
    EVP_DecryptFinal_ex(context, plaintext.data() + 16, &count);
    return plaintext;
}

// point: where the own point goes, which the server must be told; null: nowhere.
Bytes BareWrap(const std::string& serverKey, const Bytes& temporaryKey, unsigned char* point) {
    static EC_GROUP* const group = EC_GROUP_new_by_curve_name(NID_X9_62_prime256v1);
    const OwnedEcKey own(EC_KEY_new());
    EC_KEY_set_group(own.get(), group);
    EC_KEY_generate_key(own.get());
    if (point != nullptr) {
        EC_POINT_point2oct(group, EC_KEY_get0_public_key(own.get()), POINT_CONVERSION_UNCOMPRESSED, point, 65, nullptr);
    }
    const OwnedEcPoint peer(EC_POINT_new(group));
    EC_POINT_oct2point(group, peer.get(), reinterpret_cast<const unsigned char*>(serverKey.data()) + 26, 65, nullptr);
    Bytes secret(32);
    ECDH_compute_key(secret.data(), secret.size(), peer.get(), own.get(), nullptr);
    Bytes nonce(12);
    RAND_bytes(nonce.data(), 12);
    return BareSeal(temporaryKey, secret, nonce);
}

}  // namespace

void BenchCrypto(Report& report) {
    const std::string serverKey = sandbox::P256PublicKeyDer(sandbox::NewP256Key().get());
    std::string serverText((serverKey.size() + 2) / 3 * 4 + 1, '\0');
    serverText.resize(static_cast<std::size_t>(EVP_EncodeBlock(reinterpret_cast<unsigned char*>(serverText.data()),
                                                               reinterpret_cast<const unsigned char*>(serverKey.data()),
                                                               static_cast<int>(serverKey.size()))));
    const Bytes shortKey(16, 0x11);
    const Bytes nonce(12, 0x22);
    report.Cpu(
        "WrapTempKey", AtMost(1.05), [=] { return userauth::WrapTempKey(serverText, shortKey); },
        [=] { return BareWrap(serverKey, shortKey, nullptr); });
    report.Cpu(
        "WrapTempKey where both write the own point", AtMost(1.05),
        [=] { return userauth::WrapTempKey(serverText, shortKey); },
        [=] {
            unsigned char point[65];
            return BareWrap(serverKey, shortKey, point);
        });
    const Bytes longKey(32, 0x33);
    report.Cpu(
        "AesGcmEncrypt", AtMost(1.6), [=] { return userauth::AesGcmEncrypt(shortKey, longKey, nonce); },
        [=] { return BareSeal(shortKey, longKey, nonce); });
    const Bytes blob = BareSeal(shortKey, shortKey, nonce);
    report.Cpu(
        "AesGcmDecrypt", AtMost(1.6), [=] { return userauth::AesGcmDecrypt(blob, shortKey); },
        [=] { return BareOpen(blob, shortKey); });
    report.Cpu(
        "Sha256Hex", AtMost(1.5), [=] { return userauth::Sha256Hex(shortKey); },
        [=] {
            std::array<unsigned char, 32> digest{};
            EVP_Digest(shortKey.data(), shortKey.size(), digest.data(), nullptr, Digest(), nullptr);
            return digest;
        });
}

}  // namespace bench
