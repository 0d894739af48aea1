#include "core/LocalClock.h"

#include <ctime>

namespace userauth {
namespace {

// False when local time cannot be told.
bool ReadLocalTime(std::tm& local) {
#if defined(_WIN32)
    const __time64_t now = _time64(nullptr);
    return _localtime64_s(&local, &now) == 0;
#else
    const std::time_t now = std::time(nullptr);
    return localtime_r(&now, &local) != nullptr;
#endif
}

}  // namespace

std::int64_t CurrentUnixTime() {
    std::tm local{};
    if (!ReadLocalTime(local)) {
        return 0;
    }
#if defined(_WIN32)
    return _mktime64(&local);
#else
    return std::mktime(&local);
#endif
}

std::string LocalTimeStamp() {
    std::tm local{};
    char stamp[128] = {};
    return ReadLocalTime(local) ? std::string(stamp, std::strftime(stamp, sizeof(stamp), "%Y-%m-%d %H:%M:%S", &local))
                                : std::string();
}

}  // namespace userauth
