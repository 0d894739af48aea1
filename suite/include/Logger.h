#pragma once

/// @file
/// The suite's logger.

#include <cstddef>
#include <map>
#include <string>

#include "SuiteExport.h"

/// Severities of Logger::Output.
enum LogSeverity : int {
    kSeveritySummary = 0,   ///< request summaries and progress of the HTTP library
    kSeverityProgress = 2,  ///< progress and success
    kSeverityFailure = 5,   ///< failures
};

/// Bytes of UTF-8 that a secret has at least: a shorter one would blank what is none.
constexpr std::size_t kShortestSecret = 8;

/// How long Shutdown waits, and Configure for the sinks that it replaces: for all of them, and for one that takes no
/// line.
constexpr int kLongestShutdownMilliseconds = 5000;
/// For a sink that takes no line.
constexpr int kLongestStandstillMilliseconds = 1000;

/// Where the reference logger writes. Paths are wide; a limit of 0 takes the default.
struct LoggerSettings {
    /// Log file; operation events go to the same path with ".operations.jsonl" appended. Empty: no files. While another
    /// process writes there, both names get "-" and the process id: "client.log" becomes "client-4711.log", which its
    /// first line explains and nobody deletes. "client.log.lock" exists as long as "client.log" is taken.
    std::wstring file;
    /// A full file becomes "client.1.log" and so on; one that cannot be moved because somebody reads it grows
    /// meanwhile.
    std::size_t maxFileBytes = 5 * 1024 * 1024;
    std::size_t maxFiles = 3;  ///< moved ones
    /// Lowest severity that the console (standard error) shows; the file takes every line.
    bool console = false;
    /// The lowest.
    int consoleSeverity = kSeverityFailure;
};

/// The suite's logger. No member throws. Output and OutputOperationLog never wait for a sink: each sink has a queue
/// and a thread of its own; a full queue (4,096 lines or 16 MiB) drops its oldest lines. A line "N lines dropped"
/// stands in the place of lines that were dropped or could not be written, an event with the member "dropped" in that
/// of events. Configure, Flush and Shutdown wait for files and for the queues. Any thread. Until Configure was called
/// lines are dropped. Secrets are masked before a line reaches any sink: by value, those that SetSecret was given, and
/// by name, tokens, authorization codes, cookies and bearer values.
class LOGGER_API Logger {
public:
    /// Opens the sinks.
    /// @param settings  the files and the console
    /// @param error     receives a UTF-8 text after a failure
    /// @return false when a file cannot be opened; the former sinks stay then
    static bool Configure(const LoggerSettings& settings, std::string& error);

    /// Writes one line.
    /// @param moduleType   number of the calling module
    /// @param severity     LogSeverity; another number is written as it is
    /// @param line         source line
    /// @param functionTag  "Class::Method", UTF-8
    /// @param message      UTF-16
    /// @param toFile       false keeps the line off the file sink
    static void Output(int moduleType, int severity, int line, const std::string& functionTag,
                       const std::wstring& message, bool toFile);

    /// Writes one business event as a JSON object of its own line: members "time", "event", "operation", "action" and,
    /// when there is extra information, "extra".
    /// @param basicEventType  the event
    /// @param operationType   the operation
    /// @param actionType      the action
    static void OutputOperationLog(int basicEventType, int operationType, int actionType);
    /// The same with extra information.
    /// @param basicEventType    the event
    /// @param operationType     the operation
    /// @param actionType        the action
    /// @param extraInformation  name to value
    static void OutputOperationLog(int basicEventType, int operationType, int actionType,
                                   const std::map<std::wstring, std::wstring>& extraInformation);

    /// Masks a value in the lines that come: as it is, URL-encoded, escaped for JSON or XML, as UTF-16 with NULs
    /// between, as hexadecimal digits, and inside base64 of either alphabet. The parameter store gives the tokens that
    /// it is told.
    /// @param name   tells the values apart, never logged; a second call replaces the value and wipes the former one
    /// @param value  empty: removes it
    /// @return false when the value cannot be masked: it is shorter than kShortestSecret, there are 32 already, or they
    /// are longer than 64 KiB together
    static bool SetSecret(const std::string& name, const std::wstring& value);

    /// Waits until every queued line is in its sink.
    /// @param timeoutMilliseconds  at most so long
    /// @return false when the time ran out
    static bool Flush(int timeoutMilliseconds);

    /// Writes what is queued, closes the sinks and ends their threads. A client calls it before it leaves main; lines
    /// that come later are dropped. Bounded: lines that no sink takes in time are lost (kLongestShutdownMilliseconds).
    /// Not from DllMain: a thread cannot end under the loader's lock.
    static void Shutdown();
};
