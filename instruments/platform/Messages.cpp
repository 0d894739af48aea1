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

bool InvalidWindow() {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return false;
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
        return InvalidWindow();
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

int GetWindowTextLengthW(HWND window) {
    const std::lock_guard<std::mutex> hold(g_lock);
    const auto found = Windows().find(window);
    return found == Windows().end() ? 0 : static_cast<int>(found->second.caption.size());
}

int GetWindowTextW(HWND window, wchar_t* text, int capacity) {
    const std::lock_guard<std::mutex> hold(g_lock);
    const auto found = Windows().find(window);
    if (found == Windows().end() || capacity <= 0) {
        return 0;
    }
    const std::size_t length = found->second.caption.copy(text, static_cast<std::size_t>(capacity) - 1);
    text[length] = L'\0';
    return static_cast<int>(length);
}

LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_GETTEXTLENGTH:
            return GetWindowTextLengthW(window);
        case WM_GETTEXT:
            return GetWindowTextW(window, reinterpret_cast<wchar_t*>(lParam), static_cast<int>(wParam));
        case WM_CLOSE:
            return DestroyWindow(window);
        default:
            return 0;
    }
}

BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CLOSE) {
        return DestroyWindow(window);
    }
    const std::lock_guard<std::mutex> hold(g_lock);
    const auto found = Windows().find(window);
    if (found == Windows().end()) {
        return InvalidWindow();
    }
    found->second.messages.push_back({window, message, wParam, lParam});
    return TRUE;
}

BOOL PeekMessageW(MSG* message, HWND window, UINT first, UINT last, UINT remove) {
    const std::lock_guard<std::mutex> hold(g_lock);
    const auto found = Windows().find(window);
    if (found == Windows().end()) {
        return InvalidWindow();
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
