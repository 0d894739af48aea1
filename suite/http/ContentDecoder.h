#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>

namespace suite {

// Undoes one content coding while the bytes come. The coding's own end is required: a compressed body that was cut
// looks whole to everybody else.
class ContentDecoder {
public:
    // Receives a block of decoded bytes; false ends the decoding.
    using Output = std::function<bool(const char* data, std::size_t size)>;

    virtual ~ContentDecoder() = default;

    // False when these are no bytes of the coding, when bytes lie behind its end, or when output returned false.
    virtual bool Decode(const char* data, std::size_t size, const Output& output) = 0;
    virtual bool HasEnded() const = 0;
};

struct DecoderChoice {
    bool isKnown = false;
    std::unique_ptr<ContentDecoder> decoder;  // null: the body is not coded
};

// The decoder for the value of "Content-Encoding": one of gzip (x-gzip), deflate (in zlib's wrapping or raw) and br;
// "identity" and "none" mean nothing. Several codings on top of each other are not known: nobody asks for them, and
// what they unfold to multiplies. Throws what a lack of memory throws.
DecoderChoice ChooseDecoder(std::string_view codings);

}  // namespace suite
