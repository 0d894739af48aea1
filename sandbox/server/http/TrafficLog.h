#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace sandbox {

// What came in: accepted connections of each listener, requests of each path and the last request of each path.
// All operations may be called from any thread.
class TrafficLog {
public:
    struct Recorded {
        std::string head;
        std::string body;
    };
    struct Counts {
        std::map<std::string, std::uint64_t> connections;  // by listener, "http" and "https"
        std::map<std::string, std::uint64_t> requests;     // by path
    };

    // Starts a listener at 0 connections.
    void AddListener(const std::string& listener);
    void CountConnection(const std::string& listener);
    void RecordRequest(const std::string& path, std::string head, std::string body);

    Counts Totals() const;
    std::optional<Recorded> LastRequest(const std::string& path) const;

private:
    mutable std::mutex m_lock;  // guards everything below
    Counts m_counts;
    std::map<std::string, Recorded> m_last;
};

}  // namespace sandbox
