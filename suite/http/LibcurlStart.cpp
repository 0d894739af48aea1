#include "LibcurlStart.h"

#include <windows.h>

#include <curl/curl.h>
#include <openssl/crypto.h>

#include <string>

namespace suite {
namespace {

// Takes a variable out of the process's environment and puts it back.
class HiddenVariable {
public:
    explicit HiddenVariable(const wchar_t* name) : m_name(name) {
        m_value.resize(GetEnvironmentVariableW(m_name, nullptr, 0));
        const DWORD length = GetEnvironmentVariableW(m_name, m_value.data(), static_cast<DWORD>(m_value.size()));
        m_set = length > 0 && length < m_value.size();
        if (m_set) {
            SetEnvironmentVariableW(m_name, nullptr);
        }
    }
    ~HiddenVariable() {
        if (m_set) {
            SetEnvironmentVariableW(m_name, m_value.c_str());
        }
    }
    HiddenVariable(const HiddenVariable&) = delete;
    HiddenVariable& operator=(const HiddenVariable&) = delete;

private:
    const wchar_t* const m_name;
    std::wstring m_value;
    bool m_set = false;
};

}  // namespace

bool StartLibcurl() {
    // The first word on this counts for the whole process: OpenSSL reads neither the file that OPENSSL_CONF names nor
    // the one in its own folder, either of which can name a DLL to load.
    OPENSSL_init_crypto(OPENSSL_INIT_NO_LOAD_CONFIG, nullptr);
    // libcurl opens the file at its start, and has no switch for it.
    const HiddenVariable keyLog(L"SSLKEYLOGFILE");
    return curl_global_init(CURL_GLOBAL_ALL) == CURLE_OK;
}

}  // namespace suite
