#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace host {

// The file that a download goes into, beside the wanted one. It takes the wanted file's place at last, or is deleted.
class PartFile {
public:
    // Deletes what an earlier try left.
    explicit PartFile(std::filesystem::path wanted);
    ~PartFile() { Delete(); }
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    const std::filesystem::path& Path() const { return m_path; }
    bool Exists() const;
    // False, and nothing is changed, when the wanted file cannot be replaced: it is read-only, or open elsewhere for
    // more than a second.
    bool Replace(const std::filesystem::path& wanted) const;
    // Whether the disk has no room for another block. Contacts may be missing then: the service does not check that
    // its writes succeed.
    bool IsDiskFull() const;

private:
    void Delete() const;

    const std::filesystem::path m_path;
};

struct VcardFile {
    bool read = false;  // whether it could be read
    std::uintmax_t bytes = 0;
    std::size_t cards = 0;  // by their first lines, BEGIN:VCARD (RFC 6350, 6.1.1)
    bool whole = false;     // whether its last line is a card's last, END:VCARD (6.1.2)
};

VcardFile ReadVcardFile(const std::filesystem::path& file);

}  // namespace host
