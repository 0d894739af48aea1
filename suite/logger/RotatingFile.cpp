#include "RotatingFile.h"

#include <spdlog/sinks/rotating_file_sink.h>

#include <system_error>
#include <utility>

namespace suite {

RotatingFile::RotatingFile(std::filesystem::path path, std::size_t maxBytes, std::size_t maxFiles)
    : m_path(std::move(path)), m_maxBytes(maxBytes), m_maxFiles(maxFiles), m_limit(maxBytes) {
    m_file.open(m_path.native());
    m_bytes = m_file.size();
}

void RotatingFile::sink_it_(const spdlog::details::log_msg& message) {
    spdlog::memory_buf_t line;
    formatter_->format(message, line);
    if (m_bytes > 0 && m_bytes + line.size() > m_limit) {
        Rotate();
    }
    m_file.write(line);
    m_bytes += line.size();
}

void RotatingFile::Rotate() {
    m_file.close();
    m_bytes = m_limit;  // the next line tries again when the file cannot be opened: the library writes to a null stream
    const bool moved = MoveAway();
    m_file.reopen(false);
    m_bytes = m_file.size();
    m_limit = moved ? m_maxBytes : m_bytes + m_maxBytes / 16;  // then it is tried again
}

// Moves no more files than make room, so that a second try after a failure does not push the oldest out.
bool RotatingFile::MoveAway() const {
    std::error_code error;
    if (!std::filesystem::exists(m_path, error)) {
        return true;  // moved before, but no new one could be opened
    }
    std::size_t age = 1;
    while (age < m_maxFiles && std::filesystem::exists(NameOf(age), error)) {
        ++age;
    }
    for (error.clear(); age > 0 && !error; --age) {
        std::filesystem::rename(NameOf(age - 1), NameOf(age), error);
    }
    return !error;
}

std::filesystem::path RotatingFile::NameOf(std::size_t age) const {
    return spdlog::sinks::rotating_file_sink_st::calc_filename(m_path.native(), age);
}

}  // namespace suite
