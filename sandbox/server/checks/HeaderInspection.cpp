#include "checks/HeaderInspection.h"

#include <windows.h>

#include <algorithm>
#include <iterator>

#include "checks/TraceId.h"
#include "checks/WireConstants.h"
#include "http/Exchange.h"

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

// Fields that HTTP libraries add by themselves, each with the value that shows that the client set it. Empty: no value
// shows that.
constexpr FixedField kLibraryFields[] = {
    {"Host", kAccountHost}, {"User-Agent", kUserAgent}, {"Accept", ""}, {"Accept-Encoding", ""}, {"Connection", ""},
};

bool IsOfLibrary(const HeaderField& field) {
    return std::any_of(std::begin(kLibraryFields), std::end(kLibraryFields), [&](const FixedField& known) {
        return SameHeaderName(field.name, known.name) && (known.value.empty() || field.value != known.value);
    });
}

bool ConsistsOf(std::string_view text, std::string_view characters) {
    return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";
constexpr std::string_view kCapitals = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";

// The length of UTF-8 text in UTF-16 units, in which the client counts; 0 when it is empty or not UTF-8.
int Utf16Units(const std::string& text) {
    return MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), static_cast<int>(text.size()), nullptr, 0);
}

void Require(bool good, std::string_view name, const std::string& otherwise) {
    if (!good) {
        throw Refusal(Wrong::kHeader, std::string(name) + " " + otherwise);
    }
}

}  // namespace

void HeaderInspection::ExpectCommonFields(unsigned traceCommand) {
    for (const auto& field : kFixedFields) {
        Expect(field.name, field.value);
    }
    const auto traceFault = TraceIdFault(ExpectPresent("x-zv-trace-id"), traceCommand, UnixTime());
    Require(traceFault.empty(), "x-zv-trace-id", traceFault);
    ExpectDeviceId("x-zv-device-id");
    Require(ExpectPresent("x-zv-deviceUUID") == m_head.OnlyValue("x-zv-device-id"), "x-zv-deviceUUID",
            "differs from x-zv-device-id");
    const int units = Utf16Units(ExpectPresent("x-zv-device-name"));
    Require(units > 0, "x-zv-device-name", "is empty or not UTF-8");
    Require(units <= kDeviceNameUnits, "x-zv-device-name", "has more than 250 UTF-16 units");
    // Empty before the client knows its country.
    const auto country = ExpectPresent("x-zv-country-code");
    Require(country.empty() || (country.size() == 2 && ConsistsOf(country, kCapitals)), "x-zv-country-code",
            "is not a two-letter country code");
    Require(ConsistsOf(ExpectPresent("x-zv-client-mode"), kDigits), "x-zv-client-mode", "is not a number");
}

void HeaderInspection::ExpectAuthorizedFields(unsigned traceCommand, std::size_t bodySize) {
    ExpectCommonFields(traceCommand);
    ExpectPresent("Authorization");
    Expect("Content-Type", kJsonContentType);
    ExpectContentLength(bodySize);
    RefuseOtherFields();
}

void HeaderInspection::Expect(std::string_view name, std::string_view value) {
    Require(ExpectPresent(name) == value, name, "is not \"" + std::string(value) + "\"");
}

std::string HeaderInspection::ExpectPresent(std::string_view name) {
    Allow(name);
    const auto values = m_head.Values(name);
    Require(!values.empty(), name, "is missing");
    Require(values.size() == 1, name, "is there more than once");
    return values.front();
}

void HeaderInspection::ExpectDeviceId(std::string_view name) {
    const auto id = ExpectPresent(name);
    Require(id.size() == static_cast<std::size_t>(kDeviceIdDigits) && ConsistsOf(id, kHexDigits), name,
            "has not 32 hexadecimal digits");
}

void HeaderInspection::ExpectContentLength(std::size_t bodySize) {
    Expect("Content-Length", std::to_string(bodySize));
}

void HeaderInspection::ExpectNoBody() const {
    for (const auto* name : {"Content-Length", "Transfer-Encoding"}) {
        Require(m_head.Values(name).empty(), name, "does not belong to a request without a body");
    }
}

void HeaderInspection::RefuseOtherFields() const {
    for (const auto& field : m_head.Fields()) {
        const bool asked = std::any_of(m_asked.begin(), m_asked.end(),
                                       [&](const std::string& name) { return SameHeaderName(name, field.name); });
        Require(asked || IsOfLibrary(field), field.name, "does not belong to this request");
    }
}

}  // namespace sandbox
