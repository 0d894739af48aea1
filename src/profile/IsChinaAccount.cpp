#include "UserAuthService.h"

bool UserAuthService::IsChinaAccount() try { return GetCurrentCountryCode() == L"CN"; } catch (...) {
    return false;
}
