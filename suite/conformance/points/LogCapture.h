#pragma once

#include <Logger.h>
#include <fcntl.h>
#include <io.h>

#include <string>

#include "Examination.h"
#include "Folder.h"

namespace conformance {

constexpr int kFlushMilliseconds = 10000;

// The logger with a file in a folder of its own; shut down at the end.
class LogFile {
public:
    LogFile() { Configure(); }
    ~LogFile() { Logger::Shutdown(); }
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    void Configure(bool console = false, std::size_t maxFileBytes = 0) const {
        LoggerSettings settings;
        settings.file = Path().wstring();
        settings.maxFileBytes = maxFileBytes;
        settings.console = console;
        std::string error;
        Require(Logger::Configure(settings, error), "Configure failed: " + Shown(error));
    }
    static void Write(const std::wstring& message, int severity = kSeverityProgress, bool toFile = true) {
        Logger::Output(10, severity, 123, "Conformance::Write", message, toFile);
    }
    std::string Lines() const { return TextOf(Flushed(L"client.log")); }
    std::string Events() const { return TextOf(Flushed(L"client.log.operations.jsonl")); }
    std::filesystem::path Path() const { return m_folder / L"client.log"; }
    const Folder& Place() const { return m_folder; }

private:
    std::filesystem::path Flushed(const wchar_t* name) const {
        Require(Logger::Flush(kFlushMilliseconds), "Flush gave up after 10 s");
        return m_folder / name;
    }

    const Folder m_folder{L"logs"};
};

// Standard error as a pipe of 64 KiB that nobody reads until somebody asks.
class ConsolePipe {
public:
    ConsolePipe() : m_console(_dup(2)) {
        Require(_pipe(m_ends, 64 * 1024, _O_BINARY | _O_NOINHERIT) == 0, "no pipe");
        _dup2(m_ends[1], 2);
        _close(m_ends[1]);
    }
    ~ConsolePipe() {
        _dup2(m_console, 2);
        _close(m_console);
        _close(m_ends[0]);
    }
    ConsolePipe(const ConsolePipe&) = delete;
    ConsolePipe& operator=(const ConsolePipe&) = delete;

    // What came, at least until that text did.
    std::string ReadUntil(const std::string& last) const {
        std::string shown;
        char buffer[64 * 1024];
        while (shown.find(last) == std::string::npos) {
            const int bytes = _read(m_ends[0], buffer, sizeof buffer);
            Require(bytes > 0, "the console ended before " + Shown(last));
            shown.append(buffer, static_cast<std::size_t>(bytes));
        }
        return shown;
    }

private:
    int m_ends[2] = {};
    int m_console;
};

}  // namespace conformance
