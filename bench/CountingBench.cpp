#include "Subjects.h"
#include "contacts/CountCards.h"

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

std::size_t CountByFind(const std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size() && (at = text.find("BEGIN", at)) != std::string::npos; at += 6) {
        ++count;
    }
    return count;
}

double SecondsOfCount(const std::string& text, std::size_t (*count)(const std::string&)) {
    return SecondsOf([&] {
        const std::size_t found = count(text);
        Keep(&found);
    });
}

std::size_t CountOurs(const std::string& text) {
    return userauth::CountCards(text);
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
                row.what, AtMost(0.3), [&] { return SecondsOfCount(text, CountOurs); },
                [&] { return SecondsOfCount(text, CountByFind); });
        }
    }
    for (const std::size_t factor : {10U, 100U}) {
        const std::string what = "growth: contacts, x" + std::to_string(factor);
        if (report.Wants(what)) {
            constexpr std::size_t kFew = 1'000'000;
            const std::string many = Filled(card + end, kFew * 100);
            // Both sides walk on through the same text, so that neither finds its part in the caches.
            const auto countNext = [&many](std::size_t& at, std::size_t size) {
                at = at + 2 * size <= many.size() ? at + size : 0;
                return userauth::CountCards(std::string_view(many).substr(at, size));
            };
            std::size_t large = 0;
            std::size_t small = 0;
            report.Growth(
                what, static_cast<double>(factor), [&] { return countNext(large, kFew * factor); },
                [&] { return countNext(small, kFew); });
        }
    }
}

}  // namespace bench
