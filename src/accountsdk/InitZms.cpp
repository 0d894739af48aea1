#include <ParamStore.h>

#include "UserAuthService.h"

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
