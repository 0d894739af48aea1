#include "system/Interruption.h"

#include <winsock2.h>
// After winsock2.h.
#include <windows.h>

namespace host {
namespace {

// When the console is closed, the system ends the program as soon as the handler returns, or after five seconds.
constexpr DWORD kLongestEndMilliseconds = 5000;

// The system calls this on a thread of its own.
BOOL WINAPI OnControlEvent(DWORD event) {
    SetEvent(InterruptionEvent());
    while (WSACleanup() == 0) {  // one call for each start; the last one ends the socket operations of all threads
    }
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        Sleep(kLongestEndMilliseconds);
    }
    return TRUE;
}

}  // namespace

void* InterruptionEvent() {
    static const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);  // as long as the process
    return event;
}

void WatchForInterruption() {
    InterruptionEvent();
    SetConsoleCtrlHandler(&OnControlEvent, TRUE);
}

bool Interrupted() {
    return WaitForSingleObject(InterruptionEvent(), 0) == WAIT_OBJECT_0;
}

}  // namespace host
