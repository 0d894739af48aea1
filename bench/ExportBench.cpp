#include <windows.h>
// psapi.h comes after windows.h.
#include <psapi.h>

#include <filesystem>

#include "BareCurl.h"
#include "Platform.h"
#include "ServiceAccess.h"
#include "Subjects.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMegabyte = 1'000'000;

std::string Cards() {
    std::string text;
    while (text.size() < 250'000) {
        text += "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Ada Lovelace\r\nTEL;TYPE=CELL:+49 30 1234567\r\nEND:VCARD\r\n";
    }
    text.resize(250'000);
    return text;
}

double PeakBytes() {
    PROCESS_MEMORY_COUNTERS counters = {};
    counters.cb = sizeof counters;
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return static_cast<double>(counters.PeakWorkingSetSize);
}
double BytesInUse() {
    PROCESS_MEMORY_COUNTERS counters = {};
    counters.cb = sizeof counters;
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return static_cast<double>(counters.WorkingSetSize);
}

}  // namespace

void BenchExport(Report& report) {
    static LoopbackServer server(LoopbackServer::Scheme::kHttp);
    const fs::path file = fs::temp_directory_path() / ("bench-" + std::to_string(GetCurrentProcessId()) + ".vcf");
    const std::string origin = server.Origin();
    const std::size_t sizes[] = {1, 10, 100, 500};
    const auto pathOf = [](std::size_t megabytes) { return "/export/" + std::to_string(megabytes); };
    for (const std::size_t megabytes : sizes) {
        server.Answer(pathOf(megabytes), {Cards(), "", megabytes * kMegabyte / 250'000});
    }
    const auto exportContacts = [&](std::size_t megabytes) {
        const std::string url = origin + pathOf(megabytes);
        Require(Service().ExportContracts(std::wstring(url.begin(), url.end()), file.wstring(), {}), "ExportContracts");
    };
    // Early: nothing may have raised the peak above what this row needs.
    const char* const memory = "memory of an export of 100 MB against its text";
    if (report.Wants(memory)) {
        exportContacts(1);
        const double before = BytesInUse();
        exportContacts(100);
        report.Figure(memory, AtMost(1.1), "MB", (PeakBytes() - before) / 1e6, 100);
    }
    for (const std::size_t megabytes : sizes) {
        const std::string what = "throughput of an export of " + std::to_string(megabytes) + " MB";
        if (!report.Wants(what) || (megabytes > 100 && !report.IsNamed(what))) {
            continue;  // the largest takes a minute
        }
        BareCurl bare(origin + pathOf(megabytes));
        bare.DownloadTo(file.string());
        report.Timed(
            what, AtLeast(1.5), [&] { return SecondsOf([&] { exportContacts(megabytes); }); },
            [&] { return SecondsOf([&] { bare.Perform(); }); }, true);
    }
    fs::remove(file);
}

}  // namespace bench
