#include <ParamStore.h>
#include <UserAuthService.h>
#include <windows.h>
// After windows.h.
#include <wincrypt.h>
// After wincrypt.h.
#include <dpapi.h>

#include <ctime>

#include "platform/ParameterStoreSetup.h"
#include "steps/Steps.h"
#include "system/WindowsHandle.h"
#include "text/FieldText.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

std::string LocalTimeText() {
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    localtime_s(&local, &now);
    char text[32] = {};
    std::strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", &local);
    return text;
}

std::string Protect(std::string& plaintext) {
    DATA_BLOB input{static_cast<DWORD>(plaintext.size()), reinterpret_cast<BYTE*>(plaintext.data())};
    DATA_BLOB output{};
    RequireDone(CryptProtectData(&input, nullptr, nullptr, nullptr, nullptr, 0, &output),
                "the refresh token cannot be protected");
    const LocalMemory<BYTE> owned(output.pbData);
    return {reinterpret_cast<const char*>(output.pbData), output.cbData};
}

// No line breaks: the service stops reading the text at the first one.
std::wstring Base64(const std::string& bytes) {
    constexpr DWORD kForm = CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF;
    constexpr char kFailure[] = "the protected refresh token cannot be written as text";
    const auto* const data = reinterpret_cast<const BYTE*>(bytes.data());
    const auto size = static_cast<DWORD>(bytes.size());
    DWORD length = 0;  // the first call counts a terminating zero, the second does not
    RequireDone(CryptBinaryToStringW(data, size, kForm, nullptr, &length), kFailure);
    std::wstring text(length, L'\0');
    RequireDone(CryptBinaryToStringW(data, size, kForm, text.data(), &length), kFailure);
    text.resize(length);
    return text;
}

// What an earlier version of the client left of a sign-in: the standard base64 text of a data-protection blob of this
// user of this machine, in which the refresh token is followed by the local time, "YYYY-MM-DD hh:mm:ss".
std::wstring MakeLegacySignIn(const std::wstring& refreshToken) {
    std::string plaintext = ToUtf8(refreshToken) + LocalTimeText();
    const std::string blob = Protect(plaintext);
    SecureZeroMemory(plaintext.data(), plaintext.size());
    return Base64(blob);
}

std::wstring StoredItem() {
    return ConfigEntityManager::GetInstance()->GetConfigContentDatas(ConfigEntityEnum::kLegacyRefreshToken);
}

// The configuration's own item comes first. Without one, the session's refresh token is stored as an earlier client
// would have left it; a session without one any more keeps the item that it stored before.
StepResult ProvideItem(SessionState& state) {
    const std::wstring stored = StoredItem();
    if (!stored.empty() && !state.madeLegacyItem) {
        return {true, "from the configuration, " + Characters(stored.size())};
    }
    const std::wstring refreshToken = state.service->GetCurrentRT();
    if (refreshToken.empty() && !stored.empty()) {
        return {true, "made earlier in this session, " + Characters(stored.size())};
    }
    if (refreshToken.empty()) {
        return {false, "no item \"0\" in the \"legacyItems\" of --config, and no session to make one of"};
    }
    state.madeLegacyItem = true;
    StoreLegacyItem(MakeLegacySignIn(refreshToken));
    const std::wstring item = StoredItem();
    return {!item.empty(), "made of the session's refresh token, protected, " + Characters(item.size())};
}

StepResult TakeOver(SessionState& state) {
    UserAuthService& service = *state.service;
    const std::wstring before = service.GetCurrentUserID();
    service.Clear();
    const std::wstring userId = service.GetOldVersionUserId();
    if (userId.empty()) {
        return {false, service.GetCurrentRT().empty() ? "the item is not this user's, or holds no refresh token"
                                                      : SeeLog("the refresh or the user-id look-up failed")};
    }
    const bool mustBeSame = state.sandbox != nullptr;
    return {!service.GetCurrentAT().empty() && (!mustBeSame || userId == before),
            userId == before ? "account state cleared before; the same user" : "account state cleared before",
            {
                {"user id", ToUtf8(userId)},
                {"access token", LengthOnly(service.GetCurrentAT())},
                {"refresh token", LengthOnly(service.GetCurrentRT())},
            }};
}

}  // namespace

std::vector<Step> LegacySignInSteps() {
    return {
        {"legacy-item", "earlier client's sign-in in store", ProvideItem},
        {"legacy-sign-in", "earlier client's sign-in taken over", TakeOver},
    };
}

}  // namespace host
