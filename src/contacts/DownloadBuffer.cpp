#include "contacts/DownloadBuffer.h"

#include <algorithm>

namespace userauth {
namespace {

constexpr std::size_t kBlockBytes = 1024 * 1024;

}  // namespace

void DownloadBuffer::Append(const char* data, std::size_t size) {
    if (size == 0) {
        return;
    }
    if (m_blocks.empty() || m_blocks.back().size() + size > m_blocks.back().capacity()) {
        m_blocks.emplace_back().reserve(std::max(size, kBlockBytes));
    }
    m_blocks.back().append(data, size);
    m_bytes += size;
}

std::string DownloadBuffer::Take() {
    std::string text;
    text.reserve(m_bytes);
    for (; !m_blocks.empty(); m_blocks.pop_front()) {
        text += m_blocks.front();
    }
    m_bytes = 0;
    return text;
}

}  // namespace userauth
