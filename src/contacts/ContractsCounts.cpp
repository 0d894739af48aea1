#include <Logger.h>

#include <string_view>

#include "UserAuthService.h"
#include "core/ServiceLog.h"

namespace {

// Business event of the export: basic event, operation, action.
constexpr int kEventContactsExport[] = {148, 1, 0};

constexpr std::string_view kMark = "BEGIN";
constexpr std::size_t kBlock = 64;
constexpr std::size_t kSeenByBlock = kBlock + kMark.size() - 1;

// Whether a mark may begin at one of the block's places: no when its third and its last letter, rare ones, do not stand
// where they should at any. Without a branch, so that the compiler compares many places at once.
bool MayHoldMark(const char* block) {
    unsigned char found = 0;
    for (std::size_t at = 0; at < kBlock; ++at) {
        const unsigned char isThird = block[at + 2] == kMark[2] ? 1 : 0;
        const unsigned char isLast = block[at + 4] == kMark[4] ? 1 : 0;
        found = static_cast<unsigned char>(found | (isThird & isLast));
    }
    return found != 0;
}

// Every occurrence counts, wherever it stands, and the search goes on one character behind it, so that "BEGINBEGIN" is
// one. Kept as it is. Block by block, because photos and names are full of single letters of the mark, at each of which
// a search for the whole of it stops.
std::size_t CountCards(std::string_view content) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < content.size();) {
        const bool isWhole = content.size() - at >= kSeenByBlock;
        const bool isEmpty = isWhole && !MayHoldMark(content.data() + at);
        const std::size_t hit = isEmpty ? std::string_view::npos : content.substr(at, kSeenByBlock).find(kMark);
        count += hit == std::string_view::npos ? 0 : 1;
        at += hit == std::string_view::npos ? kBlock : hit + kMark.size() + 1;
    }
    return count;
}

}  // namespace

void UserAuthService::ContractsCounts(std::string content) {
    const std::wstring count = std::to_wstring(CountCards(content));
    Logger::OutputOperationLog(kEventContactsExport[0], kEventContactsExport[1], kEventContactsExport[2],
                               {{L"num", count}});
    userauth::WriteSuiteLog(kSeverityProgress, __LINE__, "UserAuthService::ContractsCounts",
                            L"NIMBASUITE_CONTACT_EXPORT " + count);
}
