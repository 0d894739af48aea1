#include <cstdarg>
#include <cstdlib>
#include <ctime>

#include "UserAuthService.h"
#include "core/BoundedFormat.h"

namespace {

constexpr int kRandomDigits = 8;
constexpr std::size_t kTraceTextCapacity = 128;

std::wstring Format(const wchar_t* format, ...) {
    wchar_t buffer[kTraceTextCapacity] = {};
    std::va_list arguments;
    va_start(arguments, format);
    userauth::FormatWideBounded(buffer, kTraceTextCapacity, format, arguments);
    va_end(arguments);
    return buffer;
}

// Seconds since 1970-01-01 UTC by way of local time, as the servers have always received it; 0 when that fails.
__time64_t CurrentTime() {
    const __time64_t now = _time64(nullptr);
    std::tm* const local = _localtime64(&now);
    return local == nullptr ? 0 : _mktime64(local);
}

wchar_t Digit(int value) {
    return static_cast<wchar_t>(L'0' + value);
}

}  // namespace

std::wstring UserAuthService::GetTraceID(BaseCmd command) {
    const auto time = static_cast<unsigned>(CurrentTime());
    const std::wstring random = GetRandom(kRandomDigits);
    return Format(L"%05d_", static_cast<int>(command)) + m_strTraceIdCode + Format(L"_%u_", time) + random;
}

// Deliberately no 9 anywhere and no 8 in front, and the generator is seeded on every call: servers and logs know this
// alphabet.
std::wstring UserAuthService::GetRandom(int length) {
    std::srand(static_cast<unsigned>(_time64(nullptr)));
    if (length < 1) {
        return {};
    }
    std::wstring digits(1, Digit(std::rand() % 8));
    while (digits.size() < static_cast<std::size_t>(length)) {
        digits += Digit(std::rand() % 9);
    }
    return digits;
}
