#include "core/LocalClock.h"

#include <ctime>

namespace userauth {

std::int64_t CurrentUnixTime() {
#if defined(_WIN32)
    const __time64_t now = _time64(nullptr);
    std::tm local{};
    return _localtime64_s(&local, &now) != 0 ? 0 : _mktime64(&local);
#else
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    return localtime_r(&now, &local) == nullptr ? 0 : std::mktime(&local);
#endif
}

}  // namespace userauth
