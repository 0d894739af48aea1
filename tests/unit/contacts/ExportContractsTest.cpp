#include <HttpLib.h>

#include "ServiceFixture.h"
#include "contacts/CountCards.h"

namespace {

using ExportContracts = ServiceTest;
const std::string kEarlier = "what an earlier export left";

std::filesystem::path TestFile() {
    return std::filesystem::temp_directory_path() / (L"contacts-\u0E17-" + std::to_wstring(GetCurrentProcessId()));
}

}  // namespace

TEST_F(ExportContracts, WritesAndCounts) {
    const std::filesystem::path path = TestFile();
    const std::string card = "BEGIN:VCARD\r\nEND:VCARD\r\n";
    const struct : ReplyRow {
        std::string count = {};
        bool writable = true;
    } rows[] = {
        {"three cards", 200, card + card + card, true, "3"},
        {"a note that counts too", 200, card + "NOTE:BEGINNING\r\n", true, "2"},
        {"the second one begins too early", 200, "BEGINBEGIN", true, "1"},
        {"zero bytes", 200, std::string("BEGIN\0\0BEGIN", 12), true, "2"},
        {"small letters", 200, "begin", true, "0"},
        {"empty", 200, "", true, "0"},
        {"unwritable path", 200, card, true, "1", false},
        {"not found", 404, "", false},
        {"no exchange", kHttpConnectionBroken, "", false},
        {"partial", 206, card, false},
    };
    for (const auto& row : rows) {
        WriteFile(path, kEarlier);
        const auto exportCards = [&](auto& service) {
            const Headers cookies = {{L"b", L"2"}, {L"a", L"1"}};
            return service.ExportContracts(L"https://h/e", (row.writable ? path : path / "no" / "folder").wstring(),
                                           cookies);
        };
        EXPECT_EQ(Outcome(row, exportCards),
                  row.result
                      ? Lines{"event 148 1 0 num=" + row.count} +
                            Lines{"log 0 2 UserAuthService::ContractsCounts NIMBASUITE_CONTACT_EXPORT " + row.count} +
                            Log("2", "ExportContracts", "ExportContracts successed!")
                      : Log("5", "ExportContracts", "Error: ExportContracts failed!"))
            << row.name;
        EXPECT_TRUE(std::filesystem::exists(path)) << row.name;
        EXPECT_EQ(ReadFile(path), row.writable ? row.body : kEarlier) << row.name;
    }
    std::filesystem::remove(path);
    EXPECT_EQ(Recording().url, L"https://h/e");
    EXPECT_EQ(Recording().requestHeaders, (Headers{{L"Accept", L"application/json, text/plain, */*"},
                                                   {L"Accept-Encoding", L"gzip, deflate, br"},
                                                   {L"Accept-Language", L"zh-CN"},
                                                   {L"Cache-Control", L"application/json, text/plain, */*"},
                                                   {L"ContentType", L"application/force-download"},
                                                   {L"Content-Disposition", L"attachment; filename='contacts.vcf'"},
                                                   {L"Cookie", L"a=1;b=2;"}}));
}

TEST_F(ExportContracts, CountsWhateverStandsWhere) {
    constexpr std::size_t kBlock = 99'991;  // of the stand-in's downloads
    std::string body;
    for (int block = 1; block <= 30; ++block) {
        body.resize(block * kBlock - 2, '.');
        body += "BEGIN";
    }
    Recording().replies = {{200, body, {}}};
    EXPECT_TRUE(m_service->ExportContracts(L"https://h/e", TestFile().wstring(), {}));
    EXPECT_EQ(Recording().Lines("event"), Lines{"event 148 1 0 num=30"});
    EXPECT_EQ(ReadFile(TestFile()), body);
    EXPECT_EQ(Recording().requestHeaders.at(L"Cookie"), L"");
    std::filesystem::remove(TestFile());

    // Marks at every place, next to each other and cut, in texts of every length.
    unsigned value = 3;
    for (std::size_t length = 0; length < 300; ++length) {
        for (body.clear(); body.size() < length; value = value * 1103515245 + 12345) {
            body += (value >> 16) % 3 != 0 ? "BEGIN" : std::string("BEGIN.", (value >> 20) % 7);
        }
        body.resize(length);
        std::size_t count = 0;
        for (std::size_t hit = body.find("BEGIN"); hit != std::string::npos; hit = body.find("BEGIN", hit + 6)) {
            ++count;
        }
        EXPECT_EQ(userauth::CountCards(body), count) << body;
    }
}
