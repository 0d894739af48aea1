#include <Logger.h>

#include "UserAuthService.h"
#include "core/ServiceLog.h"

namespace {

// Business event of the export: basic event, operation, action.
constexpr int kEventContactsExport[] = {148, 1, 0};

// Every occurrence counts, wherever it stands, and the search goes on one character behind it, so that "BEGINBEGIN" is
// one. Kept as it is.
std::size_t CountCards(const std::string& content) {
    const std::string mark = "BEGIN";
    std::size_t count = 0;
    for (std::size_t hit = content.find(mark); hit != std::string::npos;
         hit = content.find(mark, hit + mark.size() + 1)) {
        ++count;
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
