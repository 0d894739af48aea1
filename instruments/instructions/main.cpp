#include <cstdio>
#include <cstdlib>
#include <exception>

#include "Subjects.h"

// count-instructions [FILTER]: the benchmark's rows of single calls; what valgrind writes is the result.
int main(int count, char** arguments) {
    try {
        bench::Report report(count > 1 ? arguments[1] : "", 1);
        bench::BenchBase64(report);
        bench::BenchHeaders(report);
        bench::BenchJson(report);
        bench::BenchCrypto(report);
        bench::BenchGetters(report);
        bench::BenchRequests(report);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        std::_Exit(2);
    }
    std::_Exit(0);  // the servers' threads still run
}
