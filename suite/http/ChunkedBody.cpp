#include "ChunkedBody.h"

#include <algorithm>

namespace suite {

namespace {

// Beyond every limit of a body, and far from an overflow.
constexpr std::uint64_t kMaxChunkBytes = std::uint64_t{1} << 56;
constexpr std::size_t kMaxDroppedBytes = 256 * 1024;

// -1 when it is none.
int HexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

}  // namespace

ChunkedBody::Result ChunkedBody::Accept(const char* data, std::size_t size, const Output& output) {
    while (size > 0) {
        if (m_state == State::kEnd) {
            return Result::kExcess;
        }
        std::size_t taken = 1;
        if (m_state == State::kData) {
            taken = static_cast<std::size_t>(std::min<std::uint64_t>(size, m_size));
            if (!output(data, taken)) {
                return Result::kRefused;
            }
            m_size -= taken;
            m_state = m_size == 0 ? State::kDataCr : State::kData;
        } else {
            m_state = Next(*data);
        }
        if (m_state == State::kInvalid) {
            return Result::kInvalid;
        }
        const bool isDropped = m_state == State::kExtension || m_state == State::kTrailer;
        if (isDropped && ++m_droppedBytes > kMaxDroppedBytes) {
            return Result::kTooLong;
        }
        data += taken;
        size -= taken;
    }
    return Result::kMore;
}

// The state behind one byte of the frame.
ChunkedBody::State ChunkedBody::Next(char c) {
    const auto expect = [c](char wanted, State next) { return c == wanted ? next : State::kInvalid; };
    const State behindSize = m_size == 0 ? State::kTrailerStart : State::kData;
    switch (m_state) {
        case State::kSize:
            m_size = 0;
            return AddDigit(c);
        case State::kMoreSize:
            return c == '\r' ? State::kSizeLf : c == ';' || c == ' ' || c == '\t' ? State::kExtension : AddDigit(c);
        case State::kExtension:
            return c == '\r' ? State::kSizeLf : c == '\n' ? State::kInvalid : State::kExtension;
        case State::kSizeLf:
            return expect('\n', behindSize);
        case State::kDataCr:
            return expect('\r', State::kDataLf);
        case State::kDataLf:
            return expect('\n', State::kSize);
        case State::kTrailerStart:
            return c == '\r' ? State::kLastLf : c == '\n' ? State::kInvalid : State::kTrailer;
        case State::kTrailer:
            return c == '\n' ? State::kTrailerStart : State::kTrailer;
        case State::kLastLf:
            return expect('\n', State::kEnd);
        default:
            return State::kInvalid;
    }
}

ChunkedBody::State ChunkedBody::AddDigit(char c) {
    const int digit = HexDigit(c);
    if (digit < 0 || m_size >= kMaxChunkBytes / 16) {
        return State::kInvalid;
    }
    m_size = m_size * 16 + static_cast<std::uint64_t>(digit);
    return State::kMoreSize;
}

}  // namespace suite
