#include "UserAuthService.h"

ZvIdErrorType UserAuthService::RegisterNotifyFunctionInvoke(ZmsNotifyCallback callback) try {
    if (m_sdk.registerNotifyFunction == nullptr) {
        return ZvIdErrorType::kEntryPointMissing;
    }
    return static_cast<ZvIdErrorType>(m_sdk.registerNotifyFunction(callback));
} catch (...) {
    return ZvIdErrorType::kEntryPointMissing;
}
