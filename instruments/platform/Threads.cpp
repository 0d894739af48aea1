// Threads' handles and the thread pool. Like the platform: a thread's handle is signalled when the thread has run out,
// and the pool keeps a callback's library loaded until it has returned. Unlike it: the pool starts a thread a
// callback.

#include <unistd.h>
#include <windows.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "Handles.h"

namespace {

thread_local DWORD g_lastError = 0;

std::chrono::steady_clock::time_point After(std::chrono::milliseconds limit) {
    constexpr auto kForever = std::chrono::hours(24);
    return std::chrono::steady_clock::now() + (limit.count() == INFINITE ? kForever : limit);
}

struct Event {
    std::mutex lock;
    std::condition_variable changed;
    bool set = false;

    void Set() {
        const std::lock_guard<std::mutex> hold(lock);
        set = true;
        changed.notify_all();
    }
};

// Set by the thread's last act.
struct ThreadEnd {
    std::shared_ptr<Event> event = std::make_shared<Event>();
    ~ThreadEnd() { event->Set(); }
};
thread_local ThreadEnd g_threadEnd;

struct ThreadHandle : KernelObject {
    std::shared_ptr<Event> ended = g_threadEnd.event;
    DWORD Wait(std::chrono::milliseconds limit) override {
        std::unique_lock<std::mutex> hold(ended->lock);
        return ended->changed.wait_until(hold, After(limit), [this] { return ended->set; }) ? WAIT_OBJECT_0
                                                                                            : WAIT_TIMEOUT;
    }
};

KernelObject* ObjectOf(HANDLE handle) {
    return static_cast<KernelObject*>(handle);
}

#define CURRENT_PROCESS (reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-1)))
#define CURRENT_THREAD (reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-2)))

bool IsPseudo(HANDLE handle) {
    return handle == nullptr || handle == CURRENT_PROCESS || handle == CURRENT_THREAD;
}

}  // namespace

DWORD GetLastError() {
    return g_lastError;
}
void SetLastError(DWORD error) {
    g_lastError = error;
}

HANDLE GetCurrentProcess() {
    return CURRENT_PROCESS;
}
HANDLE GetCurrentThread() {
    return CURRENT_THREAD;
}
DWORD GetCurrentProcessId() {
    return static_cast<DWORD>(getpid());
}

// Of the current thread only: nobody duplicates anything else here.
BOOL DuplicateHandle(HANDLE, HANDLE source, HANDLE, HANDLE* target, DWORD, BOOL, DWORD) {
    if (source != CURRENT_THREAD) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    *target = static_cast<KernelObject*>(new ThreadHandle);
    return TRUE;
}

BOOL CloseHandle(HANDLE handle) {
    if (IsPseudo(handle)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    delete ObjectOf(handle);
    return TRUE;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    return IsPseudo(handle) ? WAIT_FAILED : ObjectOf(handle)->Wait(std::chrono::milliseconds(milliseconds));
}

void InitializeThreadpoolEnvironment(TP_CALLBACK_ENVIRON* environment) {
    environment->library = nullptr;
}
void SetThreadpoolCallbackLibrary(TP_CALLBACK_ENVIRON* environment, HMODULE library) {
    environment->library = library;
}
void DestroyThreadpoolEnvironment(TP_CALLBACK_ENVIRON*) {}

BOOL TrySubmitThreadpoolCallback(void (*callback)(PTP_CALLBACK_INSTANCE, void*), void* context,
                                 TP_CALLBACK_ENVIRON* environment) {
    HMODULE library = nullptr;
    if (environment->library != nullptr) {
        GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(environment->library),
                           &library);
    }
    try {
        std::thread([callback, context, library] {
            callback(nullptr, context);
            FreeLibrary(library);
        }).detach();
    } catch (const std::system_error&) {
        FreeLibrary(library);
        return FALSE;
    }
    return TRUE;
}

void Sleep(DWORD milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

ULONGLONG GetTickCount64() {
    return static_cast<ULONGLONG>(
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
            .count());
}
