#include "UserAuthService.h"

ZvIdErrorType UserAuthService::UnInitializeSDK() try {
    if (m_sdk.uninit == nullptr) {
        return ZvIdErrorType::kEntryPointMissing;
    }
    return static_cast<ZvIdErrorType>(m_sdk.uninit());
} catch (...) {
    return ZvIdErrorType::kEntryPointMissing;
}
