#include <HttpLib.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "SandboxSession.h"
#include "SecretForms.h"
#include "TextFile.h"

namespace {

const char kPhoto[] = "/photos/260086000100000001.png";
const char kUserId[] = "/drive/v1/about";

// Signed in as the default account; what a host does around running calls is in support/LeavingHost.cpp.
class Exits : public SandboxSession {
protected:
    Exits() {
        SignInWhole();
        // Wine tells of what goes wrong below the hosts, on the error output of this test: CTest looks for that.
        SetEnvironmentVariableW(L"WINEDEBUG", L"-all,err+all");
    }
    ~Exits() override { SetEnvironmentVariableW(L"WINEDEBUG", m_wineDebug.empty() ? nullptr : m_wineDebug.c_str()); }

    std::unique_ptr<ChildProcess> Start(const std::wstring& way, int rounds = 1) {
        const std::wstring log = L"\" \"" + (m_folder / (way + std::to_wstring(++m_started) + L".log")).wstring();
        return std::make_unique<ChildProcess>(
            L"leaving-host.exe", way + L" " + std::to_wstring(rounds) + L" \"" + (m_folder / "client.json").wstring() +
                                     L"\" " + m_service->GetCurrentAT() + L" \"" +
                                     (m_folder / "authority.pem").wstring() + log + L"\"");
    }

    // Of a way: 10, or as many as "./dev faults" asks for.
    static int Rounds() {
        const char* const rounds = std::getenv("USERAUTH_EXIT_ROUNDS");
        return rounds == nullptr ? 10 : std::stoi(rounds);
    }

    void Stall(const char* endpoint, int milliseconds) {
        m_sandbox.Control("/sandbox/faults", std::string(R"({"stallAfter":10,"endpoint":")") + endpoint +
                                                 R"(","stallMs":)" + std::to_string(milliseconds) + "}");
    }

    static std::wstring Variable(const wchar_t* name) {
        wchar_t value[200] = {};
        GetEnvironmentVariableW(name, value, std::size(value));
        return value;
    }

    const std::wstring m_wineDebug = Variable(L"WINEDEBUG");
    int m_started = 0;
};

}  // namespace

TEST_F(Exits, HostsEndWhileEverythingRuns) {
    constexpr int kAtOnce = 4;
    constexpr ULONGLONG kLongestExit = 5000;
    const wchar_t* const ways[] = {L"return", L"exit-process", L"exit-on-thread"};
    const int hosts = Rounds() * static_cast<int>(std::size(ways));
    Stall(kPhoto, 30000);
    Stall(kUserId, 30000);
    ULONGLONG longest = 0;
    for (int first = 0; first < hosts; first += kAtOnce) {
        // The last leave TLS connections behind. Few of them: Wine's server has been seen to keep such connections, and
        // to look at each of them all the time.
        if (first >= hosts - hosts / 10 - 1) {
            UsePlatform(m_sandbox.m_https);
        }
        std::vector<std::unique_ptr<ChildProcess>> running;
        for (int host = first; host < std::min(first + kAtOnce, hosts); ++host) {
            running.push_back(Start(ways[host % static_cast<int>(std::size(ways))]));
        }
        for (const auto& host : running) {
            EXPECT_EQ(host->ReadLine(), "leaving");
            const ULONGLONG start = GetTickCount64();
            EXPECT_EQ(host->Finish(), 42);
            longest = std::max(longest, GetTickCount64() - start);
            EXPECT_EQ(host->m_error, "");
        }
    }
    EXPECT_LT(longest, kLongestExit);
    UsePlatform(m_sandbox.m_http);
    EXPECT_GT(m_sandbox.Requests(kPhoto), hosts / 2) << "hosts left during the download, not before it";
    EXPECT_GT(m_sandbox.Requests(kUserId), hosts / 2) << "hosts left during the request, not before it";
    std::printf("%d hosts left, the slowest within %llu ms\n", hosts, longest);
}

TEST_F(Exits, TheLibraryGoesAfterWhatRunsInIt) {
    Stall(kPhoto, 120);
    Stall(kUserId, 90);
    constexpr int kRoundsOfOne = 10;
    for (int round = 0; round < Rounds(); round += kRoundsOfOne) {
        const auto host = Start(L"unload", kRoundsOfOne);
        EXPECT_EQ(host->Finish(), 42) << host->m_output;
        EXPECT_EQ(host->m_error, "");
    }
    EXPECT_GE(m_sandbox.Requests(kPhoto), Rounds());
}

TEST_F(Exits, LoadingAndUnloadingLeavesNothingBehind) {
    const auto host = Start(L"reload", Rounds() * 5);
    const std::string before = host->ReadLine();
    const std::string after = host->ReadLine();
    EXPECT_EQ(host->Finish(), 42);
    EXPECT_EQ(host->m_error, "");
    unsigned long long handles[2] = {};
    unsigned long long threads[2] = {};
    unsigned long long kilobytes[2] = {};
    std::istringstream levels(before + " " + after);
    for (const int when : {0, 1}) {
        levels >> handles[when] >> threads[when] >> kilobytes[when];
    }
    std::printf("%d rounds; handles, threads, KiB before and after: %s, %s\n", Rounds() * 5, before.c_str(),
                after.c_str());
    EXPECT_GT(handles[0] * threads[0], 0U);
    EXPECT_LE(handles[1], handles[0] + 2);
    EXPECT_LE(threads[1], threads[0]);
    EXPECT_LE(kilobytes[1], kilobytes[0] + 1024);
}

TEST_F(Exits, ACrashTellsNoSecret) {
    const std::string accessToken = Narrow(m_service->GetCurrentAT());
    const std::string refreshToken(accessToken.rbegin(), accessToken.rend());
    const std::pair<const wchar_t*, int> ways[] = {{L"access-violation", static_cast<int>(EXCEPTION_ACCESS_VIOLATION)},
                                                   {L"terminate", 3}};
    for (const auto& [way, crashed] : ways) {
        SCOPED_TRACE(Narrow(way));
        const auto host = Start(way);
        EXPECT_EQ(host->Finish(), crashed) << host->m_error;
        const std::string log = ReadFile(m_folder / (way + std::to_wstring(m_started) + L".log"));
        EXPECT_EQ(host->m_output, "crashing\n") << "control";
        EXPECT_NE(log.find("the last line"), std::string::npos) << "control";
        for (const std::string& secret : {accessToken, refreshToken}) {
            for (const auto& [form, text] : FormsOf(secret)) {
                EXPECT_EQ((host->m_output + host->m_error + log).find(text), std::string::npos) << form;
            }
        }
    }
}
