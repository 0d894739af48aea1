#include <Logger.h>

#include "UserAuthService.h"
#include "core/DeploymentConstants.h"
#include "core/ServiceLog.h"
#include "core/TextEncoding.h"

namespace {

constexpr char kTag[] = "UserAuthService::ZmsSignIn";
constexpr unsigned kOemCodePage = 1;

// Business event of the sign-in: basic event, operation, action.
constexpr int kEventSignIn[] = {248, 5, 4};

// The blank at the end is kept as it is.
constexpr char kScopes[] = USERAUTH_SCOPE_HOST
    "/auth/account/base.profile " USERAUTH_SCOPE_HOST "/auth/account/devicelist " USERAUTH_SCOPE_HOST
    "/auth/drive " USERAUTH_SCOPE_HOST
    "/auth/cloudphoto "
    "openid " USERAUTH_SCOPE_HOST "/auth/account/country " USERAUTH_SCOPE_HOST "/auth/cloudbackup " USERAUTH_SCOPE_HOST
    "/auth/drive/extension " USERAUTH_SCOPE_HOST "/auth/clouddatasync " USERAUTH_SCOPE_HOST
    "/auth/account/account.flags " USERAUTH_SCOPE_HOST "/auth/account/realname/state ";

// Not JSON: kept as it is.
constexpr char kLocation[] = R"({"LocationX":,"LocationY":})";

}  // namespace

ZvIdErrorType UserAuthService::ZmsSignIn() try {
    if (m_sdk.signIn == nullptr) {
        userauth::WriteLog(kSeverityProgress, __LINE__, kTag, L"ZmsSignIn: oauth unknow");
        return ZvIdErrorType::kEntryPointMissing;
    }
    const std::wstring applicationId = userauth::kApplicationId;
    userauth::WriteLog(kSeverityProgress, __LINE__, kTag, L"ZmsSignIn:" + applicationId);
    Logger::OutputOperationLog(kEventSignIn[0], kEventSignIn[1], kEventSignIn[2]);
    const std::string applicationIdText = userauth::WideToMultiByte(applicationId, kOemCodePage);
    return static_cast<ZvIdErrorType>(m_sdk.signIn(applicationIdText.c_str(), kScopes, kLocation));
} catch (...) {
    return ZvIdErrorType::kEntryPointMissing;
}
