#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <set>
#include <string>

#include "crypto/OpenSslTypes.h"
#include "synckey/TemporaryKeyToken.h"

namespace sandbox {

// The server's key as clients are told it.
struct ServedKey {
    std::string publicKey;  // the DER of the public key in standard base64
    std::string version;
};

// What the opened tokens had in them.
struct ExchangeCounts {
    std::uint64_t tokens = 0;
    std::uint64_t leadingZeroSecrets = 0;
    std::size_t distinctNonces = 0;  // these two stop at 100,000
    std::size_t distinctTemporaryKeys = 0;
};

// The server's key pair, made with the object, and the tokens that clients make for it. All operations may be called
// from any thread.
class KeyExchange {
public:
    KeyExchange();

    ServedKey Served() const;
    // Serves these texts instead, whatever they are; an empty one stands for the true text. Tokens are opened with the
    // true key all the same.
    void Replace(ServedKey replacement);

    // Counts the token when it is good.
    OpenedToken Open(const std::string& token);
    ExchangeCounts Counts() const;

private:
    void Count(const OpenedToken& opened);

    const KeyPtr m_key;
    const ServedKey m_true;
    mutable std::mutex m_lock;  // guards everything below
    ServedKey m_replacement;
    ExchangeCounts m_counts;  // but for the distinct ones
    std::set<std::string> m_nonces;
    std::set<std::string> m_temporaryKeys;  // their digests
};

}  // namespace sandbox
