#include <windows.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "Platform.h"
#include "ServiceAccess.h"
#include "Subjects.h"

namespace bench {
namespace {

struct BareState {
    SRWLOCK lock = SRWLOCK_INIT;
    std::wstring text;

    std::wstring Get() {
        AcquireSRWLockShared(&lock);
        std::wstring copy = text;
        ReleaseSRWLockShared(&lock);
        return copy;
    }
};

// Called as the service's getter is: not expanded in place.
std::wstring (BareState::*volatile g_get)() = &BareState::Get;

double SlowestPercent() {
    std::vector<double> times(20000);
    for (double& time : times) {
        time = SecondsOf([] {
            const std::wstring token = Service().GetCurrentAT();
            Keep(&token);
        });
    }
    std::nth_element(times.begin(), times.begin() + 19800, times.end());
    return times[19800];
}

}  // namespace

void BenchGetters(Report& report) {
    for (const std::size_t size : {0U, 16U, 128U, 1024U}) {
        static BareState bare;
        const std::wstring token = AccessToken(size);
        bare.text = token;
        Service().SetCurrentAT(token);
        report.Cpu(
            "GetCurrentAT of " + std::to_string(size) + " characters", AtMost(1.05),
            [] { return Service().GetCurrentAT(); }, [] { return (bare.*g_get)(); });
    }

    const char* const what = "p99 of GetCurrentAT while a refresh stalls";
    if (!report.Wants(what)) {
        return;
    }
    static LoopbackServer server(LoopbackServer::Scheme::kHttp);
    server.Answer("/stall/gw", {R"({"uid":"1"})", "", 1, 200});
    UsePlatform(server.Origin() + "/stall");
    Service().SetCurrentAT(AccessToken());
    const auto whileStalled = [] {
        std::thread refresh([] { Require(Service().RequestUserID(), "RequestUserID"); });
        Sleep(50);
        const double seconds = SlowestPercent();
        refresh.join();
        return seconds;
    };
    report.Timed(what, AtMost(1.2), whileStalled, SlowestPercent);
}

}  // namespace bench
