#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <json/value.h>

namespace sandbox {

// What goes wrong with the replies of one endpoint. The endpoint still does its work; only its reply suffers.
struct Fault {
    std::string endpoint;
    std::optional<unsigned> status;            // instead of the endpoint's own
    std::chrono::milliseconds delay{};         // before anything is sent
    std::chrono::milliseconds stall{};         // after the head and part of the body
    std::optional<std::size_t> stallAfter;     // bytes of the body that go before a stall; half of it without this
    std::optional<std::size_t> cutAfter;       // bytes of the body, then the connection is closed
    std::optional<std::size_t> contentLength;  // announced instead of the true one; the connection is closed afterwards
    bool unframed = false;                     // neither length nor chunks: the connection's end ends the body
    std::optional<std::string> body;           // instead of the endpoint's own
    std::optional<std::size_t> oversize;       // the reply padded to this many bytes
    bool garbage = false;                      // random bytes that are no JSON instead of the body
    bool wrongTypes = false;                   // every member of the reply has another JSON type
    std::optional<unsigned> times;             // how many requests are hit; all of them without it
    Json::Value order;                         // what it was read from
};

// Reads a fault from {"endpoint": PATH} with at least one member more. The members are called as those of Fault, but
// for "delayMs" and "stallMs", which are numbers of milliseconds. Throws Refusal on any other description.
Fault ReadFault(const Json::Value& description);

// The faults in force, at most one an endpoint. All operations may be called from any thread.
class FaultTable {
public:
    // Replaces the fault of that endpoint.
    void Put(Fault fault);
    void Remove(const std::string& endpoint);
    void Clear();
    std::vector<Fault> All() const;
    // The fault that hits a request of that endpoint, if there is one; counts the request.
    std::optional<Fault> Take(const std::string& endpoint);

private:
    mutable std::mutex m_lock;
    std::map<std::string, Fault> m_faults;  // guarded by m_lock
};

}  // namespace sandbox
