#include <HttpLib.h>

#include <cstdio>
#include <string>

// A client in a process of its own: https-probe.exe [URL AUTHORITY-FILE]... asks the servers one after the other and
// prints a line for each, the code and the cause of a failure. "-" for the file means none.
int wmain(int count, wchar_t** arguments) {
    for (int i = 1; i + 1 < count; i += 2) {
        const std::wstring file = arguments[i + 1];
        std::wstring cause;
        BasicHttpLibStrategy strategy;
        strategy.SetUrl(arguments[i]);
        strategy.SetCertPath(file == L"-" ? L"" : file);
        strategy.SetErrorLogFunction([&cause](const std::wstring& text) { cause += L" " + text; });
        std::string response;
        const int code = CurlHttpLibContext(&strategy).Request(response, 20);
        std::printf("%d%s\n", code, std::string(cause.begin(), cause.end()).c_str());
    }
    return 0;
}
