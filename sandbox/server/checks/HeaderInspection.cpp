#include "checks/HeaderInspection.h"

#include <algorithm>
#include <iterator>

#include "checks/TraceId.h"
#include "checks/WireConstants.h"

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

// What HTTP libraries add to any request, and the value that only the client gives; none when it is empty.
constexpr FixedField kLibraryFields[] = {
    {"Host", kAccountHost}, {"User-Agent", kUserAgent}, {"Accept", ""}, {"Accept-Encoding", ""}, {"Connection", ""},
};

bool IsOfLibrary(const HeaderField& field) {
    return std::any_of(std::begin(kLibraryFields), std::end(kLibraryFields), [&](const FixedField& known) {
        return SameHeaderName(field.name, known.name) && (known.value.empty() || field.value != known.value);
    });
}

bool IsHexDigits(std::string_view text) {
    constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";
    return text.find_first_not_of(kHexDigits) == std::string_view::npos;
}

// The well-formed sequences of UTF-8 (Unicode, table 3-7): first and last lead byte, first and last second byte,
// length. Bytes after the second are 80 to BF.
struct Utf8Sequences {
    unsigned char firstLead, lastLead;
    unsigned char firstSecond, lastSecond;
    std::size_t length;
};
constexpr Utf8Sequences kUtf8Sequences[] = {
    {0x00, 0x7F, 0x00, 0x00, 1}, {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

bool BeginsWith(std::string_view text, const Utf8Sequences& row) {
    const auto within = [&](std::size_t index, unsigned char first, unsigned char last) {
        const auto byte = static_cast<unsigned char>(text[index]);
        return byte >= first && byte <= last;
    };
    return text.size() >= row.length && within(0, row.firstLead, row.lastLead) &&
           (row.length < 2 || within(1, row.firstSecond, row.lastSecond)) &&
           (row.length < 3 || within(2, 0x80, 0xBF)) && (row.length < 4 || within(3, 0x80, 0xBF));
}

// The length of UTF-8 text in UTF-16 units, in which the client counts; nothing when it is not well-formed.
std::optional<std::size_t> Utf16Units(std::string_view text) {
    std::size_t units = 0;
    while (!text.empty()) {
        const auto* row = std::find_if(std::begin(kUtf8Sequences), std::end(kUtf8Sequences),
                                       [&](const Utf8Sequences& known) { return BeginsWith(text, known); });
        if (row == std::end(kUtf8Sequences)) {
            return std::nullopt;
        }
        text.remove_prefix(row->length);
        units += row->length == 4 ? 2U : 1U;
    }
    return units;
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
    RefuseOtherFields();
}

void HeaderInspection::Expect(std::string_view name, std::string_view value) {
    const auto found = TakeSingle(name);
    if (found && *found != value) {
        Refuse(name, "is not \"" + std::string(value) + "\"");
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

void HeaderInspection::RefuseOtherFields() {
    for (const auto& field : m_head.Fields()) {
        if (!IsOfLibrary(field) && std::none_of(m_asked.begin(), m_asked.end(), [&](const std::string& asked) {
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
    const auto units = Utf16Units(*value);
    if (!units) {
        Refuse(kName, "is not UTF-8");
    } else if (*units == 0) {
        Refuse(kName, "is empty");
    } else if (*units > static_cast<std::size_t>(kDeviceNameUnits)) {
        Refuse(kName, "has more than 250 UTF-16 units");
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
