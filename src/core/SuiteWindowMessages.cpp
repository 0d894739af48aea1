#include "core/SuiteWindowMessages.h"

#include <windows.h>

namespace userauth {

const SuiteWindowMessages g_suiteWindowMessages = {
    RegisterWindowMessageW(L"WM_APP_SHOWWINDOW"),   RegisterWindowMessageW(L"WM_APP_ISCLOSING"),
    RegisterWindowMessageW(L"WM_APP_REFRESHPREFS"), RegisterWindowMessageW(L"WM_APP_RESTORE"),
    RegisterWindowMessageW(L"WM_APP_ATLOST"),
};

}  // namespace userauth
