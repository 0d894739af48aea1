#include "text/FieldText.h"

#include <algorithm>
#include <cstdio>

#include "text/TextEncoding.h"

namespace host {
namespace {

constexpr wchar_t kReplacement = 0xFFFD;

bool IsControl(wchar_t c) {
    const bool ascii = c < 0x20 || c == 0x7F;
    const bool further = c >= 0x80 && c <= 0x9F;
    const bool breakOrDirection = (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
    return ascii || further || breakOrDirection;
}

}  // namespace

std::string Characters(std::size_t count) {
    return std::to_string(count) + " characters";
}

std::string Bytes(std::uintmax_t count) {
    constexpr std::uintmax_t kKibibyte = 1024;
    if (count < kKibibyte) {
        return std::to_string(count) + " bytes";
    }
    const bool mebibytes = count >= kKibibyte * kKibibyte;
    char text[32];
    std::snprintf(text, sizeof(text), mebibytes ? "%.1f MiB" : "%.1f KiB",
                  static_cast<double>(count) / static_cast<double>(mebibytes ? kKibibyte * kKibibyte : kKibibyte));
    return text;
}

std::string LengthOnly(const std::wstring& secret) {
    return secret.empty() ? "none" : Characters(secret.size());
}

std::string TextOrNone(const std::wstring& text) {
    return text.empty() ? "none" : ToUtf8(text);
}

std::string YesOrNo(bool value) {
    return value ? "yes" : "no";
}

std::string Milliseconds(std::chrono::duration<double, std::milli> time) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.1f ms", time.count());
    return text;
}

std::string SeeLog(const std::string& what) {
    return what + ": --verbose shows the log";
}

std::string Printable(const std::string& text) {
    std::wstring wide = ToWide(text);
    std::replace_if(wide.begin(), wide.end(), IsControl, kReplacement);
    return ToUtf8(wide);
}

}  // namespace host
