#include <windows.h>

// What an attacker would have a program load: leaves the file that PLANTED_MARK names.
BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void*) {
    wchar_t mark[MAX_PATH] = {};
    if (reason == DLL_PROCESS_ATTACH && GetEnvironmentVariableW(L"PLANTED_MARK", mark, MAX_PATH) > 0) {
        CloseHandle(CreateFileW(mark, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    }
    return TRUE;
}
