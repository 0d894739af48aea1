#include "Photos.h"

#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <string_view>

namespace sandbox {
namespace {

// A grey chequered picture of 48 by 48 points, in which each block has its mean value only.
constexpr unsigned char kJpeg[] = {
    0xFF, 0xD8, 0xFF, 0xE0, 0x00, 0x10, 0x4A, 0x46, 0x49, 0x46, 0x00, 0x01, 0x01, 0x00, 0x00, 0x01, 0x00, 0x01, 0x00,
    0x00, 0xFF, 0xDB, 0x00, 0x43, 0x00, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08,
    0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08,
    0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08,
    0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0xFF, 0xC0, 0x00, 0x0B, 0x08, 0x00,
    0x30, 0x00, 0x30, 0x01, 0x01, 0x11, 0x00, 0xFF, 0xC4, 0x00, 0x1F, 0x00, 0x00, 0x01, 0x05, 0x01, 0x01, 0x01, 0x01,
    0x01, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09,
    0x0A, 0x0B, 0xFF, 0xC4, 0x00, 0x14, 0x10, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x00, 0xFF, 0xDA, 0x00, 0x08, 0x01, 0x01, 0x00, 0x00, 0x3F, 0x00, 0xF2, 0x77, 0xB6, 0x3C,
    0xDD, 0xED, 0x8F, 0x37, 0x7B, 0x63, 0xC7, 0x1C, 0x93, 0xD4, 0x5C, 0x93, 0xD4, 0x5C, 0x93, 0xCD, 0xDD, 0xB3, 0x35,
    0xDB, 0x33, 0x5D, 0xB3, 0xC7, 0x16, 0x5B, 0x6B, 0x2D, 0xB5, 0x97, 0x9B, 0x87, 0x48, 0x1D, 0x20, 0x78, 0xE3, 0xBF,
    0x62, 0x3B, 0xF6, 0x23, 0xBF, 0x7F, 0xFF, 0xD9,
};

constexpr std::uint32_t kPngSide = 8;  // points
constexpr char kPngSignature[] = "\x89PNG\r\n\x1A\n";

std::string BigEndian(std::uint32_t number) {
    std::string bytes;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        bytes += static_cast<char>(static_cast<unsigned char>(number >> shift));
    }
    return bytes;
}

// CRC-32 as PNG and zlib have it (ISO 3309).
std::uint32_t Crc32(std::string_view bytes) {
    std::uint32_t crc = 0xFFFFFFFFU;
    for (const auto byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1U) != 0 ? (crc >> 1U) ^ 0xEDB88320U : crc >> 1U;
        }
    }
    return ~crc;
}

std::uint32_t Adler32(std::string_view bytes) {
    constexpr std::uint32_t kModulus = 65521;
    std::uint32_t low = 1;
    std::uint32_t high = 0;
    for (const auto byte : bytes) {
        low = (low + static_cast<unsigned char>(byte)) % kModulus;
        high = (high + low) % kModulus;
    }
    return high << 16U | low;
}

// A zlib stream (RFC 1950) of one stored block (RFC 1951), so of at most 65535 bytes.
std::string Stored(const std::string& bytes) {
    const auto size = static_cast<unsigned>(bytes.size());
    std::string stream("\x78\x01\x01", 3);  // deflate with a window of 32 KiB; the last block, stored
    for (const unsigned length : {size, ~size}) {
        stream += static_cast<char>(static_cast<unsigned char>(length));
        stream += static_cast<char>(static_cast<unsigned char>(length >> 8U));
    }
    return stream + bytes + BigEndian(Adler32(bytes));
}

std::string PngChunk(const std::string& type, const std::string& data) {
    return BigEndian(static_cast<std::uint32_t>(data.size())) + type + data + BigEndian(Crc32(type + data));
}

// Rows of red, green and blue, each behind its filter type 0: a gradient whose blue comes from the number.
std::string PngRows(std::size_t number) {
    constexpr unsigned kStep = 255 / (kPngSide - 1);
    std::string rows;
    for (unsigned y = 0; y < kPngSide; ++y) {
        rows += '\0';
        for (unsigned x = 0; x < kPngSide; ++x) {
            for (const auto part : {x * kStep, y * kStep, static_cast<unsigned>(number * 47)}) {
                rows += static_cast<char>(static_cast<unsigned char>(part));
            }
        }
    }
    return rows;
}

std::string Png(std::size_t number) {
    const std::string format("\x08\x02\0\0\0",
                             5);  // eight bits, true colour, the only methods there are, no interlacing
    return std::string(kPngSignature, sizeof(kPngSignature) - 1) +
           PngChunk("IHDR", BigEndian(kPngSide) + BigEndian(kPngSide) + format) +
           PngChunk("IDAT", Stored(PngRows(number))) + PngChunk("IEND", "");
}

bool EndsIn(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

}  // namespace

Photo MakePhoto(const std::string& name, std::size_t number) {
    if (EndsIn(name, ".jpg")) {
        return {{std::begin(kJpeg), std::end(kJpeg)}, "image/jpeg"};
    }
    return {Png(number), "image/png"};
}

}  // namespace sandbox
