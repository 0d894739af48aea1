#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace host {

struct VcardFile {
    bool read = false;  // whether it could be read
    std::uintmax_t bytes = 0;
    std::size_t cards = 0;  // by their first lines, BEGIN:VCARD (RFC 6350, 6.1.1)
    bool whole = false;     // whether its last line is a card's last, END:VCARD (6.1.2)
};

VcardFile ReadVcardFile(const std::filesystem::path& file);

}  // namespace host
