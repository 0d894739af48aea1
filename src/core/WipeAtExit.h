#pragma once

#include <openssl/crypto.h>

namespace userauth {

// Overwrites the content of a vector, string or array when the scope ends, whatever ends it: key material and tokens do
// not stay behind in freed memory. The container must not grow meanwhile, which would leave a copy.
template <typename Container>
class WipeAtExit {
public:
    explicit WipeAtExit(Container& secret) : m_secret(secret) {}
    ~WipeAtExit() { OPENSSL_cleanse(m_secret.data(), m_secret.size() * sizeof(*m_secret.data())); }
    WipeAtExit(const WipeAtExit&) = delete;
    WipeAtExit& operator=(const WipeAtExit&) = delete;

private:
    Container& m_secret;
};

}  // namespace userauth
