#include <ParamStore.h>
#include <UserAuthService.h>

#include "platform/ParameterStoreSetup.h"
#include "steps/LegacySignIn.h"
#include "steps/Steps.h"
#include "text/FieldText.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

std::wstring StoredItem() {
    return ConfigEntityManager::GetInstance()->GetConfigContentDatas(ConfigEntityEnum::kLegacyRefreshToken);
}

// The configuration's own item comes first. Without one, the session's refresh token is stored as an earlier client
// would have left it; a session that has none any more keeps the one that it stored before.
StepResult ProvideItem(SessionState& state) {
    const std::wstring stored = StoredItem();
    if (!stored.empty() && !state.madeLegacyItem) {
        return {true, "from the configuration, " + Characters(stored.size()), {}};
    }
    const std::wstring refreshToken = state.service->GetCurrentRT();
    if (refreshToken.empty() && !stored.empty()) {
        return {true, "made earlier in this session, " + Characters(stored.size()), {}};
    }
    if (refreshToken.empty()) {
        return {false, "no item \"0\" in the \"legacyItems\" of --config, and no session to make one of", {}};
    }
    state.madeLegacyItem = true;
    StoreLegacyItem(MakeLegacySignIn(refreshToken), state.folder.Path());
    const std::wstring item = StoredItem();
    return {!item.empty(), "made of the session's refresh token, protected, " + Characters(item.size()), {}};
}

StepResult TakeOver(SessionState& state) {
    UserAuthService& service = *state.service;
    const std::wstring before = service.GetCurrentUserID();
    service.Clear();
    const std::wstring userId = service.GetOldVersionUserId();
    if (userId.empty()) {
        return {false,
                service.GetCurrentRT().empty() ? "the item is not this user's, or holds no refresh token"
                                               : SeeLog("the refresh or the user-id look-up failed"),
                {}};
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

std::vector<Step> LegacySignInSteps(SessionState& state) {
    return {
        {"legacy-item", "earlier client's sign-in in store", [&state] { return ProvideItem(state); }},
        {"legacy-sign-in", "earlier client's sign-in taken over", [&state] { return TakeOver(state); }},
    };
}

}  // namespace host
