#include "ContentDecoder.h"

#include <brotli/decode.h>
#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <string>
#include <vector>

#include "HeaderText.h"

namespace suite {

namespace {

constexpr std::size_t kBlockBytes = 32 * 1024;

// Values of zlib's inflateInit2: wrapping and window.
constexpr int kGzipWrapping = MAX_WBITS + 16;
constexpr int kZlibWrapping = MAX_WBITS;
constexpr int kNoWrapping = -MAX_WBITS;

// gzip and deflate. One gzip member only: of several, the first ones alone would pass as a whole body.
class InflateDecoder : public ContentDecoder {
public:
    explicit InflateDecoder(bool isGzip) : m_block(kBlockBytes) {
        if (isGzip) {
            Start(kGzipWrapping);
        }
    }
    ~InflateDecoder() override {
        if (m_isStarted) {
            inflateEnd(&m_stream);
        }
    }
    InflateDecoder(const InflateDecoder&) = delete;
    InflateDecoder& operator=(const InflateDecoder&) = delete;

    bool Decode(const char* data, std::size_t size, const Output& output) override {
        if (m_isStarted) {
            return Inflate(data, size, output);
        }
        // Servers send "deflate" with and without zlib's wrapping; the first two bytes tell.
        m_start.append(data, size);
        if (m_start.size() < 2) {
            return true;
        }
        Start(HasZlibHeader() ? kZlibWrapping : kNoWrapping);
        return Inflate(m_start.data(), m_start.size(), output);
    }
    bool HasEnded() const override { return m_hasEnded; }

private:
    void Start(int wrapping) {
        if (inflateInit2(&m_stream, wrapping) != Z_OK) {
            throw std::bad_alloc();
        }
        m_isStarted = true;
    }

    // RFC 1950, 2.2: method 8, a window of 32 KiB at most, no dictionary, and a multiple of 31.
    bool HasZlibHeader() const {
        const unsigned first = static_cast<unsigned char>(m_start[0]);
        const unsigned second = static_cast<unsigned char>(m_start[1]);
        return (first & 0x8F) == 8 && (second & 0x20) == 0 && (first * 256 + second) % 31 == 0;
    }

    bool Inflate(const char* data, std::size_t size, const Output& output) {
        // zlib takes its input as not const.
        m_stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data));  // NOLINT
        m_stream.avail_in = static_cast<uInt>(size);
        do {
            if (m_hasEnded) {
                return m_stream.avail_in == 0;
            }
            m_stream.next_out = reinterpret_cast<Bytef*>(m_block.data());
            m_stream.avail_out = static_cast<uInt>(m_block.size());
            const int result = inflate(&m_stream, Z_NO_FLUSH);
            m_hasEnded = result == Z_STREAM_END;
            if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) {
                return false;
            }
            const std::size_t count = m_block.size() - m_stream.avail_out;
            if (count > 0 && !output(m_block.data(), count)) {
                return false;
            }
        } while (m_stream.avail_in > 0 || m_stream.avail_out == 0);
        return true;
    }

    std::vector<char> m_block;
    z_stream m_stream = {};
    std::string m_start;  // of a deflate body until its wrapping is known
    bool m_isStarted = false;
    bool m_hasEnded = false;
};

class BrotliDecoder : public ContentDecoder {
public:
    BrotliDecoder() : m_block(kBlockBytes), m_state(BrotliDecoderCreateInstance(nullptr, nullptr, nullptr)) {
        if (!m_state) {
            throw std::bad_alloc();
        }
    }

    bool Decode(const char* data, std::size_t size, const Output& output) override {
        const auto* input = reinterpret_cast<const std::uint8_t*>(data);
        BrotliDecoderResult result = BROTLI_DECODER_RESULT_NEEDS_MORE_OUTPUT;
        while (result == BROTLI_DECODER_RESULT_NEEDS_MORE_OUTPUT) {
            if (HasEnded()) {
                return size == 0;
            }
            std::size_t room = m_block.size();
            auto* block = reinterpret_cast<std::uint8_t*>(m_block.data());
            result = BrotliDecoderDecompressStream(m_state.get(), &size, &input, &room, &block, nullptr);
            const std::size_t count = m_block.size() - room;
            if (count > 0 && !output(m_block.data(), count)) {
                return false;
            }
        }
        return result != BROTLI_DECODER_RESULT_ERROR && size == 0;
    }
    bool HasEnded() const override { return BrotliDecoderIsFinished(m_state.get()) == BROTLI_TRUE; }

private:
    struct StateDeleter {
        void operator()(BrotliDecoderState* state) const { BrotliDecoderDestroyInstance(state); }
    };

    std::vector<char> m_block;
    std::unique_ptr<BrotliDecoderState, StateDeleter> m_state;
};

}  // namespace

DecoderChoice ChooseDecoder(std::string_view codings) {
    std::string_view coding;
    while (!codings.empty()) {
        const std::size_t end = std::min(codings.find(','), codings.size());
        const std::string_view name = Trimmed(codings.substr(0, end), " \t");
        codings.remove_prefix(std::min(end + 1, codings.size()));
        if (name.empty() || SameHeaderName(name, "identity") || SameHeaderName(name, "none")) {
            continue;
        }
        if (!coding.empty()) {
            return {};
        }
        coding = name;
    }
    const bool isGzip = SameHeaderName(coding, "gzip") || SameHeaderName(coding, "x-gzip");
    if (isGzip || SameHeaderName(coding, "deflate")) {
        return {true, std::make_unique<InflateDecoder>(isGzip)};
    }
    if (SameHeaderName(coding, "br")) {
        return {true, std::make_unique<BrotliDecoder>()};
    }
    return {coding.empty(), nullptr};
}

}  // namespace suite
