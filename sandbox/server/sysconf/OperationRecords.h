#pragma once

#include <deque>
#include <map>
#include <mutex>
#include <string>

namespace sandbox {

struct OperationRecord {
    std::string description;
    std::string time;  // when it came, as in 2024-11-05T21:40:12Z
};

// What clients reported of their operations, the latest thousand of each account. All operations may be called from any
// thread.
class OperationRecords {
public:
    void Add(const std::string& userId, std::string description);
    // Oldest first.
    std::deque<OperationRecord> Of(const std::string& userId) const;
    void Clear();

private:
    mutable std::mutex m_lock;
    std::map<std::string, std::deque<OperationRecord>> m_records;  // by user id; guarded by m_lock
};

}  // namespace sandbox
