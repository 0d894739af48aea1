#include "steps/GrowingFile.h"

#include <windows.h>

#include <chrono>
#include <utility>

#include "system/WindowsHandle.h"
#include "text/FieldText.h"

namespace host {
namespace {

constexpr std::chrono::milliseconds kPause{100};
constexpr std::size_t kBarWidth = 24;
constexpr std::size_t kBlockWidth = 5;

// By way of a handle: the folder's entry of an open file may be old.
std::uint64_t BytesOf(const std::filesystem::path& file) {
    const HANDLE handle =
        CreateFileW(file.c_str(), FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return 0;
    }
    const WindowsHandle owned(handle);
    LARGE_INTEGER size = {};
    return GetFileSizeEx(handle, &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

std::string Bar(std::size_t tick) {
    constexpr std::size_t kWay = kBarWidth - kBlockWidth;  // there and back
    const std::size_t step = tick % (2 * kWay);
    std::string bar(kBarWidth, ' ');
    bar.replace(step < kWay ? step : 2 * kWay - step, kBlockWidth, kBlockWidth, '=');
    return "[" + bar + "]";
}

}  // namespace

GrowingFile::GrowingFile(Console& console, std::string title, std::filesystem::path file)
    : m_console(console), m_title(std::move(title)), m_file(std::move(file)) {
    if (console.IsTerminal()) {
        m_thread = std::thread([this] { Watch(); });
    }
}

GrowingFile::~GrowingFile() {
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_end = true;
    }
    m_ended.notify_all();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void GrowingFile::Watch() {
    std::unique_lock<std::mutex> lock(m_mutex);
    for (std::size_t tick = 0; !m_ended.wait_for(lock, kPause, [this] { return m_end; }); ++tick) {
        m_console.Write(kRewriteLine + m_title + "  " + Bar(tick) + "  " + Bytes(BytesOf(m_file)));
    }
}

}  // namespace host
