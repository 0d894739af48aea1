#include "sysconf/OperationRecords.h"

#include <array>
#include <ctime>
#include <utility>

namespace sandbox {
namespace {

constexpr std::size_t kMostRecords = 1000;  // of one account

std::string CurrentTime() {
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    const bool known = gmtime_s(&utc, &now) == 0;
    std::array<char, sizeof("2024-11-05T21:40:12Z")> text{};
    if (!known || std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &utc) == 0) {
        return {};
    }
    return text.data();
}

}  // namespace

void OperationRecords::Add(const std::string& userId, std::string description) {
    const std::lock_guard<std::mutex> guard(m_lock);
    auto& records = m_records[userId];
    records.push_back({std::move(description), CurrentTime()});
    if (records.size() > kMostRecords) {
        records.pop_front();
    }
}

std::deque<OperationRecord> OperationRecords::Of(const std::string& userId) const {
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto found = m_records.find(userId);
    return found == m_records.end() ? std::deque<OperationRecord>() : found->second;
}

void OperationRecords::Clear() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_records.clear();
}

}  // namespace sandbox
