// Texts, bytes and files that the service takes apart.

#include <json/json.h>
#include <sys/mman.h>

#include <algorithm>

#include "FuzzTarget.h"
#include "LegacyItem.h"
#include "ServiceFixture.h"
#include "core/Base64.h"
#include "core/JsonText.h"
#include "core/TextEncoding.h"
#include "crypto/Base64.h"
#include "request/DeviceIdentity.h"

namespace {

using userauth::kAnsiCodePage;
using userauth::kUtf8CodePage;

void Base64(FuzzInput input) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(input.text.data());
    const std::string standard = userauth::EncodeStandardBase64(input.text);
    const std::string url = userauth::Base64UrlEncode(bytes, static_cast<std::int32_t>(input.text.size()));
    Require(standard == sandbox::Base64Encoded(input.text), "the standard codec encodes otherwise than its peer");
    Require(userauth::Base64Decode(standard) == input.text, "the standard text does not decode back");
    Require(sandbox::Base64UrlDecoded(url) == input.text, "the URL-safe text does not decode back");
    // The input as something to decode.
    const std::string decoded = userauth::Base64Decode(input.text);
    const std::string again = userauth::EncodeStandardBase64(decoded);
    const auto peer = sandbox::Base64Decoded(input.text);
    Require(input.text.compare(0, decoded.size() / 3 * 4, again, 0, decoded.size() / 3 * 4) == 0, "not what was read");
    Require(!peer || (*peer == decoded && again == input.text), "a canonical text does not encode back");
}

std::string PercentDecoded(const std::wstring& text) {
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const wchar_t c = text[at];
        Require(c < 0x80 && (std::isalnum(c) != 0 || std::wcschr(L"-_.~+%", c) != nullptr), "not URL-encoded");
        bytes += static_cast<char>(c == L'%' ? std::stoi(text.substr(at + 1, 2), nullptr, 16) : c == L'+' ? L' ' : c);
        at += c == L'%' ? 2 : 0;
    }
    return bytes;
}

void UrlEncoding(FuzzInput input) {
    const std::wstring wide = userauth::MultiByteToWide(input.text, kUtf8CodePage);
    Require(PercentDecoded(userauth::UrlEncode(wide)) == userauth::WideToMultiByte(wide, kAnsiCodePage),
            "an encoded text does not decode back");
}

void Conversions(FuzzInput input) {
    const std::wstring ansi = userauth::MultiByteToWide(input.text, kAnsiCodePage);
    const std::wstring wide = userauth::MultiByteToWide(input.text, kUtf8CodePage);
    const std::string valid = userauth::WideToMultiByte(wide, kUtf8CodePage);
    Require(userauth::WideToMultiByte(ansi, kAnsiCodePage) == input.text, "a text does not convert back");
    Require(valid == input.text || wide.find(L'\uFFFD') != std::wstring::npos, "a valid text does not convert back");
    Require(userauth::MultiByteToWide(valid, kUtf8CodePage) == wide, "a converted text does not convert back");
}

bool HasEndlessDigits(const std::string& text) {
    std::size_t run = 0;
    return std::any_of(text.begin(), text.end(),
                       [&run](char c) { return (run = c >= '0' && c <= '9' ? run + 1 : 0) > 1024; });
}

void RequireShortNumbers(const Json::Value& value, const std::string& text) {
    const auto start = static_cast<std::size_t>(value.getOffsetStart());
    const std::string own = text.substr(start, static_cast<std::size_t>(value.getOffsetLimit()) - start);
    Require(!value.isNumeric() || !HasEndlessDigits(own), "a number of endless digits was converted");
    for (const Json::Value& child : value) {
        RequireShortNumbers(child, text);
    }
}

bool ReadByLibrary(const std::string& text, Json::Value& value) try {
    return Json::Reader().parse(text, value, true);
} catch (const std::exception&) {
    return false;
}

// Two "#" are more digits than the service converts.
void Document(FuzzInput input) {
    const std::string text = Stretched(input.text, '#', std::string(600, '7'));
    Json::Value value;
    Json::Value expected;
    const bool done = userauth::ParseDocument(text, value);
    const bool read = ReadByLibrary(text, expected);
    Require(done ? read && value == expected : value.isNull(), "the library reads another document");
    Require(done || !read || HasEndlessDigits(text), "the library reads what was refused");
    if (done) {
        RequireShortNumbers(value, text);
    }
    userauth::ParseLeniently(text);
}

void Smbios(FuzzInput input) {
    const std::vector<std::uint8_t> bytes(input.text.begin(), input.text.end());  // on the heap, whatever the size
    const std::wstring name = userauth::DeviceNameHeader(userauth::ReadSmbiosTable(bytes.data(), bytes.size()));
    Require(!name.empty() && name.size() <= 250, "a device name of a wrong length");
    Require(std::none_of(name.begin(), name.end(), [](wchar_t c) { return c < L' '; }),
            "a name with control characters");
}

// In memory: a disk writes a file that was emptied and filled again at once.
std::filesystem::path SdkConfigurationFile() {
    const std::filesystem::path path = ProgramFolder() / "ZMSCoreConfig.json";
    std::filesystem::remove(path);
    std::filesystem::create_symlink("/proc/self/fd/" + std::to_string(memfd_create("configuration", 0)), path);
    return path;
}

void SdkConfiguration(FuzzInput input) {
    static const std::filesystem::path path = SdkConfigurationFile();
    Json::Value before;
    Json::Value after;
    WriteFile(path, input.text);
    UserAuthServiceAccess::UpdateAppIdConfig(Singleton());
    const std::string text = ReadFile(path);
    if (!ReadByLibrary(input.text, before) || !(before.isObject() || before.isNull())) {
        Require(text == input.text, "a file was changed that is no configuration");
        return;
    }
    before["client_id"] = "104862915";
    // The writer has its own way with text that is not Unicode, and cuts a name at a zero byte.
    const bool ascii = std::all_of(input.text.begin(), input.text.end(), [](char c) { return c > 0; }) &&
                       input.text.find("\\u") == std::string::npos;
    Require(ReadByLibrary(text, after) && after["client_id"] == "104862915", "the application id was not set");
    Require(!ascii || after == before, "another member was changed");
}

// An item of any text, or one that is protected as it should be.
void LegacyItems(FuzzInput input) {
    const bool isProtected = input.Choice(2) == 0;
    const std::size_t length = std::min(input.text.find('\0'), input.text.size());
    UserAuthService& service = Singleton();
    service.Clear();
    Recording() = SuiteRecording();
    Recording().legacyItem = Wide(isProtected ? LegacyItem(input.text) : input.text);
    Recording().replies = {{401, "", {}}};
    Require(service.GetOldVersionUserId().empty(), "a user id from nowhere");
    const std::size_t taken = service.GetCurrentRT().size();
    Require(!isProtected || (taken > 0) == (length > kLegacyTimeStamp.size()), "the token was not read, or was none");
    Require(taken <= input.text.size(), "the token is longer than its item");
    Require(Recording().Lines("http Request").size() == (taken > 0 ? 1 : 0), "a request without a token, or none");
}

const FuzzTarget kTargets[] = {
    {"text-base64", Base64},       {"text-url", UrlEncoding}, {"text-conversion", Conversions},
    {"json-document", Document},   {"smbios", Smbios},        {"config-sdk", SdkConfiguration},
    {"config-legacy", LegacyItems}};

}  // namespace
