#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <set>
#include <string>

#include "crypto/OpenSslTypes.h"

namespace sandbox {

// The server's key as clients are told it.
struct ServedKey {
    std::string publicKey;  // the DER of the public key in standard base64
    std::string version;
};

// What the opened tokens had in them.
struct ExchangeCounts {
    std::uint64_t tokens = 0;
    std::uint64_t leadingZeroSecrets = 0;  // agreed secrets whose first byte is zero
    std::size_t distinctNonces = 0;        // these two stop at 100,000
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

    // The temporary key in a client's token, 16 bytes, under which the client wants its keys. A token is 185
    // characters: the client's public key and, behind a colon, its temporary key, wrapped under the secret that this
    // public key and the server's agree on. Both are in URL-safe base64 with padding, 124 and 60 characters. Throws
    // Refusal when the token is another one.
    std::string Open(const std::string& token);
    ExchangeCounts Counts() const;

private:
    const KeyPtr m_key;
    const ServedKey m_true;
    mutable std::mutex m_lock;  // guards everything below
    ServedKey m_replacement;
    ExchangeCounts m_counts;  // without the distinct ones: these are the sizes of the sets
    std::set<std::string> m_nonces;
    std::set<std::string> m_temporaryKeys;
};

}  // namespace sandbox
