#include "steps/VcardFile.h"

#include <algorithm>
#include <fstream>
#include <string>
#include <string_view>

namespace host {
namespace {

// Letter case does not matter, and a line ends with a carriage return and a line feed, or just the latter.
bool IsLine(std::string_view line, std::string_view upperCase) {
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    return std::equal(line.begin(), line.end(), upperCase.begin(), upperCase.end(), [](char left, char right) {
        return (left >= 'a' && left <= 'z' ? static_cast<char>(left - 'a' + 'A') : left) == right;
    });
}

}  // namespace

VcardFile ReadVcardFile(const std::filesystem::path& file) {
    VcardFile found;
    std::ifstream stream(file, std::ios::binary);
    std::error_code error;
    found.bytes = std::filesystem::file_size(file, error);
    found.read = stream.is_open() && !error;
    for (std::string line; std::getline(stream, line);) {
        found.cards += IsLine(line, "BEGIN:VCARD") ? 1 : 0;
        found.whole = IsLine(line, "END:VCARD") || (found.whole && IsLine(line, ""));  // empty lines may follow
    }
    return found;
}

}  // namespace host
