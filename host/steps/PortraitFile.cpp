#include "steps/PortraitFile.h"

#include <windows.h>

#include "system/WindowsHandle.h"

namespace host {
namespace {

using Clock = std::chrono::steady_clock;

constexpr DWORD kPollMilliseconds = 10;

struct OpenedFile {
    WindowsHandle handle;  // null when it could not be opened
    DWORD error = ERROR_SUCCESS;
};

// Without sharing the right to write, so that it fails while the writer still has the file open.
OpenedFile OpenFinished(const std::filesystem::path& file) {
    const HANDLE handle = CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return {nullptr, GetLastError()};
    }
    return {WindowsHandle(handle)};
}

PortraitFile Fault(DWORD error) {
    PortraitFile portrait;
    if (error == ERROR_SHARING_VIOLATION) {
        portrait.fault = "the file is still being written";
    } else if (error == ERROR_PATH_NOT_FOUND || error == ERROR_FILE_NOT_FOUND) {
        portrait.fault = "there is no file: make its folder before the profile is requested";
    } else {
        portrait.fault = "the file cannot be read: system error " + std::to_string(error);
    }
    return portrait;
}

bool StartsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

}  // namespace

PortraitFile ReadPortraitFile(const std::filesystem::path& file, std::chrono::milliseconds longest) {
    const Clock::time_point end = Clock::now() + longest;
    OpenedFile opened = OpenFinished(file);
    while (opened.error == ERROR_SHARING_VIOLATION && Clock::now() < end) {
        Sleep(kPollMilliseconds);
        opened = OpenFinished(file);
    }
    LARGE_INTEGER size = {};
    char start[8] = {};
    DWORD read = 0;
    if (!opened.handle) {
        return Fault(opened.error);
    }
    if (!GetFileSizeEx(opened.handle.get(), &size) ||
        !ReadFile(opened.handle.get(), start, sizeof(start), &read, nullptr)) {
        return Fault(GetLastError());
    }
    return {"", static_cast<std::uintmax_t>(size.QuadPart), ImageType({start, read})};
}

std::string ImageType(std::string_view firstBytes) {
    if (StartsWith(firstBytes, "\x89PNG\r\n\x1A\n")) {
        return "PNG";
    }
    if (StartsWith(firstBytes, "\xFF\xD8\xFF")) {
        return "JPEG";
    }
    if (StartsWith(firstBytes, "GIF87a") || StartsWith(firstBytes, "GIF89a")) {
        return "GIF";
    }
    return "other";
}

}  // namespace host
