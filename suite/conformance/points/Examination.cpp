#include "Examination.h"

#include <chrono>
#include <cstdio>

#include "ConformanceEntry.h"

namespace conformance {

namespace {

constexpr std::size_t kLongestShown = 160;
constexpr int kPointSeconds = 60;
constexpr int kSlowPointSeconds = 120;
constexpr DWORD kWatchMilliseconds = 200;

}  // namespace

std::string Shown(const std::string& text) {
    std::string shown = "\"";
    for (const char c : text.substr(0, kLongestShown)) {
        char escaped[8] = {c};
        if (c < 0x20 || c > 0x7E) {
            std::snprintf(escaped, sizeof escaped, "\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
        }
        shown += escaped;
    }
    return shown + (text.size() > kLongestShown ? "...\"" : "\"");
}

std::string Shown(const std::wstring& text) {
    std::string narrow;
    for (const wchar_t c : text) {
        narrow += c < 0x7F ? static_cast<char>(c) : '?';
    }
    return Shown(narrow);
}

void RequireWithin(int milliseconds, const std::string& what, const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const auto took =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
    Require(took <= milliseconds,
            what + " took " + std::to_string(took) + " ms, more than " + std::to_string(milliseconds));
}

Examination::Examination(bool isQuick, std::string only)
    : m_isQuick(isQuick), m_only(std::move(only)), m_watch(&Examination::Watch, this) {}

Examination::~Examination() {
    SetEvent(m_end);
    m_watch.join();
    CloseHandle(m_end);
}

void Examination::Point(const std::string& promise, const std::function<void()>& body) {
    Run(promise, body, kPointSeconds);
}

void Examination::SlowPoint(const std::string& promise, const std::function<void()>& body) {
    if (m_isQuick && promise.find(m_only) != std::string::npos) {
        ++m_leftOut;
        std::printf("  %s ... left out\n", promise.c_str());
        return;
    }
    Run(promise, body, kSlowPointSeconds);
}

// The name goes out first: it tells where a library ended the process.
void Examination::Run(const std::string& promise, const std::function<void()>& body, int seconds) {
    if (promise.find(m_only) == std::string::npos) {
        return;
    }
    std::string fault;
    std::printf("  %s ... ", promise.c_str());
    std::fflush(stdout);
    m_deadline = GetTickCount64() + static_cast<ULONGLONG>(seconds) * 1000;
    try {
        body();
    } catch (const conformance::Broken& broken) {
        fault = broken.what();
    } catch (const std::exception& exception) {
        fault = std::string("threw ") + Shown(exception.what());
    } catch (...) {
        fault = "threw something that is no std::exception";
    }
    m_deadline = 0;
    ++m_examined;
    m_broken += fault.empty() ? 0 : 1;
    std::printf("%s\n", fault.empty() ? "holds" : ("FAILS: " + fault).c_str());
    std::fflush(stdout);
}

void Examination::Watch() {
    while (WaitForSingleObject(m_end, kWatchMilliseconds) == WAIT_TIMEOUT) {
        const ULONGLONG deadline = m_deadline;
        if (deadline != 0 && GetTickCount64() > deadline) {
            std::printf("FAILS: does not end\n");
            std::fflush(stdout);
            TerminateProcess(GetCurrentProcess(), kExaminedBroken);
        }
    }
}

}  // namespace conformance
