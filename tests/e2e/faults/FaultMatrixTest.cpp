#include <HttpLib.h>
#include <Logger.h>
#include <ParamStore.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <thread>

#include "FaultSession.h"
#include "HttpCall.h"

using FaultMatrix = FaultSession;

namespace {

// "./dev faults" tries all; else a tenth, the same one each time, with every row and every operation in it.
bool TriesAll() { return std::getenv("USERAUTH_FAULTS") != nullptr; }

bool IsTried(std::size_t row, std::size_t operation) { return TriesAll() || (row + operation) % 10 == 0; }

}  // namespace

TEST_F(FaultMatrix, EveryOperationSurvivesEveryFault) {
    int tried = 0;
    int survived = 0;
    const std::vector<Fault> rows = FaultRows();
    const std::vector<FaultedOperation> operations = Operations();
    for (std::size_t i = 0; i < operations.size(); ++i) {
        for (std::size_t row = 0; row < rows.size(); ++row) {
            if (IsMetBy(operations[i], rows[row]) && IsTried(row, i)) {
                ++tried;
                survived += Survives(operations[i], rows[row]) ? 1 : 0;
            }
        }
    }
    std::cout << "fault rows: " << tried << " tried, " << survived << " survived\n";
}

TEST_F(FaultMatrix, NoReplyCountsBeforeItsLastByte) {
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
TEST_F(FaultMatrix, ASilentServerFailsItsOperationAfterTheStallLimitAndHoldsUpNoOther) {
    constexpr int kRuns = 1000;
    SignInWhole();
    m_service->SetCurrentRT(L"R");  // as GetOldVersionUserId leaves it
    const std::vector<Fault> rows = StallRows();
    std::size_t asked = 0;
    RawServer server([&](const std::string&) { return SilentReply(rows[asked++ % rows.size()]); });
    m_platform = Narrow(server.Url(L""));
    UsePlatform(m_platform);
    const Fields state = State();
    const std::vector<FaultedOperation> operations = Operations();
    std::vector<std::thread> threads;
    for (const FaultedOperation& operation : operations) {
        const bool asksFirst =
            operation.place == FaultedOperation::Place::kOnly || operation.place == FaultedOperation::Place::kFirst;
        for (std::size_t turn = 0; asksFirst && turn < (TriesAll() ? rows.size() : 1); ++turn) {
            threads.emplace_back([&] { EXPECT_FALSE(operation.run()) << operation.name; });
        }
    }
    for (int tries = 0; tries < 2500 && server.Requests().size() < threads.size(); ++tries) {
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

TEST_F(FaultMatrix, ATimeLimitHoldsAtEveryStage) {
    std::vector<Fault> rows = StallRows();
    const auto trickle = RawReply::Then::kTrickle;
    rows.push_back({"trickled text", kHttpTimeout, "<ok>|", trickle, "x"});
    rows.push_back({"trickled chunks", kHttpTimeout, "<ok><c>", trickle, "1|x|"});
    rows.push_back({"trickled trailer", kHttpTimeout, "<ok><c>0|", trickle, "A"});
    rows.push_back({"trickled interim replies", kHttpTimeout, "", trickle, "HTTP/1.1 103 E||"});
    std::vector<std::thread> threads;
    threads.reserve(rows.size());
    for (const Fault& row : rows) {
        threads.emplace_back([this, &row] {
            RawServer server(std::vector<RawReply>{SilentReply(row)});
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
