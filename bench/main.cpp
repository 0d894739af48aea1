#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "Subjects.h"

namespace {

constexpr int kRounds = 11;

void RunAll(bench::Report& report) {
    bench::BenchMemory(report);  // first: as a client's process is after its start
    bench::BenchExport(report);  // early: it looks at the peak of memory
    bench::BenchBase64(report);
    bench::BenchHeaders(report);
    bench::BenchJson(report);
    bench::BenchCrypto(report);
    bench::BenchGetters(report);
    bench::BenchCounting(report);
    bench::BenchLogger(report);
    bench::BenchRequests(report);
}

}  // namespace

// bench [FILTER [JSON_FILE]]: exit code 0 when every row is met, 1 when one is missed, 2 when one could not be
// measured.
int main(int count, char** arguments) {
    int code = 2;
    try {
        if (count == 3 && arguments[1] == std::string("--serve")) {
            bench::ServePlatform(arguments[2]);
            std::_Exit(0);
        }
        bench::Report report(count > 1 ? arguments[1] : "", kRounds);
        RunAll(report);
        code = report.Finish(count > 2 ? arguments[2] : "") ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench: %s\n", failure.what());
    }
    std::fflush(nullptr);
    std::_Exit(code);  // the servers' threads still run
}
