#include "http/Faults.h"

#include <functional>
#include <utility>

namespace sandbox {
namespace {

constexpr unsigned kLongestWaitMs = 600'000;
constexpr unsigned kLargestBody = 64U * 1024 * 1024;
constexpr unsigned kLargestContentLength = 2'000'000'000;
constexpr unsigned kMostTimes = 1'000'000;

// Stores one member's value; false when the value has another type or is out of range.
using MemberReader = std::function<bool(const Json::Value&, Fault&)>;

template <typename Store>
MemberReader WholeNumber(unsigned smallest, unsigned largest, Store store) {
    return [=](const Json::Value& value, Fault& fault) {
        if (!value.isUInt() || value.asUInt() < smallest || value.asUInt() > largest) {
            return false;
        }
        store(fault, value.asUInt());
        return true;
    };
}

// Only true: a fault that is switched off would do nothing.
MemberReader Switch(bool Fault::*member) {
    return [=](const Json::Value& value, Fault& fault) {
        fault.*member = value.isBool() && value.asBool();
        return fault.*member;
    };
}

template <typename Member>
MemberReader Text(Member Fault::*member) {
    return [=](const Json::Value& value, Fault& fault) {
        if (!value.isString()) {
            return false;
        }
        fault.*member = value.asString();
        return true;
    };
}

const std::map<std::string, MemberReader>& MemberReaders() {
    using std::chrono::milliseconds;
    static const std::map<std::string, MemberReader> readers = {
        {"endpoint", Text(&Fault::endpoint)},
        {"body", Text(&Fault::body)},
        {"garbage", Switch(&Fault::garbage)},
        {"wrongTypes", Switch(&Fault::wrongTypes)},
        {"unframed", Switch(&Fault::unframed)},
        {"status", WholeNumber(200, 599, [](Fault& f, unsigned v) { f.status = static_cast<int>(v); })},
        {"delayMs", WholeNumber(1, kLongestWaitMs, [](Fault& f, unsigned v) { f.delay = milliseconds(v); })},
        {"stallMs", WholeNumber(1, kLongestWaitMs, [](Fault& f, unsigned v) { f.stall = milliseconds(v); })},
        {"stallAfter", WholeNumber(0, kLargestBody, [](Fault& f, unsigned v) { f.stallAfter = v; })},
        {"cutAfter", WholeNumber(0, kLargestBody, [](Fault& f, unsigned v) { f.cutAfter = v; })},
        {"contentLength", WholeNumber(0, kLargestContentLength, [](Fault& f, unsigned v) { f.contentLength = v; })},
        {"oversize", WholeNumber(1, kLargestBody, [](Fault& f, unsigned v) { f.oversize = v; })},
        {"times", WholeNumber(1, kMostTimes, [](Fault& f, unsigned v) { f.times = v; })},
    };
    return readers;
}

}  // namespace

ParsedFault ParseFault(const Json::Value& description) {
    ParsedFault parsed;
    for (const auto& name : description.getMemberNames()) {
        const auto reader = MemberReaders().find(name);
        if (reader == MemberReaders().end()) {
            return {{}, name + " is not a member of a fault"};
        }
        if (!reader->second(description[name], parsed.fault)) {
            return {{}, name + " has the wrong type or is out of range"};
        }
    }
    if (parsed.fault.endpoint.empty()) {
        return {{}, "endpoint is missing"};
    }
    if (parsed.fault.stallAfter && parsed.fault.stall == std::chrono::milliseconds::zero()) {
        return {{}, "stallAfter needs stallMs, how long the reply stalls"};
    }
    if (description.size() == (description.isMember("times") ? 2U : 1U)) {
        return {{},
                "the fault does nothing: give status, delayMs, stallMs, cutAfter, contentLength, unframed, body, "
                "garbage, oversize or wrongTypes"};
    }
    return parsed;
}

void FaultTable::Put(Fault fault) {
    const std::lock_guard<std::mutex> guard(m_lock);
    auto endpoint = fault.endpoint;
    m_faults.insert_or_assign(std::move(endpoint), std::move(fault));
}

void FaultTable::Clear() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_faults.clear();
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
