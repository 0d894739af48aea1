#include <gtest/gtest.h>

#include <set>

#include "KeyServerPeer.h"
#include "core/Base64.h"
#include "synckey/AesGcm.h"
#include "synckey/WrapTempKey.h"

namespace {

const Bytes kTemporaryKey = FromHex("000102030405060708090a0b0c0d0e0f");

std::string FromUrlText(const std::string& text) { return sandbox::Base64UrlDecoded(text).value_or(""); }

std::string ClientKeyOf(const std::string& token) { return FromUrlText(token.substr(0, 124)); }

// What the blob of a token gives under a secret of zeros.
Bytes OpenedWithoutSecret(const std::string& token) {
    const std::string blob = FromUrlText(token.substr(125));
    return userauth::AesGcmDecrypt({blob.begin(), blob.end()}, Bytes(32));
}

}  // namespace

TEST(WrapTempKey, EveryTokenOpensAtThePeerAndNoNonceRepeats) {
    const KeyServerPeer peer;
    const std::string serverKey = peer.PublicKeyText();
    const std::string header = userauth::Base64Decode(serverKey).substr(0, 26);
    std::set<std::string> nonces;
    std::set<std::string> points;
    int leadingZeros = 0;
    // A secret begins with a zero byte once in 256 times: such a one must be among them.
    std::size_t rounds = 0;
    for (; rounds < 1000 || (leadingZeros == 0 && rounds < 10'000); ++rounds) {
        const std::string token = userauth::WrapTempKey(serverKey, kTemporaryKey);
        Bytes secret;
        const auto opened = peer.UnwrapTemporaryKey(token, &secret);
        ASSERT_TRUE(opened) << token;
        EXPECT_EQ(*opened, kTemporaryKey);
        EXPECT_EQ(ClientKeyOf(token).substr(0, 26), header);
        leadingZeros += secret[0] == 0 ? 1 : 0;
        nonces.insert(FromUrlText(token.substr(125)).substr(0, 12));
        points.insert(ClientKeyOf(token));
    }
    EXPECT_EQ(nonces.size(), rounds);
    EXPECT_EQ(points.size(), rounds);
    EXPECT_GT(leadingZeros, 0);
}

TEST(WrapTempKey, AServerKeyThatIsNoneYieldsATokenMadeOfZeros) {
    const std::string good = userauth::Base64Decode(KeyServerPeer().PublicKeyText());
    std::string notUncompressed = good;
    notUncompressed[26] = 0x05;
    std::string offCurve = good;
    offCurve[60] = static_cast<char>(offCurve[60] ^ 1);
    const struct {
        const char* name;
        std::string text;
        bool clientPointWritten;
        std::size_t headerBytes;
    } rows[] = {
        {"empty", "", false, 0},
        {"not base64", "*", false, 0},
        {"URL-safe text", "-_-_", false, 0},
        {"one byte", userauth::EncodeStandardBase64("x"), false, 0},
        {"header alone", userauth::EncodeStandardBase64(good.substr(0, 26)), false, 0},
        {"point cut", userauth::EncodeStandardBase64(good.substr(0, 81)), true, 16},
        {"not uncompressed", userauth::EncodeStandardBase64(notUncompressed), false, 26},
        {"not on the curve", userauth::EncodeStandardBase64(offCurve), true, 26},
        {"all zero", userauth::EncodeStandardBase64(std::string(91, '\0')), false, 26},
    };
    for (const auto& row : rows) {
        const std::string token = userauth::WrapTempKey(row.text, kTemporaryKey);
        ASSERT_EQ(token.size(), 185U) << row.name;
        EXPECT_EQ(token[124], ':') << row.name;
        EXPECT_EQ(OpenedWithoutSecret(token), kTemporaryKey) << row.name;
        const std::string clientKey = ClientKeyOf(token);
        ASSERT_EQ(clientKey.size(), 91U) << row.name;
        EXPECT_EQ(clientKey[row.headerBytes], row.clientPointWritten ? 4 : 0) << row.name;
        EXPECT_EQ(clientKey.find_first_not_of('\0', row.headerBytes) == std::string::npos, !row.clientPointWritten)
            << row.name;
    }
    // The hybrid form is a point too: it gives a secret, but the client's point stays zero.
    std::string hybrid = good;
    hybrid[26] = static_cast<char>(6 | (good[90] & 1));
    const std::string token = userauth::WrapTempKey(userauth::EncodeStandardBase64(hybrid), kTemporaryKey);
    EXPECT_EQ(ClientKeyOf(token).substr(26), std::string(65, '\0'));
    EXPECT_EQ(OpenedWithoutSecret(token), Bytes(1));
    // A key with bytes behind its point: they count into the header, and the client's point is cut.
    const std::string longer =
        ClientKeyOf(userauth::WrapTempKey(userauth::EncodeStandardBase64(good + std::string(300, 'x')), kTemporaryKey));
    EXPECT_EQ(longer, good);
}
