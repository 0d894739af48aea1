#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace suite {

// Takes the chunks of a body apart (RFC 9112, 7.1), strictly and to the last byte: libcurl counts a body as whole
// before its last line feed has come. Chunk extensions and trailers are read and dropped, up to a limit: a server could
// send them for ever.
class ChunkedBody {
public:
    enum class Result {
        kMore,     // all was taken, the body goes on or has ended
        kExcess,   // the body has ended, and bytes lie behind it
        kInvalid,  // this is no chunked body
        kTooLong,  // extensions and trailers beyond the limit
        kRefused,  // output returned false
    };
    // Receives the bytes of the body; false ends the reading.
    using Output = std::function<bool(const char* data, std::size_t size)>;

    Result Accept(const char* data, std::size_t size, const Output& output);
    bool HasEnded() const { return m_state == State::kEnd; }

private:
    enum class State {
        kSize,          // its first digit is to come
        kMoreSize,      // further digits, or what ends them
        kExtension,     // up to the line's end
        kSizeLf,        // the line feed behind the size
        kData,          //
        kDataCr,        // the two bytes behind the data
        kDataLf,        //
        kTrailerStart,  // a trailer, or the last line
        kTrailer,       // up to its line feed
        kLastLf,        //
        kEnd,
        kInvalid,
    };

    State Next(char c);
    State AddDigit(char c);

    State m_state = State::kSize;
    std::uint64_t m_size = 0;        // of the chunk; while its data comes, what is left of it
    std::size_t m_droppedBytes = 0;  // of extensions and trailers
};

}  // namespace suite
