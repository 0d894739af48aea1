#pragma once

#include <algorithm>
#include <filesystem>
#include <ostream>

// What must be level again when all is done. Not memory: the sanitizers keep what was freed for a while.
struct Resources {
    std::size_t handles = 0;
    std::size_t threads = 0;
    std::size_t memory = 0;

    static Resources Now() {
        const auto count = [](const char* folder) {
            const std::filesystem::directory_iterator all(folder);
            return static_cast<std::size_t>(std::distance(begin(all), end(all)));
        };
        return {count("/proc/self/fd"), count("/proc/self/task"), 0};
    }
};

inline std::ostream& operator<<(std::ostream& out, const Resources& resources) {
    return out << resources.handles << " descriptors, " << resources.threads << " threads";
}
