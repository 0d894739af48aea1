#include "platform/PlatformUrlForSdk.h"

#include <windows.h>

#include "text/TextEncoding.h"

namespace host {

void SetPlatformUrlForSdk(const std::string& url) {
    SetEnvironmentVariableW(L"ZVACCOUNTSDK_PLATFORM_URL", url.empty() ? nullptr : ToWide(url).c_str());
}

}  // namespace host
