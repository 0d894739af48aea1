#include <ParamStore.h>

#include "UserAuthService.h"
#include "core/ServiceLog.h"

ZvIdErrorType UserAuthService::InitializeSDK() try {
    if (m_sdk.init == nullptr) {
        return ZvIdErrorType::kEntryPointMissing;
    }
    if (m_sdk.init() != 0) {
        // Uninit's code deliberately replaces Init's, and "Uninit" is not tested for null: one library has both.
        return static_cast<ZvIdErrorType>(m_sdk.uninit());
    }
    // Without the lock: the host initialises the SDK before its first request. Filled once, so that a later call cannot
    // change the text under a running request.
    if (m_strSdkDeviceId.empty()) {
        m_strSdkDeviceId = GlobalParamWrapper::GetInstance()->GetSystemUUid();
    }
    userauth::WriteLog(kSeverityProgress, __LINE__, "UserAuthService::InitializeSDK", L"ZMS Init OK!");
    return ZvIdErrorType::kSuccess;
} catch (...) {
    return ZvIdErrorType::kEntryPointMissing;
}
