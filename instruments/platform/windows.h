#pragma once

// What the service and its suite call of Windows, for a build on the build machine: the sanitizers run there. Declared
// here as the platform's own header declares it; each file beside this one says what it imitates and where it stops.
// Wide characters have 32 bits here, so one character is a whole code point and surrogates do not occur. Instruments
// alone include this; nothing of it ships.

#include <synchapi.h>

#include <cstdarg>
#include <cstddef>
#include <cstdint>

#define WINAPI
#define CALLBACK
#define NTAPI
#define __stdcall
#define FALSE 0
#define TRUE 1
#define MAX_PATH 260
#define INFINITE 0xFFFFFFFFU
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-1)))
#define SUCCEEDED(result) ((result) >= 0)

using BOOL = int;
using BOOLEAN = unsigned char;
using BYTE = unsigned char;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = unsigned;
using ULONG = std::uint32_t;
using LONG = std::int32_t;
using HRESULT = LONG;
using ULONGLONG = std::uint64_t;
using ULONG_PTR = std::uintptr_t;
using INT_PTR = std::intptr_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using SIZE_T = std::size_t;
using HANDLE = void*;
using HWND = struct HWND__*;
using HMODULE = struct HINSTANCE__*;
using HINSTANCE = HMODULE;
using LPSTR = char*;
using LPWSTR = wchar_t*;
using LPCWSTR = const wchar_t*;
using FARPROC = std::intptr_t (*)();

// ---- Errors: the calling thread's last one.
constexpr HRESULT S_OK = 0, E_FAIL = static_cast<HRESULT>(0x80004005);
constexpr DWORD ERROR_SUCCESS = 0, ERROR_FILE_NOT_FOUND = 2, ERROR_PATH_NOT_FOUND = 3, ERROR_ACCESS_DENIED = 5,
                ERROR_INVALID_HANDLE = 6, ERROR_SHARING_VIOLATION = 32, ERROR_LOCK_VIOLATION = 33,
                ERROR_INVALID_PARAMETER = 87, ERROR_INSUFFICIENT_BUFFER = 122, ERROR_MOD_NOT_FOUND = 126,
                ERROR_ENVVAR_NOT_FOUND = 203, ERROR_NO_UNICODE_TRANSLATION = 1113, ERROR_INVALID_WINDOW_HANDLE = 1400;
DWORD GetLastError();
void SetLastError(DWORD error);

// ---- Text (Text.cpp)
constexpr UINT CP_ACP = 0, CP_UTF8 = 65001;
constexpr DWORD MB_ERR_INVALID_CHARS = 8;
constexpr int CSTR_LESS_THAN = 1, CSTR_EQUAL = 2, CSTR_GREATER_THAN = 3;
inline UINT GetACP() {
    return 1252;
}
int MultiByteToWideChar(UINT codePage, DWORD flags, const char* text, int bytes, wchar_t* wide, int capacity);
int WideCharToMultiByte(UINT codePage, DWORD flags, const wchar_t* wide, int characters, char* text, int capacity,
                        const char* defaultCharacter, BOOL* usedDefault);
int CompareStringOrdinal(LPCWSTR left, int leftLength, LPCWSTR right, int rightLength, BOOL ignoreCase);

// ---- Modules (Modules.cpp)
constexpr DWORD GET_MODULE_HANDLE_EX_FLAG_PIN = 1, GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT = 2,
                GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS = 4;
struct MEMORY_BASIC_INFORMATION {
    void* AllocationBase;
};
HMODULE LoadLibraryW(LPCWSTR path);
BOOL FreeLibrary(HMODULE module);
FARPROC GetProcAddress(HMODULE module, const char* name);
HMODULE GetModuleHandleW(LPCWSTR name);
BOOL GetModuleHandleExW(DWORD flags, LPCWSTR nameOrAddress, HMODULE* module);
DWORD GetModuleFileNameW(HMODULE module, wchar_t* path, DWORD capacity);
SIZE_T VirtualQuery(const void* address, MEMORY_BASIC_INFORMATION* memory, SIZE_T bytes);
inline void* AddDllDirectory(LPCWSTR) {
    return nullptr;
}

// ---- Threads, waiting, the thread pool (Threads.cpp)
constexpr DWORD SYNCHRONIZE = 0x00100000;
constexpr DWORD WAIT_OBJECT_0 = 0, WAIT_ABANDONED = 0x80, WAIT_TIMEOUT = 258, WAIT_FAILED = 0xFFFFFFFF;
inline HANDLE GetCurrentProcess() {
    return INVALID_HANDLE_VALUE;
}
inline HANDLE GetCurrentThread() {
    return reinterpret_cast<HANDLE>(std::intptr_t{-2});
}
DWORD GetCurrentThreadId();
BOOL DuplicateHandle(HANDLE, HANDLE source, HANDLE, HANDLE* target, DWORD access, BOOL inherit, DWORD options);
BOOL CloseHandle(HANDLE handle);
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);
HANDLE CreateMutexW(void* security, BOOL owned, LPCWSTR name);
BOOL ReleaseMutex(HANDLE mutex);
using PTP_CALLBACK_INSTANCE = struct TP_CALLBACK_INSTANCE*;
struct TP_CALLBACK_ENVIRON {
    HMODULE library;
};
inline void InitializeThreadpoolEnvironment(TP_CALLBACK_ENVIRON*) {}
inline void SetThreadpoolCallbackLibrary(TP_CALLBACK_ENVIRON* environment, HMODULE library) {
    environment->library = library;
}
inline void DestroyThreadpoolEnvironment(TP_CALLBACK_ENVIRON*) {}
BOOL TrySubmitThreadpoolCallback(void (*callback)(PTP_CALLBACK_INSTANCE, void*), void* context,
                                 TP_CALLBACK_ENVIRON* environment);
void Sleep(DWORD milliseconds);
ULONGLONG GetTickCount64();

// ---- Files (Files.cpp)
constexpr DWORD GENERIC_READ = 0x80000000, GENERIC_WRITE = 0x40000000, DELETE = 0x00010000;
constexpr DWORD FILE_SHARE_READ = 1, FILE_SHARE_WRITE = 2, FILE_SHARE_DELETE = 4;
constexpr DWORD CREATE_ALWAYS = 2, OPEN_EXISTING = 3, OPEN_ALWAYS = 4;
constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80, FILE_FLAG_DELETE_ON_CLOSE = 0x04000000;
constexpr DWORD MOVEFILE_REPLACE_EXISTING = 1, MOVEFILE_WRITE_THROUGH = 8;
HANDLE CreateFileW(LPCWSTR path, DWORD access, DWORD share, void* security, DWORD disposition, DWORD flags,
                   HANDLE pattern);
BOOL ReadFile(HANDLE file, void* buffer, DWORD bytes, DWORD* count, void* overlapped);
BOOL WriteFile(HANDLE file, const void* buffer, DWORD bytes, DWORD* count, void* overlapped);
BOOL FlushFileBuffers(HANDLE file);
BOOL MoveFileExW(LPCWSTR from, LPCWSTR to, DWORD flags);
BOOL DeleteFileW(LPCWSTR path);

// ---- Windows and their messages (Messages.cpp)
constexpr UINT WM_CLOSE = 0x0010, PM_REMOVE = 1, MB_OK = 0, MB_ICONERROR = 16;
#define HWND_MESSAGE (reinterpret_cast<HWND>(static_cast<std::intptr_t>(-3)))
struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};
HWND CreateWindowExW(DWORD exStyle, LPCWSTR className, LPCWSTR caption, DWORD style, int x, int y, int width,
                     int height, HWND parent, void* menu, HMODULE module, void* argument);
BOOL DestroyWindow(HWND window);
HWND FindWindowW(LPCWSTR className, LPCWSTR caption);
UINT GetDlgItemTextW(HWND dialog, int item, wchar_t* text, int capacity);
BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
BOOL PeekMessageW(MSG* message, HWND window, UINT first, UINT last, UINT remove);
UINT RegisterWindowMessageW(LPCWSTR name);
int MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT style);

// ---- The machine, the process and its environment (System.cpp)
constexpr DWORD MEM_COMMIT = 0x1000, MEM_RESERVE = 0x2000, PAGE_NOACCESS = 1, PAGE_READWRITE = 4;
struct OSVERSIONINFOW {
    DWORD dwOSVersionInfoSize, dwMajorVersion, dwMinorVersion, dwBuildNumber, dwPlatformId;
    wchar_t szCSDVersion[128];
};
struct OSVERSIONINFOEXW : OSVERSIONINFOW {
    WORD wServicePackMajor, wServicePackMinor, wSuiteMask;
    BYTE wProductType, wReserved;
};
struct SYSTEM_INFO {
    WORD wProcessorArchitecture;
};
BOOL GetVersionExW(OSVERSIONINFOW* version);
inline void GetSystemInfo(SYSTEM_INFO* system) {
    system->wProcessorArchitecture = 9;
}
inline int GetSystemMetrics(int) {
    return 0;
}
UINT GetSystemDirectoryW(wchar_t* path, UINT capacity);
extern "C" UINT GetSystemFirmwareTable(DWORD provider, DWORD table, void* buffer, DWORD bytes);
DWORD GetEnvironmentVariableW(LPCWSTR name, wchar_t* value, DWORD capacity);
BOOL SetEnvironmentVariableW(LPCWSTR name, LPCWSTR value);
DWORD GetCurrentProcessId();
BOOL TerminateProcess(HANDLE process, UINT exitCode);
HANDLE LocalFree(void* memory);
void SecureZeroMemory(void* memory, SIZE_T bytes);
void* VirtualAlloc(void* address, SIZE_T bytes, DWORD type, DWORD protection);

// There is no console to press Ctrl-C on, which ends the process, and no debugger.
constexpr DWORD CTRL_C_EVENT = 0, CTRL_BREAK_EVENT = 1;
inline HANDLE CreateEventW(void*, BOOL, BOOL, LPCWSTR) {
    return nullptr;
}
inline BOOL SetEvent(HANDLE) {
    return FALSE;
}
inline BOOL SetConsoleCtrlHandler(BOOL (*)(DWORD), BOOL) {
    return FALSE;
}
inline void OutputDebugStringW(LPCWSTR) {}

// The C runtime's condition for broken arguments.
using _invalid_parameter_handler = void (*)(const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t);
_invalid_parameter_handler _get_invalid_parameter_handler();
_invalid_parameter_handler _set_invalid_parameter_handler(_invalid_parameter_handler handler);
