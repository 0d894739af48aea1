#include "LogFileName.h"

#include <windows.h>

#include <filesystem>
#include <map>
#include <mutex>
#include <system_error>

namespace suite {
namespace {

// A file beside the log that one process at a time can open. It goes when its last handle is closed, at the end of a
// process that crashes too.
std::shared_ptr<void> OpenLockFile(const std::wstring& path) {
    const HANDLE file = CreateFileW((path + L".lock").c_str(), GENERIC_WRITE | DELETE, 0, nullptr, OPEN_ALWAYS,
                                    FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    return file == INVALID_HANDLE_VALUE ? nullptr : std::shared_ptr<void>(file, CloseHandle);
}

// One file has one name, in any letter case.
struct FileNameLess {
    bool operator()(const std::wstring& left, const std::wstring& right) const {
        return CompareStringOrdinal(left.c_str(), -1, right.c_str(), -1, TRUE) == CSTR_LESS_THAN;
    }
};

// Shared inside the process: new sinks open before those that they replace are closed.
std::shared_ptr<void> HoldOf(const std::wstring& path) {
    static std::mutex mutex;
    using Holds = std::map<std::wstring, std::weak_ptr<void>, FileNameLess>;
    static Holds* const holds = new Holds;  // used while the process ends
    const std::lock_guard<std::mutex> lock(mutex);
    std::weak_ptr<void>& known = (*holds)[path];
    std::shared_ptr<void> hold = known.lock();
    if (hold == nullptr) {
        hold = OpenLockFile(path);
        known = hold;
    }
    return hold;
}

// "client.log" becomes "client-4711.log". On the text, because the C++ library's replace_filename corrupts memory when
// an allocation fails in it (GCC 12).
std::wstring WithProcessId(const std::wstring& path) {
    const std::size_t separator = path.find_last_of(L"\\/:");
    const std::size_t name = separator == std::wstring::npos ? 0 : separator + 1;
    const std::size_t dot = path.rfind(L'.');
    const std::size_t stemEnd = dot == std::wstring::npos || dot <= name ? path.size() : dot;
    return path.substr(0, stemEnd) + L"-" + std::to_wstring(GetCurrentProcessId()) + path.substr(stemEnd);
}

}  // namespace

LogFileName LogFileName::Take(const std::wstring& path) {
    std::error_code ignored;  // a folder that cannot be made is told by the log file, which cannot be opened then
    const std::filesystem::path whole = std::filesystem::absolute(path, ignored).lexically_normal();
    std::filesystem::create_directories(whole.parent_path(), ignored);
    LogFileName name;
    name.m_hold = HoldOf(whole.wstring());
    name.m_path = path;
    if (name.m_hold == nullptr) {
        name.m_path = WithProcessId(path);
    }
    return name;
}

}  // namespace suite
