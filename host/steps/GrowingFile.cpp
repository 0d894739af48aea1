#include "steps/GrowingFile.h"

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
    const WindowsHandle handle =
        OpenFile(file, FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
    LARGE_INTEGER size = {};
    return handle && GetFileSizeEx(handle.get(), &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

std::string Bar(std::size_t tick) {
    constexpr std::size_t kWay = kBarWidth - kBlockWidth;  // there and back
    const std::size_t step = tick % (2 * kWay);
    std::string bar(kBarWidth, ' ');
    bar.replace(step < kWay ? step : 2 * kWay - step, kBlockWidth, kBlockWidth, '=');
    return "[" + bar + "]";
}

}  // namespace

GrowingFile::GrowingFile(Console& console, std::string title, std::filesystem::path file) {
    auto watch = [&console, title = std::move(title), file = std::move(file), end = m_end.get_future()] {
        for (std::size_t tick = 0; end.wait_for(kPause) == std::future_status::timeout; ++tick) {
            console.Write(kRewriteLine + title + "  " + Bar(tick) + "  " + Bytes(BytesOf(file)));
        }
    };
    m_watch = std::async(std::launch::async, std::move(watch));
}

GrowingFile::~GrowingFile() {
    m_end.set_value();
}

}  // namespace host
