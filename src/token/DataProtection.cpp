#include "token/DataProtection.h"

#include <openssl/crypto.h>
#include <windows.h>
// wincrypt.h comes after windows.h, and dpapi.h after that.
#include <wincrypt.h>
// clang-format off
#include <dpapi.h>
// clang-format on

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
    // Up to the first zero byte.
    std::string Text() const {
        const auto* const text = reinterpret_cast<const char*>(m_blob.pbData);
        return std::string(text, std::find(text, text + m_blob.cbData, '\0'));
    }

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
    return output.Text();
}

}  // namespace userauth
