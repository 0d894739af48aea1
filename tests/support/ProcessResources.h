#pragma once

#include <gtest/gtest.h>
#include <windows.h>
// psapi.h and tlhelp32.h come after windows.h.
#include <psapi.h>
#include <tlhelp32.h>

#include <algorithm>
#include <vector>

// Handles of this process, by the system's table of all: the count that the system has for one process reads 0 under
// Wine.
inline std::size_t OpenHandles() {
    struct Entry {
        void* object;
        ULONG_PTR processId;
        ULONG_PTR handle;
        ULONG access;
        USHORT unused[2];
        ULONG attributes;
        ULONG reserved;
    };
    constexpr ULONG kExtendedHandleInformation = 64;
    using Query = LONG(WINAPI*)(ULONG, void*, ULONG, ULONG*);
    const auto query =
        reinterpret_cast<Query>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation"));
    std::vector<ULONG_PTR> table(1 << 20);
    const LONG status =
        query(kExtendedHandleInformation, table.data(), static_cast<ULONG>(table.size() * sizeof(table[0])), nullptr);
    EXPECT_EQ(status, 0);
    const auto* const entries = reinterpret_cast<const Entry*>(&table[2]);  // behind their count and a reserved word
    return static_cast<std::size_t>(std::count_if(
        entries, entries + table[0], [](const Entry& entry) { return entry.processId == GetCurrentProcessId(); }));
}

// What must be level again when all is done.
struct Resources {
    std::size_t handles = 0;
    DWORD threads = 0;
    SIZE_T memory = 0;

    static Resources Now() {
        Resources now;
        now.handles = OpenHandles();
        PROCESS_MEMORY_COUNTERS memory{};
        GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof(memory));
        now.memory = memory.PagefileUsage;
        HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
        THREADENTRY32 entry{};
        entry.dwSize = sizeof(entry);
        for (BOOL more = Thread32First(snapshot, &entry); more != FALSE; more = Thread32Next(snapshot, &entry)) {
            now.threads += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
        }
        CloseHandle(snapshot);
        return now;
    }
};

inline std::ostream& operator<<(std::ostream& out, const Resources& resources) {
    return out << resources.handles << " handles, " << resources.threads << " threads, " << resources.memory / 1024
               << " KiB";
}
