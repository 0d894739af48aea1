#include "http/Faults.h"

#include <utility>

#include "http/Exchange.h"
#include "http/OrderReader.h"

namespace sandbox {
namespace {

constexpr unsigned kLongestWaitMs = 600'000;
constexpr unsigned kLargestBody = 64U * 1024 * 1024;
constexpr unsigned kLargestContentLength = 2'000'000'000;
constexpr unsigned kMostTimes = 1'000'000;

bool DoesSomething(const Fault& fault) {
    return fault.status || fault.delay.count() > 0 || fault.stall.count() > 0 || fault.cutAfter ||
           fault.contentLength || fault.body || fault.oversize || fault.garbage || fault.wrongTypes || fault.unframed;
}

// Why the members do not go together; null when they do.
const char* Contradiction(const Fault& fault) {
    if (fault.endpoint.empty()) {
        return "endpoint is missing";
    }
    if (fault.stallAfter && fault.stall.count() == 0) {
        return "stallAfter needs stallMs, how long the reply stalls";
    }
    return DoesSomething(fault)
               ? nullptr
               : "the fault does nothing: give status, delayMs, stallMs, cutAfter, contentLength, unframed, body, "
                 "garbage, oversize or wrongTypes";
}

}  // namespace

Fault ReadFault(const Json::Value& description) {
    using std::chrono::milliseconds;
    OrderReader order(description);
    Fault fault;
    fault.endpoint = order.Text("endpoint").value_or("");
    fault.status = order.Number("status", 200, 599);
    fault.delay = milliseconds(order.Number("delayMs", 1, kLongestWaitMs).value_or(0));
    fault.stall = milliseconds(order.Number("stallMs", 1, kLongestWaitMs).value_or(0));
    fault.stallAfter = order.Number("stallAfter", 0, kLargestBody);
    fault.cutAfter = order.Number("cutAfter", 0, kLargestBody);
    fault.contentLength = order.Number("contentLength", 0, kLargestContentLength);
    fault.body = order.Text("body");
    fault.oversize = order.Number("oversize", 1, kLargestBody);
    fault.garbage = order.Switch("garbage").value_or(false);
    fault.wrongTypes = order.Switch("wrongTypes").value_or(false);
    fault.unframed = order.Switch("unframed").value_or(false);
    fault.times = order.Number("times", 1, kMostTimes);
    order.RefuseOthers();
    fault.order = description;
    if (const char* reason = Contradiction(fault)) {
        throw Refusal(Wrong::kBody, reason);
    }
    return fault;
}

void FaultTable::Put(Fault fault) {
    const std::lock_guard<std::mutex> guard(m_lock);
    auto endpoint = fault.endpoint;
    m_faults.insert_or_assign(std::move(endpoint), std::move(fault));
}

void FaultTable::Remove(const std::string& endpoint) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_faults.erase(endpoint);
}

void FaultTable::Clear() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_faults.clear();
}

std::vector<Fault> FaultTable::All() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    std::vector<Fault> faults;
    for (const auto& [endpoint, fault] : m_faults) {
        faults.push_back(fault);
    }
    return faults;
}

std::optional<Fault> FaultTable::Take(const std::string& endpoint) {
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto found = m_faults.find(endpoint);
    if (found == m_faults.end()) {
        return std::nullopt;
    }
    auto fault = found->second;
    if (found->second.times && --*found->second.times == 0) {
        m_faults.erase(found);
    }
    return fault;
}

}  // namespace sandbox
