#pragma once

#if defined(CONFORMANCE_BUILD)
#define CONFORMANCE_API __declspec(dllexport)
#else
#define CONFORMANCE_API
#endif

namespace conformance {

// What suite-conformance.exe calls in suite-conformance-points.dll, by name.
//
// Examines "EventAdmin", "Logger", "ParamStore" or "HttpLib", whatever is loaded under that name; only those of its
// points that have the text, all for an empty one. Returns an exit code of the process. What a library does while the
// process ends is examined when it does, and ends it with kExaminedBroken.
using ExamineLibraryFunction = int (*)(const wchar_t* library, bool isQuick, const char* only);
// As a second process that logs to a file: configures the logger, writes the line, shuts down. 0 on success.
using WriteLineFunction = int (*)(const wchar_t* file, const wchar_t* line);

// Exit codes of a process that examines. A library that ends the process with 0 shall not pass for one that holds.
constexpr int kExaminedBroken = 1;
constexpr int kExaminedAllHold = 100;
constexpr int kExaminedNothing = 101;  // no point has the text

constexpr char kExamineLibrary[] = "ExamineLibrary";
constexpr char kWriteLine[] = "WriteLine";

}  // namespace conformance
