// What the sandbox's server and account SDK alone call: the command line, and threads that leave with their library.
// Like the platform: the thread gives its reference back last of all. Unlike it: such a thread goes through its own
// frames first, and its handle cannot be waited for.

#include <process.h>
#include <shellapi.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "Handles.h"
#include "WideText.h"

namespace {

std::atomic<DWORD> g_lastThreadId{0};
thread_local DWORD g_threadId = ++g_lastThreadId;

struct ThreadLeaves {
    HMODULE module;
};

}  // namespace

DWORD GetCurrentThreadId() {
    return g_threadId;
}

std::uintptr_t _beginthreadex(void*, unsigned, unsigned (*run)(void*), void* argument, unsigned, unsigned* id) try {
    *id = ++g_lastThreadId;
    std::thread([run, argument, number = *id] {
        g_threadId = number;
        try {
            run(argument);
        } catch (const ThreadLeaves& leaving) {
            FreeLibrary(leaving.module);
        }
    }).detach();
    return reinterpret_cast<std::uintptr_t>(new KernelObject);
} catch (const std::system_error&) {
    return 0;
}

void FreeLibraryAndExitThread(HMODULE module, DWORD) {
    throw ThreadLeaves{module};
}

// Of this process alone, whose texts stay. The first is the program.
LPWSTR* CommandLineToArgvW(LPCWSTR, int* count) {
    static std::vector<std::wstring> texts;
    std::ifstream file("/proc/self/cmdline");
    for (std::string text; std::getline(file, text, '\0');) {
        texts.push_back(WideText(text));
    }
    *count = static_cast<int>(texts.size());
    auto* const list = static_cast<LPWSTR*>(std::malloc(texts.size() * sizeof(LPWSTR)));
    std::transform(texts.begin(), texts.end(), list, [](std::wstring& text) { return text.data(); });
    return list;
}
