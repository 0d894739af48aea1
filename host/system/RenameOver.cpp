#include "system/RenameOver.h"

#include <chrono>
#include <system_error>
#include <thread>

namespace host {

bool RenameOver(const std::filesystem::path& finished, const std::filesystem::path& file) {
    constexpr int kAttempts = 20;
    constexpr std::chrono::milliseconds kPause{50};
    std::error_code error;
    std::filesystem::rename(finished, file, error);
    for (int attempt = 1; error && attempt < kAttempts; ++attempt) {
        std::this_thread::sleep_for(kPause);
        std::filesystem::rename(finished, file, error);
    }
    return !error;
}

}  // namespace host
