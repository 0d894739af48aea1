#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace userauth {

// The machine as its firmware describes it. Every text is empty and every number 0 when the firmware does not say.
struct DeviceIdentity {
    std::uint32_t smbiosMajorVersion = 0;
    std::uint32_t smbiosMinorVersion = 0;
    std::uint32_t dmiRevision = 0;

    struct System {  // structure type 1
        std::wstring manufacturer;
        std::wstring productName;
        std::wstring version;
        std::wstring serialNumber;
        std::wstring skuNumber;
        std::wstring family;
        std::array<std::uint8_t, 16> uuid{};
    } system;

    struct Bios {  // structure type 0
        std::wstring vendor;
        std::wstring version;
        std::wstring releaseDate;
        std::wstring release;                    // "major.minor"
        std::wstring embeddedControllerRelease;  // "major.minor", two-digit minor
    } bios;

    struct Baseboard {  // structure type 2
        std::wstring manufacturer;
        std::wstring product;
        std::wstring version;
        std::wstring serialNumber;
        std::wstring assetTag;
    } baseboard;

    struct Enclosure {  // structure type 3
        std::wstring manufacturer;
        std::wstring version;
        std::wstring serialNumber;
        std::wstring assetTag;
    } enclosure;

    std::vector<std::wstring> oemStrings;  // structure type 11
};

// Reads the raw firmware table as GetSystemFirmwareTable('RSMB') delivers it: an 8-byte header (calling method, major
// version, minor version, DMI revision, 32-bit length of what follows), then the structures of the DMTF's SMBIOS
// reference: type, formatted length, 16-bit handle, formatted area, and a set of zero-terminated strings that ends with
// an empty one.
//
// Any bytes are safe: a table shorter than its header says is read as far as it goes, the walk ends at a structure that
// is shorter than its own header or longer than the table, and after the end-of-table structure (type 127). A string
// number past its set reads as empty text, and number 0 leaves the field as an earlier structure of the type has set
// it. OEM strings end where their set ends. Texts are converted with the system's ANSI code page.
DeviceIdentity ReadSmbiosTable(const std::uint8_t* bytes, std::size_t size);

}  // namespace userauth
