#include "steps/PortraitFile.h"

#include <string_view>

#include "system/WindowsHandle.h"

namespace host {
namespace {

using Clock = std::chrono::steady_clock;

constexpr DWORD kPollMilliseconds = 10;

std::string FaultText(DWORD error) {
    switch (error) {
        case ERROR_SHARING_VIOLATION:
            return "the file is still being written";
        case ERROR_PATH_NOT_FOUND:
        case ERROR_FILE_NOT_FOUND:
            return "there is no file: make its folder before the profile is requested";
        default:
            return "the file cannot be read: system error " + std::to_string(error);
    }
}

std::string ImageType(std::string_view firstBytes) {
    const struct {
        std::string_view start;
        const char* type;
    } types[] = {{"\x89PNG\r\n\x1A\n", "PNG"}, {"\xFF\xD8\xFF", "JPEG"}, {"GIF87a", "GIF"}, {"GIF89a", "GIF"}};
    for (const auto& [start, type] : types) {
        if (firstBytes.substr(0, start.size()) == start) {
            return type;
        }
    }
    return "other";
}

}  // namespace

PortraitFile ReadPortraitFile(const std::filesystem::path& file, std::chrono::milliseconds longest) {
    // Without sharing the right to write, so that it fails while the writer still has the file open.
    constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_DELETE;
    const Clock::time_point end = Clock::now() + longest;
    WindowsHandle handle = OpenFile(file, GENERIC_READ, kShare);
    while (!handle && GetLastError() == ERROR_SHARING_VIOLATION && Clock::now() < end) {
        Sleep(kPollMilliseconds);
        handle = OpenFile(file, GENERIC_READ, kShare);
    }
    LARGE_INTEGER size = {};
    char start[8] = {};
    DWORD read = 0;
    if (!handle || !GetFileSizeEx(handle.get(), &size) ||
        !ReadFile(handle.get(), start, sizeof(start), &read, nullptr)) {
        return {FaultText(GetLastError())};
    }
    return {"", static_cast<std::uintmax_t>(size.QuadPart), ImageType({start, read})};
}

}  // namespace host
