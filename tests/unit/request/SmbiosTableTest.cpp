#include "request/SmbiosTable.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>

#include "request/DeviceIdentity.h"

using userauth::DeviceIdentity;
using userauth::ReadSmbiosTable;
using Bytes = std::string;

namespace {

// Type, formatted length, handle, the formatted area's rest (padded with zeros), the strings.
Bytes Structure(char type, std::size_t length, Bytes formatted, const Bytes& strings) {
    formatted.resize(length < 4 ? 0 : length - 4);
    return Bytes{type, static_cast<char>(length), 1, 0} + formatted + strings;
}

Bytes Strings(std::initializer_list<const char*> texts) {
    Bytes set;
    for (const char* text : texts) {
        set += Bytes(text) + '\0';
    }
    return set + (texts.size() == 0 ? Bytes(2, '\0') : Bytes(1, '\0'));
}

Bytes Table(const Bytes& structures, std::size_t announced) {
    Bytes header = {0, 2, 8, 5};
    for (int shift = 0; shift < 32; shift += 8) {
        header += static_cast<char>(announced >> shift);
    }
    return header + structures;
}

// The table ends where readable memory ends, so that a read past it is a fault.
DeviceIdentity Read(const Bytes& table) {
    constexpr std::size_t kPage = 4096;
    static auto* const pages = static_cast<std::uint8_t*>(VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE, PAGE_NOACCESS));
    auto* const readable = static_cast<std::uint8_t*>(VirtualAlloc(pages, kPage, MEM_COMMIT, PAGE_READWRITE));
    std::uint8_t* const start = readable + kPage - table.size();
    std::copy(table.begin(), table.end(), start);
    return ReadSmbiosTable(start, table.size());
}

DeviceIdentity ReadStructures(const Bytes& structures) { return Read(Table(structures, structures.size())); }

const Bytes kNumbers = "\1\2\3\4";
const Bytes kEnd = Structure(127, 4, "", Strings({}));

Bytes SystemStructure(std::size_t length) {
    Bytes formatted = kNumbers + "ABCDEFGHIJKLMNOP" + '\x06' + "\5\6";
    return Structure(1, length, formatted, Strings({"maker", "Caf\xE9 3000", "v1", "sn", "sku", "family"}));
}

}  // namespace

TEST(SmbiosTable, SystemStructureByItsLength) {
    const struct {
        std::size_t length;
        const wchar_t *product, *skuNumber, *family;
        Bytes uuid;
    } rows[] = {
        {5, L"", L"", L"", Bytes(16, '\0')},
        {6, L"Caf\u00E9 3000", L"", L"", Bytes(16, '\0')},
        {8, L"Caf\u00E9 3000", L"", L"", Bytes(16, '\0')},
        {9, L"Caf\u00E9 3000", L"", L"", Bytes("Amaker\0Caf\xE9 3000", 16)},
        {25, L"Caf\u00E9 3000", L"", L"", "ABCDEFGHIJKLMNOP"},
        {26, L"Caf\u00E9 3000", L"sku", L"", "ABCDEFGHIJKLMNOP"},
        {27, L"Caf\u00E9 3000", L"sku", L"family", "ABCDEFGHIJKLMNOP"},
    };
    for (const auto& row : rows) {
        const auto& system = ReadStructures(SystemStructure(row.length) + kEnd).system;
        EXPECT_EQ(system.productName, row.product) << row.length;
        EXPECT_EQ(system.skuNumber, row.skuNumber) << row.length;
        EXPECT_EQ(system.family, row.family) << row.length;
        EXPECT_EQ(Bytes(system.uuid.begin(), system.uuid.end()), row.uuid) << row.length;
    }
}

TEST(SmbiosTable, ReadsEveryStructureItKnows) {
    const DeviceIdentity identity = ReadStructures(
        Structure(0, 24, Bytes("\1\2\0\0\3\0\0\0\0\0\0\0\0\0\0\0\4\7\1\2", 20), Strings({"bios", "1.0", "date"})) +
        Structure(9, 6, "\1\1", Strings({"ignored"})) +
        Structure(2, 9, "\1\2\3\4\5", Strings({"b", "c", "d", "e", "f"})) +
        Structure(3, 9, Bytes("\1\0\2\3\4", 5), Strings({"g", "h", "i", "j"})) +
        Structure(11, 5, "\3", Strings({"o1", "o2"})) + SystemStructure(27) + kEnd);
    EXPECT_EQ(identity.smbiosMajorVersion, 2);
    EXPECT_EQ(identity.smbiosMinorVersion, 8);
    EXPECT_EQ(identity.dmiRevision, 5);
    EXPECT_EQ(identity.bios.vendor, L"bios");
    EXPECT_EQ(identity.bios.version, L"1.0");
    EXPECT_EQ(identity.bios.releaseDate, L"date");
    EXPECT_EQ(identity.bios.release, L"4.7");
    EXPECT_EQ(identity.bios.embeddedControllerRelease, L"1.02");
    const auto& [manufacturer, product, version, serialNumber, assetTag] = identity.baseboard;
    EXPECT_EQ(manufacturer + product + version + serialNumber + assetTag, L"bcdef");
    const auto& enclosure = identity.enclosure;
    EXPECT_EQ(enclosure.manufacturer + enclosure.version + enclosure.serialNumber + enclosure.assetTag, L"ghij");
    EXPECT_EQ(identity.oemStrings, (std::vector<std::wstring>{L"o1", L"o2"}));
    EXPECT_EQ(identity.system.manufacturer, L"maker");
    EXPECT_EQ(identity.system.version, L"v1");
    EXPECT_EQ(identity.system.serialNumber, L"sn");
}

TEST(SmbiosTable, ReleaseNumbersAreTwoBytesThatMayBeUnsupported) {
    const struct {
        const char* name;
        std::size_t length;
        Bytes numbers;  // of the firmware, then of its controller
        const wchar_t *release, *controller;
    } rows[] = {
        {"both", 24, "\4\7\1\2", L"4.7", L"1.02"},
        {"major 255 alone", 24, "\xFF\7\xFF\2", L"255.7", L"255.02"},
        {"minor 255 alone", 24, "\4\xFF\1\xFF", L"4.255", L"1.255"},
        {"unsupported", 24, "\xFF\xFF\xFF\xFF", L"", L""},
        {"no minor of the controller", 23, "\4\7\1", L"4.7", L""},
        {"no controller", 22, "\4\7", L"4.7", L""},
        {"no minor", 21, "\4", L"", L""},
    };
    for (const auto& row : rows) {
        const auto bios = ReadStructures(Structure(0, row.length, Bytes(16, '\0') + row.numbers, Strings({}))).bios;
        EXPECT_EQ(bios.release, row.release) << row.name;
        EXPECT_EQ(bios.embeddedControllerRelease, row.controller) << row.name;
    }
}

// Its last byte is the table's last.
TEST(SmbiosTable, AStructureMayEndWithTheTable) {
    const auto uuid = ReadStructures(Structure(1, 24, Bytes(4, '\0') + "ABCDEFGHIJKLMNOP", "")).system.uuid;
    EXPECT_EQ(Bytes(uuid.begin(), uuid.end()), "ABCDEFGHIJKLMNOP");
}

TEST(SmbiosTable, MalformedTablesAreReadAsFarAsTheyGo) {
    const Bytes system = SystemStructure(27);
    const Bytes product = "\1\2";
    const struct {
        const char* name;
        Bytes table;
        const wchar_t* product;
    } rows[] = {
        {"nothing", "", L""},
        {"header only", Table("", 0), L""},
        {"half a header", "\1\2\3", L""},
        {"announced 0", Table(system, 0), L""},
        {"announced too much", Table(system, 0xFFFFFFFF), L"Caf\u00E9 3000"},
        {"announced less than there is",
         Table(Structure(11, 5, "\1", Strings({std::string(300, 'o').c_str()})) + system, 307), L""},
        {"length 4 before", Table(Structure(9, 4, "", Strings({})) + system, 500), L"Caf\u00E9 3000"},
        {"no end of table", Table(system, system.size()), L"Caf\u00E9 3000"},
        {"length 0 before", Table(Structure(9, 0, "", "") + system, 500), L""},
        {"length 3 before", Table(Structure(9, 3, "", "") + system, 500), L""},
        {"longer than the table", Table(Bytes("\1\xFF\0\0\1\2", 6), 500), L""},
        {"string without end", Table(Structure(1, 8, product, "x"), 500), L""},
        {"last string without end", Table(Structure(1, 8, product, Bytes("x\0yz", 4)), 500), L"yz"},
        {"number past the set", Table(Structure(1, 8, "\1\x09", Strings({"x"})), 500), L""},
        {"no strings at all", Table(Structure(1, 8, product, ""), 500), L""},
        {"string number 0", Table(Structure(1, 8, Bytes("\1\0", 2), Strings({"x"})), 500), L""},
        {"second structure without a number",
         Table(system + Structure(1, 8, Bytes("\1\0", 2), Strings({"x"})) + Structure(1, 4, "", Strings({})), 500),
         L"Caf\u00E9 3000"},
        {"second structure with a number", Table(system + Structure(1, 8, product, Strings({"x", "y"})), 500), L"y"},
        {"garbage behind the end", Table(system + kEnd + Structure(1, 8, product, Strings({"a", "b"})), 500),
         L"Caf\u00E9 3000"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Read(row.table).system.productName, row.product) << row.name;
    }
}

TEST(SmbiosTable, EveryTruncationAndEveryLengthByteIsSurvived) {
    const Bytes whole = Table(SystemStructure(27) + Structure(11, 5, "\xFF", Strings({"o"})) + kEnd, 4096);
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        Read(whole.substr(0, size));
    }
    for (int length = 0; length < 256; ++length) {
        Bytes table = whole;
        table[9] = static_cast<char>(length);
        Read(table);
    }
    EXPECT_EQ(Read(whole).system.productName, L"Caf\u00E9 3000");
}

// If the counts were believed, each kilobyte of the table would give 37,000 empty strings.
TEST(SmbiosTable, OemStringsEndWithTheirSet) {
    Bytes structures = Structure(11, 5, "\xFF", Strings({"o1", "o2"}));
    while (structures.size() < 4000) {
        structures += Structure(11, 5, "\xFF", Strings({}));
    }
    EXPECT_EQ(ReadStructures(structures).oemStrings, (std::vector<std::wstring>{L"o1", L"o2"}));
}

TEST(DeviceIdentity, NameHeaderHasADefaultAndALimit) {
    DeviceIdentity identity;
    EXPECT_EQ(userauth::DeviceNameHeader(identity), L"PC");
    identity.system.productName = std::wstring(249, L'a') + std::wstring(51, L'b');
    EXPECT_EQ(userauth::DeviceNameHeader(identity), std::wstring(249, L'a') + L"b");
    identity.system.productName = std::wstring(L"a\r\nb\tc\0d\x1F\x7F\x80\x9F\xA0\u00E9", 14);
    EXPECT_EQ(userauth::DeviceNameHeader(identity), L"a  b c d    \xA0\u00E9") << "control characters as blanks";
    EXPECT_EQ(&userauth::CurrentDeviceIdentity(), &userauth::CurrentDeviceIdentity());
}
