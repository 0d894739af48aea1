// The parameter store's configuration and the logger's masks.

#include <algorithm>

#include "FuzzTarget.h"
#include "Utf8Text.h"
#include "logger/LineText.h"
#include "logger/MaskSecrets.h"
#include "logger/OperationLine.h"
#include "logger/SecretValues.h"
#include "paramstore/ClientConfiguration.h"

namespace {

bool IsPlain(const std::wstring& text) {
    return std::all_of(text.begin(), text.end(), [](wchar_t c) { return c >= L' ' && c != 0x7F; });
}

bool IsUrlOrEmpty(const std::wstring& text) {
    return text.empty() || (text.find(L"://") != std::wstring::npos && text.back() != L'/' && IsPlain(text));
}

void Store(FuzzInput input) {
    suite::ConfigurationText text = suite::ConfigurationText::InMemory(input.Text());
    std::string error;
    const auto read = suite::ReadClientConfiguration(text, {}, error);
    Require(read.has_value() == error.empty(), "an error without a text, or a text without an error");
    Require(IsPlain(suite::WideFromUtf8(error)), "an error text of more than one line");
    if (read) {
        Require(IsUrlOrEmpty(read->portalUrl) && IsUrlOrEmpty(read->basicServiceUrl), "a base URL that is none");
        Require(IsPlain(read->countryCode) && IsPlain(read->stateFolder), "a setting with a control character");
        for (const auto& [number, item] : read->legacyItems) {
            Require(number >= 0 && IsPlain(item), "a stored item that is none");
        }
    }
}

const std::string kCanary = "CanaryOf24LettersAndMore";

// As a log line is masked on its way to the file: by value, then by name.
std::string Masked(const std::string& text, const suite::SecretValues* secrets) {
    return suite::EscapeForLog(suite::MaskSecrets(suite::LogTextOf(suite::WideFromUtf8(text), secrets)));
}

void RequireNoCanary(const std::string& text) { Require(text.find(kCanary) == std::string::npos, "a canary got out"); }

// Any text around a secret in each way to name one.
void Names(FuzzInput input) {
    static const std::string kForms[] = {"access_token=",
                                         "refreshToken: ",
                                         "\"accessToken\":\"",
                                         "Authorization: Bearer ",
                                         "Bearer ",
                                         "Cookie: siteID=1; session=",
                                         "<access_token>",
                                         "{\\\"id_token\\\":\\\"",
                                         "?code=",
                                         "%22token%22%3A%22",
                                         "{\"name\":\"access_token\",\"value\":\"",
                                         "set-cookie: a="};
    const std::string& form = kForms[input.Choice(std::size(kForms))];
    const std::vector<std::string> around = input.Parts();
    const std::string line = around.front() + "\n" + form + kCanary + (around.size() > 1 ? around[1] : "");
    RequireNoCanary(Masked(line, nullptr));
}

std::string Percent(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        escaped += {'%', "0123456789abcdef"[(c >> 4) & 0x0F], "0123456789ABCDEF"[c & 0x0F]};
    }
    return escaped;
}

// Any text around a known secret in each form in which it may stand.
void Values(FuzzInput input) {
    static const suite::SecretValues secrets({{"at", kCanary}, {"rt", "AnotherSecret%2B\"with\\escapes"}});
    static const std::string kForms[] = {kCanary, Percent(kCanary), Percent(Percent(kCanary))};
    const std::string& form = kForms[input.Choice(std::size(kForms))];
    const std::vector<std::string> around = input.Parts();
    const std::string line = around.front() + form + (around.size() > 1 ? around[1] : "");
    const std::string masked = Masked(line, &secrets);
    RequireNoCanary(masked);
    Require(masked.find(form) == std::string::npos, "a canary got out encoded");
    const std::wstring wide = suite::WideFromUtf8(line);
    RequireNoCanary(suite::OperationLine(1, 2, 3, {{wide, wide}}, &secrets));
}

const FuzzTarget kTargets[] = {{"config-store", Store}, {"mask-names", Names}, {"mask-values", Values}};

}  // namespace
