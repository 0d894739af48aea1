#include "http/TrafficLog.h"

#include <utility>

namespace sandbox {

void TrafficLog::AddListener(const std::string& listener) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_counts.connections.emplace(listener, 0);
}

void TrafficLog::CountConnection(const std::string& listener) {
    const std::lock_guard<std::mutex> guard(m_lock);
    ++m_counts.connections[listener];
}

void TrafficLog::RecordRequest(const std::string& path, std::string head, std::string body) {
    const std::lock_guard<std::mutex> guard(m_lock);
    ++m_counts.requests[path];
    m_last[path] = {std::move(head), std::move(body)};
}

TrafficLog::Counts TrafficLog::Totals() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_counts;
}

std::optional<TrafficLog::Recorded> TrafficLog::LastRequest(const std::string& path) const {
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto found = m_last.find(path);
    return found == m_last.end() ? std::nullopt : std::optional<Recorded>(found->second);
}

}  // namespace sandbox
