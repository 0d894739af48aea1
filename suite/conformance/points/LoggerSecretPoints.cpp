#include "LogCapture.h"

namespace conformance {

namespace {

constexpr char kName[] = "conformance";

std::wstring Wide(const std::string& ascii) {
    return {ascii.begin(), ascii.end()};
}

// A secret for as long as it lives.
class Secret {
public:
    explicit Secret(const std::wstring& value) { Require(Logger::SetSecret(kName, value), "SetSecret says false"); }
    ~Secret() { Logger::SetSecret(kName, L""); }
    Secret(const Secret&) = delete;
    Secret& operator=(const Secret&) = delete;
};

// The row as a line and as extra information of an event: the part may be in none of them, and the rest is in both.
void RequireMasked(const std::wstring& row, const std::string& part) {
    const LogFile log;
    LogFile::Write(row + L" kept", kSeverityFailure);
    Logger::OutputOperationLog(1, 2, 3, {{L"note", row + L" kept"}});
    for (const std::string& text : {log.Lines(), log.Events()}) {
        Require(text.find("kept") != std::string::npos, "the rest of the line is gone: " + Shown(text));
        Require(text.find(part) == std::string::npos, "it is shown: " + Shown(text));
    }
}

void ExamineValues(Examination& examination) {
    const std::string utf16(
        "C\0A\0N\0A\0R\0Y\0~\0~\0/\0?\0+\0"
        "3\0\"\0=\0=\0",
        30);
    const struct {
        const char* name;
        std::string written;  // the secret CANARY~~/?+3"==
        std::string part;
    } rows[] = {
        {"as it is", "CANARY~~/?+3\"==", "CANARY"},
        {"URL-encoded", "CANARY%7E%7e%2f%3F%2B3%22%3D%3d", "CANARY"},
        {"URL-encoded twice", "CANARY%257E%257E%252F%253F%252B3%2522%253D%253D", "CANARY"},
        {"escaped for JSON", "CANARY~~\\/?+3\\\"==", "CANARY"},
        {"escaped for JSON by code points", "\\u0043ANARY\\u007e~/?\\u002B3\\u0022==", "ANARY"},
        {"escaped for XML", "CANARY~~/?+3&quot;&#61;&#x3D;", "CANARY"},
        {"as UTF-16 with NULs between", utf16, "A\\x00N"},
        {"as hexadecimal digits", "43414e4152597e7e2f3f2b33223d3d", "414e4152"},
        {"in base64 with 0 bytes before it", "Q0FOQVJZfn4vPyszIj09Pw==", "FOQVJZ"},
        {"in base64 with 1 byte before it", "P0NBTkFSWX5+Lz8rMyI9PT8=", "NBTkFS"},
        {"in base64 with 2 bytes before it", "Pz9DQU5BUll+fi8/KzMiPT0/", "DQU5BU"},
        {"in URL-safe base64", "Pz9DQU5BUll-fi8_KzMiPT0_", "DQU5BU"},
    };
    for (const auto& row : rows) {
        examination.Point(std::string("a secret is masked by its value: ") + row.name, [&row] {
            const Secret secret(L"CANARY~~/?+3\"==");
            RequireMasked(Wide(row.written), row.part);
        });
    }
}

void ExamineNames(Examination& examination) {
    const std::pair<const char*, const wchar_t*> rows[] = {
        {"a query's access token", L"https://h/p?access_token=CANARY&x=1"},
        {"a JSON text's refresh token", L"{\"refreshToken\":\"CANARY\",\"x\":1}"},
        {"a query's authorization code", L"https://h/p?code=CANARY&x=1"},
        {"a JSON text's authorization code", L"{\"authorizationCode\":\"CANARY\",\"x\":1}"},
        {"a header line's refresh token", L"refreshToken: CANARY\r\nx: 1"},
        {"a Cookie header", L"x: 1\r\nCookie: a=CANARY; b=CANARY\r\ny: 1"},
        {"a Set-Cookie header", L"x: 1\r\nSet-Cookie: a=CANARY; Path=/\r\ny: 1"},
        {"an Authorization header", L"x: 1\r\nAuthorization: Basic CANARY\r\ny: 1"},
        {"a bearer value", L"sent Bearer CANARY, x"},
    };
    for (const auto& [name, row] : rows) {
        const std::wstring text = row;
        examination.Point(std::string("a secret is masked by its name: ") + name,
                          [&text] { RequireMasked(text + L"\n", "CANARY"); });
    }
    examination.Point("an ordinary line arrives as it is", [] {
        const LogFile log;
        LogFile::Write(L"refresh AT error statusCode: 401, code=404, exit code: 5");
        const std::string text = log.Lines();
        Require(text.find("refresh AT error statusCode: 401, code=404, exit code: 5") != std::string::npos,
                Shown(text));
    });
}

void ExamineSetSecret(Examination& examination) {
    examination.Point("SetSecret a second time under one name replaces the value", [] {
        const Secret former(L"former secret");
        const Secret current(L"current secret");
        const LogFile log;
        LogFile::Write(L"<former secret> <current secret>");
        const std::string text = log.Lines();
        Require(text.find("<former secret>") != std::string::npos, "the former one is masked still");
        Require(text.find("<current secret>") == std::string::npos, "the new one is shown");
    });
    examination.Point("SetSecret with an empty value removes it", [] {
        { const Secret secret(L"removed secret"); }
        const LogFile log;
        LogFile::Write(L"<removed secret>");
        Require(log.Lines().find("<removed secret>") != std::string::npos, "it is masked still");
    });
    examination.Point("SetSecret refuses a value of seven bytes and takes one of eight", [] {
        Require(!Logger::SetSecret(kName, L"1234567"), "it takes seven bytes");
        const Secret secret(L"12345678");
    });
    examination.Point("SetSecret refuses the 33rd value, and values of more than 64 KiB together", [] {
        Require(!Logger::SetSecret(kName, std::wstring(64 * 1024 + 1, L'x')), "it takes more than 64 KiB");
        int taken = 0;
        for (int i = 0; i < 40; ++i) {
            taken += Logger::SetSecret(kName + std::to_string(i), L"secret " + std::to_wstring(i)) ? 1 : 0;
        }
        for (int i = 0; i < 40; ++i) {
            Logger::SetSecret(kName + std::to_string(i), L"");
        }
        RequireEqual(taken, 32, "the number of values that it takes");
    });
}

}  // namespace

void ExamineLoggerSecrets(Examination& examination) {
    ExamineValues(examination);
    ExamineNames(examination);
    ExamineSetSecret(examination);
}

}  // namespace conformance
