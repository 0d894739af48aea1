#include "system/PortraitWindow.h"

#include <ParamStore.h>
#include <UserAuthTypes.h>
#include <windows.h>

#include "system/Interruption.h"
#include "system/WindowsHandle.h"

namespace host {
namespace {

using Clock = std::chrono::steady_clock;

// Wine ends its desktop with the last program that has a window. A program that starts at that moment gets no window.
constexpr int kAttempts = 5;
constexpr DWORD kPauseMilliseconds = 200;

HWND MakeWindow() {
    HWND window = nullptr;
    for (int attempt = 0; !window && attempt < kAttempts; ++attempt) {
        Sleep(attempt == 0 ? 0 : kPauseMilliseconds);
        // Any class will do: the message is taken from the queue and reaches no window procedure.
        window = CreateWindowExW(0, L"STATIC", L"userauth", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    }
    RequireDone(window, "cannot make a window");
    return window;
}

bool TakeMessage(HWND window) {
    MSG message;
    return PeekMessageW(&message, window, kPortraitChangedMessage, kPortraitChangedMessage, PM_REMOVE) &&
           message.wParam == 0 && message.lParam == 0;
}

}  // namespace

PortraitWindow::PortraitWindow() : m_window(MakeWindow()) {
    GlobalParamWrapper::GetInstance()->SetMainWnd(m_window);
}

PortraitWindow::~PortraitWindow() {
    GlobalParamWrapper::GetInstance()->SetMainWnd(nullptr);  // a download may still run
    DestroyWindow(m_window);
}

void PortraitWindow::Forget() {
    while (TakeMessage(m_window)) {
    }
}

bool PortraitWindow::WaitForMessage(std::chrono::milliseconds longest) {
    const Clock::time_point end = Clock::now() + longest;
    while (!TakeMessage(m_window)) {
        const auto rest = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        if (rest <= 0 || Interrupted()) {
            return false;
        }
        const HANDLE interruption = InterruptionEvent();
        MsgWaitForMultipleObjects(1, &interruption, FALSE, static_cast<DWORD>(rest), QS_POSTMESSAGE);
    }
    return true;
}

}  // namespace host
