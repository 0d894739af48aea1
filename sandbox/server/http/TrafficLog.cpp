#include "http/TrafficLog.h"

#include <algorithm>
#include <utility>

namespace sandbox {
namespace {

constexpr std::size_t kMostShown = 200;
constexpr std::size_t kLongestShownText = 8 * 1024;

void Shorten(std::string& text) {
    if (text.size() > kLongestShownText) {
        const auto left = text.size() - kLongestShownText;
        text.resize(kLongestShownText);
        text.shrink_to_fit();
        text += "\n[and " + std::to_string(left) + " bytes more]";
    }
}

}  // namespace

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

void TrafficLog::Show(ShownExchange exchange) {
    for (auto* text : {&exchange.requestHead, &exchange.requestBody, &exchange.replyHead, &exchange.replyBody}) {
        Shorten(*text);
    }
    const std::lock_guard<std::mutex> guard(m_lock);
    exchange.number = m_nextNumber++;
    m_shown.push_back(std::move(exchange));
    if (m_shown.size() > kMostShown) {
        m_shown.pop_front();
    }
}

std::vector<ShownExchange> TrafficLog::ShownAfter(std::uint64_t number) const {
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto first = std::find_if(m_shown.begin(), m_shown.end(),
                                    [number](const ShownExchange& shown) { return shown.number > number; });
    return {first, m_shown.end()};
}

std::uint64_t TrafficLog::OldestShown() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_shown.empty() ? m_nextNumber : m_shown.front().number;
}

std::optional<ShownExchange> TrafficLog::Shown(std::uint64_t number) const {
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto found = std::find_if(m_shown.begin(), m_shown.end(),
                                    [number](const ShownExchange& shown) { return shown.number == number; });
    return found == m_shown.end() ? std::nullopt : std::optional(*found);
}

void TrafficLog::ForgetShown() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_shown.clear();
}

}  // namespace sandbox
