// Texts and bytes that the service takes apart by itself.

#include <json/json.h>

#include <algorithm>
#include <vector>

#include "FuzzTarget.h"
#include "core/Base64.h"
#include "core/JsonText.h"
#include "core/TextEncoding.h"
#include "crypto/Base64.h"
#include "request/DeviceIdentity.h"

namespace {

using userauth::kAnsiCodePage;
using userauth::kUtf8CodePage;

void Base64(FuzzInput input) {
    const std::string& text = input.Text();
    const std::string standard = userauth::EncodeStandardBase64(text);
    std::string url = userauth::Base64UrlEncode(reinterpret_cast<const unsigned char*>(text.data()),
                                                static_cast<std::int32_t>(text.size()));
    Require(standard == sandbox::Base64Encoded(text), "the standard codec encodes otherwise than its peer");
    Require(sandbox::Base64UrlDecoded(url) == text, "the URL-safe text does not decode back");
    Require(userauth::Base64Decode(standard) == text, "the standard text does not decode back");
    std::replace(url.begin(), url.end(), '-', '+');
    std::replace(url.begin(), url.end(), '_', '/');
    Require(url == standard, "the two codecs differ in more than their alphabets");
    // The text as something to decode: what it decodes to, it is read up to.
    const std::string decoded = userauth::Base64Decode(text);
    const std::string canonical = userauth::EncodeStandardBase64(decoded);
    Require(userauth::Base64Decode(canonical) == decoded, "a decoded text does not encode back");
    const std::size_t whole = decoded.size() / 3 * 4;
    Require(text.compare(0, whole, canonical, 0, whole) == 0, "a decoded text is not what was read");
    const auto peer = sandbox::Base64Decoded(text);
    Require(!peer || *peer == decoded, "the codec decodes otherwise than its peer");
}

std::string PercentDecoded(const std::wstring& text) {
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto c = static_cast<char>(text[at]);
        Require(text[at] < 0x80 && (std::isalnum(c) != 0 || std::string("-_.~+%").find(c) != std::string::npos),
                "an encoded text has a character that it must not have");
        bytes += c == '%' ? static_cast<char>(std::stoi(text.substr(at + 1, 2), nullptr, 16)) : c == '+' ? ' ' : c;
        at += c == '%' ? 2 : 0;
    }
    return bytes;
}

void UrlEncoding(FuzzInput input) {
    const std::wstring wide = userauth::MultiByteToWide(input.Text(), kUtf8CodePage);
    Require(PercentDecoded(userauth::UrlEncode(wide)) == userauth::WideToMultiByte(wide, kAnsiCodePage),
            "an encoded text does not decode back");
}

void Conversions(FuzzInput input) {
    const std::string& text = input.Text();
    std::wstring wide = L"former";
    Require(userauth::MultiByteToWide(text, wide, kAnsiCodePage) != text.empty(), "no text, or no conversion");
    Require(text.empty() ? wide == L"former" : wide.size() == text.size(), "not one character a byte");
    Require(text.empty() || userauth::WideToMultiByte(wide, kAnsiCodePage) == text, "a text does not convert back");
    wide = userauth::MultiByteToWide(text, kUtf8CodePage);
    const std::string valid = userauth::WideToMultiByte(wide, kUtf8CodePage);
    Require(valid == text || wide.find(L'\uFFFD') != std::wstring::npos, "a valid text does not convert back");
    Require(userauth::MultiByteToWide(valid, kUtf8CodePage) == wide, "a converted text does not convert back");
}

std::size_t LongestDigitRun(const std::string& text) {
    std::size_t run = 0;
    std::size_t longest = 0;
    for (const char c : text) {
        run = c >= '0' && c <= '9' ? run + 1 : 0;
        longest = std::max(longest, run);
    }
    return longest;
}

void RequireShortNumbers(const Json::Value& value, const std::string& text) {
    const auto start = static_cast<std::size_t>(value.getOffsetStart());
    const auto limit = static_cast<std::size_t>(value.getOffsetLimit());
    Require(!value.isNumeric() || LongestDigitRun(text.substr(start, limit - start)) <= 1024,
            "a number of endless digits was converted");
    for (const Json::Value& child : value) {
        RequireShortNumbers(child, text);
    }
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
bool ReadByLibrary(const std::string& text, Json::Value& value) try {
    return Json::Reader().parse(text, value, true);
} catch (const std::exception&) {
    return false;
}
#pragma GCC diagnostic pop

// A few "#" in the text stand for 600 digits: two of them are more than the service converts.
void Document(FuzzInput input) {
    constexpr std::size_t kMostMarks = 6;
    const std::string& given = input.Text();
    const bool few = std::count(given.begin(), given.end(), '#') <= static_cast<std::ptrdiff_t>(kMostMarks);
    const std::string text = few ? Expanded(given, "#", std::string(600, '7')) : given;
    Json::Value value;
    Json::Value expected;
    const bool done = userauth::ParseDocument(text, value);
    const bool read = ReadByLibrary(text, expected);
    if (done) {
        Require(read && value == expected, "the library reads another document");
        RequireShortNumbers(value, text);
    } else {
        Require(value.isNull(), "a failed parse left a value");
        Require(!read || LongestDigitRun(text) > 1024, "the library reads what was refused");
    }
    Json::Value strict;
    Require(!userauth::ParseJsonText(text, strict) || strict.isArray() || strict.isObject(), "no document at the root");
    userauth::ParseLeniently(text);
}

void Smbios(FuzzInput input) {
    // On the heap to the byte, whatever the size.
    const std::vector<std::uint8_t> bytes(input.Text().begin(), input.Text().end());
    const userauth::DeviceIdentity identity = userauth::ReadSmbiosTable(bytes.data(), bytes.size());
    std::size_t characters = 0;
    for (const std::wstring& text : identity.oemStrings) {
        characters += text.size();
    }
    Require(characters <= bytes.size(), "more OEM text than bytes");
    const std::wstring name = userauth::DeviceNameHeader(identity);
    Require(!name.empty() && name.size() <= 250, "a device name of a wrong length");
    Require(std::all_of(name.begin(), name.end(), [](wchar_t c) { return c >= L' ' && c != 0x7F; }),
            "a device name with a control character");
}

const FuzzTarget kTargets[] = {{"text-base64", Base64},          {"text-url", UrlEncoding},
                               {"text-conversion", Conversions}, {"json-document", Document},
                               {"smbios", Smbios}};

}  // namespace
