#include "token/DataProtection.h"

#include <openssl/crypto.h>
#include <windows.h>
// dpapi.h and wincrypt.h come after windows.h.
#include <dpapi.h>
#include <wincrypt.h>

#include <algorithm>

namespace userauth {
namespace {

// What the system hands out; wiped before it goes back.
class SystemBlob {
public:
    SystemBlob() = default;
    ~SystemBlob() {
        OPENSSL_cleanse(m_blob.pbData, m_blob.cbData);
        LocalFree(m_blob.pbData);
    }
    SystemBlob(const SystemBlob&) = delete;
    SystemBlob& operator=(const SystemBlob&) = delete;

    DATA_BLOB* Out() { return &m_blob; }
    std::string Bytes() const { return {reinterpret_cast<const char*>(m_blob.pbData), m_blob.cbData}; }

private:
    DATA_BLOB m_blob{};
};

}  // namespace

std::string UnprotectForCurrentUser(const std::string& blob) {
    std::string protectedBytes = blob;
    DATA_BLOB input{static_cast<DWORD>(protectedBytes.size()), reinterpret_cast<BYTE*>(protectedBytes.data())};
    SystemBlob output;
    if (CryptUnprotectData(&input, nullptr, nullptr, nullptr, nullptr, 0, output.Out()) == FALSE) {
        return {};
    }
    std::string plaintext = output.Bytes();
    plaintext.resize(std::min(plaintext.find('\0'), plaintext.size()));
    return plaintext;
}

}  // namespace userauth
