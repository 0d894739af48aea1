// Windows without a display. Like the platform: a window keeps its posted messages until its owner takes them, what is
// posted to a window that is gone fails, a message box has its text as its item and stands until somebody closes it.
// Unlike it: any thread may take messages, a look always takes one, a queue has no limit, and classes do not count.

#include <windows.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <string>

#include "Handles.h"

namespace {

struct Window {
    std::wstring caption;
    std::wstring item;
    std::deque<MSG> messages;
};

std::mutex g_lock;
std::condition_variable g_destroyed;
std::map<HWND, Window>& Windows() {
    static auto* const windows = new std::map<HWND, Window>;
    return *windows;
}

HWND Create(const std::wstring& caption, const std::wstring& item) {
    static std::intptr_t last = 0x1000;
    const std::lock_guard<std::mutex> hold(g_lock);
    const auto handle = reinterpret_cast<HWND>(last += 2);
    Windows()[handle] = {caption, item, {}};
    return handle;
}

// With the lock held; null, with the error set, when it is gone.
Window* Standing(HWND handle) {
    const auto found = Windows().find(handle);
    return found != Windows().end() ? &found->second : (SetLastError(ERROR_INVALID_WINDOW_HANDLE), nullptr);
}

}  // namespace

HWND CreateWindowExW(DWORD, LPCWSTR, LPCWSTR caption, DWORD, int, int, int, int, HWND, void*, HMODULE, void*) {
    return Create(caption, L"");
}

BOOL DestroyWindow(HWND window) {
    const std::lock_guard<std::mutex> hold(g_lock);
    g_destroyed.notify_all();
    return Windows().erase(window) != 0 || Refuse(ERROR_INVALID_WINDOW_HANDLE);
}

HWND FindWindowW(LPCWSTR, LPCWSTR caption) {
    const std::lock_guard<std::mutex> hold(g_lock);
    for (const auto& [handle, window] : Windows()) {
        if (window.caption == caption) {
            return handle;
        }
    }
    return nullptr;
}

UINT GetDlgItemTextW(HWND handle, int, wchar_t* text, int capacity) {
    const std::lock_guard<std::mutex> hold(g_lock);
    const Window* const window = Standing(handle);
    const std::size_t length = window == nullptr ? 0 : window->item.copy(text, static_cast<std::size_t>(capacity) - 1);
    text[length] = L'\0';
    return static_cast<UINT>(length);
}

BOOL PostMessageW(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CLOSE) {
        return DestroyWindow(handle);
    }
    const std::lock_guard<std::mutex> hold(g_lock);
    Window* const window = Standing(handle);
    if (window != nullptr) {
        window->messages.push_back({handle, message, wParam, lParam});
    }
    return window != nullptr;
}

BOOL PeekMessageW(MSG* message, HWND handle, UINT first, UINT last, UINT) {
    const std::lock_guard<std::mutex> hold(g_lock);
    Window* const window = Standing(handle);
    std::deque<MSG> none;
    auto& queue = window == nullptr ? none : window->messages;
    const auto found = std::find_if(queue.begin(), queue.end(), [=](const MSG& posted) {
        return posted.message >= first && posted.message <= last;
    });
    if (found == queue.end()) {
        return FALSE;
    }
    *message = *found;
    queue.erase(found);
    return TRUE;
}

UINT RegisterWindowMessageW(LPCWSTR name) {
    static auto* const names = new std::map<std::wstring, UINT>;
    const std::lock_guard<std::mutex> hold(g_lock);
    return names->try_emplace(name, 0xC000U + static_cast<UINT>(names->size())).first->second;
}

int MessageBoxW(HWND, LPCWSTR text, LPCWSTR caption, UINT) {
    constexpr int kOk = 1;
    const HWND box = Create(caption, text);
    std::unique_lock<std::mutex> hold(g_lock);
    g_destroyed.wait(hold, [box] { return Windows().count(box) == 0; });
    return kOk;
}
