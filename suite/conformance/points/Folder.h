#pragma once

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace conformance {

// How many there were.
inline int g_folders = 0;

// A folder of the point's own that no other point had (a library may remember it), empty at first, with characters
// outside ASCII in its name; removed with what is in it.
class Folder {
public:
    explicit Folder(const wchar_t* name)
        : m_path(std::filesystem::temp_directory_path() /
                 (L"suite-conformance-" + std::to_wstring(GetCurrentProcessId()) + L" \u00E9\u4E2D") /
                 (name + std::to_wstring(++g_folders))) {
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path.parent_path(), ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::filesystem::path operator/(const std::filesystem::path& name) const { return m_path / name; }

private:
    std::filesystem::path m_path;
};

inline std::string TextOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

inline void WriteText(const std::filesystem::path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}

inline std::size_t CountOf(const std::string& part, const std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) {
        ++count;
    }
    return count;
}

}  // namespace conformance
