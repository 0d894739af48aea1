#pragma once

#include <spdlog/details/file_helper.h>
#include <spdlog/details/null_mutex.h>
#include <spdlog/sinks/base_sink.h>

#include <filesystem>

namespace suite {

// A file that moves to "NAME.1.EXT" when it is full, that one to "NAME.2.EXT" and so on; the oldest goes. While the
// file cannot be moved, because somebody reads it, it grows: the library's own sink would empty it. For one thread.
class RotatingFile final : public spdlog::sinks::base_sink<spdlog::details::null_mutex> {
public:
    // Throws when the file cannot be opened.
    RotatingFile(std::filesystem::path path, std::size_t maxBytes, std::size_t maxFiles);

private:
    void sink_it_(const spdlog::details::log_msg& message) override;
    void flush_() override { m_file.flush(); }
    void Rotate();
    bool MoveAway() const;
    std::filesystem::path NameOf(std::size_t age) const;

    const std::filesystem::path m_path;
    const std::size_t m_maxBytes;
    const std::size_t m_maxFiles;
    spdlog::details::file_helper m_file;
    std::size_t m_bytes = 0;
    std::size_t m_limit;
};

}  // namespace suite
