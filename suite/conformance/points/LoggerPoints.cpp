#include <regex>
#include <thread>

#include "LogCapture.h"

namespace conformance {

namespace {

namespace fs = std::filesystem;

bool Holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

void RequireHolds(const std::string& text, const std::string& part) {
    Require(Holds(text, part), Shown(part) + " is not in " + Shown(text));
}

// This program again, with the same libraries.
unsigned long SecondProcessWrites(const fs::path& file, const std::wstring& line) {
    wchar_t logger[MAX_PATH] = {};
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(GetModuleHandleW(L"Logger.dll"), logger, MAX_PATH);
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    const std::wstring quote = L"\"";
    std::wstring command = quote + program + quote + L" --write-line " + quote + file.wstring() + quote + L" " + quote +
                           line + quote + L" " + quote + fs::path(logger).parent_path().wstring() + quote;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    Require(CreateProcessW(program, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process) !=
                FALSE,
            "no second process");
    DWORD code = 1;
    WaitForSingleObject(process.hProcess, 20000);
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return code;
}

void ExamineLines(Examination& examination) {
    examination.Point("lines before Configure are dropped", [] {
        LogFile::Write(L"too early");
        const LogFile log;
        LogFile::Write(L"in time");
        const std::string text = log.Lines();
        Require(Holds(text, "in time") && !Holds(text, "too early"), "the file has " + Shown(text));
    });
    examination.Point("a line has its message and the tag of its function, in UTF-8, at a wide path", [] {
        const LogFile log;
        LogFile::Write(L"caf\u00E9 \xD83D\xDE00");
        RequireHolds(log.Lines(), "caf\xC3\xA9 \xF0\x9F\x98\x80");
        RequireHolds(log.Lines(), "Conformance::Write");
    });
    examination.Point("toFile = false keeps a line off the file", [] {
        const LogFile log;
        LogFile::Write(L"hidden", kSeverityFailure, false);
        LogFile::Write(L"shown");
        Require(!Holds(log.Lines(), "hidden"), "it is there");
        RequireHolds(log.Lines(), "shown");
    });
    examination.Point("the file takes every severity", [] {
        const LogFile log;
        for (const int severity : {0, 2, 5, 7, -1}) {
            LogFile::Write(L"severity " + std::to_wstring(severity) + L".", severity);
            RequireHolds(log.Lines(), "severity " + std::to_string(severity) + ".");
        }
    });
    examination.Point("nothing throws, whatever the text", [] {
        const LogFile log;
        LogFile::Write(std::wstring(1, static_cast<wchar_t>(0xD800)) + std::wstring(3, L'\0') + L"\r\n\x1B\u2028");
        LogFile::Write(std::wstring(8 * 1024 * 1024, L'x'));
        Logger::Output(-1, -1, -1, "", L"", true);
        Logger::OutputOperationLog(-1, -1, -1, {{L"", std::wstring(1, static_cast<wchar_t>(0xDC00))}});
        LogFile::Write(L"alive");
        RequireHolds(log.Lines(), "alive");
    });
    examination.Point("four threads at once: every line arrives whole", [] {
        const LogFile log;
        std::thread threads[4];
        for (std::thread& thread : threads) {
            thread = std::thread([] {
                for (int line = 0; line < 250; ++line) {
                    LogFile::Write(L"<a whole line>");
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        RequireEqual(CountOf("<a whole line>", log.Lines()), 1000U, "the number of lines");
    });
}

void ExamineEvents(Examination& examination) {
    examination.Point("an event is one JSON object in FILE.operations.jsonl, with its three numbers and the time", [] {
        const LogFile log;
        Logger::OutputOperationLog(148, 1, 0);
        const std::string events = log.Events();
        RequireEqual(CountOf("\n", events), 1U, "the number of lines");
        Require(events.front() == '{' && events.substr(events.size() - 2) == "}\n", Shown(events));
        for (const char* member : {"\"event\":148", "\"operation\":1", "\"action\":0", "\"time\":\""}) {
            RequireHolds(events, member);
        }
        Require(!Holds(events, "\"extra\""), "it has extra information");
    });
    examination.Point("extra information is the member \"extra\", and no text of it breaks the line", [] {
        const LogFile log;
        Logger::OutputOperationLog(148, 1, 0, {{L"num", L"3"}, {L"note", L"\"}\n{\\"}});
        const std::string events = log.Events();
        RequireEqual(CountOf("\n", events), 1U, "the number of lines");
        RequireHolds(events, "\"extra\":{");
        RequireHolds(events, "\"num\":\"3\"");
        RequireHolds(events, R"("note":"\"}\n{\\")");
    });
}

void ExamineFiles(Examination& examination) {
    examination.Point("a full file moves on to client.1.log and so on, three of them at most", [] {
        const LogFile log;
        log.Configure(false, 1000);
        for (int i = 0; i < 100; ++i) {
            LogFile::Write(L"a line of some length, so that the file fills");
            Require(Logger::Flush(kFlushMilliseconds), "Flush gave up");
        }
        for (const wchar_t* name : {L"client.1.log", L"client.2.log", L"client.3.log"}) {
            Require(fs::exists(log.Place() / name), "a file is missing");
        }
        Require(!fs::exists(log.Place() / L"client.4.log"), "client.4.log is there");
    });
    examination.Point("a full file that somebody reads grows, and no line is lost", [] {
        const LogFile log;
        log.Configure(false, 1000);
        const std::ifstream reader(log.Path());
        for (int i = 0; i < 50; ++i) {
            LogFile::Write(L"<counted>");
        }
        std::string all = log.Lines();
        for (const wchar_t* name : {L"client.1.log", L"client.2.log", L"client.3.log"}) {
            all += TextOf(log.Place() / name);
        }
        RequireEqual(CountOf("<counted>", all), 50U, "the number of lines");
    });
    examination.Point("Configure tells in words why a file cannot be opened, and the former sinks stay", [] {
        const LogFile log;
        LoggerSettings settings;
        settings.file = log.Path().parent_path().wstring();  // a folder
        std::string error;
        Require(!Logger::Configure(settings, error) && !error.empty(), "true, or no text");
        LogFile::Write(L"still here");
        RequireHolds(log.Lines(), "still here");
    });
    examination.Point("a second process writes to client-PID.log, whose first line explains it", [] {
        const LogFile log;
        LogFile::Write(L"first process");
        Require(SecondProcessWrites(log.Path(), L"second process") == 0, "its Configure failed");
        Require(!Holds(log.Lines(), "second process"), "both write to one file");
        std::string theirs;
        for (const fs::directory_entry& entry : fs::directory_iterator(log.Path().parent_path())) {
            const std::wstring name = entry.path().filename().wstring();
            theirs += std::regex_match(name, std::wregex(L"client-[0-9]+\\.log")) ? TextOf(entry.path()) : "";
        }
        const std::size_t firstEnd = theirs.find('\n');
        Require(firstEnd < theirs.find("second process"), "its file has " + Shown(theirs));
    });
    examination.Point("client.log.lock exists as long as client.log is taken", [] {
        const LogFile log;
        LogFile::Write(L"line");
        Require(!log.Lines().empty() && fs::exists(log.Place() / L"client.log.lock"), "it is missing");
        Logger::Shutdown();
        Require(!fs::exists(log.Place() / L"client.log.lock"), "it stays");
    });
}

void ExamineConsole(Examination& examination) {
    examination.Point("the console shows failures, and nothing below them", [] {
        const LogFile log;
        const ConsolePipe console;
        log.Configure(true);
        LogFile::Write(L"progress", kSeverityProgress);
        LogFile::Write(L"failure", kSeverityFailure);
        const std::string shown = console.ReadUntil("failure");
        Require(!Holds(shown, "progress"), "it shows " + Shown(shown));
    });
    examination.Point("a console that stands still holds up no caller and no file", [] {
        const LogFile log;
        const ConsolePipe console;
        log.Configure(true);
        RequireWithin(5000, "6,000 lines", [] {
            for (int i = 0; i < 6000; ++i) {
                LogFile::Write(L"<line>", kSeverityFailure, i < 1000);
            }
        });
        RequireWithin(2000, "Flush(200)", [] { Require(!Logger::Flush(200), "Flush says that the console has all"); });
        for (int tenths = 0; tenths < 100 && CountOf("<line>", TextOf(log.Path())) < 1000; ++tenths) {
            Sleep(100);
        }
        RequireEqual(CountOf("<line>", TextOf(log.Path())), 1000U, "the number of lines in the file");
        LogFile::Write(L"<last>", kSeverityFailure);
        const std::string shown = console.ReadUntil("<last>");
        RequireHolds(shown, "lines dropped");
        Require(CountOf("<line>", shown) < 6000, "all lines are there, and some are told as dropped");
    });
    examination.Point("Shutdown gives up a console that stands still after five seconds", [] {
        const LogFile log;
        const ConsolePipe console;
        log.Configure(true);
        for (int i = 0; i < 3000; ++i) {
            LogFile::Write(L"nobody reads this line", kSeverityFailure);
        }
        RequireWithin(kLongestShutdownMilliseconds + 500, "Shutdown", [] { Logger::Shutdown(); });
    });
}

void ExamineShutdown(Examination& examination) {
    examination.Point("Shutdown writes what is queued; later lines are dropped until Configure", [] {
        const LogFile log;
        for (int i = 0; i < 500; ++i) {
            LogFile::Write(L"<queued>");
        }
        Logger::Shutdown();
        LogFile::Write(L"too late");
        RequireEqual(CountOf("<queued>", TextOf(log.Path())), 500U, "the number of lines");
        log.Configure();
        LogFile::Write(L"again");
        const std::string text = log.Lines();
        Require(Holds(text, "again") && !Holds(text, "too late"), "the file ends wrongly");
    });
    examination.Point("threads may log, flush and configure at once", [] {
        const LogFile log;
        std::atomic<bool> ended{false};
        std::thread writer([&ended] {
            while (!ended) {
                LogFile::Write(L"busy", kSeverityFailure);
                Logger::Flush(1);
            }
        });
        for (int round = 0; round < 10; ++round) {
            log.Configure();
            LogFile::Write(L"<round>");
        }
        ended = true;
        writer.join();
        RequireEqual(CountOf("<round>", log.Lines()), 10U, "the number of lines");
    });
}

}  // namespace

void ExamineLogger(Examination& examination) {
    ExamineLines(examination);
    ExamineEvents(examination);
    ExamineFiles(examination);
    ExamineConsole(examination);
    ExamineShutdown(examination);
    ExamineLoggerSecrets(examination);
    // A sink stays open, for the end of the process.
    LoggerSettings settings;
    settings.console = true;
    std::string error;
    Logger::Configure(settings, error);
}

void ExamineLoggerAtTheEnd() {
    LogFile::Write(L"at the end");
    Logger::OutputOperationLog(1, 2, 3);
    RequireWithin(1000, "Flush(200)", [] { Logger::Flush(200); });
}

}  // namespace conformance
