#pragma once

#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>

#include "text/Console.h"

namespace host {

// Shows how a file grows, by a bar and its size on the current line of a terminal, from a thread of its own while it
// lives. How large it will be is not known: the bar only moves. Elsewhere than on a terminal it does nothing. Nothing
// else may be written meanwhile; the line is left as it is.
class GrowingFile {
public:
    // title: what the line starts with, UTF-8.
    GrowingFile(Console& console, std::string title, std::filesystem::path file);
    ~GrowingFile();
    GrowingFile(const GrowingFile&) = delete;
    GrowingFile& operator=(const GrowingFile&) = delete;

private:
    void Watch();

    Console& m_console;
    const std::string m_title;
    const std::filesystem::path m_file;
    std::mutex m_mutex;
    std::condition_variable m_ended;
    bool m_end = false;
    std::thread m_thread;  // last: it uses all the others
};

}  // namespace host
