#include <Logger.h>
#include <windows.h>
// spdlog wants windows.h before it.
#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>

#include <filesystem>

#include "Platform.h"
#include "Subjects.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

constexpr int kBurst = 1000;

template <typename Write>
double BurstSeconds(int lines, const Write& write) {
    return SecondsOf([&] {
        for (int i = 0; i < lines; ++i) {
            write();
        }
    });
}

void WriteOurs(const std::wstring& message) {
    Logger::Output(10, kSeverityProgress, 42, "UserAuthService::RequestAT", message, true);
}

double OursBurst(int lines, const std::wstring& message) {
    const double seconds = BurstSeconds(lines, [&] { WriteOurs(message); });
    Require(Logger::Flush(10000), "Logger::Flush");
    return seconds;
}

double OursDrained(int lines, const std::wstring& message) {
    return SecondsOf([&] { OursBurst(lines, message); });
}

}  // namespace

void BenchLogger(Report& report) {
    const std::wstring message = L"HTTP: GET http://127.0.0.1:49152/gw ended with 200 after 0.4 ms, connection reused";
    const std::string narrow(message.begin(), message.end());
    const fs::path folder = fs::temp_directory_path() / ("bench-log-" + std::to_string(GetCurrentProcessId()));
    fs::create_directories(folder);
    LoggerSettings settings;
    settings.file = (folder / "ours.log").wstring();
    std::string error;
    Require(Logger::Configure(settings, error), "Logger::Configure");
    Logger::SetSecret("access token", std::wstring(128, L'x'));

    {
        const auto pool = std::make_shared<spdlog::details::thread_pool>(8192, 1);
        const auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>((folder / "bare.log").string(), true);
        const auto bare =
            std::make_shared<spdlog::async_logger>("bare", sink, pool, spdlog::async_overflow_policy::overrun_oldest);
        const auto bareBurst = [&] {
            const double seconds =
                BurstSeconds(kBurst, [&] { bare->info("[module 10] [progress] {}:{} {}", "RequestAT", 42, narrow); });
            Sleep(20);  // its queue empties
            return seconds;
        };
        report.Timed(
            "Logger::Output, bursts of 1,000", AtMost(3), [&] { return OursBurst(kBurst, message); }, bareBurst);
    }
    const std::wstring longer = [&] {
        std::wstring text;
        while (text.size() < 60000) {
            text += message + L" access_token=abcdef0123456789 ";
        }
        return text;
    }();
    for (const std::size_t factor : {10U, 100U}) {
        const int few = static_cast<int>(3000 / factor);  // what is more than that may not fit the logger's queue
        report.Growth(
            "growth: log lines, x" + std::to_string(factor), static_cast<double>(factor),
            [&] { return OursDrained(3000, message); }, [&] { return OursDrained(few, message); });
        report.Growth(
            "growth: masked text, x" + std::to_string(factor), static_cast<double>(factor),
            [&] { return OursDrained(10, longer.substr(0, 600 * factor)); },
            [&] { return OursDrained(10, longer.substr(0, 600)); });
    }
    Logger::Shutdown();
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}

}  // namespace bench
