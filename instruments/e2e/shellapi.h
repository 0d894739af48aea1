#pragma once

#include <windows.h>

// Of this process alone: the text is not looked at.
inline LPCWSTR GetCommandLineW() {
    return L"";
}
LPWSTR* CommandLineToArgvW(LPCWSTR commandLine, int* count);

// A machine without a browser: nothing is associated with a URL.
constexpr int SW_SHOWNORMAL = 1;
inline HINSTANCE ShellExecuteW(HWND, LPCWSTR, LPCWSTR, LPCWSTR, LPCWSTR, int) {
    return reinterpret_cast<HINSTANCE>(std::intptr_t{31});
}
