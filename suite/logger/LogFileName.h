#pragma once

#include <memory>
#include <string>

namespace suite {

// A log file's name as long as this process alone writes under it.
class LogFileName {
public:
    // The path as it is given; when another process writes there, the path with "-" and the process id before its
    // extension: two processes cannot rotate one file. Creates the folder.
    static LogFileName Take(const std::wstring& path);

    const std::wstring& Path() const { return m_path; }
    // Whether another process has the name that was asked for.
    bool IsSecondChoice() const { return m_hold == nullptr; }

private:
    std::wstring m_path;
    std::shared_ptr<void> m_hold;
};

}  // namespace suite
