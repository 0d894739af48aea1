#pragma once

#include <windows.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>

namespace conformance {

// Why a promise does not hold.
class Broken : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

inline void Require(bool holds, const std::string& otherwise) {
    if (!holds) {
        throw Broken(otherwise);
    }
}

// A text as a line may show it: quoted, shortened, ASCII only.
std::string Shown(const std::string& text);
std::string Shown(const std::wstring& text);
inline std::string Shown(long long number) {
    return std::to_string(number);
}

template <typename Found, typename Expected>
void RequireEqual(const Found& found, const Expected& expected, const std::string& what) {
    if (!(found == expected)) {
        throw Broken(what + " is " + Shown(found) + " instead of " + Shown(expected));
    }
}

// Runs the work; broken when it takes longer.
void RequireWithin(int milliseconds, const std::string& what, const std::function<void()>& work);

// Examines the promises of one library, one after the other, and prints a line for each.
class Examination {
public:
    // isQuick: leaves out the points that wait for more than ten seconds. only: passes over the points whose promise
    // does not have that text.
    Examination(bool isQuick, std::string only);
    ~Examination();
    Examination(const Examination&) = delete;
    Examination& operator=(const Examination&) = delete;

    // Runs one point: it holds unless the body throws. One that does not end within a minute ends the process.
    void Point(const std::string& promise, const std::function<void()>& body);
    // The same for a body that waits long. Two minutes.
    void SlowPoint(const std::string& promise, const std::function<void()>& body);

    int ExaminedCount() const { return m_examined; }
    int BrokenCount() const { return m_broken; }
    int LeftOutCount() const { return m_leftOut; }

private:
    void Run(const std::string& promise, const std::function<void()>& body, int seconds);
    void Watch();

    const bool m_isQuick;
    const std::string m_only;
    int m_examined = 0;
    int m_broken = 0;
    int m_leftOut = 0;
    std::atomic<ULONGLONG> m_deadline{0};  // of the point that runs; 0: none does
    HANDLE m_end = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::thread m_watch;
};

// The points of each library.
void ExamineEventAdmin(Examination& examination);
void ExamineLogger(Examination& examination);
void ExamineLoggerSecrets(Examination& examination);
void ExamineParamStore(Examination& examination);
void ExamineStoredIdentity(Examination& examination);
void ExamineHttpRequests(Examination& examination);
void ExamineHttpReplies(Examination& examination);
void ExamineHttpTransfers(Examination& examination);
void ExamineHttpTrust(Examination& examination);

// Called while the process ends, when its other threads are gone.
void ExamineEventAdminAtTheEnd();
void ExamineLoggerAtTheEnd();
void ExamineParamStoreAtTheEnd();
void ExamineHttpLibAtTheEnd();

}  // namespace conformance
