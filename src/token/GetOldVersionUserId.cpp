#include <ParamStore.h>

#include <cstdint>

#include "UserAuthService.h"
#include "core/Base64.h"
#include "core/LocalClock.h"
#include "core/TextEncoding.h"
#include "core/WipeAtExit.h"
#include "token/DataProtection.h"

namespace {

// The refresh token of the legacy item; empty when it holds none. The item's plaintext is the token, followed by a time
// stamp. The stamp is cut off by its length and never read, so the token's age is not checked. Kept as it is: the
// server judges the token.
std::wstring LegacyRefreshToken() {
    const std::wstring item =
        ConfigEntityManager::GetInstance()->GetConfigContentDatas(ConfigEntityEnum::kLegacyRefreshToken);
    if (item.empty()) {
        return {};
    }
    const std::string text = userauth::WideToMultiByte(item, userauth::kUtf8CodePage);
    std::string plaintext = userauth::UnprotectForCurrentUser(userauth::Base64Decode(text));
    const userauth::WipeAtExit wipePlaintext(plaintext);
    const auto length = static_cast<std::int32_t>(plaintext.size() - userauth::LocalTimeStamp().size());
    if (length <= 0) {
        return {};
    }
    plaintext.resize(static_cast<std::size_t>(length));
    return userauth::MultiByteToWide(plaintext, userauth::kUtf8CodePage);
}

}  // namespace

std::wstring UserAuthService::GetOldVersionUserId() try {
    std::wstring refreshToken = LegacyRefreshToken();
    const userauth::WipeAtExit wipeToken(refreshToken);
    if (refreshToken.empty()) {
        return {};
    }
    SetCurrentRT(refreshToken);  // stays when a later step fails
    if (!GetAccessTokenByRefrshToken() || !RequestUserID()) {
        return {};
    }
    return GetCurrentUserID();
} catch (...) {
    return {};
}
