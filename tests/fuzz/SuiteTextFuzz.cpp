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
    suite::ConfigurationText text = suite::ConfigurationText::InMemory(input.text);
    std::string error;
    const auto read = suite::ReadClientConfiguration(text, {}, error);
    Require(read.has_value() == error.empty(), "an error without a text, or a text without an error");
    Require(IsPlain(suite::WideFromUtf8(error)), "an error text of more than one line");
    Require(!read || (IsUrlOrEmpty(read->portalUrl) && IsUrlOrEmpty(read->basicServiceUrl)), "a base URL that is none");
    Require(!read || (IsPlain(read->countryCode) && IsPlain(read->stateFolder)), "a setting with a control character");
}

const std::string kCanary = "CanaryOf24LettersAndMore";

// The line of a text with the secret between its parts, as it goes to the file: masked by value, then by name.
std::string MaskedLine(const FuzzInput& input, const std::string& secret, const suite::SecretValues* secrets) {
    const std::vector<std::string> around = FuzzInput{Expanded(input.text, kCanary, "-")}.Parts();
    const std::wstring line = suite::WideFromUtf8(around[0] + secret + around[1]);
    const std::string masked = suite::EscapeForLog(suite::MaskSecrets(suite::LogTextOf(line, secrets)));
    Require(masked.find(kCanary) == std::string::npos, "a canary got out");
    if (secrets != nullptr) {
        const std::string event = suite::OperationLine(1, 2, 3, {{line, line}}, secrets);
        Require(event.find(kCanary) == std::string::npos, "a canary got out with an event");
    }
    return masked;
}

// Any text around a secret, in each way to name one.
void Names(FuzzInput input) {
    static const std::string kNames[] = {
        "access_token=", "refreshToken: ",  "\"accessToken\":\"", "Authorization: Bearer ",
        "Bearer ",       "Cookie: a=1; s=", "<access_token>",     "{\\\"id_token\\\":\\\"",
        "?code=",        "set-cookie: a=",  "%22token%22%3A%22",  "{\"name\":\"access_token\",\"value\":\"",
    };
    const std::string& name = kNames[input.Choice(std::size(kNames))];
    MaskedLine(input, "\n" + name + kCanary, nullptr);
}

// Each character in hexadecimal, between the two.
std::string Hex(const std::string& text, const std::string& before, const std::string& behind = {}) {
    std::string escaped;
    for (const char c : text) {
        escaped += before + "0123456789ABCDEF"[(c >> 4) & 0x0F] + "0123456789ABCDEF"[c & 0x0F] + behind;
    }
    return escaped;
}

// Any text around a known secret, in each form in which it may stand.
void Values(FuzzInput input) {
    static const suite::SecretValues secrets({{"at", kCanary}, {"rt", "AnotherSecret%2B\"with\\escapes"}});
    // The last two are base64, the second behind one more byte.
    static const std::string kForms[] = {kCanary,
                                         Hex(kCanary, "%"),
                                         Hex(Hex(kCanary, "%"), "%"),
                                         Hex(kCanary, ""),
                                         Hex(kCanary, "\\u00"),
                                         Hex(kCanary, "&#x", ";"),
                                         "Q2FuYXJ5T2YyNExldHRlcnNBbmRNb3Jl",
                                         "NhbmFyeU9mMjRMZXR0ZXJzQW5kTW9yZ"};
    const std::string& form = kForms[input.Choice(std::size(kForms))];
    Require(MaskedLine(input, form, &secrets).find(form) == std::string::npos, "a canary got out encoded");
}

const FuzzTarget kTargets[] = {{"config-store", Store}, {"mask-names", Names}, {"mask-values", Values}};

}  // namespace
