#include <Logger.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "ConformanceEntry.h"
#include "Examination.h"

namespace {

// What is to be examined while the process ends.
void (*g_atTheEnd)() = nullptr;

struct Library {
    const wchar_t* name;
    std::initializer_list<void (*)(conformance::Examination&)> points;
    void (*atTheEnd)();
};

const Library kLibraries[] = {
    {L"EventAdmin", {&conformance::ExamineEventAdmin}, &conformance::ExamineEventAdminAtTheEnd},
    {L"Logger", {&conformance::ExamineLogger}, &conformance::ExamineLoggerAtTheEnd},
    {L"ParamStore", {&conformance::ExamineParamStore}, &conformance::ExamineParamStoreAtTheEnd},
    {L"HttpLib",
     {&conformance::ExamineHttpRequests, &conformance::ExamineHttpReplies, &conformance::ExamineHttpTransfers,
      &conformance::ExamineHttpTrust},
     &conformance::ExamineHttpLibAtTheEnd},
};

// The point whose name went out last fails, and the process ends at once: no debugger, no message box.
[[noreturn]] void EndWith(const char* reason, unsigned long code) {
    std::printf("FAILS: %s 0x%08lX ends the process\n", reason, code);
    std::fflush(stdout);
    TerminateProcess(GetCurrentProcess(), conformance::kExaminedBroken);
    std::abort();
}

LONG WINAPI EndWithException(EXCEPTION_POINTERS* exception) {
    EndWith("exception", exception->ExceptionRecord->ExceptionCode);
}

// No other thread is left now, and nothing but this thread writes.
void ExamineTheEnd() {
    std::string fault;
    std::printf("  while the process ends it answers, and does nothing ... ");
    std::fflush(stdout);
    try {
        g_atTheEnd();
    } catch (const std::exception& exception) {
        fault = exception.what();
    }
    std::printf("%s\n", fault.empty() ? "holds" : ("FAILS: " + fault).c_str());
    std::fflush(stdout);
    if (!fault.empty()) {
        TerminateProcess(GetCurrentProcess(), conformance::kExaminedBroken);
    }
}

}  // namespace

extern "C" CONFORMANCE_API int ExamineLibrary(const wchar_t* library, bool isQuick, const char* only) {
    SetUnhandledExceptionFilter(&EndWithException);
    std::set_terminate([] { EndWith("std::terminate", 0); });
    conformance::Examination examination(isQuick, only);
    for (const Library& known : kLibraries) {
        if (std::wstring(known.name) != library) {
            continue;
        }
        for (const auto points : known.points) {
            points(examination);
        }
        g_atTheEnd = *only == '\0' ? known.atTheEnd : nullptr;
    }
    const int examined = examination.ExaminedCount();
    const int broken = examination.BrokenCount();
    std::printf("  %d points: %d hold, %d fail; %d left out\n", examined, examined - broken, broken,
                examination.LeftOutCount());
    std::fflush(stdout);
    return broken > 0      ? conformance::kExaminedBroken
           : examined == 0 ? conformance::kExaminedNothing
                           : conformance::kExaminedAllHold;
}

extern "C" CONFORMANCE_API int WriteLine(const wchar_t* file, const wchar_t* line) {
    LoggerSettings settings;
    settings.file = file;
    std::string error;
    if (!Logger::Configure(settings, error)) {
        return 1;
    }
    Logger::Output(10, kSeverityProgress, 1, "Conformance::WriteLine", line, true);
    Logger::Shutdown();
    return 0;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE /*module*/, DWORD reason, LPVOID processEnds) {
    if (reason == DLL_PROCESS_DETACH && processEnds != nullptr && g_atTheEnd != nullptr) {
        ExamineTheEnd();
    }
    return TRUE;
}
