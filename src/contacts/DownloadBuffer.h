#pragma once

#include <cstddef>
#include <deque>
#include <string>

namespace userauth {

// Gathers a download of unknown length in blocks, so that a growing one is never copied while it grows, and hands it
// over as one text. Each block is given back once it is in the text, so that hardly more memory than the text is in
// use.
class DownloadBuffer {
public:
    void Append(const char* data, std::size_t size);

    // All that was appended; the buffer is empty afterwards.
    std::string Take();

private:
    std::deque<std::string> m_blocks;
    std::size_t m_bytes = 0;
};

}  // namespace userauth
