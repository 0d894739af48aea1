#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "ChildProcess.h"
#include "TextFile.h"

namespace {

// The promises that the program says are broken, in a library of that folder.
std::set<std::string> BrokenIn(const std::filesystem::path& folder, const std::wstring& options) {
    ChildProcess program(L"suite-conformance.exe", options + L" \"" + folder.wstring() + L"\"");
    const int code = program.Finish();
    std::set<std::string> broken;
    std::istringstream lines(program.m_output);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t verdict = line.find(" ... FAILS: ");
        if (verdict != std::string::npos) {
            broken.insert(line.substr(2, verdict - 2));
        }
    }
    EXPECT_EQ(code, broken.empty() ? 0 : 1) << program.m_output << program.m_error;
    EXPECT_NE(program.m_output.find(broken.empty() ? "\nall examined" : "\nNOT all examined"), std::string::npos);
    return broken;
}

TEST(Conformance, NamesExactlyWhatASpoiltLibraryBreaks) {
    const struct {
        const char* name;
        const wchar_t* options;
        std::set<std::string> broken;
    } rows[] = {
        {"hub that stops at an exception",
         L"--library EventAdmin --only \"a listener that\"",
         {"a listener that throws does not stop the next"}},
        {"logger that masks no name",
         L"--library Logger --only \"secret is masked by\"",
         {"a secret is masked by its name: a JSON text's authorization code",
          "a secret is masked by its name: a JSON text's refresh token",
          "a secret is masked by its name: a Cookie header", "a secret is masked by its name: a Set-Cookie header",
          "a secret is masked by its name: a bearer value",
          "a secret is masked by its name: a header line's refresh token",
          "a secret is masked by its name: a query's access token",
          "a secret is masked by its name: a query's authorization code",
          "a secret is masked by its name: an Authorization header"}},
        {"HTTP library that follows every redirect",
         L"--library HttpLib --only \"a redirect: \"",
         {"a redirect: 302 turns a POST into a GET", "a redirect: a body to another host",
          "a redirect: a relative one, with blanks", "a redirect: from https to http", "a redirect: to a file",
          "a redirect: to another scheme",
          "a redirect: to another host no header goes along that says something of the user"}},
        {"store that ends the process with 0",
         L"--library ParamStore --only \"until configured\"",
         {"base URLs and legacy items are empty until configured; the data folder is not"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(BrokenIn(ProgramFolder().parent_path() / "tests" / "spoilt", row.options), row.broken);
        EXPECT_EQ(BrokenIn(ProgramFolder(), row.options), std::set<std::string>());  // control step: ours
    }
}

TEST(Conformance, SaysWhatIsWrongWithItsArguments) {
    for (const wchar_t* arguments :
         {L"--library Nothing", L"--only", L"C:\\no-such-folder", L"a b", L"--only no-such-point"}) {
        ChildProcess program(L"suite-conformance.exe", arguments);
        EXPECT_EQ(program.Finish(), 2) << arguments;
        EXPECT_FALSE((program.m_output + program.m_error).empty()) << arguments;
    }
}

}  // namespace
