#pragma once

#include <ParamStore.h>
#include <windows.h>

#include "UserAuthTypes.h"

// The client's main window for as long as it lives; it keeps the messages about portraits for its thread.
class PortraitWindow {
public:
    PortraitWindow() { GlobalParamWrapper::GetInstance()->SetMainWnd(m_window); }
    ~PortraitWindow() {
        GlobalParamWrapper::GetInstance()->SetMainWnd(nullptr);
        DestroyWindow(m_window);
    }
    PortraitWindow(const PortraitWindow&) = delete;
    PortraitWindow& operator=(const PortraitWindow&) = delete;

    // Takes one message, for which it waits 15 seconds.
    bool MessageArrives() {
        MSG message{};
        const ULONGLONG deadline = GetTickCount64() + 15000;
        while (PeekMessageW(&message, m_window, kPortraitChangedMessage, kPortraitChangedMessage, PM_REMOVE) == FALSE) {
            if (GetTickCount64() > deadline) {
                return false;
            }
            Sleep(5);
        }
        return true;
    }

private:
    HWND m_window = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
};
