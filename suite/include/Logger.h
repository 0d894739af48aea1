#pragma once

#include <map>
#include <string>

#include "SuiteExport.h"

// Severities of Logger::Output.
enum LogSeverity : int {
    kSeveritySummary = 0,   // request summaries and progress of the HTTP library
    kSeverityProgress = 2,  // progress and success
    kSeverityFailure = 5,   // failures
};

// Where the reference logger writes. Paths are wide; a limit of 0 takes the default.
struct LoggerSettings {
    // Log file; operation events go to the same path with ".operations.jsonl" appended. Empty: no files.
    std::wstring file;
    std::size_t maxFileBytes = 5 * 1024 * 1024;
    std::size_t maxFiles = 3;
    // Lowest severity that the console (standard error) shows; the file takes every line.
    bool console = false;
    int consoleSeverity = kSeverityFailure;
};

// The suite's logger. No member throws. Output and OutputOperationLog never wait for a disk: lines are queued, the
// oldest are dropped when the queue is full; Configure, Flush and Shutdown wait for files and for the queue. Access
// tokens, refresh tokens, authorization codes and bearer values are masked before a line reaches any sink.
// Any thread. Until Configure was called lines are dropped.
class LOGGER_API Logger {
public:
    // Opens the sinks. False with a UTF-8 text when a file cannot be opened; the former sinks stay then.
    static bool Configure(const LoggerSettings& settings, std::string& error);

    // Writes one line. moduleType: number of the calling module; severity: LogSeverity; line: source line;
    // functionTag: "Class::Method", UTF-8; toFile: false keeps the line off the file sink.
    static void Output(int moduleType, int severity, int line, const std::string& functionTag,
                       const std::wstring& message, bool toFile);

    // Writes one business event as a JSON object of its own line: members "time", "event", "operation", "action" and,
    // when there is extra information, "extra".
    static void OutputOperationLog(int basicEventType, int operationType, int actionType);
    static void OutputOperationLog(int basicEventType, int operationType, int actionType,
                                   const std::map<std::wstring, std::wstring>& extraInformation);

    // Waits until every queued line is in its sink, at most the given time. False when the time ran out.
    static bool Flush(int timeoutMilliseconds);

    // Flushes, closes the sinks and ends the logger's thread. A client calls it before it leaves main; lines that come
    // later are dropped. Not from DllMain: a thread cannot end under the loader's lock.
    static void Shutdown();
};
