#include <cstdarg>
#include <cstdlib>
#include <ctime>

#include "UserAuthService.h"
#include "core/BoundedFormat.h"
#include "core/LocalClock.h"

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

wchar_t Digit(int value) {
    return static_cast<wchar_t>(L'0' + value);
}

}  // namespace

std::wstring UserAuthService::GetTraceID(BaseCmd command) {
    const auto time = static_cast<unsigned>(userauth::CurrentUnixTime());
    const std::wstring random = GetRandom(kRandomDigits);
    return Format(L"%05d_", static_cast<int>(command)) + m_strTraceIdCode + Format(L"_%u_", time) + random;
}

// No digit is 9, the first is below 8, and the generator is seeded on every call. Kept as it is: servers and logs see
// exactly this alphabet.
std::wstring UserAuthService::GetRandom(int length) {
    std::srand(static_cast<unsigned>(std::time(nullptr)));
    if (length < 1) {
        return {};
    }
    std::wstring digits(1, Digit(std::rand() % 8));  // NOLINT(cert-msc50-cpp): no secret, and reseeded
    while (digits.size() < static_cast<std::size_t>(length)) {
        digits += Digit(std::rand() % 9);  // NOLINT(cert-msc50-cpp)
    }
    return digits;
}
