#include "system/Interruption.h"

#include <winsock2.h>
// After winsock2.h.
#include <windows.h>

namespace host {
namespace {

// The system ends the program when the handler of its closing returns, or after five seconds.
constexpr DWORD kLongestEndMilliseconds = 5000;

// On a thread of the system's own.
BOOL WINAPI OnControlEvent(DWORD event) {
    SetEvent(InterruptionEvent());
    while (WSACleanup() == 0) {  // once for each start: the last one ends the operations of all threads
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
