#include "Logger.h"

#include <ParamStore.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>

#include <atomic>
#include <chrono>
#include <regex>
#include <thread>
#include <vector>

#include "ChildProcess.h"
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
        Logger::SetSecret("test", L"");
        Logger::Shutdown();
        fs::remove_all(m_folder);
    }
    void Configure(bool console = false, std::size_t maxFileBytes = 0) {
        LoggerSettings settings;
        settings.maxFileBytes = maxFileBytes;
        settings.console = console;
        settings.consoleSeverity = kSeveritySummary;
        settings.file = (m_folder / L"client.log").wstring();
        std::string error;
        ASSERT_TRUE(Logger::Configure(settings, error)) << error;
    }
    static void Write(const std::wstring& message, int severity = kSeverityProgress, bool toFile = true) {
        Logger::Output(10, severity, 123, "UserAuthService::GetAccessTokenByRefrshToken", message, toFile);
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
    const std::string place = "UserAuthService::GetAccessTokenByRefrshToken:123 ";
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
        L"{\"token\" : \"CANARY\",\"control=kept\":1}",
        L"{\"name\":\"access_token\",\"value\":\"CANARY\",\"control=kept\":1}",
        L"<param name='access_token' type='x' value='CANARY'/> control=kept",
        L"[\"access_token\", \"CANARY\", \"control=kept\"]",
        L"{\"grant_type\":\"authorization_code\",\"code\":\"CANARY\",\"control=kept\":1}",
        L"{&quot;accessToken&quot;:&quot;CANARY,CANARY&quot;,&quot;control=kept&quot;:1}",
        L"<x:access_token a=\"b\"><![CDATA[CANARY]]></x:access_token><b>control=kept</b>",
        L"control=kept\ntoken: CANARY",
        L"'access_token' => 'CANARY', 'control=kept'",
        L"control=kept\r\nCookie: a=CANARY; b=CANARY",
        L"control=kept\r\nSet-Cookie: a=CANARY; Path=/CANARY",
        L"Bearer\r\n CANARY control=kept",
        L"\"token\" refused: access_token=CANARY control=kept \"value\": 3",
        L"Bearer \n<access_token>CANARY</access_token> control=kept",
        L"https://h/p?code=CANARY&authCode=CANARY&authorizationCode=CANARY&bearerToken=CANARY&control=kept",
        L"id_token=CANARY&temp_token=CANARY&access_token[0]=CANARY&control=kept",
        L"access\\u005ftoken=CANARY&access%5Ftoken=CANARY&access_token&#61;CANARY&control=kept",
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

TEST_F(LoggerTest, LinesWithoutSecretsArriveUnchanged) {
    const std::string rows[] = {
        "RequestAT\nUrl:https://h/pcclient/refreshtoken?traceId=1\nHttpCode:200\nResultCode:0\nDescription:",
        "https://h/gw?nsp_svc=zorvan.oauth2.user.getTokenInfo&open_id=OPENID",
        "refresh AT error statusCode: 401",
        "RequestCountryCode httpcode:200",
        "Get ApplyAT Failed! httpcode = 401",
        "exit code: 5, code=404, {\"code\":\"0\"}",
        "check user key sha256 success, keyType:1",
        "x-zv-auth-version: 1, grant_type=authorization_code&x=1",
        "<token_type>jwt</token_type>",
    };
    for (const std::string& row : rows) {
        Write(Wide(row));
    }
    const std::string text = ReadBack(L"client.log");
    for (const std::string& row : rows) {
        EXPECT_NE(text.find(" " + std::regex_replace(row, std::regex("\n"), "\n    ") + "\n"), std::string::npos)
            << row << "\n"
            << text;
    }
}

TEST_F(LoggerTest, KnownSecretReachesNoSinkInAnyForm) {
    const std::string secret = "CANARY~~/?+3\"==";
    const std::string rows[] = {
        secret,
        "CANARY%7E%7e%2f%3F%2B3%22%3D%3d",
        "CANARY%257E%257E%252F%253F%252B3%2522%253D%253D",
        "{\"a\":\"CANARY~~\\/?+3\\\"==\"}",
        "\\u0043ANARY\\u007e~/?\\u002B3\\u0022==",
        "<a b=\"CANARY~~/?+3&quot;&#61;&#x3D;\"/>",
        "c:\\" + secret + secret,
        "100%25%43ANARY%7E~/?+3%22==",
        "Q0FOQVJZfn4vPyszIj09Pw==",  // base64 with 0, 1 and 2 bytes in front, then with the other alphabet
        "P0NBTkFSWX5+Lz8rMyI9PT8=",
        "Pz9DQU5BUll+fi8/KzMiPT0/",
        "Pz9DQU5BUll-fi8_KzMiPT0_",
    };
    std::wstring utf16;
    for (const char c : secret) {
        utf16 += {static_cast<wchar_t>(c), L'\0'};
    }
    ASSERT_TRUE(Logger::SetSecret("test", Wide(secret)));
    testing::internal::CaptureStderr();
    Configure(true);
    for (const std::string& row : rows) {
        Write(Wide(row) + L" kept", kSeverityFailure);
        Logger::OutputOperationLog(1, 2, 3, {{L"a", Wide(row) + L" kept"}});
    }
    Write(utf16 + L"kept", kSeverityFailure);
    Write(std::wstring(64 * 1024 - 3, L'x') + Wide(secret));  // cut in the middle
    for (const std::string& text :
         {ReadBack(L"client.log"), ReadBack(L"client.log.operations.jsonl"), testing::internal::GetCapturedStderr()}) {
        EXPECT_GE(CountOf("kept", text), std::size(rows));
        EXPECT_EQ(text.find("xC"), std::string::npos);
        EXPECT_EQ(text.find("\\x00A"), std::string::npos);
        for (const std::string& row : rows) {
            EXPECT_EQ(text.find(row.substr(row.size() / 3, 6)), std::string::npos) << row << "\n" << text;
        }
    }
}

TEST_F(LoggerTest, SecretsAreReplacedByNameAndBounded) {
    EXPECT_TRUE(Logger::SetSecret("test", L"former secret"));
    EXPECT_TRUE(Logger::SetSecret("test", L"new secret"));
    Write(L"1 former secret, new secret, new+secret.");
    EXPECT_FALSE(Logger::SetSecret("test", L"2 short"));
    Write(L"2 short, new secret.");
    EXPECT_TRUE(Logger::SetSecret("test", L""));
    EXPECT_FALSE(Logger::SetSecret("test", std::wstring(64 * 1024 + 1, L'x')));
    for (int i = 0; i < 40; ++i) {
        EXPECT_EQ(Logger::SetSecret("test " + std::to_string(i), L"secret " + std::to_wstring(i)), i < 32) << i;
    }
    for (int i = 0; i < 40; ++i) {
        EXPECT_TRUE(Logger::SetSecret("test " + std::to_string(i), L""));
    }
    GlobalParamWrapper::GetInstance()->SetCurrentAt(L"from the parameter store");
    Write(L"3 from the parameter store.");
    GlobalParamWrapper::GetInstance()->SetCurrentAt(L"");
    const std::string text = ReadBack(L"client.log");
    for (const char* line : {"1 former secret, ***, ***.", "2 short, new secret.", "3 ***."}) {
        EXPECT_NE(text.find(line), std::string::npos) << line << "\n" << text;
    }
}

TEST_F(LoggerTest, LongHostileTextIsMaskedInLinearTime) {
    ASSERT_TRUE(Logger::SetSecret("test", std::wstring(30000, L'r') + L'!'));
    std::wstring text = L"accessToken \\\\ bearer rrrrrrrr%25";
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

// The console is a pipe that nobody reads until the end.
TEST_F(LoggerTest, ConsoleThatStandsStillHoldsUpNothing) {
    int pipe[2] = {};
    ASSERT_EQ(_pipe(pipe, 64 * 1024, _O_BINARY | _O_NOINHERIT), 0);
    const int console = _dup(2);
    _dup2(pipe[1], 2);
    _close(pipe[1]);
    Configure(true);
    constexpr int kInFile = 1000;
    constexpr int kAll = 6000;
    for (int i = 0; i < kAll; ++i) {
        Write(L"line", kSeverityFailure, i < kInFile);
    }
    const auto start = std::chrono::steady_clock::now();
    while (CountOf(" line\n", ReadFile(m_folder / L"client.log")) < kInFile) {
        ASSERT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    Write(L"last", kSeverityFailure);
    std::string shown;
    char buffer[64 * 1024];
    while (shown.find(" last\n") == std::string::npos) {
        const int bytes = _read(pipe[0], buffer, sizeof(buffer));
        ASSERT_GT(bytes, 0);
        shown.append(buffer, static_cast<std::size_t>(bytes));
    }
    std::size_t lines = CountOf(" line\n", shown);
    EXPECT_LT(lines, static_cast<std::size_t>(kAll));
    const std::regex dropped("\\[logger\\] ([0-9]+) lines dropped\n");
    for (std::sregex_iterator told(shown.begin(), shown.end(), dropped); told != std::sregex_iterator(); ++told) {
        lines += std::stoul((*told)[1]);
    }
    EXPECT_EQ(lines, static_cast<std::size_t>(kAll));
    for (int i = 0; i < kInFile; ++i) {
        Write(L"unread", kSeverityFailure);
    }
    const auto shutdown = std::chrono::steady_clock::now();
    Logger::Shutdown();
    EXPECT_LE(std::chrono::steady_clock::now() - shutdown, std::chrono::milliseconds(kLongestShutdownMilliseconds));
    EXPECT_EQ(CountOf(" unread\n", ReadFile(m_folder / L"client.log")), static_cast<std::size_t>(kInFile));
    _dup2(console, 2);
    _close(console);
    _close(pipe[0]);
}

TEST_F(LoggerTest, SecondProcessWritesToAFileOfItsOwn) {
    Write(L"first process");
    const std::wstring arguments = L"status --log \"" + (m_folder / L"client.log").wstring() + L"\"";
    EXPECT_EQ(ChildProcess(L"userauth.exe", arguments).Finish(), 0);
    EXPECT_EQ(CountOf("\n", ReadBack(L"client.log")), 1U);
    std::string theirs;
    for (const fs::directory_entry& entry : fs::directory_iterator(m_folder)) {
        const std::wstring name = entry.path().filename().wstring();
        theirs += std::regex_match(name, std::wregex(L"client-[0-9]+\\.log")) ? ReadFile(entry.path()) : "";
    }
    EXPECT_NE(theirs.find(" [logger] another process writes to "), std::string::npos) << theirs;
    EXPECT_GT(CountOf("\n", theirs), 1U);
    Logger::Shutdown();
    EXPECT_EQ(ChildProcess(L"userauth.exe", arguments).Finish(), 0);
    EXPECT_GT(CountOf("\n", ReadFile(m_folder / L"client.log")), 1U);
    EXPECT_FALSE(fs::exists(m_folder / L"client.log.lock"));
}

TEST_F(LoggerTest, FullFilesMoveOnAndOneThatIsBeingReadLosesNothing) {
    const auto linesIn = [this](const wchar_t* name) { return CountOf(" line\n", ReadBack(name)); };
    Configure(false, 1500);
    {
        const std::ifstream reader(m_folder / L"client.log");  // no file that it reads can be moved
        for (int i = 0; i < 40; ++i) {
            Write(L"line");
        }
        EXPECT_EQ(linesIn(L"client.log"), 40U);
    }
    for (int i = 0; i < 30; ++i) {
        Write(L"line");
    }
    EXPECT_GE(linesIn(L"client.3.log"), 40U);
    EXPECT_EQ(linesIn(L"client.log") + linesIn(L"client.1.log") + linesIn(L"client.2.log") + linesIn(L"client.3.log"),
              70U);
}

// As on a drive that is pulled out. Windows does not let the folder go while a file in it is open, Wine does.
TEST_F(LoggerTest, FullFileThatCannotBeOpenedAgainLosesLinesButNotTheProcess) {
    Configure(false, 400);
    Write(L"before");
    EXPECT_TRUE(Logger::Flush(kFlushMilliseconds));
    const fs::path away = m_folder.wstring() + L" away";
    std::error_code error;
    fs::rename(m_folder, away, error);
    if (error) {
        GTEST_SKIP() << error.message();
    }
    WriteFile(m_folder, "in the folder's place");
    Write(std::wstring(400, L'x'));
    Write(L"a line that would have found room");
    EXPECT_TRUE(Logger::Flush(kFlushMilliseconds));
    fs::remove(m_folder);
    fs::rename(away, m_folder);
    Write(L"after");
    const std::string text = ReadBack(L"client.1.log") + ReadBack(L"client.log");
    EXPECT_TRUE(std::regex_search(text, std::regex(" before\n.* 2 lines dropped\n.* after\n"))) << text;
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
    for (const bool shutsDown : {false, true}) {
        std::atomic<bool> stop{false};
        std::atomic<std::size_t> written{0};
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
        for (int round = 0; round < 15; ++round) {
            if (shutsDown) {
                Logger::Shutdown();
            }
            Configure();
            Write(L"round " + std::to_wstring(round));
        }
        stop = true;
        for (std::thread& thread : threads) {
            thread.join();
        }
        const std::string text = ReadBack(L"client.log");
        EXPECT_EQ(CountOf(" round ", text), shutsDown ? 30U : 15U);
        EXPECT_TRUE(shutsDown || CountOf(" busy line\n", text) == written)
            << "new sinks overwrote what the old ones wrote";
    }
    Logger::Shutdown();
    Write(L"after shutdown");
    EXPECT_EQ(ReadBack(L"client.log").find("after shutdown"), std::string::npos);
}
