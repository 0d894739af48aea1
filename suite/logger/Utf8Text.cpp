#include "Utf8Text.h"

#include <windows.h>

namespace {

constexpr std::size_t kMaxUnits = 64 * 1024;

}  // namespace

std::string Utf8FromWide(std::wstring_view text) {
    const std::wstring_view kept = text.substr(0, kMaxUnits);
    const int units = static_cast<int>(kept.size());
    const int length =
        units == 0 ? 0 : WideCharToMultiByte(CP_UTF8, 0, kept.data(), units, nullptr, 0, nullptr, nullptr);
    std::string bytes(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    WideCharToMultiByte(CP_UTF8, 0, kept.data(), units, bytes.data(), length, nullptr, nullptr);
    if (kept.size() < text.size()) {
        bytes += " [cut: " + std::to_string(text.size() - kept.size()) + " more]";
    }
    return bytes;
}
