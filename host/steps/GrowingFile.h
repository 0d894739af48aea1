#pragma once

#include <filesystem>
#include <future>
#include <string>

#include "text/Console.h"

namespace host {

// Shows how a file grows, by a bar and its size on the current line of a terminal, from a thread of its own while it
// lives. How large it will be is not known: the bar only moves. Nothing else may be written meanwhile; the line is left
// as it is.
class GrowingFile {
public:
    // title: what the line starts with, UTF-8.
    GrowingFile(Console& console, std::string title, std::filesystem::path file);
    ~GrowingFile();
    GrowingFile(const GrowingFile&) = delete;
    GrowingFile& operator=(const GrowingFile&) = delete;

private:
    std::promise<void> m_end;
    std::future<void> m_watch;  // its destructor waits for the thread
};

}  // namespace host
