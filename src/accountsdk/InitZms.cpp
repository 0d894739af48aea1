#include <ParamStore.h>

#include "UserAuthService.h"
#include "core/ServiceLog.h"

namespace {

// Without the lock: the host initialises the SDK before its first request. Filled once, so that a later call cannot
// change the text under a running request; a store that fails leaves it empty and the SDK initialised.
void FillOnce(std::wstring& deviceId) {
    try {
        if (deviceId.empty()) {
            deviceId = GlobalParamWrapper::GetInstance()->GetSystemUUid();
        }
    } catch (...) {
        return;
    }
}

}  // namespace

int UserAuthService::InitZms(ZmsNotifyCallback callback) try {
    GlobalParamWrapper::GetInstance()->SetStartSend(true);
    const ZvIdErrorType initialized = InitializeSDK();
    if (initialized != ZvIdErrorType::kSuccess) {
        return static_cast<int>(initialized);
    }
    return static_cast<int>(RegisterNotifyFunctionInvoke(callback));
} catch (...) {
    return static_cast<int>(ZvIdErrorType::kEntryPointMissing);
}

ZvIdErrorType UserAuthService::InitializeSDK() try {
    if (m_sdk.init == nullptr) {
        return ZvIdErrorType::kEntryPointMissing;
    }
    if (m_sdk.init() != 0) {
        // Uninit's code replaces Init's, and "Uninit" is not tested for null: kept as it is. One library exports both.
        return static_cast<ZvIdErrorType>(m_sdk.uninit());
    }
    userauth::WriteLog(kSeverityProgress, __LINE__, "UserAuthService::InitializeSDK", L"ZMS Init OK!");
    FillOnce(m_strSdkDeviceId);
    return ZvIdErrorType::kSuccess;
} catch (...) {
    return ZvIdErrorType::kEntryPointMissing;
}

ZvIdErrorType UserAuthService::UnInitializeSDK() try {
    if (m_sdk.uninit == nullptr) {
        return ZvIdErrorType::kEntryPointMissing;
    }
    return static_cast<ZvIdErrorType>(m_sdk.uninit());
} catch (...) {
    return ZvIdErrorType::kEntryPointMissing;
}

ZvIdErrorType UserAuthService::RegisterNotifyFunctionInvoke(ZmsNotifyCallback callback) try {
    if (m_sdk.registerNotifyFunction == nullptr) {
        return ZvIdErrorType::kEntryPointMissing;
    }
    return static_cast<ZvIdErrorType>(m_sdk.registerNotifyFunction(callback));
} catch (...) {
    return ZvIdErrorType::kEntryPointMissing;
}
