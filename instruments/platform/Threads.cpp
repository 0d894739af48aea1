// Handles of threads, waiting, named mutexes and the thread pool. Like the platform: a thread's handle is signalled
// when the thread has run out, one name is one mutex, which its owner may take again, and the pool keeps a callback's
// library loaded until it has returned. Unlike it: names count inside this process only, a mutex without a name fails,
// an owner that ended keeps its mutex, INFINITE is 49 days, and the pool starts a thread a callback.

#include <windows.h>

#include <chrono>
#include <future>
#include <map>
#include <mutex>
#include <string>
#include <thread>

#include "Handles.h"

namespace {

thread_local DWORD g_lastError = 0;

// The calling thread's, kept by its last act.
struct PromiseToEnd {
    std::promise<void> promise;
    std::shared_future<void> kept = promise.get_future().share();
    ~PromiseToEnd() { promise.set_value(); }
};
thread_local PromiseToEnd g_end;

struct ThreadHandle : KernelObject {
    std::shared_future<void> ended = g_end.kept;
    DWORD Wait(DWORD milliseconds) override {
        const auto status = ended.wait_for(std::chrono::milliseconds(milliseconds));
        return status == std::future_status::ready ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
    }
};

struct MutexHandle : KernelObject {
    explicit MutexHandle(std::recursive_timed_mutex& named) : mutex(named) {}
    std::recursive_timed_mutex& mutex;
    // By the clock whose waiting the thread sanitizer sees.
    DWORD Wait(DWORD milliseconds) override {
        const auto end = std::chrono::system_clock::now() + std::chrono::milliseconds(milliseconds);
        return mutex.try_lock_until(end) ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
    }
};

}  // namespace

DWORD GetLastError() {
    return g_lastError;
}
void SetLastError(DWORD error) {
    g_lastError = error;
}

// Of the current thread only: nobody duplicates anything else here.
BOOL DuplicateHandle(HANDLE, HANDLE source, HANDLE, HANDLE* target, DWORD, BOOL, DWORD) {
    if (source != GetCurrentThread()) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    *target = static_cast<KernelObject*>(new ThreadHandle);
    return TRUE;
}

BOOL CloseHandle(HANDLE handle) {
    KernelObject* const object = ObjectOf(handle);
    delete object;
    return object != nullptr || Refuse(ERROR_INVALID_HANDLE);
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    KernelObject* const object = ObjectOf(handle);
    return object != nullptr ? object->Wait(milliseconds) : (SetLastError(ERROR_INVALID_HANDLE), WAIT_FAILED);
}

HANDLE CreateMutexW(void*, BOOL, LPCWSTR name) {
    static std::mutex lock;
    static auto* const named = new std::map<std::wstring, std::recursive_timed_mutex>;
    const std::lock_guard<std::mutex> hold(lock);
    return name == nullptr ? nullptr : static_cast<KernelObject*>(new MutexHandle((*named)[name]));
}

// By its owner alone.
BOOL ReleaseMutex(HANDLE handle) {
    auto* const mutex = ObjectOf<MutexHandle>(handle);
    if (mutex == nullptr) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    mutex->mutex.unlock();
    return TRUE;
}

BOOL TrySubmitThreadpoolCallback(void (*callback)(PTP_CALLBACK_INSTANCE, void*), void* context,
                                 TP_CALLBACK_ENVIRON* environment) {
    HMODULE library = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(environment->library),
                       &library);
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
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<ULONGLONG>(std::chrono::duration_cast<std::chrono::milliseconds>(time).count());
}
