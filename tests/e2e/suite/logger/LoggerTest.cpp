#include <fcntl.h>
#include <io.h>

#include <atomic>
#include <chrono>
#include <regex>
#include <thread>
#include <vector>

#include "ChildProcess.h"
#include "LoggerFixture.h"

namespace fs = std::filesystem;

TEST_F(LoggerTest, LineHasTimeModuleSeverityAndPlaceAndCannotBeForged) {
    Write(L"one\r\n2026-01-01 forged\rtwo\x1B[31m \u2028 \u0085");
    Write(L"bounds: \t\x1F \x20\x7E\x7F\u0080\u009F\u00A0 \u2027\u2028\u2029\u202A\n\r\r\n");
    Write(L"caf\u00E9 \U0001F600 " + std::wstring(1, static_cast<wchar_t>(0xD800)), 7);
    Write(L"not for the file", kSeverityFailure, false);
    const std::string text = ReadBack(L"client.log");
    const std::string place = "UserAuthService::GetAccessTokenByRefrshToken:123 ";
    EXPECT_EQ(text.find(" [module 10] [progress] " + place +
                        "one\n    2026-01-01 forged\n    two\\x1b[31m \\u2028 \\u0085\n"),
              23U)
        << text;
    EXPECT_NE(
        text.find(place + "bounds: \t\\x1f \x20\x7E\\x7f\\u0080\\u009f\xC2\xA0 \xE2\x80\xA7\\u2028\\u2029\xE2\x80\xAA"
                          "\n    \n    \n    \n"),
        std::string::npos)
        << text;
    EXPECT_NE(text.find(" [module 10] [7] " + place + "caf\xC3\xA9 \xF0\x9F\x98\x80 \xEF\xBF\xBD\n"), std::string::npos)
        << text;
    EXPECT_EQ(text.find("not for the file"), std::string::npos);
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

TEST_F(LoggerTest, FullFilesMoveOnAndTheOldestGoes) {
    const auto linesIn = [this](const wchar_t* name) {
        std::string lines;
        const std::string text = ReadBack(name);
        for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at + 1)) {
            lines += text.substr(at + 1, text.find('>', at) - at - 1) + " ";
        }
        return lines;
    };
    const auto write = [](int first, int last) {
        for (int i = first; i <= last; ++i) {
            Write(L"<" + std::to_wstring(i) + L">");
        }
    };
    write(10, 10);
    const std::size_t size = ReadBack(L"client.log").size();
    Configure(false, 3 * size, 2);
    write(11, 12);
    EXPECT_EQ(linesIn(L"client.log"), "10 11 12 ") << "what was there counts, and a file may be full to its last byte";
    write(13, 15);
    EXPECT_EQ(linesIn(L"client.1.log"), "10 11 12 ");
    write(16, 20);
    EXPECT_EQ(linesIn(L"client.log"), "19 20 ");
    EXPECT_EQ(linesIn(L"client.1.log"), "16 17 18 ");
    EXPECT_EQ(linesIn(L"client.2.log"), "13 14 15 ");
    EXPECT_FALSE(fs::exists(m_folder / L"client.3.log"));
    fs::remove(m_folder / L"client.1.log");
    write(21, 22);
    EXPECT_EQ(linesIn(L"client.1.log"), "19 20 21 ");
    EXPECT_EQ(linesIn(L"client.2.log"), "13 14 15 ") << "no file moves further than there is room to be made";
    Configure(false, 1, 0);
    write(23, 25);
    EXPECT_EQ(linesIn(L"client.log"), "25 ") << "a line that is too long for any file has one";
    EXPECT_EQ(linesIn(L"client.1.log"), "24 ");
    EXPECT_EQ(linesIn(L"client.3.log"), "22 ");
}

TEST_F(LoggerTest, FullFileThatCannotBeMovedGrows) {
    Configure(false, 1, 1);
    Write(L"the first");
    Logger::Flush(10000);
    EXPECT_FALSE(fs::exists(m_folder / L"client.1.log")) << "an empty file does not move";
    fs::create_directories(m_folder / L"client.1.log" / L"in the way");
    for (int i = 0; i < 10; ++i) {
        Write(L"line");
    }
    EXPECT_EQ(CountOf(" line\n", ReadBack(L"client.log")), 10U);
    fs::remove_all(m_folder / L"client.1.log");
    Write(L"line");
    EXPECT_EQ(CountOf(" line\n", ReadBack(L"client.log")), 1U);
    EXPECT_EQ(CountOf(" line\n", ReadFile(m_folder / L"client.1.log")), 10U);
}

// More bytes than the queue may hold at once, but not at once.
TEST_F(LoggerTest, WhatIsWrittenLeavesRoomForOthers) {
    Configure(false, 100'000'000);
    for (int i = 0; i < 400; ++i) {
        Write(std::wstring(60000, L'x'));
        EXPECT_TRUE(i % 50 != 0 || Logger::Flush(10000));
    }
    EXPECT_EQ(CountOf("x\n", ReadBack(L"client.log")), 400U);
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
    EXPECT_TRUE(Logger::Flush(10000));
    const fs::path away = m_folder.wstring() + L" away";
    std::error_code error;
    fs::rename(m_folder, away, error);
    if (error) {
        GTEST_SKIP() << error.message();
    }
    WriteFile(m_folder, "in the folder's place");
    Write(std::wstring(400, L'x'));
    Write(L"a line that would have found room");
    EXPECT_TRUE(Logger::Flush(10000));
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
