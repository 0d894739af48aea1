#include "core/PortraitChangedMessage.h"

#include <ParamStore.h>
#include <windows.h>

namespace userauth {

void PostPortraitChanged() {
    constexpr UINT kPortraitChanged = 0x0C87;  // a fixed number, not a registered message
    const HWND window = GlobalParamWrapper::GetInstance()->GetMainWnd();
    // Without a window the platform would post to the calling thread instead.
    if (window != nullptr) {
        PostMessageW(window, kPortraitChanged, 0, 0);
    }
}

}  // namespace userauth
