#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace suite {

// Judges whether a download comes too slowly: a server that keeps sending a byte now and then meets no other limit.
class TransferPace {
public:
    using Time = std::chrono::steady_clock::time_point;
    static constexpr std::chrono::seconds kWindow{60};
    static constexpr std::uint64_t kMinBytes = 60 * 1024;  // in each window

    // False when the window that ends now brought too little; the first block opens the first window.
    bool Accept(Time now, std::uint64_t bytes) {
        if (!m_start) {
            m_start = now;
        }
        m_bytes += bytes;
        if (now - *m_start < kWindow) {
            return true;
        }
        const bool isFastEnough = m_bytes >= kMinBytes;
        m_start = now;
        m_bytes = 0;
        return isFastEnough;
    }

    // Time that the receiver needed for a block is not the server's.
    void Excuse(std::chrono::steady_clock::duration time) {
        if (m_start) {
            *m_start += time;
        }
    }

private:
    std::optional<Time> m_start;
    std::uint64_t m_bytes = 0;
};

}  // namespace suite
