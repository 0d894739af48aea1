#include "synckey/KeyExchange.h"

#include <utility>

#include "crypto/Base64.h"
#include "crypto/P256Key.h"
#include "crypto/RandomText.h"
#include "crypto/Sha256.h"

namespace sandbox {
namespace {

constexpr std::size_t kMostRemembered = 100'000;

void Remember(std::string text, std::set<std::string>& known) {
    if (known.size() < kMostRemembered) {
        known.insert(std::move(text));
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

OpenedToken KeyExchange::Open(const std::string& token) {
    auto opened = OpenTemporaryKeyToken(token, m_key.get());
    if (opened.fault.empty()) {
        Count(opened);
    }
    return opened;
}

ExchangeCounts KeyExchange::Counts() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    auto counts = m_counts;
    counts.distinctNonces = m_nonces.size();
    counts.distinctTemporaryKeys = m_temporaryKeys.size();
    return counts;
}

void KeyExchange::Count(const OpenedToken& opened) {
    auto digest = LowerHex(Sha256(opened.temporaryKey));
    const std::lock_guard<std::mutex> guard(m_lock);
    ++m_counts.tokens;
    m_counts.leadingZeroSecrets += opened.leadingZero ? 1 : 0;
    Remember(opened.nonce, m_nonces);
    Remember(std::move(digest), m_temporaryKeys);
}

}  // namespace sandbox
