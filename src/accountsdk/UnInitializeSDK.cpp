#include "UserAuthService.h"

ZvIdErrorType UserAuthService::UnInitializeSDK() {
    if (m_sdk.uninit == nullptr) {
        return ZvIdErrorType::kEntryPointMissing;
    }
    return static_cast<ZvIdErrorType>(m_sdk.uninit());
}
