#include "system/PortraitWindow.h"

#include <windows.h>

#include "system/HostError.h"

namespace host {
namespace {

using Clock = std::chrono::steady_clock;

constexpr wchar_t kClassName[] = L"UserAuthHostPortraitWindow";
// Wine ends its desktop with the last program that has a window: one that starts at that moment gets none.
constexpr int kAttempts = 5;
constexpr DWORD kPauseMilliseconds = 200;
constexpr UINT kPortraitChanged = 0x0C87;  // the service's number; both parameters are 0

LRESULT CALLBACK HandleMessage(HWND window, UINT message, WPARAM first, LPARAM second) {
    auto* const owner = reinterpret_cast<PortraitWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == kPortraitChanged && first == 0 && second == 0 && owner) {
        owner->OnPortraitChanged();
        return 0;
    }
    return DefWindowProcW(window, message, first, second);
}

HWND MakeWindow() {
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = &HandleMessage;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = kClassName;
    RegisterClassW(&windowClass);  // fails harmlessly when an earlier window has registered it
    HWND window = nullptr;
    for (int attempt = 0; !window && attempt < kAttempts; ++attempt) {
        Sleep(attempt == 0 ? 0 : kPauseMilliseconds);
        window = CreateWindowExW(0, kClassName, L"userauth", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                 windowClass.hInstance, nullptr);
    }
    if (!window) {
        FailWithSystemError("cannot make a window", GetLastError());
    }
    return window;
}

void DispatchWaitingMessages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

}  // namespace

PortraitWindow::PortraitWindow() : m_window(MakeWindow()) {
    SetWindowLongPtrW(m_window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

PortraitWindow::~PortraitWindow() {
    DestroyWindow(m_window);
}

void PortraitWindow::Forget() {
    DispatchWaitingMessages();
    m_arrived = false;
}

bool PortraitWindow::WaitForMessage(std::chrono::milliseconds longest) {
    const Clock::time_point end = Clock::now() + longest;
    for (;;) {
        DispatchWaitingMessages();
        const auto rest = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        if (m_arrived || rest <= 0) {
            return m_arrived;
        }
        MsgWaitForMultipleObjectsEx(0, nullptr, static_cast<DWORD>(rest), QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    }
}

}  // namespace host
