#include "contacts/CountCards.h"

#include <emmintrin.h>

namespace userauth {

namespace {

constexpr std::string_view kMark = "BEGIN";
constexpr std::size_t kPlaces = 16;
constexpr std::size_t kSeen = kPlaces + kMark.size() - 1;

// Bit n: a mark may begin n characters on, because its third and its last letter, rare ones, stand where they should.
// Photos and names are full of single letters of the mark, at each of which a search for the whole of it stops.
unsigned Candidates(const char* text) {
    const auto isLetter = [text](std::size_t index) {
        const __m128i letters = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + index));
        return _mm_cmpeq_epi8(letters, _mm_set1_epi8(kMark[index]));
    };
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_and_si128(isLetter(2), isLetter(4))));
}

}  // namespace

std::size_t CountCards(std::string_view content) {
    std::size_t count = 0;
    std::size_t at = 0;
    while (at + kSeen <= content.size()) {
        unsigned candidates = Candidates(content.data() + at);
        if (candidates == 0) {
            at += kPlaces;
            continue;
        }
        for (; (candidates & 1U) == 0; candidates >>= 1) {
            ++at;
        }
        const bool isMark = content.compare(at, kMark.size(), kMark) == 0;
        count += isMark ? 1 : 0;
        at += isMark ? kMark.size() + 1 : 1;
    }
    while (at < content.size() && (at = content.find(kMark, at)) != std::string_view::npos) {
        ++count;
        at += kMark.size() + 1;
    }
    return count;
}

}  // namespace userauth
