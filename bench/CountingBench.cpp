#include "ServiceAccess.h"
#include "Subjects.h"

namespace bench {
namespace {

std::string Photo() {
    std::string text = "PHOTO;ENCODING=b:";
    for (unsigned value = 11; text.size() < 20000; value = value * 1103515245 + 12345) {
        text += "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"[(value >> 16) % 64];
    }
    return text + "\r\n";
}

std::string Filled(const std::string& item, std::size_t bytes) {
    std::string text;
    text.reserve(bytes + item.size());
    while (text.size() < bytes) {
        text += item;
    }
    return text;
}

double CountOurs(const std::string& text) {
    std::string copy = text;
    return SecondsOf([&] { UserAuthServiceAccess::CountContacts(Service(), std::move(copy)); });
}

double CountByFind(const std::string& text) {
    std::string copy = text;  // as fresh in the caches as the other side's
    return SecondsOf([&] {
        std::size_t count = 0;
        for (std::size_t hit = copy.find("BEGIN"); hit != std::string::npos; hit = copy.find("BEGIN", hit + 6)) {
            ++count;
        }
        Keep(&count);
        std::string().swap(copy);
    });
}

}  // namespace

void BenchCounting(Report& report) {
    const std::string card =
        "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Ada Lovelace\r\nN:Lovelace;Ada;;;\r\nTEL;TYPE=CELL:+49 30 1234567\r\n";
    const std::string end = "EMAIL:ada.lovelace@example.com\r\nEND:VCARD\r\n";
    const struct {
        const char* what;
        std::string item;
    } rows[] = {{"counting 100 MB of vCards", card + end},
                {"counting 100 MB with photos", card + Photo() + end},
                {"counting 100 MB rich in B", "BBBBBBBBBBBBBBBB"},
                {"counting 100 MB rich in BEGI", "BEGIBEGIBEGI"}};
    for (const auto& row : rows) {
        if (report.Wants(row.what)) {
            const std::string text = Filled(row.item, 100'000'000);
            report.Timed(
                row.what, AtMost(0.3), [&] { return CountOurs(text); }, [&] { return CountByFind(text); });
        }
    }
    for (const int factor : {10, 100}) {
        const std::string what = "growth: contacts, x" + std::to_string(factor);
        if (report.Wants(what)) {
            const std::string many = Filled(card + end, 1'000'000 * static_cast<std::size_t>(factor));
            const std::string few = Filled(card + end, 1'000'000);
            report.Growth(
                what, factor, [&] { return CountOurs(many); }, [&] { return CountOurs(few); });
        }
    }
}

}  // namespace bench
