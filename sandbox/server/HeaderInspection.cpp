#include "HeaderInspection.h"

#include <algorithm>
#include <iterator>

#include "TraceId.h"
#include "WireConstants.h"

namespace sandbox {
namespace {

struct FixedField {
    std::string_view name;
    std::string_view value;
};

constexpr FixedField kFixedFields[] = {
    {"User-Agent", kUserAgent},           {"x-zv-source-agent", kProductTag},
    {"Accept-Language", kAcceptLanguage}, {"x-zv-device-type", kDeviceType},
    {"x-zv-terminal", kTerminal},         {"x-zv-auth-version", kAuthVersion},
    {"x-zv-os-brand", kOsBrand},          {"Host", kAccountHost},
};

// What the client sends beside the prefixed fields, each with some requests only.
constexpr std::string_view kOtherPlatformFields[] = {"Authorization", "Cookie",       "userId",  "version", "AuthType",
                                                     "deviceId",      "refreshToken", "unionID", "appId"};

bool IsPlatformField(std::string_view name) {
    return SameHeaderName(name.substr(0, kPlatformHeaderPrefix.size()), kPlatformHeaderPrefix) ||
           std::any_of(std::begin(kOtherPlatformFields), std::end(kOtherPlatformFields),
                       [&](std::string_view other) { return SameHeaderName(name, other); });
}

bool IsHexDigits(std::string_view text) {
    constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";
    return text.find_first_not_of(kHexDigits) == std::string_view::npos;
}

std::size_t Utf8SequenceLength(unsigned char lead) {
    if (lead < 0x80) {
        return 1;
    }
    if (lead >= 0xC2 && lead < 0xE0) {
        return 2;
    }
    if (lead >= 0xE0 && lead < 0xF0) {
        return 3;
    }
    return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

// The number of characters of UTF-8 text; nothing when its sequences are broken.
std::optional<std::size_t> Utf8Characters(std::string_view text) {
    std::size_t characters = 0;
    while (!text.empty()) {
        const auto length = Utf8SequenceLength(static_cast<unsigned char>(text.front()));
        if (length == 0 || length > text.size() ||
            !std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(length),
                         [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; })) {
            return std::nullopt;
        }
        text.remove_prefix(length);
        ++characters;
    }
    return characters;
}

}  // namespace

void HeaderInspection::ExpectCommonFields(unsigned traceCommand) {
    for (const auto& field : kFixedFields) {
        Expect(field.name, field.value);
    }
    ExpectTraceId(traceCommand);
    ExpectDeviceIds();
    ExpectDeviceName();
    ExpectCountryCode();
    ExpectClientMode();
}

void HeaderInspection::ExpectAuthorizedFields(unsigned traceCommand, std::size_t bodySize) {
    ExpectCommonFields(traceCommand);
    ExpectPresent("Authorization");
    Expect("Content-Type", kJsonContentType);
    ExpectContentLength(bodySize);
    RefuseOtherPlatformFields();
}

void HeaderInspection::Expect(std::string_view name, std::string_view value) {
    const auto found = TakeSingle(name);
    if (found && *found != value) {
        Refuse(name, "is \"" + *found + "\" instead of \"" + std::string(value) + "\"");
    }
}

void HeaderInspection::ExpectPresent(std::string_view name) {
    TakeSingle(name);
}

void HeaderInspection::ExpectDeviceId(std::string_view name) {
    const auto id = TakeSingle(name);
    if (id && (id->size() != static_cast<std::size_t>(kDeviceIdDigits) || !IsHexDigits(*id))) {
        Refuse(name, "has not 32 hexadecimal digits");
    }
}

void HeaderInspection::RefuseOtherPlatformFields() {
    for (const auto& field : m_head.Fields()) {
        if (IsPlatformField(field.name) && std::none_of(m_asked.begin(), m_asked.end(), [&](const std::string& asked) {
                return SameHeaderName(asked, field.name);
            })) {
            Refuse(field.name, "does not belong to this request");
        }
    }
}

void HeaderInspection::ExpectContentLength(std::size_t bodySize) {
    Expect("Content-Length", std::to_string(bodySize));
}

void HeaderInspection::ExpectNoBody() {
    for (const auto* name : {"Content-Length", "Transfer-Encoding"}) {
        if (!m_head.Values(name).empty()) {
            Refuse(name, "does not belong to a request without a body");
        }
    }
}

std::optional<std::string> HeaderInspection::TakeSingle(std::string_view name) {
    m_asked.emplace_back(name);
    auto values = m_head.Values(name);
    if (values.size() == 1) {
        return std::move(values.front());
    }
    Refuse(name, values.empty() ? "is missing" : "is there more than once");
    return std::nullopt;
}

void HeaderInspection::ExpectTraceId(unsigned command) {
    if (const auto traceId = TakeSingle("x-zv-trace-id")) {
        const auto fault = TraceIdFault(*traceId, command, UnixTime());
        if (!fault.empty()) {
            Refuse("x-zv-trace-id", fault);
        }
    }
}

void HeaderInspection::ExpectDeviceIds() {
    ExpectDeviceId("x-zv-device-id");
    const auto uuid = TakeSingle("x-zv-deviceUUID");
    if (uuid && *uuid != m_head.OnlyValue("x-zv-device-id")) {
        Refuse("x-zv-deviceUUID", "differs from x-zv-device-id");
    }
}

void HeaderInspection::ExpectDeviceName() {
    constexpr std::string_view kName = "x-zv-device-name";
    const auto value = TakeSingle(kName);
    if (!value) {
        return;
    }
    const auto characters = Utf8Characters(*value);
    if (!characters) {
        Refuse(kName, "is not UTF-8");
    } else if (*characters == 0) {
        Refuse(kName, "is empty");
    } else if (*characters > static_cast<std::size_t>(kDeviceNameCharacters)) {
        Refuse(kName, "has more than 250 characters");
    }
}

// Two capital letters, or nothing before the client knows its country.
void HeaderInspection::ExpectCountryCode() {
    constexpr std::string_view kName = "x-zv-country-code";
    const auto value = TakeSingle(kName);
    const auto capital = [](char letter) { return letter >= 'A' && letter <= 'Z'; };
    if (value && !value->empty() && (value->size() != 2 || !std::all_of(value->begin(), value->end(), capital))) {
        Refuse(kName, "is not a two-letter country code");
    }
}

void HeaderInspection::ExpectClientMode() {
    constexpr std::string_view kName = "x-zv-client-mode";
    const auto value = TakeSingle(kName);
    const auto digit = [](char character) { return character >= '0' && character <= '9'; };
    if (value && (value->empty() || !std::all_of(value->begin(), value->end(), digit))) {
        Refuse(kName, "is not a number");
    }
}

void HeaderInspection::Refuse(std::string_view name, std::string_view reason) {
    if (m_reason.empty()) {
        m_reason = std::string(name) + " " + std::string(reason);
    }
}

}  // namespace sandbox
