#include <HttpLib.h>
#include <Logger.h>
#include <ParamStore.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <thread>

#include "FaultSession.h"
#include "HttpCall.h"

namespace {

// "./dev faults" tries all; else a tenth, the same one each time, with every row and every operation in it.
bool TriesAll() { return std::getenv("USERAUTH_FAULTS") != nullptr; }

bool IsTried(std::size_t row, std::size_t operation) { return TriesAll() || (row + operation) % 10 == 0; }

}  // namespace

TEST_F(FaultSession, EveryOperationSurvivesEveryFault) {
    int tried = 0;
    int survived = 0;
    const std::vector<Fault> rows = FaultRows();
    const std::vector<FaultedOperation> operations = Operations();
    for (std::size_t i = 0; i < operations.size(); ++i) {
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const bool isMet = IsMetBy(operations[i], rows[row]);
            if (isMet && IsTried(row, i)) {
                ++tried;
                survived += Survives(operations[i], rows[row]) ? 1 : 0;
            }
        }
    }
    std::cout << "fault rows: " << tried << " tried, " << survived << " survived\n";
}

TEST_F(FaultSession, NoReplyCountsBeforeItsLastByte) {
    int cuts = 0;
    int survived = 0;
    const std::vector<FaultedOperation> operations = Operations();
    for (const Fault& row : CutRows()) {
        for (std::size_t i = 0; i < operations.size(); ++i) {
            std::size_t cut = 0;
            do {
                if (cut == 0 || cut + 1 == ReplySize() || IsTried(cut, i)) {
                    ++cuts;
                    survived += Survives(operations[i], row, cut) ? 1 : 0;
                }
            } while (++cut < ReplySize());
        }
    }
    std::cout << "cuts: " << cuts << " tried, " << survived << " survived\n";
}

// All at once, so that the HTTP library's own limit of 30 seconds is waited for only once; meanwhile the keys' servers,
// which are the sandbox's, have much to do.
TEST_F(FaultSession, ASilentServerFailsItsOperationAfterTheStallLimitAndHoldsUpNoOther) {
    constexpr int kRuns = 1000;
    SignInWhole();
    m_service->SetCurrentRT(L"R");  // as GetOldVersionUserId leaves it
    const std::vector<Fault> rows = StallRows();
    std::size_t asked = 0;
    RawServer server([&](const std::string&) { return rows[asked++ % rows.size()].reply; });
    m_platform = Narrow(server.Url(L""));
    UsePlatform(m_platform);
    const Fields state = State();
    const std::vector<FaultedOperation> operations = Operations();
    std::vector<std::thread> threads;
    for (const FaultedOperation& operation : operations) {
        const bool needsAnother = operation.comesSecond || operation.endpoint == std::string("/photo");
        for (std::size_t turn = 0; !needsAnother && turn < (TriesAll() ? rows.size() : 1); ++turn) {
            threads.emplace_back([&] { EXPECT_FALSE(operation.run()) << operation.name; });
        }
    }
    for (int tries = 0; tries < 1000 && server.Requests().size() < threads.size(); ++tries) {
        Sleep(10);
    }
    EXPECT_EQ(server.Requests().size(), threads.size());
    UsePlatform(m_sandbox.m_http);
    for (int run = 0; run < kRuns && !HasFailure(); ++run) {
        m_keys.ClearUserSyncKey();
        GlobalParamWrapper::GetInstance()->GetUserInfo().photoKey3[0] = 1;  // the drive's list is enough
        EXPECT_TRUE(m_keys.InitUserSyncKey());
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    m_keys.ClearUserSyncKey();
    Fields after = State();
    after.erase("drive key");  // its uuid
    EXPECT_EQ(after, state);
    EXPECT_TRUE(Logger::Flush(5000));
    const std::string ended = " ended with " + std::to_string(kHttpTimeout) + " after ";
    EXPECT_EQ(CountOf(ended, ReadFile(m_folder / "faults.log")), threads.size());
    // Every token opened at the platform, and no nonce came twice.
    const Json::Value exchanges = m_sandbox.Control("/sandbox/user-keys")["exchanges"];
    for (const char* count : {"tokens", "distinctNonces", "distinctTemporaryKeys"}) {
        EXPECT_EQ(exchanges[count].asInt(), kRuns) << count;
    }
    std::cout << "stalls: " << threads.size() << " tried\n";
}

TEST(HttpReply, ATimeLimitHoldsAtEveryStage) {
    std::vector<Fault> rows = StallRows();
    const std::string head = "HTTP/1.1 200 OK\r\n";
    const std::string chunked = head + "Transfer-Encoding: chunked\r\n\r\n";
    rows.emplace_back("trickled text", kHttpTimeout, head + "\r\n", RawReply::Then::kTrickle, "x");
    rows.emplace_back("trickled chunks", kHttpTimeout, chunked, RawReply::Then::kTrickle, "1\r\nx\r\n");
    rows.emplace_back("trickled trailer", kHttpTimeout, chunked + "0\r\n", RawReply::Then::kTrickle, "A");
    rows.emplace_back("trickled interim replies", kHttpTimeout, "", RawReply::Then::kTrickle, "HTTP/1.1 103 E\r\n\r\n");
    std::vector<std::thread> threads;
    for (const Fault& row : rows) {
        threads.emplace_back([&row] {
            RawServer server(std::vector<RawReply>{row.reply});
            HttpCall call(server.Url());
            const auto start = std::chrono::steady_clock::now();
            EXPECT_EQ(call.Send(1), row.code) << row.name;
            EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10)) << row.name;
            EXPECT_EQ(call.response, "") << row.name;
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}
