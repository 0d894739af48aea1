#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace sandbox {

// One request and its reply, for people to look at.
struct ShownExchange {
    std::uint64_t number = 0;  // counts from 1; the log gives it
    std::int64_t time = 0;     // milliseconds since 1970-01-01 UTC
    std::string method;
    std::string path;
    int status = 0;
    std::string refusal;  // why the request was refused; empty: it was not
    std::string fault;    // the order of the fault that spoilt the reply; empty: none did
    std::string requestHead;
    std::string requestBody;
    std::string replyHead;
    std::string replyBody;
};

// What came in: accepted connections of each listener, requests of each path, the last request of each path, and the
// latest exchanges that people look at.
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

    // Keeps the latest 200. Long texts are cut, and say so.
    void Show(ShownExchange exchange);
    // Those that are kept and came after the one with that number, oldest first.
    std::vector<ShownExchange> ShownAfter(std::uint64_t number) const;
    // The number of the oldest that is kept, else of the next one.
    std::uint64_t OldestShown() const;
    std::optional<ShownExchange> Shown(std::uint64_t number) const;
    void ForgetShown();

private:
    mutable std::mutex m_lock;  // guards everything below
    Counts m_counts;
    std::map<std::string, Recorded> m_last;
    std::deque<ShownExchange> m_shown;
    std::uint64_t m_nextNumber = 1;
};

}  // namespace sandbox
