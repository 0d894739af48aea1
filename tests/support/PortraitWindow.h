#pragma once

#include <ParamStore.h>
#include <gtest/gtest.h>
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

    // Takes messages until the wanted number is there or 15 seconds have passed, then has one more look. A message of
    // the calling thread is there at once.
    int Messages(int wanted) {
        int count = 0;
        const ULONGLONG deadline = GetTickCount64() + 15000;
        do {
            MSG message{};
            while (PeekMessageW(&message, m_window, kPortraitChangedMessage, kPortraitChangedMessage, PM_REMOVE) !=
                   FALSE) {
                EXPECT_EQ(message.wParam, 0U);
                EXPECT_EQ(message.lParam, 0);
                ++count;
            }
            Sleep(1);
        } while (count < wanted && GetTickCount64() < deadline);
        return count;
    }

private:
    HWND m_window = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
};
