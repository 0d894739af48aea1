#include "contacts/ContactCards.h"

#include <algorithm>
#include <array>

namespace sandbox {
namespace {

struct PersonName {
    const char* family;
    const char* given;
};

// One of them beyond the basic plane.
constexpr std::array<PersonName, 6> kNames = {{
    {"\u738B", "\u5C0F\u660E"},
    {"M\u00FCller", "J\u00F6rg"},
    {"O'Hara; de", "Maureen, R."},
    {"\u0421\u043C\u0438\u0440\u043D\u043E\u0432\u0430", "\u041E\u043B\u044C\u0433\u0430"},
    {"\U0001F33B", "Iris"},
    {"\u0E2A\u0E38\u0E02\u0E43\u0E08", "\u0E21\u0E32\u0E25\u0E35"},
}};

// What would end a value or one of its parts is escaped.
std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char character : text) {
        if (character == '\n') {
            escaped += "\\n";
            continue;
        }
        if (character == '\\' || character == ';' || character == ',') {
            escaped += '\\';
        }
        escaped += character;
    }
    return escaped;
}

std::string Line(const std::string& property, const std::string& value) {
    return property + ":" + value + "\r\n";
}

std::string Card(std::size_t number, const std::string& note) {
    constexpr std::size_t kNumberDigits = 7;
    const auto& name = kNames.at(number % kNames.size());
    const auto text = std::to_string(number);
    const auto digits = std::string(kNumberDigits - std::min(text.size(), kNumberDigits), '0') + text;
    return Line("BEGIN", "VCARD") + Line("VERSION", "3.0") +
           Line("N", Escaped(name.family) + ";" + Escaped(name.given) + ";;;") +
           Line("FN", Escaped(std::string(name.given) + " " + name.family)) + Line("TEL;TYPE=CELL", "+86138" + digits) +
           Line("EMAIL;TYPE=INTERNET", "contact" + text + "@example.com") +
           (note.empty() ? "" : Line("NOTE", Escaped(note))) + Line("END", "VCARD");
}

}  // namespace

std::string ContactCards(std::size_t count, const std::string& note) {
    std::string cards;
    for (std::size_t number = 0; number < count; ++number) {
        cards += Card(number, number == 0 ? note : std::string());
    }
    return cards;
}

StreamedBody RepeatedCard(std::size_t size) {
    constexpr std::size_t kRepetitions = 8192;
    std::string block;
    const auto card = Card(0, {});
    for (std::size_t repetition = 0; repetition < kRepetitions; ++repetition) {
        block += card;
    }
    return {size, [block](std::size_t offset) { return std::string_view(block).substr(offset % block.size()); }};
}

}  // namespace sandbox
