#include "core/WindowMessages.h"

#include <ParamStore.h>
#include <windows.h>

#include "UserAuthTypes.h"

namespace userauth {

void PostPortraitChanged() {
    const HWND window = GlobalParamWrapper::GetInstance()->GetMainWnd();
    // Without a window the platform would post to the calling thread instead.
    if (window != nullptr) {
        PostMessageW(window, kPortraitChangedMessage, 0, 0);
    }
}

const SuiteWindowMessages g_suiteWindowMessages = {
    RegisterWindowMessageW(L"WM_APP_SHOWWINDOW"),   RegisterWindowMessageW(L"WM_APP_ISCLOSING"),
    RegisterWindowMessageW(L"WM_APP_REFRESHPREFS"), RegisterWindowMessageW(L"WM_APP_RESTORE"),
    RegisterWindowMessageW(L"WM_APP_ATLOST"),
};

}  // namespace userauth
