// Windows without a display. Like the platform: a window keeps its posted messages until its owner takes them, what is
// posted to a window that is gone fails, a message box shows its text in a child of class "Static" and stands until
// somebody closes it. Unlike it: any thread may take messages, and a queue has no limit.

#include <windows.h>

#include <condition_variable>
#include <cwchar>
#include <deque>
#include <map>
#include <mutex>
#include <string>

#include "Handles.h"

namespace {

struct Window {
    std::wstring className;
    std::wstring caption;
    HWND parent;
    std::deque<MSG> messages;
};

std::mutex g_lock;
std::condition_variable g_destroyed;
std::map<HWND, Window>& Windows() {
    static auto* const windows = new std::map<HWND, Window>;
    return *windows;
}

bool SameClass(const std::wstring& left, LPCWSTR right) {
    return wcscasecmp(left.c_str(), right) == 0;
}

// With the lock held.
HWND Find(HWND parent, LPCWSTR className, LPCWSTR caption) {
    for (const auto& [handle, window] : Windows()) {
        if (window.parent == parent && (className == nullptr || SameClass(window.className, className)) &&
            (caption == nullptr || window.caption == caption)) {
            return handle;
        }
    }
    return nullptr;
}

}  // namespace

HWND CreateWindowExW(DWORD, LPCWSTR className, LPCWSTR caption, DWORD, int, int, int, int, HWND parent, void*, HMODULE,
                     void*) {
    static std::intptr_t last = 0x1000;
    const std::lock_guard<std::mutex> hold(g_lock);
    const auto handle = reinterpret_cast<HWND>(last += 2);
    Windows()[handle] = {className, caption == nullptr ? L"" : caption, parent, {}};
    return handle;
}

BOOL DestroyWindow(HWND window) {
    const std::lock_guard<std::mutex> hold(g_lock);
    if (Windows().erase(window) == 0) {
        return Refuse(ERROR_INVALID_WINDOW_HANDLE);
    }
    g_destroyed.notify_all();
    return TRUE;
}

HWND FindWindowW(LPCWSTR className, LPCWSTR caption) {
    const std::lock_guard<std::mutex> hold(g_lock);
    return Find(nullptr, className, caption);
}

HWND FindWindowExW(HWND parent, HWND, LPCWSTR className, LPCWSTR caption) {
    const std::lock_guard<std::mutex> hold(g_lock);
    return Find(parent, className, caption);
}

LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CLOSE) {
        return DestroyWindow(window);
    }
    const std::lock_guard<std::mutex> hold(g_lock);
    const auto found = Windows().find(window);
    if (found == Windows().end() || message != WM_GETTEXT || wParam == 0) {
        return found != Windows().end() && message == WM_GETTEXTLENGTH
                   ? static_cast<LRESULT>(found->second.caption.size())
                   : 0;
    }
    auto* const text = reinterpret_cast<wchar_t*>(lParam);
    const std::size_t length = found->second.caption.copy(text, wParam - 1);
    text[length] = L'\0';
    return static_cast<LRESULT>(length);
}

int GetWindowTextLengthW(HWND window) {
    return static_cast<int>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0));
}

BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CLOSE) {
        return DestroyWindow(window);
    }
    const std::lock_guard<std::mutex> hold(g_lock);
    const auto found = Windows().find(window);
    if (found == Windows().end()) {
        return Refuse(ERROR_INVALID_WINDOW_HANDLE);
    }
    found->second.messages.push_back({window, message, wParam, lParam});
    return TRUE;
}

BOOL PeekMessageW(MSG* message, HWND window, UINT first, UINT last, UINT remove) {
    const std::lock_guard<std::mutex> hold(g_lock);
    const auto found = Windows().find(window);
    if (found == Windows().end()) {
        return Refuse(ERROR_INVALID_WINDOW_HANDLE);
    }
    auto& queue = found->second.messages;
    for (auto at = queue.begin(); at != queue.end(); ++at) {
        if ((first == 0 && last == 0) || (at->message >= first && at->message <= last)) {
            *message = *at;
            if ((remove & PM_REMOVE) != 0) {
                queue.erase(at);
            }
            return TRUE;
        }
    }
    return FALSE;
}

UINT RegisterWindowMessageW(LPCWSTR name) {
    static auto* const names = new std::map<std::wstring, UINT>;
    const std::lock_guard<std::mutex> hold(g_lock);
    return names->try_emplace(name, 0xC000U + static_cast<UINT>(names->size())).first->second;
}

int MessageBoxW(HWND, LPCWSTR text, LPCWSTR caption, UINT) {
    constexpr int kOk = 1;
    const HWND box = CreateWindowExW(0, L"#32770", caption, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    const HWND label = CreateWindowExW(0, L"Static", text, 0, 0, 0, 0, 0, box, nullptr, nullptr, nullptr);
    {
        std::unique_lock<std::mutex> hold(g_lock);
        g_destroyed.wait(hold, [box] { return Windows().count(box) == 0; });
    }
    DestroyWindow(label);
    return kOk;
}
