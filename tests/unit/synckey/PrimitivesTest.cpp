#include <openssl/ec.h>
#include <openssl/obj_mac.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>

#include "KeyServerPeer.h"
#include "core/Base64.h"
#include "synckey/AesGcm.h"
#include "synckey/KeyAgreement.h"
#include "synckey/Sha256Hex.h"

namespace {

const Bytes kFailure = {0};

std::string Hex(const Bytes& bytes) { return userauth::LowerHex(bytes); }

}  // namespace

TEST(Sha256Hex, AgreesWithTheStandard) {
    // FIPS 180 example digests.
    for (const auto& [text, digest] :
         std::map<std::string, std::string>{{"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
                                            {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
                                            {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
                                             "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"}}) {
        EXPECT_EQ(userauth::Sha256Hex(Bytes(text.begin(), text.end())), digest);
    }
}

TEST(AesGcm, AgreesWithTheStandard) {
    const struct {
        const char *source, *key, *nonce, *plaintext, *ciphertext, *tag;
    } rows[] = {
        {"GCM, McGrew and Viega, test case 2", "00000000000000000000000000000000", "000000000000000000000000",
         "00000000000000000000000000000000", "0388dace60b6a392f328c2b971b2fe78", "ab6e47d42cec13bdf53a67b21257bddf"},
        {"GCM, McGrew and Viega, test case 14", "0000000000000000000000000000000000000000000000000000000000000000",
         "000000000000000000000000", "00000000000000000000000000000000", "cea7403d4d606b6e074ec5d3baf39d18",
         "d0d1c8a799996bf0265b98b5d48ab919"},
        {"NIST CAVS gcmEncryptExtIV128, plaintext of 256 bits, count 0", "9971071059abc009e4f2bd69869db338",
         "07a9a95ea3821e9c13c63251", "f54bc3501fed4f6f6dfb5ea80106df0bd836e6826225b75c0222f6e859b35983",
         "0556c159f84ef36cb1602b4526b12009c775611bffb64dc0d9ca9297cd2c6a01", "7870d9117f54811a346970f1de090c41"},
    };
    for (const auto& row : rows) {
        const std::string blob = std::string(row.nonce) + row.ciphertext + row.tag;
        EXPECT_EQ(Hex(userauth::AesGcmDecrypt(FromHex(blob), FromHex(row.key))), row.plaintext) << row.source;
        if (std::string(row.plaintext).size() == 32) {
            EXPECT_EQ(Hex(userauth::AesGcmEncrypt(FromHex(row.plaintext), FromHex(row.key), FromHex(row.nonce))), blob)
                << row.source;
        }
    }
}

TEST(AesGcm, EveryFlippedBitAndEveryTruncationIsRefused) {
    const Bytes key(16, 7);
    for (const std::size_t length : {16U, 32U}) {
        const std::string text = userauth::Base64Decode(KeyServerPeer::Wrap(key, Bytes(length, 0x5A)));
        const Bytes blob(text.begin(), text.end());
        ASSERT_EQ(userauth::AesGcmDecrypt(blob, key), Bytes(length, 0x5A));
        for (std::size_t bit = 0; bit < blob.size() * 8; ++bit) {
            Bytes flipped = blob;
            flipped[bit / 8] ^= static_cast<unsigned char>(1U << (bit % 8));
            EXPECT_EQ(userauth::AesGcmDecrypt(flipped, key), kFailure) << "bit " << bit;
        }
        for (std::size_t size = 0; size < blob.size(); ++size) {
            EXPECT_EQ(userauth::AesGcmDecrypt({blob.begin(), blob.begin() + static_cast<std::ptrdiff_t>(size)}, key),
                      kFailure)
                << size << " bytes";
        }
    }
}

TEST(AesGcm, SizesThatAreNotTheUsualOnes) {
    const Bytes nonce(12, 3);
    const Bytes zeros(44);
    Bytes p(20);
    std::iota(p.begin(), p.end(), static_cast<unsigned char>(0));
    for (const std::size_t keyBytes : {0U, 1U, 15U, 16U, 17U, 24U, 31U, 32U, 33U, 64U}) {
        const Bytes key(keyBytes, 9);
        const Bytes blob = userauth::AesGcmEncrypt(p, key, nonce);
        const bool usable = keyBytes == 16 || keyBytes == 32;
        EXPECT_EQ(userauth::AesGcmDecrypt(blob, key), usable ? Bytes(p.begin(), p.begin() + 16) : kFailure) << keyBytes;
        if (!usable) {
            EXPECT_EQ(blob, keyBytes == 0 ? Bytes() : zeros) << keyBytes;
        }
    }
    const Bytes key(32, 9);
    EXPECT_EQ(userauth::AesGcmEncrypt({}, key, nonce), Bytes());
    EXPECT_EQ(userauth::AesGcmEncrypt(Bytes(15, 1), key, nonce), zeros) << "plaintext too short";
    EXPECT_EQ(userauth::AesGcmEncrypt(p, key, Bytes(11, 1)), zeros) << "nonce too short";
    for (const std::size_t surplus : {1U, 15U, 17U, 1000U}) {
        Bytes longer = userauth::AesGcmEncrypt(p, key, nonce);
        longer.resize(longer.size() + surplus, 0xEE);
        EXPECT_EQ(userauth::AesGcmDecrypt(longer, key), Bytes(p.begin(), p.begin() + 16)) << surplus << " more bytes";
    }
}

TEST(KeyAgreement, AgreesWithTheStandard) {
    // NIST CAVS KAS_ECC_CDH_PrimitiveTest, [P-256], count 0.
    const userauth::OwnedEcKey own(EC_KEY_new_by_curve_name(NID_X9_62_prime256v1));
    const Bytes scalar = FromHex("7d7dc5f71eb29ddaf80d6214632eeae03d9058af1fb6d22ed80badb62bc1a534");
    ASSERT_EQ(EC_KEY_oct2priv(own.get(), scalar.data(), scalar.size()), 1);
    const Bytes point = FromHex(
        "04700c48f77f56584c5cc632ca65640db91b6bacce3a4df6b42ce7cc838833d287"
        "db71e509e3fd9b060ddb20ba5c51dcc5948d46fbf640dfe0441782cab85fa4ac");
    userauth::UncompressedPoint peer{};
    std::copy(point.begin(), point.end(), peer.begin());
    userauth::SharedSecret secret{};
    EXPECT_TRUE(userauth::ComputeSharedSecret(*own, peer, secret));
    EXPECT_EQ(Hex({secret.begin(), secret.end()}), "46fc62106420ff012e54a434fbdd2d25ccc5852060561e68040dd7778997bd7b");
    peer[40] ^= 1;
    EXPECT_FALSE(userauth::ComputeSharedSecret(*own, peer, secret)) << "not on the curve";
    EXPECT_EQ(secret, userauth::SharedSecret{});
}
