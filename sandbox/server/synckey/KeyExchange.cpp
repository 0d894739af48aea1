#include "synckey/KeyExchange.h"

#include <optional>
#include <utility>

#include "crypto/Base64.h"
#include "crypto/P256Key.h"
#include "crypto/RandomText.h"
#include "crypto/WrappedBlob.h"
#include "http/Exchange.h"

namespace sandbox {
namespace {

constexpr std::size_t kMostRemembered = 100'000;
constexpr std::size_t kTokenSize = 185;
constexpr std::size_t kColonPosition = 124;
constexpr std::size_t kBlobSize = 44;

void Require(bool good, const std::string& otherwise) {
    if (!good) {
        throw Refusal(Wrong::kHeader, "x-zv-tempKey: " + otherwise);
    }
}

void Remember(const std::string& text, std::set<std::string>& known) {
    if (known.size() < kMostRemembered) {
        known.insert(text);
    }
}

}  // namespace

KeyExchange::KeyExchange() : m_key(NewP256Key()), m_true{Base64Encoded(P256PublicKeyDer(m_key.get())), RandomCode()} {}

ServedKey KeyExchange::Served() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return {m_replacement.publicKey.empty() ? m_true.publicKey : m_replacement.publicKey,
            m_replacement.version.empty() ? m_true.version : m_replacement.version};
}

void KeyExchange::Replace(ServedKey replacement) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_replacement = std::move(replacement);
}

std::string KeyExchange::Open(const std::string& token) {
    Require(token.size() == kTokenSize,
            "there are " + std::to_string(token.size()) + " characters instead of " + std::to_string(kTokenSize));
    Require(token[kColonPosition] == ':', "no colon stands behind the first 124 characters");
    const auto der = Base64UrlDecoded(token.substr(0, kColonPosition));
    Require(der.has_value(), "the public key is not URL-safe base64");
    const auto blob = Base64UrlDecoded(token.substr(kColonPosition + 1));
    Require(blob && blob->size() == kBlobSize, "the blob is not 44 bytes in URL-safe base64");
    const auto client = ParseP256PublicKey(*der);
    Require(client.key != nullptr, "the public key " + client.fault);
    const auto secret = SharedSecret(m_key.get(), client.key.get());
    const auto temporaryKey = UnwrapSecret(*blob, secret);
    Require(temporaryKey.has_value(), "the blob's tag is wrong under the agreed secret");

    const std::lock_guard<std::mutex> guard(m_lock);
    ++m_counts.tokens;
    m_counts.leadingZeroSecrets += secret.front() == '\0' ? 1 : 0;
    Remember(blob->substr(0, kBlobNonceSize), m_nonces);
    Remember(*temporaryKey, m_temporaryKeys);
    return *temporaryKey;
}

ExchangeCounts KeyExchange::Counts() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    auto counts = m_counts;
    counts.distinctNonces = m_nonces.size();
    counts.distinctTemporaryKeys = m_temporaryKeys.size();
    return counts;
}

}  // namespace sandbox
