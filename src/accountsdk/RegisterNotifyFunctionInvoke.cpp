#include "UserAuthService.h"

ZvIdErrorType UserAuthService::RegisterNotifyFunctionInvoke(ZmsNotifyCallback callback) {
    if (m_sdk.registerNotifyFunction == nullptr) {
        return ZvIdErrorType::kEntryPointMissing;
    }
    return static_cast<ZvIdErrorType>(m_sdk.registerNotifyFunction(callback));
}
