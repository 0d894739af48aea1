#include <windows.h>

#include <cstdio>
#include <cstring>
#include <exception>
#include <string>
#include <vector>

#include "ConformanceEntry.h"
#include "ExaminerProcess.h"
#include "SuiteModules.h"

namespace conformance {
namespace {

constexpr char kUsage[] =
    "usage: suite-conformance [FOLDER] [--library NAME] [--only TEXT] [--quick]\n"
    "\n"
    "Loads the suite libraries of FOLDER (Logger.dll, EventAdmin.dll, ParamStore.dll, HttpLib.dll) in place of those\n"
    "beside this program, and says point by point whether they keep the promises of the suite's headers. A library "
    "that\n"
    "FOLDER does not have is taken from beside this program and not examined. Without FOLDER: those beside this "
    "program.\n"
    "\n"
    "  --library NAME  examines that one only\n"
    "  --only TEXT     examines those points only whose promise has the text (ASCII)\n"
    "  --quick         leaves out the points that wait for half a minute and more\n"
    "\n"
    "Exit code: 0 all examined points hold, 1 one does not, 2 wrong arguments, a library that cannot be loaded, or no\n"
    "point examined.\n";

constexpr int kAllHold = 0;
constexpr int kOneFails = 1;
constexpr int kNotExamined = 2;

struct Arguments {
    std::filesystem::path folder;
    std::wstring examined;  // one library, or empty for all
    std::wstring only;
    bool isQuick = false;
    bool isExaminer = false;  // the process that does it, for one library
    std::wstring file, line;  // a second process for the logger's points
};

bool Known(const std::wstring& library) {
    for (const wchar_t* known : kLibraries) {
        if (library == known) {
            return true;
        }
    }
    return false;
}

// False: they make no sense.
bool Read(const std::vector<std::wstring>& words, Arguments& arguments) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        const bool hasNext = i + 1 < words.size();
        if (words[i] == L"--quick") {
            arguments.isQuick = true;
        } else if (words[i] == L"--examine") {
            arguments.isExaminer = true;
        } else if (words[i] == L"--library" && hasNext && Known(words[i + 1])) {
            arguments.examined = words[++i];
        } else if (words[i] == L"--only" && hasNext) {
            arguments.only = words[++i];
        } else if (words[i] == L"--write-line" && i + 2 < words.size()) {
            arguments.file = words[++i];
            arguments.line = words[++i];
        } else if (words[i].compare(0, 1, L"-") != 0 && arguments.folder.empty()) {
            arguments.folder = std::filesystem::absolute(words[i]);
        } else {
            return false;
        }
    }
    return true;
}

template <typename Function>
Function Entry(HMODULE module, const char* name) {
    const FARPROC entry = GetProcAddress(module, name);
    Function function = nullptr;
    std::memcpy(&function, &entry, sizeof function);
    return function;
}

int Examine(const Arguments& arguments) {
    const HMODULE points = LoadPoints(arguments.folder);
    if (!arguments.file.empty()) {
        return Entry<WriteLineFunction>(points, kWriteLine)(arguments.file.c_str(), arguments.line.c_str());
    }
    const auto examine = Entry<ExamineLibraryFunction>(points, kExamineLibrary);
    const std::string only(arguments.only.begin(), arguments.only.end());
    return examine(arguments.examined.c_str(), arguments.isQuick, only.c_str());
}

std::wstring Options(const Arguments& arguments) {
    const std::wstring only = arguments.only.empty() ? L"" : L" --only \"" + arguments.only + L"\"";
    return (arguments.isQuick ? L" --quick" : L"") + only + L" \"" + arguments.folder.wstring() + L"\"";
}

// The line of the last point is open when the library ended the process.
int ResultOf(unsigned long code) {
    if (code == kExaminedAllHold || code == kExaminedNothing) {
        return kAllHold;
    }
    if (code != kExaminedBroken && code != kNotExamined) {
        std::printf("FAILS: the process ended with code 0x%08lX\n", code);
    }
    return code == kNotExamined ? kNotExamined : kOneFails;
}

// One process a library: what one does to its process harms no other.
int ExamineEach(const Arguments& arguments) {
    int result = kAllHold;
    int examined = 0;
    for (const wchar_t* library : kLibraries) {
        const std::filesystem::path file = LibraryFile(arguments.folder, library);
        if (!std::filesystem::exists(arguments.folder) ||
            !std::filesystem::equivalent(file.parent_path(), arguments.folder)) {
            std::printf("%ls.dll: not in the folder, not examined\n", library);
            continue;
        }
        if (!arguments.examined.empty() && arguments.examined != library) {
            continue;
        }
        std::printf("%s\n", file.u8string().c_str());
        std::fflush(stdout);
        const unsigned long code = RunAgain(L"--examine --library " + std::wstring(library) + Options(arguments));
        examined += code == kExaminedNothing ? 0 : 1;
        result = std::max(result, ResultOf(code));
    }
    std::printf("%s\n", examined == 0        ? "nothing was examined"
                        : result == kAllHold ? "all examined points hold"
                                             : "NOT all examined points hold");
    return examined == 0 ? kNotExamined : result;
}

}  // namespace

int Run(const std::vector<std::wstring>& words) {
    Arguments arguments;
    if (!Read(words, arguments)) {
        std::fputs(kUsage, stderr);
        return kNotExamined;
    }
    try {
        arguments.folder = arguments.folder.empty() ? ProgramFolder() : arguments.folder;
        return arguments.isExaminer || !arguments.file.empty() ? Examine(arguments) : ExamineEach(arguments);
    } catch (const std::exception& exception) {
        std::printf("  %s\n", exception.what());
        std::fflush(stdout);
        return kNotExamined;
    }
}

}  // namespace conformance

int wmain(int count, wchar_t** words) {
    SetConsoleOutputCP(CP_UTF8);
    return conformance::Run(std::vector<std::wstring>(words + 1, words + count));
}
