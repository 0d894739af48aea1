#include "steps/LegacySignIn.h"

#include <windows.h>
// After windows.h.
#include <wincrypt.h>
// After wincrypt.h.
#include <dpapi.h>

#include <cstdio>

#include "system/LocalMemory.h"
#include "system/SystemError.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

std::string LocalTimeText() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    char text[32];
    std::snprintf(text, sizeof(text), "%04u-%02u-%02u %02u:%02u:%02u", static_cast<unsigned>(now.wYear),
                  static_cast<unsigned>(now.wMonth), static_cast<unsigned>(now.wDay), static_cast<unsigned>(now.wHour),
                  static_cast<unsigned>(now.wMinute), static_cast<unsigned>(now.wSecond));
    return text;
}

std::string Protect(std::string& plaintext) {
    DATA_BLOB input{static_cast<DWORD>(plaintext.size()), reinterpret_cast<BYTE*>(plaintext.data())};
    DATA_BLOB output{};
    const BOOL made = CryptProtectData(&input, nullptr, nullptr, nullptr, nullptr, 0, &output);
    if (!made) {
        FailWithSystemError("the refresh token cannot be protected", GetLastError());
    }
    const LocalMemory<BYTE> owned(output.pbData);
    return {reinterpret_cast<const char*>(output.pbData), output.cbData};
}

// Without line breaks: the reader of the item takes one for the end of the text.
std::wstring Base64(const std::string& bytes) {
    constexpr DWORD kForm = CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF;
    const auto* const data = reinterpret_cast<const BYTE*>(bytes.data());
    const auto size = static_cast<DWORD>(bytes.size());
    DWORD length = 0;  // with the terminating zero at first, without it at last
    if (!CryptBinaryToStringW(data, size, kForm, nullptr, &length)) {
        FailWithSystemError("the protected refresh token cannot be written as text", GetLastError());
    }
    std::wstring text(length, L'\0');
    if (!CryptBinaryToStringW(data, size, kForm, text.data(), &length)) {
        FailWithSystemError("the protected refresh token cannot be written as text", GetLastError());
    }
    text.resize(length);
    return text;
}

}  // namespace

std::wstring MakeLegacySignIn(const std::wstring& refreshToken) {
    std::string plaintext = ToUtf8(refreshToken) + LocalTimeText();
    const std::string blob = Protect(plaintext);
    SecureZeroMemory(plaintext.data(), plaintext.size());
    return Base64(blob);
}

}  // namespace host
