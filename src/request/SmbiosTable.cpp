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

    // The string whose number stands at the given offset.
    std::wstring StringAt(std::size_t offset) const { return String(Byte(offset)); }

    // The n-th string, from 1; 0 means none.
    std::wstring String(unsigned number) const {
        const std::uint8_t* start = Strings();
        for (unsigned current = 1; number != 0 && start < tableEnd && *start != 0; ++current) {
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
    bios.vendor = structure.StringAt(4);
    bios.version = structure.StringAt(5);
    bios.releaseDate = structure.StringAt(8);
    bios.release = Release(structure, 20, false);
    bios.embeddedControllerRelease = Release(structure, 22, true);
}

void ReadSystem(const Structure& structure, DeviceIdentity::System& system) {
    constexpr std::size_t kUuidOffset = 8;
    constexpr std::size_t kSkuOffset = 25;
    system.manufacturer = structure.StringAt(4);
    system.productName = structure.StringAt(5);
    system.version = structure.StringAt(6);
    system.serialNumber = structure.StringAt(7);
    if (structure.formattedLength > kUuidOffset &&
        static_cast<std::size_t>(structure.tableEnd - structure.bytes) >= kUuidOffset + system.uuid.size()) {
        std::copy_n(structure.bytes + kUuidOffset, system.uuid.size(), system.uuid.begin());
    }
    if (structure.formattedLength > kSkuOffset) {
        system.skuNumber = structure.StringAt(kSkuOffset);
        system.family = structure.StringAt(kSkuOffset + 1);
    }
}

void ReadBaseboard(const Structure& structure, DeviceIdentity::Baseboard& baseboard) {
    baseboard.manufacturer = structure.StringAt(4);
    baseboard.product = structure.StringAt(5);
    baseboard.version = structure.StringAt(6);
    baseboard.serialNumber = structure.StringAt(7);
    baseboard.assetTag = structure.StringAt(8);
}

void ReadEnclosure(const Structure& structure, DeviceIdentity::Enclosure& enclosure) {
    enclosure.manufacturer = structure.StringAt(4);
    enclosure.version = structure.StringAt(6);
    enclosure.serialNumber = structure.StringAt(7);
    enclosure.assetTag = structure.StringAt(8);
}

void ReadOemStrings(const Structure& structure, std::vector<std::wstring>& oemStrings) {
    for (unsigned number = 1; number <= structure.Byte(4); ++number) {
        oemStrings.push_back(structure.String(number));
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
    if (bytes == nullptr || size < kRawHeaderBytes) {
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
