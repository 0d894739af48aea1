#include "http/ContentCoding.h"

#define ZLIB_CONST  // zlib takes constant input then
#include <brotli/encode.h>
#include <zlib.h>

#include <cstdint>
#include <memory>
#include <stdexcept>

namespace sandbox {
namespace {

// Window sizes that zlib takes, in bits; 16 more asks for gzip's frame instead of zlib's own.
constexpr int kZlibWindow = 15;
constexpr int kGzipWindow = kZlibWindow + 16;

void Require(bool success, const char* library) {
    if (!success) {
        throw std::runtime_error(std::string(library) + " failed to compress the body");
    }
}

std::string ZlibCoded(const std::string& bytes, int windowBits) {
    constexpr int kMemoryLevel = 8;  // the library's default
    z_stream stream{};
    Require(
        deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, windowBits, kMemoryLevel, Z_DEFAULT_STRATEGY) == Z_OK,
        "zlib");
    const std::unique_ptr<z_stream, decltype(&deflateEnd)> owner(&stream, &deflateEnd);
    std::string coded(deflateBound(&stream, static_cast<uLong>(bytes.size())), '\0');
    stream.next_in = reinterpret_cast<const Bytef*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(coded.data());
    stream.avail_out = static_cast<uInt>(coded.size());
    Require(deflate(&stream, Z_FINISH) == Z_STREAM_END, "zlib");
    coded.resize(stream.total_out);
    return coded;
}

std::string BrotliCoded(const std::string& bytes) {
    constexpr int kQuality = 5;  // the best takes minutes for a large body
    std::size_t size = BrotliEncoderMaxCompressedSize(bytes.size());
    std::string coded(size, '\0');
    Require(BrotliEncoderCompress(kQuality, BROTLI_DEFAULT_WINDOW, BROTLI_MODE_TEXT, bytes.size(),
                                  reinterpret_cast<const std::uint8_t*>(bytes.data()), &size,
                                  reinterpret_cast<std::uint8_t*>(coded.data())) == BROTLI_TRUE,
            "brotli");
    coded.resize(size);
    return coded;
}

}  // namespace

std::optional<std::string> ContentCoded(const std::string& bytes, const std::string& coding) {
    if (coding == "identity") {
        return bytes;
    }
    if (coding == "gzip") {
        return ZlibCoded(bytes, kGzipWindow);
    }
    if (coding == "deflate") {
        return ZlibCoded(bytes, kZlibWindow);
    }
    return coding == "br" ? std::optional(BrotliCoded(bytes)) : std::nullopt;
}

}  // namespace sandbox
