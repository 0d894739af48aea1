#include "Logger.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "TextFile.h"

namespace {

namespace fs = std::filesystem;

constexpr int kFlushMilliseconds = 10000;

class LoggerTest : public testing::Test {
protected:
    void SetUp() override {
        fs::remove_all(m_folder);
        Configure();
    }
    void TearDown() override {
        Logger::Shutdown();
        fs::remove_all(m_folder);
    }
    void Configure(bool console = false) {
        LoggerSettings settings;
        settings.console = console;
        settings.consoleSeverity = kSeveritySummary;
        settings.file = (m_folder / L"client.log").wstring();
        std::string error;
        ASSERT_TRUE(Logger::Configure(settings, error)) << error;
    }
    static void Write(const std::wstring& message, int severity = kSeverityProgress, bool toFile = true) {
        Logger::Output(10, severity, 123, "UserAuthService::RequestAT", message, toFile);
    }
    std::string ReadBack(const wchar_t* name) const {
        EXPECT_TRUE(Logger::Flush(kFlushMilliseconds));
        return ReadFile(m_folder / name);
    }

    const fs::path m_folder = fs::temp_directory_path() / L"logs \u00E9\u4E2D";
};

}  // namespace

TEST_F(LoggerTest, LineHasTimeModuleSeverityAndPlaceAndCannotBeForged) {
    Write(L"one\r\n2026-01-01 forged\rtwo\x1B[31m \u2028 \u0085");
    Write(L"caf\u00E9 \xD83D\xDE00 " + std::wstring(1, static_cast<wchar_t>(0xD800)), 7);
    Write(L"not for the file", kSeverityFailure, false);
    const std::string text = ReadBack(L"client.log");
    const std::string place = "UserAuthService::RequestAT:123 ";
    EXPECT_EQ(text.find(" [module 10] [progress] " + place +
                        "one\n    2026-01-01 forged\n    two\\x1b[31m \\u2028 \\u0085\n"),
              23U)
        << text;
    EXPECT_NE(text.find(" [module 10] [7] " + place + "caf\xC3\xA9 \xF0\x9F\x98\x80 \xEF\xBF\xBD\n"), std::string::npos)
        << text;
    EXPECT_EQ(text.find("not for the file"), std::string::npos);
}

TEST_F(LoggerTest, NoSecretReachesASink) {
    const wchar_t* rows[] = {
        L"https://h/p?access_token=CANARY,x;y&control=kept",
        L"https://h/p?next=%2Fq%3Faccess_token%3DCANARY control=kept",
        L"Access_Token = CANARY control=kept",
        L"refresh_token=Bearer CANARY&control=kept",
        L"control=kept accessToken: CANARY, CANARY",
        L"control=kept\r\nrefreshToken: CANARY\r\nuserId: 1",
        L"X-Refresh-Token:CANARY;CANARY\ncontrol=kept",
        L"{\"refreshToken\":\"CANARY\",\"control=kept\":1}",
        L"{\"accessToken\" : \n \"a\\\"CANARY\\\\\", \"control=kept\":1}",
        L"{\"accessToken\":12CANARY,\"control=kept\":1}",
        L"{\"control=kept\":0,\"accessToken\":[\"CANARY\",{\"b\":\"CANARY\"}]}",
        L"{\"body\":\"{\\\"accessToken\\\":\\\"a\\\\\\\"CANARY\\\",\\\"control=kept\\\":1}\"}",
        L"{'Authorization': 'CANARY', 'control=kept': 1}",
        L"control=kept\nproxy-AUTHORIZATION: Digest user=\"CANARY\", response=\"CANARY\"\nnext",
        L"sent bEARER CANARY, control=kept",
        L"(Bearer%20CANARY&control=kept",
        L"\"Bearer \\\"CANARY\\\"\" control=kept",
        L"Bearer <CANARY> control=kept",
        L"access_token=<CANARY>&control=kept",
        L"access_token=\"\"CANARY control=kept",
        L"accessToken:\"a\"CANARY control=kept",
        L"access_token=a'CANARY control=kept",
        L"access_token=a\\\"CANARY control=kept",
        L"{\"url\":\"https://h/p?access_token=CANARY\",\"control=kept\":1}",
        L"control=kept\r\nrefreshToken:\r\n CANARY\r\n\tCANARY\r\nuserId: 1",
        L"control=kept q=%7B%22access_token%22%3A%22CANARY%22%7D",
        L"q=%2522access_token%2522%20%253D%2522CANARY%2522&control=kept",
        L"accessToken\\u003dCANARY control=kept",
        L"control=kept \\u0022accessToken\\u0022:\\u0022CANARY",
        L"authorizationCode=CANARY&control=kept",
        L"{\"token\" : \"CANARY\",\"control=kept\":1}",
    };
    testing::internal::CaptureStderr();
    Configure(true);
    for (const wchar_t* row : rows) {
        Write(row, kSeverityFailure);
        Logger::OutputOperationLog(
            1, 2, 3,
            {{L"note", row}, {L"accessToken", L"CANARY"}, {L"token", L"CANARY"}, {L"user-Authorization", L"CANARY"}});
    }
    Logger::OutputOperationLog(1, 2, 3);
    const std::string operations = ReadBack(L"client.log.operations.jsonl");
    for (const std::string& text : {ReadBack(L"client.log"), operations, testing::internal::GetCapturedStderr()}) {
        EXPECT_EQ(text.find("CANARY"), std::string::npos) << text;
        EXPECT_EQ(CountOf("control=kept", text), std::size(rows)) << text;  // what is no secret arrives
    }
    EXPECT_EQ(CountOf("\n", operations), std::size(rows) + 1);
    EXPECT_NE(operations.find("{\"action\":3,\"event\":1,\"operation\":2,\"time\":\""), std::string::npos)
        << operations;
}

TEST_F(LoggerTest, LongHostileTextIsMaskedInLinearTime) {
    std::wstring text = L"accessToken \\\\ bearer ";
    for (int doubling = 0; doubling < 11; ++doubling) {
        text += text;
    }
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 20; ++i) {
        Write(text + L"access_token=CANARY");
    }
    EXPECT_EQ(ReadBack(L"client.log").find("CANARY"), std::string::npos);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST_F(LoggerTest, FailedConfigureKeepsTheFormerSinks) {
    LoggerSettings settings;
    settings.file = m_folder.wstring();  // a folder
    std::string error;
    EXPECT_FALSE(Logger::Configure(settings, error));
    EXPECT_FALSE(error.empty());
    Write(L"still here");
    EXPECT_NE(ReadBack(L"client.log").find("still here\n"), std::string::npos);
}

TEST_F(LoggerTest, ThreadsMayLogWhileTheLoggerIsShutDownAndConfigured) {
    std::atomic<bool> stop{false};
    std::atomic<int> written{0};
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            while (!stop) {
                Write(L"busy line", written++ % 2 == 0 ? kSeverityFailure : kSeveritySummary);
                Logger::Flush(1);
            }
        });
    }
    for (int round = 0; round < 10; ++round) {
        Logger::Shutdown();
        Configure();
        Write(L"round " + std::to_wstring(round));
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    Logger::Shutdown();
    Write(L"after shutdown");
    const std::string text = ReadBack(L"client.log");
    EXPECT_GT(written, 0);
    for (int round = 0; round < 10; ++round) {
        EXPECT_NE(text.find("round " + std::to_string(round) + "\n"), std::string::npos) << round;
    }
    EXPECT_EQ(text.find("after shutdown"), std::string::npos);
}
