// Threads and their handles, events, mutexes and the thread pool. Like the platform: a thread's
// handle is signalled when the thread has run out, one name is one mutex, a mutex is its owner's alone and abandoned by
// an owner that ended, and the pool keeps a callback's library loaded until it has returned. Unlike it: names count
// inside this process only, the pool starts a thread a callback, and a thread that leaves with its library goes through
// its own frames first.

#include <process.h>
#include <unistd.h>
#include <windows.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "Handles.h"

namespace {

thread_local DWORD g_lastError = 0;

// One lock and one signal for everything that can be waited for. Never destroyed: threads outlive main.
struct Waiting {
    std::mutex lock;
    std::condition_variable changed;
};
Waiting& AllWaiting() {
    static auto* const waiting = new Waiting;
    return *waiting;
}

using Flag = std::shared_ptr<bool>;

// Raised by the thread's last act.
struct ThreadEnd {
    Flag ended = std::make_shared<bool>(false);
    ~ThreadEnd() {
        const std::lock_guard<std::mutex> hold(AllWaiting().lock);
        *ended = true;
        AllWaiting().changed.notify_all();
    }
};
thread_local ThreadEnd g_threadEnd;

struct ThreadHandle : KernelObject {
    explicit ThreadHandle(Flag flag) : ended(std::move(flag)) {}
    Flag ended;
    DWORD Take() override { return *ended ? WAIT_OBJECT_0 : WAIT_TIMEOUT; }
};

struct EventHandle : KernelObject {
    bool set = false;
    bool manual = false;
    DWORD Take() override {
        const bool was = set;
        set = set && manual;
        return was ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
    }
};

struct Mutex {
    Flag ownerEnded;  // null: free
    int depth = 0;
};

struct MutexHandle : KernelObject {
    std::shared_ptr<Mutex> mutex;
    bool IsMine() const { return mutex->ownerEnded == g_threadEnd.ended; }
    DWORD Take() override {
        const bool abandoned = mutex->ownerEnded != nullptr && *mutex->ownerEnded;
        if (mutex->ownerEnded != nullptr && !IsMine() && !abandoned) {
            return WAIT_TIMEOUT;
        }
        mutex->depth = IsMine() ? mutex->depth + 1 : 1;
        mutex->ownerEnded = g_threadEnd.ended;
        return abandoned ? WAIT_ABANDONED : WAIT_OBJECT_0;
    }
};

std::atomic<DWORD> g_lastThreadId{0};
thread_local DWORD g_threadId = ++g_lastThreadId;

struct ThreadLeaves {
    HMODULE module;
};

#define CURRENT_PROCESS (reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-1)))
#define CURRENT_THREAD (reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-2)))

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

DWORD GetCurrentThreadId() {
    return g_threadId;
}

std::uintptr_t _beginthreadex(void*, unsigned, unsigned (*run)(void*), void* argument, unsigned, unsigned* id) {
    try {
        const Flag ended = std::make_shared<bool>(false);
        *id = ++g_lastThreadId;
        std::thread([run, argument, ended, number = *id] {
            g_threadId = number;
            g_threadEnd.ended = ended;
            HMODULE library = nullptr;
            try {
                run(argument);
            } catch (const ThreadLeaves& leaving) {
                library = leaving.module;
            }
            FreeLibrary(library);
        }).detach();
        return reinterpret_cast<std::uintptr_t>(static_cast<KernelObject*>(new ThreadHandle(ended)));
    } catch (const std::system_error&) {
        return 0;
    }
}

void FreeLibraryAndExitThread(HMODULE module, DWORD) {
    throw ThreadLeaves{module};
}

// Of the current thread only: nobody duplicates anything else here.
BOOL DuplicateHandle(HANDLE, HANDLE source, HANDLE, HANDLE* target, DWORD, BOOL, DWORD) {
    if (source != CURRENT_THREAD) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    *target = static_cast<KernelObject*>(new ThreadHandle(g_threadEnd.ended));
    return TRUE;
}

BOOL CloseHandle(HANDLE handle) {
    KernelObject* const object = ObjectOf(handle);
    delete object;
    return object != nullptr || Refuse(ERROR_INVALID_HANDLE);
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    KernelObject* const object = ObjectOf(handle);
    if (object == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return WAIT_FAILED;
    }
    constexpr auto kForever = std::chrono::hours(24);
    const auto end = std::chrono::steady_clock::now() +
                     (milliseconds == INFINITE ? kForever : std::chrono::milliseconds(milliseconds));
    DWORD result = WAIT_TIMEOUT;
    std::unique_lock<std::mutex> hold(AllWaiting().lock);
    AllWaiting().changed.wait_until(hold, end, [&] { return (result = object->Take()) != WAIT_TIMEOUT; });
    return result;
}

HANDLE CreateEventW(void*, BOOL manualReset, BOOL set, LPCWSTR) {
    auto* const event = new EventHandle;
    event->manual = manualReset != FALSE;
    event->set = set != FALSE;
    return static_cast<KernelObject*>(event);
}

BOOL SetEvent(HANDLE handle) {
    auto* const event = ObjectOf<EventHandle>(handle);
    const std::lock_guard<std::mutex> hold(AllWaiting().lock);
    if (event == nullptr) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    event->set = true;
    AllWaiting().changed.notify_all();
    return TRUE;
}

HANDLE CreateMutexW(void*, BOOL owned, LPCWSTR name) {
    static auto* const named = new std::map<std::wstring, std::weak_ptr<Mutex>>;
    const std::lock_guard<std::mutex> hold(AllWaiting().lock);
    auto* const handle = new MutexHandle;
    handle->mutex = name == nullptr ? nullptr : (*named)[name].lock();
    SetLastError(handle->mutex == nullptr ? ERROR_SUCCESS : ERROR_ALREADY_EXISTS);
    if (handle->mutex == nullptr) {
        handle->mutex = std::make_shared<Mutex>();
        if (name != nullptr) {
            (*named)[name] = handle->mutex;
        }
        if (owned != FALSE) {
            handle->Take();
        }
    }
    return static_cast<KernelObject*>(handle);
}

BOOL ReleaseMutex(HANDLE handle) {
    auto* const mutex = ObjectOf<MutexHandle>(handle);
    const std::lock_guard<std::mutex> hold(AllWaiting().lock);
    if (mutex == nullptr || !mutex->IsMine()) {
        return Refuse(mutex == nullptr ? ERROR_INVALID_HANDLE : ERROR_NOT_OWNER);
    }
    if (--mutex->mutex->depth == 0) {
        mutex->mutex->ownerEnded = nullptr;
        AllWaiting().changed.notify_all();
    }
    return TRUE;
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
