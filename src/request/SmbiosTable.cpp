#include "request/SmbiosTable.h"

#include <algorithm>

#include "core/BoundedFormat.h"
#include "core/TextEncoding.h"

namespace userauth {
namespace {

constexpr std::size_t kRawHeaderBytes = 8;
constexpr std::size_t kStructureHeaderBytes = 4;

enum StructureType : std::uint8_t {
    kBios = 0,
    kSystem = 1,
    kBaseboard = 2,
    kEnclosure = 3,
    kOemStrings = 11,
    kEndOfTable = 127,
};

// One structure: its formatted area, and everything from there to the table's end as the bound of its string set.
struct Structure {
    const std::uint8_t* bytes;
    std::size_t formattedLength;
    const std::uint8_t* tableEnd;

    const std::uint8_t* Strings() const { return bytes + formattedLength; }

    bool Has(std::size_t offset) const { return offset < formattedLength; }
    std::uint8_t Byte(std::size_t offset) const { return Has(offset) ? bytes[offset] : std::uint8_t{0}; }

    // Reads the string whose number stands at the given offset. Number 0 says that there is none: the field stays, so
    // that a second structure of a type takes nothing back that the first has told.
    void ReadString(std::size_t offset, std::wstring& field) const {
        if (const unsigned number = Byte(offset)) {
            field = String(number);
        }
    }

    // The n-th string, from 1; empty when the set has not as many.
    std::wstring String(unsigned number) const {
        const std::uint8_t* start = Strings();
        for (unsigned current = 1; start < tableEnd && *start != 0; ++current) {
            const std::uint8_t* const end = std::find(start, tableEnd, std::uint8_t{0});
            if (current == number) {
                return MultiByteToWide(std::string(start, end), kAnsiCodePage);
            }
            start = end == tableEnd ? end : end + 1;
        }
        return {};
    }

    // Where the next structure starts: behind the double zero that ends the string set.
    const std::uint8_t* Next() const {
        constexpr std::uint8_t kSetEnd[] = {0, 0};
        const std::uint8_t* const end = std::search(Strings(), tableEnd, std::begin(kSetEnd), std::end(kSetEnd));
        return end == tableEnd ? end : end + sizeof(kSetEnd);
    }
};

// A release number of two bytes as text; empty when the structure does not reach that far, or when 255 in both says
// that the firmware does not support it.
std::wstring Release(const Structure& structure, std::size_t offset, bool twoDigitMinor) {
    const int major = structure.Byte(offset);
    const int minor = structure.Byte(offset + 1);
    if (!structure.Has(offset + 1) || (major == 0xFF && minor == 0xFF)) {
        return {};
    }
    char text[16] = {};
    if (twoDigitMinor) {
        FormatString(text, sizeof(text), "%d.%02d", major, minor);
    } else {
        FormatString(text, sizeof(text), "%d.%d", major, minor);
    }
    return MultiByteToWide(text, kAnsiCodePage);
}

void ReadBios(const Structure& structure, DeviceIdentity::Bios& bios) {
    structure.ReadString(4, bios.vendor);
    structure.ReadString(5, bios.version);
    structure.ReadString(8, bios.releaseDate);
    bios.release = Release(structure, 20, false);
    bios.embeddedControllerRelease = Release(structure, 22, true);
}

void ReadSystem(const Structure& structure, DeviceIdentity::System& system) {
    constexpr std::size_t kUuidOffset = 8;
    constexpr std::size_t kSkuOffset = 25;
    structure.ReadString(4, system.manufacturer);
    structure.ReadString(5, system.productName);
    structure.ReadString(6, system.version);
    structure.ReadString(7, system.serialNumber);
    if (structure.formattedLength > kUuidOffset &&
        static_cast<std::size_t>(structure.tableEnd - structure.bytes) >= kUuidOffset + system.uuid.size()) {
        std::copy_n(structure.bytes + kUuidOffset, system.uuid.size(), system.uuid.begin());
    }
    if (structure.formattedLength > kSkuOffset) {
        structure.ReadString(kSkuOffset, system.skuNumber);
        structure.ReadString(kSkuOffset + 1, system.family);
    }
}

void ReadBaseboard(const Structure& structure, DeviceIdentity::Baseboard& baseboard) {
    structure.ReadString(4, baseboard.manufacturer);
    structure.ReadString(5, baseboard.product);
    structure.ReadString(6, baseboard.version);
    structure.ReadString(7, baseboard.serialNumber);
    structure.ReadString(8, baseboard.assetTag);
}

void ReadEnclosure(const Structure& structure, DeviceIdentity::Enclosure& enclosure) {
    structure.ReadString(4, enclosure.manufacturer);
    structure.ReadString(6, enclosure.version);
    structure.ReadString(7, enclosure.serialNumber);
    structure.ReadString(8, enclosure.assetTag);
}

void ReadOemStrings(const Structure& structure, std::vector<std::wstring>& oemStrings) {
    // The count that the structure gives is not trusted: it ends with the set at the latest.
    for (unsigned number = 1; number <= structure.Byte(4); ++number) {
        const std::wstring text = structure.String(number);
        if (text.empty()) {
            return;
        }
        oemStrings.push_back(text);
    }
}

void ReadStructure(const Structure& structure, DeviceIdentity& identity) {
    switch (structure.bytes[0]) {
        case kBios:
            return ReadBios(structure, identity.bios);
        case kSystem:
            return ReadSystem(structure, identity.system);
        case kBaseboard:
            return ReadBaseboard(structure, identity.baseboard);
        case kEnclosure:
            return ReadEnclosure(structure, identity.enclosure);
        case kOemStrings:
            return ReadOemStrings(structure, identity.oemStrings);
        default:
            return;
    }
}

}  // namespace

DeviceIdentity ReadSmbiosTable(const std::uint8_t* bytes, std::size_t size) {
    DeviceIdentity identity;
    if (size < kRawHeaderBytes) {
        return identity;
    }
    identity.smbiosMajorVersion = bytes[1];
    identity.smbiosMinorVersion = bytes[2];
    identity.dmiRevision = bytes[3];
    const std::size_t announced =
        bytes[4] | (std::size_t{bytes[5]} << 8) | (std::size_t{bytes[6]} << 16) | (std::size_t{bytes[7]} << 24);
    const std::uint8_t* position = bytes + kRawHeaderBytes;
    const std::uint8_t* const end = position + std::min(announced, size - kRawHeaderBytes);
    while (static_cast<std::size_t>(end - position) >= kStructureHeaderBytes) {
        const Structure structure{position, position[1], end};
        if (position[0] == kEndOfTable || structure.formattedLength < kStructureHeaderBytes ||
            structure.formattedLength > static_cast<std::size_t>(end - position)) {
            break;
        }
        ReadStructure(structure, identity);
        position = structure.Next();
    }
    return identity;
}

}  // namespace userauth
